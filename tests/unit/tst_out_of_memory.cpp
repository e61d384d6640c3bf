#include "HeapWatch.h"
#include "InvokableCalls.h"
#include "MemoryFailure.h"
#include "PluginRecordingManagement.h"
#include "PluginSite.h"
#include "TraceRecorder.h"

#include <QMetaMethod>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <array>
#include <new>
#include <utility>

namespace {

// What fails.
enum class Failure {
    Once, // an allocation
    Lasting, // an allocation, and every one after it
    NewOnce, // an allocation with operator new
    NothrowOnce, // an allocation with operator new that answers null
};

const char *const failureNames[] = {"once", "lasting", "new once", "new without exception once"};
constexpr int never = 1'000'000;

// Ids of requests differ from call to call, models from object to object.
QVariant comparable(const QVariant &answer)
{
    if (answer.metaType() == QMetaType::fromType<QString>())
        return answer.toString().isEmpty() ? "" : "an id";
    if (answer.metaType() == QMetaType::fromType<QObject *>())
        return answer.value<QObject *>() ? "a model" : "no model";
    return answer;
}

// What a call comes to.
struct Outcome
{
    bool thrown = false;
    bool failed = false; // memory was refused
    QVariant answer;
    QVariantList sent = {}; // the data
    qsizetype models = 0; // more than before

    bool operator==(const Outcome &other) const
    {
        return answer == other.answer && sent == other.sent && models == other.models;
    }
};

// Calls as QML does, while the nth allocation fails.
Outcome outcomeOf(PluginSite &site, int number, QVariantList arguments, int nth = never, Failure kind = Failure::Once)
{
    const QMetaMethod method = PluginRecordingManagement::staticMetaObject.method(number);
    QVariant answer(method.returnMetaType());
    std::array<void *, 16> raw{answer.data()};
    for (int i = 0; i < method.parameterCount(); ++i) {
        if (arguments[i].metaType() != method.parameterMetaType(i))
            qFatal("wrong argument of %s", method.methodSignature().constData());
        raw[static_cast<std::size_t>(i) + 1] = arguments[i].data();
    }

    Outcome outcome;
    const qsizetype before = site.plugin.children().size();
    const auto failing = [&](const auto &failure) {
        try {
            site.plugin.qt_metacall(QMetaObject::InvokeMetaMethod, number, raw.data());
        } catch (const std::bad_alloc &) {
            outcome.thrown = true;
        }
        outcome.failed = failure.happened();
    };
    switch (kind) {
    case Failure::Once:
        failing(MemoryFailure(nth, MemoryFailure::Length::Once));
        break;
    case Failure::Lasting:
        failing(MemoryFailure(nth, MemoryFailure::Length::Lasting));
        break;
    case Failure::NewOnce:
        failing(AllocationFailure(nth, AllocationFailure::Kind::Throwing));
        break;
    case Failure::NothrowOnce:
        failing(AllocationFailure(nth, AllocationFailure::Kind::Nothrow));
        break;
    }
    outcome.answer = comparable(answer);
    for (const FakeFramework::Sent &request : std::as_const(site.framework.sent))
        outcome.sent.append(request.data);
    outcome.models = site.plugin.children().size() - before;
    return outcome;
}

} // namespace

/// Memory runs out at each allocation of each call in turn.
class OutOfMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everyInvokableIsCalled();
    void everyInvokableAnswers_data();
    void everyInvokableAnswers();
    void aFailedRequestLeavesTheFlagAsItWas();
    void aFailedAddLeavesTheOneUnderWay();
    void aTreeThatIsNotAskedForKeepsTheCache();
    void aFrameworkThatThrowsRefuses();
};

void OutOfMemoryTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void OutOfMemoryTest::everyInvokableIsCalled()
{
    QSet<int> called;
    for (const Call &call : calls) {
        for (const int method : formsOf(call))
            called.insert(method);
    }
    const QMetaObject &meta = PluginRecordingManagement::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        QCOMPARE(called.contains(i), meta.method(i).methodType() == QMetaMethod::Method);
}

void OutOfMemoryTest::everyInvokableAnswers_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("method");
    QTest::addColumn<bool>("filled");
    QTest::addColumn<Failure>("kind");
    for (qsizetype number = 0; number < calls.size(); ++number) {
        const Call &call = calls[number];
        for (const int method : formsOf(call)) {
            const QByteArray signature = PluginRecordingManagement::staticMetaObject.method(method).methodSignature();
            const auto row = [&](bool filled, Failure kind) {
                QTest::addRow("%s %d, %s site, %s", signature.constData(), static_cast<int>(number),
                              filled ? "filled" : "empty", failureNames[static_cast<int>(kind)])
                    << call << method << filled << kind;
            };
            for (const bool filled : {false, true}) {
                row(filled, call.makesItem ? Failure::NewOnce : Failure::Once);
                row(filled, call.makesItem ? Failure::NothrowOnce : Failure::Lasting);
            }
        }
    }
}

void OutOfMemoryTest::everyInvokableAnswers()
{
    QFETCH(Call, call);
    QFETCH(int, method);
    QFETCH(bool, filled);
    QFETCH(Failure, kind);

    Outcome full;
    for (int round = 0; round < 2; ++round) { // the first one fills what Qt keeps for good
        PluginSite site(filled);
        full = outcomeOf(site, method, call.arguments);
        site.reply();
    }
    const Outcome refused{.answer = comparable(call.refused)};
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        QVERIFY(nth < 1000);
        const std::ptrdiff_t before = liveBlocks();
        {
            PluginSite site(filled);
            const Outcome outcome = outcomeOf(site, method, call.arguments, nth, kind);
            site.reply();
            const Outcome next = outcomeOf(site, method, call.arguments);
            site.reply();
            failed = outcome.failed;
            const QByteArray place = "allocation " + QByteArray::number(nth);
            QVERIFY2(!outcome.thrown, place);
            QVERIFY2(outcome == full || (failed && outcome == refused), place);
            QVERIFY2(next.answer == full.answer, place);
        }
        const std::ptrdiff_t left = liveBlocks() - before;
        QVERIFY2(left == 0 || (failed && call.makesItem),
                 qPrintable(QStringLiteral("allocation %1 left %2 blocks").arg(nth).arg(left)));
    }
}

void OutOfMemoryTest::aFailedRequestLeavesTheFlagAsItWas()
{
    const int method = PluginRecordingManagement::staticMetaObject.indexOfMethod("getRecordingGroup()");
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        PluginSite site(true);
        failed = outcomeOf(site, method, {}, nth).failed;
        QCOMPARE(site.plugin.property("recordingGroupRetrieved"), QVariant(failed ? 1 : 0));
        site.reply();
    }
}

void OutOfMemoryTest::aFailedAddLeavesTheOneUnderWay()
{
    const int method = PluginRecordingManagement::staticMetaObject.indexOfMethod("addNASServer(QString)");
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        PluginSite site(true);
        QSignalSpy answers(&site.plugin, &PluginRecordingManagement::addNASServerResponded);
        QVERIFY(site.plugin.addNASServer("first"));
        takeTraceLines();
        failed = outcomeOf(site, method, {"second"}, nth).failed;
        const QString line = "PluginRecordingManagement::addNASServer, new AddNASServerContext failed";
        QCOMPARE(takeErrorLines(), failed ? QStringList{line} : QStringList{});
        site.reply();
        QCOMPARE(answers.size(), 1);
    }
}

void OutOfMemoryTest::aTreeThatIsNotAskedForKeepsTheCache()
{
    const int method = PluginRecordingManagement::staticMetaObject.indexOfMethod("retrieveRecordingGroupTreeModel()");
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        PluginSite site(true);
        failed = outcomeOf(site, method, {}, nth, Failure::NewOnce).failed;
        QCOMPARE(site.plugin.getRecordingGroupReservedTime("{1}", "st1"), failed ? 60 : 0);
    }
}

void OutOfMemoryTest::aFrameworkThatThrowsRefuses()
{
    PluginSite site(false);
    site.framework.duringSend = [](const FakeFramework::Sent &) { throw std::bad_alloc(); };
    QVERIFY(!site.plugin.getVolume());
    QVERIFY(!site.plugin.removeRecordingGroup({"{1}"}));
    QVERIFY(!site.plugin.addRecordingGroupWithCompleteInfo(groupInfo, {pathInfo}, {}));
    QVERIFY(site.plugin.retrieveRecordingGroupTreeModel()); // as with any refusal
    QVERIFY(!site.plugin.addNASServer("nas"));
    QVERIFY(!site.plugin.getNASServerDir("//nas/share"));
    QCOMPARE(site.framework.sent.size(), 6);
    const QString line = "PluginRecordingManagement::sendRequestToServer, Send command failed.";
    QCOMPARE(takeErrorLines(), QStringList(6, line));
}

QTEST_GUILESS_MAIN(OutOfMemoryTest)
#include "tst_out_of_memory.moc"
