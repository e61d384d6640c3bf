#include "FakeFramework.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

#include <limits>
#include <memory>

namespace {

const QList<int> volumeRoles{258, 259, 260, 261, 262, 263};

QVariantMap disk(const QString &name, const QVariant &total, const QVariant &used)
{
    return {{"diskName", name}, {"diskTotal", total}, {"diskUsed", used}};
}

} // namespace

class NasPathsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void onePathIsAskedForWithItsContext();
    void userNameIsEmptyByDefault();
    void emptyPathIsRefused();
    void failedContextSendsNothing();
    void refusedSendFreesTheContext();
    void capacityBecomesAVolume_data();
    void capacityBecomesAVolume();
    void theSignalComesBeforeTheRow();
    void refusedCapacityAddsNothing();
    void failedRowIsLogged();
    void replyMayComeWhileItIsAskedFor();
    void severalPathsAreSentAsTheyAre();
    void noPathsAreDoneAtOnce();
    void refusedSendOfSeveralPaths();
    void disksBecomeVolumes_data();
    void disksBecomeVolumes();
    void rowsFollowTheOnesThere();
    void refusedPathsAreLogged_data();
    void refusedPathsAreLogged();
    void failedDiskIsSkipped();
    void rowsLiveUntilTheNextVolumeReply();

private:
    void reply(const QString &command, const QString &code, const QVariant &data, void *context = nullptr)
    {
        m_plugin->CommandProcessor(command, data, context, code, {}, true, {});
    }
    QStringList rows() const { return modelText(*m_model, volumeRoles); }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<SignalLog> m_log;
};

void NasPathsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_framework.duringSend = [](const FakeFramework::Sent &sent) { watchAllocation(sent.context); };
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getVolumeModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_log = std::make_unique<SignalLog>(m_plugin.get(), [this] { return modelText(*m_model, {258}).join(';'); });
    takeTraceLines();
}

void NasPathsTest::onePathIsAskedForWithItsContext()
{
    QVERIFY(m_plugin->addNASPathToVolume("//n/s", "d", "u", "p", "st1"));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, "GetNasCapacity");
    QCOMPARE(typedText(sent.data),
             "{basePath: QString \"//n/s\", logonDomain: QString \"d\", password: QString \"p\", "
             "relayPath: QString \"st1\", userName: QString \"u\"}");
    QCOMPARE(sent.relayPath, QString());
    QCOMPARE(*static_cast<QString *>(sent.context), "//n/s");
    QVERIFY(!isFreed(sent.context));
    reply("GetNasCapacity", "1", {}, sent.context);
}

void NasPathsTest::userNameIsEmptyByDefault()
{
    QVERIFY(m_plugin->addNASPathToVolume("//n/s"));
    QCOMPARE(typedText(m_framework.sent.constFirst().data),
             "{basePath: QString \"//n/s\", logonDomain: QString \"Host\", password: QString \"\", relayPath: QString "
             "\"\", userName: QString \"\"}");
    reply("GetNasCapacity", "1", {}, m_framework.sent.constFirst().context);
}

void NasPathsTest::emptyPathIsRefused()
{
    QVERIFY(!m_plugin->addNASPathToVolume("", "d", "u", "p", "st1"));
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(), QStringList{"error: PluginRecordingManagement::addNASPathToVolume, basePath is empty"});
}

void NasPathsTest::failedContextSendsNothing()
{
    {
        const AllocationFailure failure(0);
        QVERIFY(!m_plugin->addNASPathToVolume("//n/s"));
        QVERIFY(failure.happened());
    }
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(), QStringList{});
}

void NasPathsTest::refusedSendFreesTheContext()
{
    m_framework.accepts = false;
    QVERIFY(!m_plugin->addNASPathToVolume("//n/s"));
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
}

void NasPathsTest::capacityBecomesAVolume_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("sizes");
    QTest::newRow("some used") << QVariant(QVariantMap{{"total", 1000}, {"used", 400}})
                               << "qlonglong:1000 | qlonglong:600";
    QTest::newRow("more used than there is")
        << QVariant(QVariantMap{{"total", 500}, {"used", 700}}) << "qlonglong:500 | qlonglong:-200";
    QTest::newRow("nothing told") << QVariant() << "qlonglong:0 | qlonglong:0";
    QTest::newRow("at the ends") << QVariant(QVariantMap{{"total", std::numeric_limits<qlonglong>::min()}, {"used", 1}})
                                 << "qlonglong:-9223372036854775808 | qlonglong:9223372036854775807";
}

void NasPathsTest::capacityBecomesAVolume()
{
    QFETCH(QVariant, data);
    QFETCH(QString, sizes);
    m_plugin->addNASPathToVolume("\\\\n\\s");
    reply("GetNasCapacity", "0", data, m_framework.sent.constFirst().context);
    QCOMPARE(rows(), QStringList{"\\\\n\\s | \\\\n\\s | " + sizes + " | bool:false | bool:true"});
    const QString id = m_model->index(0, 0).data(257).toString();
    QCOMPARE(QUuid(id).toString(), id);
    QVERIFY(!QUuid(id).isNull());
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
}

void NasPathsTest::theSignalComesBeforeTheRow()
{
    for (const int round : {0, 1}) {
        m_plugin->addNASPathToVolume("//n/s");
        reply("GetNasCapacity", "0", QVariantMap{{"total", 1000}, {"used", 400}}, m_framework.sent.at(round).context);
    }
    QCOMPARE(m_log->take(),
             (QStringList{"getNASServerCapacityResponded(NonError, 1000, 400) with ",
                          "getNASServerCapacityResponded(NonError, 1000, 400) with //n/s"}));
    QCOMPARE(m_model->rowCount(), 2); // a path asked for twice is listed twice
}

void NasPathsTest::refusedCapacityAddsNothing()
{
    m_plugin->addNASPathToVolume("//n/s");
    reply("GetNasCapacity", "GetNasCapacityFailed", QVariantMap{{"total", 1000}},
          m_framework.sent.constFirst().context);
    QCOMPARE(m_log->take(), QStringList{"getNASServerCapacityResponded(GetCapacityFailed, 0, 0) with "});
    QCOMPARE(rows(), QStringList{});
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
}

void NasPathsTest::failedRowIsLogged()
{
    m_plugin->addNASPathToVolume("//n/s");
    {
        const AllocationFailure failure(0);
        reply("GetNasCapacity", "0", QVariantMap{{"total", 1000}}, m_framework.sent.constFirst().context);
        QVERIFY(failure.happened());
    }
    QCOMPARE(m_log->take(), QStringList{"getNASServerCapacityResponded(NonError, 1000, 0) with "});
    QCOMPARE(rows(), QStringList{});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleGetNASServerCapacity, new VolumeItem failed"});
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
}

void NasPathsTest::replyMayComeWhileItIsAskedFor()
{
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        watchAllocation(sent.context);
        reply("GetNasCapacity", "0", {}, sent.context);
    };
    QVERIFY(m_plugin->addNASPathToVolume("//n/s"));
    QCOMPARE(modelText(*m_model, {258}), QStringList{"//n/s"});
    QVERIFY(isFreed(m_framework.sent.constFirst().context));
}

void NasPathsTest::severalPathsAreSentAsTheyAre()
{
    QVERIFY(m_plugin->addNASPathsToVolume({"//n/a", "", "//n/a"}));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, "addNASPathsToVolume");
    QCOMPARE(typedText(sent.data), "{pathList: QStringList [\"//n/a\", \"\", \"//n/a\"]}");
    QCOMPARE(sent.context, nullptr);
    QCOMPARE(sent.relayPath, QString());
    QCOMPARE(m_log->take(), QStringList{});
}

void NasPathsTest::noPathsAreDoneAtOnce()
{
    QVERIFY(!m_plugin->addNASPathsToVolume({}));
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(m_log->take(), QStringList{"addNASPathsToVolumeResp(true) with "});
    QCOMPARE(takeTraceLines(), QStringList{});
}

void NasPathsTest::refusedSendOfSeveralPaths()
{
    m_framework.accepts = false;
    QVERIFY(!m_plugin->addNASPathsToVolume({"//n/a"}));
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
}

void NasPathsTest::disksBecomeVolumes_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QStringList>("rowTexts");
    const QString marks = " | bool:false | bool:true";
    QTest::newRow("two") << QVariant(QVariantList{disk("//n/b", 500, 200), disk("//n/a", 9, 0)})
                         << QStringList{"//n/b | //n/b | qlonglong:500 | qlonglong:300" + marks,
                                        "//n/a | //n/a | qlonglong:9 | qlonglong:9" + marks};
    QTest::newRow("more used than there is") << QVariant(QVariantList{disk("//n/a", 500, 700)})
                                             << QStringList{"//n/a | //n/a | qlonglong:500 | qlonglong:-200" + marks};
    QTest::newRow("the same twice") << QVariant(QVariantList{disk("//n/a", 1, 1), disk("//n/a", 1, 1)})
                                    << QStringList{"//n/a | //n/a | qlonglong:1 | qlonglong:0" + marks,
                                                   "//n/a | //n/a | qlonglong:1 | qlonglong:0" + marks};
    QTest::newRow("keys missing, or no map")
        << QVariant(QVariantList{QVariantMap{}, 5})
        << QStringList{" |  | qlonglong:0 | qlonglong:0" + marks, " |  | qlonglong:0 | qlonglong:0" + marks};
    QTest::newRow("at the ends") << QVariant(QVariantList{disk("//n/a", 0, std::numeric_limits<qlonglong>::min())})
                                 << QStringList{"//n/a | //n/a | qlonglong:0 | qlonglong:-9223372036854775808" + marks};
    QTest::newRow("none") << QVariant(QVariantList{}) << QStringList{};
    QTest::newRow("no list") << QVariant(5) << QStringList{};
}

void NasPathsTest::disksBecomeVolumes()
{
    QFETCH(QVariant, data);
    QFETCH(QStringList, rowTexts);
    reply("addNASPathsToVolume", "0", data);
    QCOMPARE(rows(), rowTexts);
    QCOMPARE(m_log->take(), QStringList{"addNASPathsToVolumeResp(true) with " + modelText(*m_model, {258}).join(';')});
    QCOMPARE(takeErrorLines(), QStringList{});
}

void NasPathsTest::rowsFollowTheOnesThere()
{
    reply("getVolume", "0", QVariantList{QVariantMap{{"volumePath", "D:/"}}});
    reply("addNASPathsToVolume", "0", QVariantList{disk("//n/a", 1, 1), disk("//n/b", 1, 1)});
    reply("addNASPathsToVolume", "0", QVariantList{disk("//n/a", 1, 1)});
    QCOMPARE(modelText(*m_model, {258, 263}),
             (QStringList{"D:/ | bool:false", "//n/a | bool:true", "//n/b | bool:true", "//n/a | bool:true"}));
    QVERIFY(m_model->index(1, 0).data(257) != m_model->index(3, 0).data(257));
}

void NasPathsTest::refusedPathsAreLogged_data()
{
    QTest::addColumn<QString>("code");
    for (const char *code : {"1", "", "00", "GetNasCapacityFailed"})
        QTest::newRow(code) << QString::fromLatin1(code);
}

void NasPathsTest::refusedPathsAreLogged()
{
    QFETCH(QString, code);
    reply("addNASPathsToVolume", "0", QVariantList{disk("//n/a", 1, 1)});
    m_log->take();
    reply("addNASPathsToVolume", code, QVariantList{disk("//n/b", 1, 1)});
    QCOMPARE(m_log->take(), QStringList{"addNASPathsToVolumeResp(false) with //n/a"});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleAddNASPathsToVolume, Add path to volume "
                         "failed, returnCode = "
                         + code});
}

void NasPathsTest::failedDiskIsSkipped()
{
    {
        const AllocationFailure failure(1, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        reply("addNASPathsToVolume", "0", QVariantList{disk("//n/a", 1, 1), disk("//n/b", 1, 1), disk("//n/c", 1, 1)});
        QVERIFY(failure.happened());
    }
    QCOMPARE(m_log->take(), QStringList{"addNASPathsToVolumeResp(true) with //n/a;//n/c"});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleAddNASPathsToVolume, new VolumeItem failed"});
}

void NasPathsTest::rowsLiveUntilTheNextVolumeReply()
{
    reply("addNASPathsToVolume", "0", QVariantList{disk("//n/a", 1, 1)});
    reply("getVolume", "0", QVariantList{});
    QCOMPARE(rows(), QStringList{});
}

QTEST_GUILESS_MAIN(NasPathsTest)
#include "tst_nas_paths.moc"
