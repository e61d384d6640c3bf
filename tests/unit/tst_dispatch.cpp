#include "FakeFramework.h"
#include "HeapWatch.h"
#include "PluginRecordingManagement.h"
#include "RequestContexts.h"
#include "SignalLog.h"

#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTest>

#include <functional>
#include <new>

namespace {

// A context of the kind that the command's requester allocates.
using MakeContext = std::function<void *()>;

void *noContext()
{
    return nullptr;
}

} // namespace

Q_DECLARE_METATYPE(MakeContext)

class DispatchTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyCommandReachesItsHandler_data();
    void everyCommandReachesItsHandler();
    void finishIsHandedOn_data();
    void finishIsHandedOn();
    void onlyZeroIsSuccess_data();
    void onlyZeroIsSuccess();
    void otherNamesReachNoHandler_data();
    void otherNamesReachNoHandler();
    void theExtendedReplyProcessorRoutesNothing();
    void volumeChangedAlwaysTells_data();
    void volumeChangedAlwaysTells();
    void volumeChangedTellsAfterTheFiguresAreIn();
    void otherEventsAreIgnored_data();
    void otherEventsAreIgnored();
    void theExtendedEventProcessorRoutesNothing();
    void connectionAsksForThreeThings();
    void connectionForgetsTheUsageModels();
    void everyCommandCarriesTheEnvelope();
    void noExceptionLeavesWhenMemoryRunsOut_data();
    void noExceptionLeavesWhenMemoryRunsOut();

private:
    QStringList answer(const QString &command, const QString &returnCode, bool finish = true, const QVariant &data = {},
                       void *context = nullptr)
    {
        m_plugin->CommandProcessor(command, data, context, returnCode, "unused", finish, "unused");
        return m_log->take();
    }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<SignalLog> m_log;
};

void DispatchTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_log = std::make_unique<SignalLog>(m_plugin.get());
}

void DispatchTest::cleanup()
{
    m_log.reset();
    m_plugin.reset();
}

void DispatchTest::everyCommandReachesItsHandler_data()
{
    QTest::addColumn<MakeContext>("context");
    QTest::addColumn<QStringList>("emitted");

    const MakeContext none = noContext;
    const MakeContext map = [] { return new NASServerRequestContext{{"id", "n1"}}; };
    const MakeContext text = [] { return new RequestIdContext("request"); };
    QTest::newRow("GetNasServers") << none << QStringList{"getNASServersResponded(true)"};
    QTest::newRow("addNASPathsToVolume") << none << QStringList{"addNASPathsToVolumeResp(true)"};
    QTest::newRow("AddNasServer") << MakeContext([] { return new AddNASServerContext; })
                                  << QStringList{"addNASServerResponded(NonError, \"\")"};
    QTest::newRow("UpdateNASServer") << map << QStringList{"updateNASServerResponsed(NonError, \"n1\")"};
    QTest::newRow("RemoveNASServer") << map << QStringList{"removeNASServerResponsed(true)"};
    QTest::newRow("GetNasDir") << none << QStringList{"getNASServerDirResponded(NonError, \"\")"};
    QTest::newRow("GetNasCapacity") << none << QStringList{"getNASServerCapacityResponded(NonError, 0, 0)"};
    QTest::newRow("getVolume") << none << QStringList{"getVolumeResponded(true)"};
    QTest::newRow("getRecordingGroup") << text
                                       << QStringList{"recordingGroupRetrievedChanged()",
                                                      "getRecordingGroupResponded(\"request\")"};
    QTest::newRow("addPathToRecordingGroup") << none << QStringList{"addPathToRecordingGroupResponded(true)"};
    QTest::newRow("removePathFromRecordingGroup")
        << none << QStringList{"removePathFromRecordingGroupResp(true, true)"};
    QTest::newRow("addRecordingGroup") << none << QStringList{"addRecordingGroupResponded(true)"};
    QTest::newRow("createDirectory") << none << QStringList{"createDirectoryResponded(true)"};
    QTest::newRow("removeRecordingGroup") << none << QStringList{"removeRecordingGroupResp(true, true)"};
    QTest::newRow("addRecordingGroupWithCompleteInfo")
        << none << QStringList{"addRecordingGroupWithCompleteInfoResp(true, \"\", [0])"};
    QTest::newRow("updateRecordingGroup") << none << QStringList{"updateRecordingGroupResp(true, [0])"};
    QTest::newRow("retrieveRecordingGroupTreeModel") << none << QStringList{"retrieveRecordingGroupTreeModelFinish()"};
    QTest::newRow("getServerDir") << none << QStringList{"getServerDirResponded(\"\")"};
    QTest::newRow("reloadStorageUsageInfo") << none << QStringList{};
    QTest::newRow("{2C85B19D-AE6F-45D9-B8FE-DC436FCBEABE}FrameworkInternalError") << none << QStringList{};
}

void DispatchTest::everyCommandReachesItsHandler()
{
    QFETCH(MakeContext, context);
    QFETCH(QStringList, emitted);
    QCOMPARE(answer(QTest::currentDataTag(), "0", true, {}, context()), emitted);
}

void DispatchTest::finishIsHandedOn_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("finish");
    QTest::addColumn<QStringList>("emitted");
    QTest::newRow("removeRecordingGroup") << "0" << false << QStringList{"removeRecordingGroupResp(true, false)"};
    QTest::newRow("removePathFromRecordingGroup")
        << "7" << false << QStringList{"removePathFromRecordingGroupResp(false, false)"};
    QTest::newRow("addRecordingGroup") << "0" << false << QStringList{};
    QTest::newRow("addPathToRecordingGroup") << "0" << false << QStringList{"addPathToRecordingGroupResponded(true)"};
    QTest::newRow("createDirectory") << "0" << false << QStringList{"createDirectoryResponded(true)"};
}

void DispatchTest::finishIsHandedOn()
{
    QFETCH(QString, code);
    QFETCH(bool, finish);
    QFETCH(QStringList, emitted);
    QCOMPARE(answer(QTest::currentDataTag(), code, finish), emitted);
}

void DispatchTest::onlyZeroIsSuccess_data()
{
    QTest::addColumn<QString>("returnCode");
    QTest::addColumn<bool>("ok");
    QTest::newRow("0") << "0" << true;
    QTest::newRow("00") << "00" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("space before") << " 0" << false;
    QTest::newRow("null") << QString() << false;
    QTest::newRow("word") << "failed" << false;
}

void DispatchTest::onlyZeroIsSuccess()
{
    QFETCH(QString, returnCode);
    QFETCH(bool, ok);
    const QString word = ok ? "true" : "false";
    QCOMPARE(answer("createDirectory", returnCode), QStringList{QString("createDirectoryResponded(%1)").arg(word)});
    QCOMPARE(answer("addPathToRecordingGroup", returnCode),
             QStringList{QString("addPathToRecordingGroupResponded(%1)").arg(word)});
    QCOMPARE(answer("removePathFromRecordingGroup", returnCode),
             QStringList{QString("removePathFromRecordingGroupResp(%1, true)").arg(word)});
    QCOMPARE(answer("removeRecordingGroup", returnCode),
             QStringList{QString("removeRecordingGroupResp(%1, true)").arg(word)});
}

void DispatchTest::otherNamesReachNoHandler_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("other case") << "getNasServers";
    QTest::newRow("upper-case NAS") << "AddNASServer";
    QTest::newRow("lower-case NAS") << "UpdateNasServer";
    QTest::newRow("trailing space") << "getVolume ";
    QTest::newRow("empty") << "";
    QTest::newRow("unknown") << "formatVolume";
}

void DispatchTest::otherNamesReachNoHandler()
{
    QFETCH(QString, command);
    QCOMPARE(answer(command, "0"), QStringList{});
}

void DispatchTest::theExtendedReplyProcessorRoutesNothing()
{
    m_plugin->CommandProcessorEx("createDirectory", nullptr, {}, nullptr, "0", {}, true, {});
    QCOMPARE(m_log->take(), QStringList{});
}

void DispatchTest::volumeChangedAlwaysTells_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("no list") << QVariant(5);
    QTest::newRow("an empty list") << QVariant(QVariantList{});
    QTest::newRow("an entry") << QVariant(QVariantList{QVariantMap{{"recordingGroupID", "g"}}});
}

void DispatchTest::volumeChangedAlwaysTells()
{
    QFETCH(QVariant, data);
    m_plugin->EventProcessor("VolumeChanged", 1, 2, 3, data, "relay-7");
    QCOMPARE(m_log->take(), QStringList{"volumeInfoChanged()"});
}

void DispatchTest::volumeChangedTellsAfterTheFiguresAreIn()
{
    auto *usage = qobject_cast<QStandardItemModel *>(m_plugin->getStorageUsageModel("relay-7"));
    QVERIFY(usage);
    SignalLog log(m_plugin.get(), [usage] { return QString::number(usage->rowCount()); });
    m_plugin->EventProcessor(
        "VolumeChanged", 0, 0, 0,
        QVariantList{QVariantMap{{"recordingGroupID", ""}}, QVariantMap{{"recordingGroupID", "g"}}}, "relay-7");
    QCOMPARE(log.take(), (QStringList{"unsupportedStorages(\"relay-7\") with 0", "volumeInfoChanged() with 1"}));
    QVERIFY(m_plugin->getGroupVolumeModel("relay-7", "g"));
}

void DispatchTest::otherEventsAreIgnored_data()
{
    QTest::addColumn<QString>("event");
    QTest::newRow("other case") << "volumeChanged";
    QTest::newRow("a command's name") << "getVolume";
    QTest::newRow("empty") << "";
}

void DispatchTest::otherEventsAreIgnored()
{
    QFETCH(QString, event);
    m_plugin->EventProcessor(event, 0, 0, 0, QVariantList{QVariantMap{}}, {});
    QCOMPARE(m_log->take(), QStringList{});
}

void DispatchTest::theExtendedEventProcessorRoutesNothing()
{
    m_plugin->EventProcessorEx("VolumeChanged", nullptr, 0, 0, 0, QVariantList{QVariantMap{}}, {});
    QCOMPARE(m_log->take(), QStringList{});
}

void DispatchTest::connectionAsksForThreeThings()
{
    m_framework.accepts = false; // the results are not looked at: a refusal stops nothing
    m_plugin->PluginServerConnected();
    QStringList commands;
    for (const FakeFramework::Sent &sent : m_framework.sent) {
        commands.append(sent.command);
        QCOMPARE(sent.relayPath, "");
    }
    QCOMPARE(commands, (QStringList{"GetNasServers", "getRecordingGroup", "reloadStorageUsageInfo"}));
    QCOMPARE(m_framework.sent.at(0).data, QVariant(QString()));
    QVERIFY(!m_framework.sent.at(1).data.isValid());
    QVERIFY(!m_framework.sent.at(2).data.isValid());
    QCOMPARE(m_log->take(), QStringList{"recordingGroupRetrievedChanged()"});
}

void DispatchTest::connectionForgetsTheUsageModels()
{
    const QPointer<QObject> before = m_plugin->getStorageUsageModel("");
    QCOMPARE(m_plugin->getStorageUsageModel(""), before.data());
    m_framework.accepts = false;
    m_plugin->PluginServerConnected();
    QVERIFY(before.isNull());
    QVERIFY(m_plugin->getStorageUsageModel(""));
}

void DispatchTest::everyCommandCarriesTheEnvelope()
{
    m_framework.accepts = false;
    m_plugin->getVolume("r");
    m_plugin->getRecordingGroup();
    m_plugin->createDirectory("d");
    m_plugin->addNASServer("h", "Host", "Guest", "", "r");
    m_plugin->updateRecordingGroup({}, {}, {}, {}, {}, {}, {});
    QCOMPARE(m_framework.sent.size(), 5);
    for (const FakeFramework::Sent &sent : m_framework.sent) {
        QCOMPARE(sent.handle, this);
        QCOMPARE(sent.pluginId, "8F33495A224D49ABB8F9E875984A1443");
        QVERIFY(!sent.flag);
        QCOMPARE(sent.relayPath, sent.command == "getVolume" ? "r" : "");
    }
}

void DispatchTest::noExceptionLeavesWhenMemoryRunsOut_data()
{
    QTest::addColumn<QVariant>("data");
    const QVariantMap entry{{"id", "1"}, {"host", "h"}, {"recordingGroupID", "g"}, {"diskName", "d"}};
    for (const char *command : {"getVolume", "GetNasServers", "addNASPathsToVolume", "VolumeChanged"})
        QTest::newRow(command) << QVariant(QVariantList{entry});
    for (const char *command : {"getServerDir", "GetNasDir"})
        QTest::newRow(command) << QVariant(QVariantMap{{"dirFolderList", QStringList{"a", "b"}}});
}

void DispatchTest::noExceptionLeavesWhenMemoryRunsOut()
{
    QFETCH(QVariant, data);
    const QString name = QTest::currentDataTag();
    bool happened = true;
    for (int nth = 0; happened && nth < 200; ++nth) {
        bool thrown = false;
        cleanup(); // a model whose reset was broken off is in no state to be asked again
        init();
        m_log.reset();
        {
            const AllocationFailure failure(nth, AllocationFailure::Kind::Throwing);
            try {
                if (name == "VolumeChanged")
                    m_plugin->EventProcessor(name, 0, 0, 0, data, {});
                else
                    m_plugin->CommandProcessor(name, data, nullptr, "0", {}, true, {});
            } catch (const std::bad_alloc &) {
                thrown = true;
            }
            happened = failure.happened();
        }
        QVERIFY2(!thrown, qPrintable(QString("allocation %1").arg(nth)));
    }
    QVERIFY(!happened); // every allocation has had its turn
}

QTEST_GUILESS_MAIN(DispatchTest)
#include "tst_dispatch.moc"
