#include "FakeFramework.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

#include <memory>

namespace {

const QList<int> everyRole{257, 258, 259, 260, 261, 262, 263, 264, 265};

QVariantMap group(const QString &id, const QString &relayPath = {})
{
    return {{"recordingGroupID", id}, {"relayPath", relayPath}};
}

} // namespace

class RecordingGroupCacheTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void requestCarriesTheRequestIdAsContext();
    void flagChangesBeforeTheCommandIsSent();
    void refusedSendReturnsNothingAndFreesTheContext();
    void failedContextTouchesNothing();
    void replyFillsTheModel_data();
    void replyFillsTheModel();
    void replySignalsInOrderAndFreesTheContext();
    void emptyReplyCompletes();
    void refusedReplyChangesNothingAndKeepsTheContext();
    void replyWithoutContextNamesNoRequest();
    void replyInsideSendIsAnnouncedAtOnce();
    void twoRequestsAnnounceTheirOwnIds();
    void failedRowIsSkipped_data();
    void failedRowIsSkipped();
    void modelAndCacheAreIndependent();
    void savedTwiceIsHeldTwiceInOrder();
    void theFirstOfTwoEqualRecordsCounts();
    void clearingEmptiesTheCacheSilently();
    void oddRecordsAreKeptAsEmptyOnes();

private:
    void reply(const QVariant &data, void *context, const QString &returnCode = "0")
    {
        m_plugin->CommandProcessor("getRecordingGroup", data, context, returnCode, {}, true, {});
    }
    void saveToCache(const QVariant &data)
    {
        m_plugin->CommandProcessor("retrieveRecordingGroupTreeModel", data, nullptr, "0", {}, true, {});
    }
    QString state() const
    {
        return QStringLiteral("%1 rows, flag %2")
            .arg(m_model->rowCount())
            .arg(m_plugin->property("recordingGroupRetrieved").toInt());
    }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<SignalLog> m_log;
};

void RecordingGroupCacheTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_framework.duringSend = [](const FakeFramework::Sent &sent) { watchAllocation(sent.context); };
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getRecordingGroupModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_log = std::make_unique<SignalLog>(m_plugin.get(), [this] { return state(); });
    takeTraceLines();
}

void RecordingGroupCacheTest::requestCarriesTheRequestIdAsContext()
{
    const QString id = m_plugin->getRecordingGroup();
    QCOMPARE(id, QUuid(id).toString());
    QVERIFY(!QUuid(id).isNull());
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, "getRecordingGroup");
    QVERIFY(!sent.data.isValid());
    QCOMPARE(sent.relayPath, QString());
    QCOMPARE(*static_cast<QString *>(sent.context), id);
    QVERIFY(!isFreed(sent.context));
    reply({}, sent.context);
    QVERIFY(isFreed(sent.context));
}

void RecordingGroupCacheTest::flagChangesBeforeTheCommandIsSent()
{
    reply(QVariantList{group("{1}")}, nullptr);
    m_log->take();
    QStringList beforeSend;
    m_framework.duringSend = [&](const FakeFramework::Sent &) { beforeSend = m_log->take(); };
    m_framework.accepts = false;
    QCOMPARE(m_plugin->getRecordingGroup(), QString());
    QCOMPARE(beforeSend, QStringList{"recordingGroupRetrievedChanged() with 1 rows, flag 0"});
    QCOMPARE(m_log->take(), QStringList{});
}

void RecordingGroupCacheTest::refusedSendReturnsNothingAndFreesTheContext()
{
    m_framework.accepts = false;
    QCOMPARE(m_plugin->getRecordingGroup(), QString());
    QCOMPARE(m_framework.sent.size(), 1);
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
    QCOMPARE(state(), "0 rows, flag 0");
}

void RecordingGroupCacheTest::failedContextTouchesNothing()
{
    reply(QVariantList{}, nullptr);
    m_log->take();
    takeTraceLines();
    {
        const AllocationFailure failure(0);
        QCOMPARE(m_plugin->getRecordingGroup(), QString());
        QVERIFY(failure.happened());
    }
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(takeTraceLines(), QStringList{});
    QCOMPARE(state(), "0 rows, flag 1");
}

void RecordingGroupCacheTest::replyFillsTheModel_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QStringList>("rows");

    const QVariantMap full{{"recordingGroupID", "{1}"},
                           {"recordingGroupName", "Gate"},
                           {"recordingGroupPathList", QStringList{"D:/", "E:/"}},
                           {"recordingGroupNodeIdList", QVariantList{7, "8"}},
                           {"recordingGroupNASPathList", "//n/s"},
                           {"recordingGroupReservedTime", 5},
                           {"volumeRecordedDays", 9}};
    const QString emptyRow = " |  | QStringList:[] | QStringList:[] | QStringList:[] | int:0 | int:0 | qlonglong:0 | "
                             "int:0";
    QTest::newRow("complete") << QVariant(QVariantList{full})
                              << QStringList{"{1} | Gate | QStringList:[D:/, E:/] | QStringList:[7, 8] | "
                                             "QStringList:[//n/s] | int:0 | int:0 | qlonglong:0 | int:0"};
    QTest::newRow("without a name") << QVariant(QVariantList{group("{1}")}) << QStringList{"{1}" + emptyRow};
    QTest::newRow("not a map") << QVariant(QVariantList{"{1}", 5, QVariant()})
                               << QStringList{emptyRow, emptyRow, emptyRow};
    QTest::newRow("wrong types") << QVariant(QVariantList{
        QVariantMap{{"recordingGroupID", 12}, {"recordingGroupName", QVariantList{}}, {"recordingGroupPathList", 3}}})
                                 << QStringList{"12" + emptyRow};
    QTest::newRow("twice the same, in order") << QVariant(QVariantList{group("{2}"), group("{1}"), group("{2}")})
                                              << QStringList{"{2}" + emptyRow, "{1}" + emptyRow, "{2}" + emptyRow};
    QTest::newRow("a text") << QVariant(3) << QStringList{};
    QTest::newRow("nothing") << QVariant() << QStringList{};
    QTest::newRow("empty list") << QVariant(QVariantList{}) << QStringList{};
}

void RecordingGroupCacheTest::replyFillsTheModel()
{
    QFETCH(QVariant, data);
    QFETCH(QStringList, rows);
    for (int round = 0; round < 2; ++round) { // the second one replaces the first
        reply(data, nullptr);
        QCOMPARE(modelText(*m_model, everyRole), rows);
    }
    for (int row = 0; row < m_model->rowCount(); ++row)
        QVERIFY(!m_model->index(row, 0).data(Qt::DisplayRole).isValid());
    QCOMPARE(m_model->roleNames().value(265), "reserveTimeRole");
}

void RecordingGroupCacheTest::replySignalsInOrderAndFreesTheContext()
{
    const QString id = m_plugin->getRecordingGroup();
    m_log->take();
    bool freedDuringSignal = true;
    connect(m_plugin.get(), &PluginRecordingManagement::getRecordingGroupResponded, this,
            [&] { freedDuringSignal = isFreed(m_framework.sent.constFirst().context); });
    reply(QVariantList{group("{1}"), group("{2}")}, m_framework.sent.constFirst().context);
    QCOMPARE(m_log->take(),
             (QStringList{"recordingGroupRetrievedChanged() with 2 rows, flag 1",
                          "getRecordingGroupResponded(\"" + id + "\") with 2 rows, flag 1"}));
    QVERIFY(!freedDuringSignal);
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
}

void RecordingGroupCacheTest::emptyReplyCompletes()
{
    reply(QVariantList{group("{1}")}, nullptr);
    const QString id = m_plugin->getRecordingGroup();
    m_log->take();
    reply(QVariantList{}, m_framework.sent.constFirst().context);
    QCOMPARE(m_log->take(),
             (QStringList{"recordingGroupRetrievedChanged() with 0 rows, flag 1",
                          "getRecordingGroupResponded(\"" + id + "\") with 0 rows, flag 1"}));
}

void RecordingGroupCacheTest::refusedReplyChangesNothingAndKeepsTheContext()
{
    reply(QVariantList{group("{1}")}, nullptr);
    m_plugin->getRecordingGroup();
    const std::unique_ptr<QString> context(static_cast<QString *>(m_framework.sent.constFirst().context));
    m_log->take();
    takeTraceLines();
    reply(QVariantList{group("{2}"), group("{3}")}, context.get(), "1");
    QVERIFY(!isFreed(context.get()));
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(state(), "1 rows, flag 0");
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleGetRecordingGroup, Get recording group failed, "
                         "returnCode = 1"});
}

void RecordingGroupCacheTest::replyWithoutContextNamesNoRequest()
{
    reply(QVariantList{group("{1}")}, nullptr);
    QCOMPARE(m_log->take(),
             (QStringList{"recordingGroupRetrievedChanged() with 1 rows, flag 1",
                          "getRecordingGroupResponded(\"\") with 1 rows, flag 1"}));
}

void RecordingGroupCacheTest::replyInsideSendIsAnnouncedAtOnce()
{
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        watchAllocation(sent.context);
        reply(QVariantList{group("{1}")}, sent.context);
    };
    const QString id = m_plugin->getRecordingGroup();
    QCOMPARE(m_log->take(),
             (QStringList{"recordingGroupRetrievedChanged() with 0 rows, flag 0",
                          "recordingGroupRetrievedChanged() with 1 rows, flag 1",
                          "getRecordingGroupResponded(\"" + id + "\") with 1 rows, flag 1"}));
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
}

void RecordingGroupCacheTest::twoRequestsAnnounceTheirOwnIds()
{
    const QString first = m_plugin->getRecordingGroup();
    const QString second = m_plugin->getRecordingGroup();
    QVERIFY(first != second);
    m_log->take();
    reply(QVariantList{group("{1}")}, m_framework.sent.at(1).context);
    reply(QVariantList{group("{1}"), group("{2}")}, m_framework.sent.at(0).context);
    QCOMPARE(m_log->take(),
             (QStringList{"recordingGroupRetrievedChanged() with 1 rows, flag 1",
                          "getRecordingGroupResponded(\"" + second + "\") with 1 rows, flag 1",
                          "recordingGroupRetrievedChanged() with 2 rows, flag 1",
                          "getRecordingGroupResponded(\"" + first + "\") with 2 rows, flag 1"}));
}

void RecordingGroupCacheTest::failedRowIsSkipped_data()
{
    QTest::addColumn<int>("failingRow");
    QTest::addColumn<QStringList>("ids");
    QTest::newRow("the first") << 0 << QStringList{"{2}", "{3}"};
    QTest::newRow("the second") << 1 << QStringList{"{1}", "{3}"};
    QTest::newRow("the last") << 2 << QStringList{"{1}", "{2}"};
}

void RecordingGroupCacheTest::failedRowIsSkipped()
{
    QFETCH(int, failingRow);
    QFETCH(QStringList, ids);
    {
        // The emptied model's root, then a row after the other.
        const AllocationFailure failure(1 + failingRow, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        reply(QVariantList{group("{1}"), group("{2}"), group("{3}")}, nullptr);
        QVERIFY(failure.happened());
    }
    QCOMPARE(modelText(*m_model, {257}), ids);
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleGetRecordingGroup, new RecordingGroupItem failed"});
    QCOMPARE(m_log->take().size(), 2);
}

void RecordingGroupCacheTest::modelAndCacheAreIndependent()
{
    reply(QVariantList{group("{1}")}, nullptr);
    QVERIFY(m_plugin->getRecordingGroupIDList("").isEmpty());
    saveToCache(QVariantList{group("{2}"), group("{3}")});
    QCOMPARE(modelText(*m_model, {257}), QStringList{"{1}"});
    m_plugin->clearRecordingGroupDataList();
    QCOMPARE(modelText(*m_model, {257}), QStringList{"{1}"});
}

void RecordingGroupCacheTest::savedTwiceIsHeldTwiceInOrder()
{
    QVariantMap first = group("{1}");
    QVariantMap second = group("{2}");
    first.insert("recordingGroupMemberList", QVariantList{QVariantMap{{"camName", "cam"}}});
    second.insert("recordingGroupMemberList", QVariantList{QVariantMap{{"camName", "cam"}}});
    saveToCache(QVariantList{first, second});
    saveToCache(QVariantList{first, second});
    QCOMPARE(typedText(m_plugin->getRecordingGroupIDList("cam")),
             "QVariantList [QString \"{1}\", QString \"{2}\", QString \"{1}\", QString \"{2}\"]");
}

void RecordingGroupCacheTest::theFirstOfTwoEqualRecordsCounts()
{
    QVariantMap first = group("{1}", "st1");
    QVariantMap second = group("{1}", "st1");
    first.insert("recordingGroupReservedTime", "11"); // converted
    second.insert("recordingGroupReservedTime", 22);
    QVariantMap elsewhere = group("{1}", "ST1");
    elsewhere.insert("recordingGroupReservedTime", 33);
    saveToCache(QVariantList{elsewhere, first, second});
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st1"), 11);
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "ST1"), 33);
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "St1"), 0);
}

void RecordingGroupCacheTest::clearingEmptiesTheCacheSilently()
{
    QVariantMap record = group("{1}");
    record.insert("recordingGroupReservedTime", 11);
    saveToCache(QVariantList{record});
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", ""), 11);
    m_log->take();
    m_plugin->clearRecordingGroupDataList();
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", ""), 0);
    QCOMPARE(m_log->take(), QStringList{});
}

void RecordingGroupCacheTest::oddRecordsAreKeptAsEmptyOnes()
{
    saveToCache(QVariantList{5,
                             QVariantMap{{"recordingGroupID", 7},
                                         {"recordingGroupPathList", QStringList{"D:/"}},
                                         {"reserveSpace", 2048},
                                         {"recordingGroupReservedTime", "soon"}}});
    saveToCache("no list");
    QCOMPARE(typedText(m_plugin->getRecordingGroupPathList("7", "")), "QVariantList [QString \"D:/\"]");
    QCOMPARE(typedText(m_plugin->getRecordingGroupReservedSpaceList("7", "")), "QVariantList []");
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("7", ""), 0);
}

QTEST_GUILESS_MAIN(RecordingGroupCacheTest)
#include "tst_recording_group_cache.moc"
