#include "RecordingFramework.h"
#include "SignalLog.h"

#include <QAbstractItemModel>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

namespace {

constexpr const char *initGetters[] = {"getVolumeModel", "getRecordingGroupModel", "getNASServerModel",
                                       "getNASServerDirModel", "getServerDirModel"};

} // namespace

/// The built plug-in from its making to its end, with a client that restates the interface: state, models, commands,
/// replies and events.
class PluginLifeTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void beforeInitialisationThereAreNoModels();
    void beforeInitialisationNoCommandIsSent();
    void aNullFrameworkIsEnoughToInitialise();
    void everyCommandCarriesHandleIdentifierAndFlag();
    void refusedCommandIsTold();
    void modelsAreTheirRoleTables_data();
    void modelsAreTheirRoleTables();
    void modelsBelongToThePlugin();
    void secondInitialisationReplacesTheModels();
    void destructionTakesTheModelsAlong();
    void usageModelIsOneForEachRelayPath();
    void groupVolumeModelIsNotMadeByAsking();
    void connectionSendsThreeRequestsInOrder();
    void connectionForgetsTheUsageModels();
    void replyReachesItsHandler_data();
    void replyReachesItsHandler();
    void contextComesBackToItsHandler();
    void volumeChangedIsTheOnlyEvent();

private:
    QObject *model(const char *getter) const
    {
        QObject *object = nullptr;
        const bool called = QMetaObject::invokeMethod(m_plugin.get(), getter, Q_RETURN_ARG(QObject *, object));
        return called ? object : nullptr;
    }
    QObject *usageModel(const QString &relayPath) const
    {
        QObject *object = nullptr;
        QMetaObject::invokeMethod(m_plugin.get(), "getStorageUsageModel", Q_RETURN_ARG(QObject *, object),
                                  Q_ARG(QString, relayPath));
        return object;
    }
    QObject *groupVolumeModel(const QString &relayPath, const QString &groupId) const
    {
        QObject *object = nullptr;
        QMetaObject::invokeMethod(m_plugin.get(), "getGroupVolumeModel", Q_RETURN_ARG(QObject *, object),
                                  Q_ARG(QString, relayPath), Q_ARG(QString, groupId));
        return object;
    }
    bool getVolume() const
    {
        bool accepted = false;
        QMetaObject::invokeMethod(m_plugin.get(), "getVolume", Q_RETURN_ARG(bool, accepted));
        return accepted;
    }
    bool initialise() { return m_plugin->InitialPluginBase(nullptr, &m_handle, &m_framework); }
    void reply(const QString &command, const QString &returnCode, const QVariant &data = {}, void *context = nullptr,
               bool finish = true)
    {
        m_plugin->CommandProcessor(command, data, context, returnCode, "unused", finish, "unused");
    }

    int m_handle = 0; // the framework's own; its address is what counts
    RecordingFramework m_framework;
    std::unique_ptr<Contract::Plugin> m_plugin;
    std::unique_ptr<SignalLog> m_log;
};

void PluginLifeTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = Contract::createPlugin();
    QVERIFY(m_plugin);
    m_log = std::make_unique<SignalLog>(m_plugin.get());
}

void PluginLifeTest::cleanup()
{
    m_log.reset();
    m_plugin.reset();
}

void PluginLifeTest::beforeInitialisationThereAreNoModels()
{
    for (const char *getter : initGetters)
        QVERIFY2(!model(getter), getter);
    QVERIFY(!model("getRecordingGroupTreeModel"));
    QVERIFY(!groupVolumeModel(QString(), QString()));
    QCOMPARE(m_plugin->property("recordingGroupRetrieved"), QVariant(0));
}

void PluginLifeTest::beforeInitialisationNoCommandIsSent()
{
    QVERIFY(!getVolume());
    m_plugin->PluginServerConnected();
    QVERIFY(m_framework.sent.isEmpty());
}

void PluginLifeTest::aNullFrameworkIsEnoughToInitialise()
{
    QVERIFY(m_plugin->InitialPluginBase(nullptr, nullptr, nullptr));
    QCOMPARE(m_plugin->name, QStringLiteral("RecordingManagementPlugin"));
    QCOMPARE(m_plugin->id, QString(Contract::pluginId));
    for (const char *getter : initGetters)
        QVERIFY2(model(getter), getter);
    QVERIFY(!getVolume());
    m_plugin->PluginServerConnected();
}

void PluginLifeTest::everyCommandCarriesHandleIdentifierAndFlag()
{
    QVERIFY(initialise());
    QVERIFY(getVolume());
    QCOMPARE(m_framework.sent.size(), 1);
    const RecordingFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.handle, &m_handle);
    QCOMPARE(sent.pluginId, QString(Contract::pluginId));
    QCOMPARE(sent.command, QStringLiteral("getVolume"));
    QVERIFY(!sent.data.isValid());
    QVERIFY(!sent.context);
    QVERIFY(!sent.flag);
    QCOMPARE(sent.relayPath, QString());
}

void PluginLifeTest::refusedCommandIsTold()
{
    QVERIFY(initialise());
    m_framework.accepts = false;
    QVERIFY(!getVolume());
    QCOMPARE(m_framework.takeCommands(), QStringList{"getVolume"}); // asked once, not again
}

void PluginLifeTest::modelsAreTheirRoleTables_data()
{
    QTest::addColumn<QList<QByteArray>>("roles"); // from 257 on
    const QList<QByteArray> volume{"idRole",       "rootPathRole", "nameRole", "sizeRole", "availableSizeRole",
                                   "isSystemRole", "isNASRole"};
    const QList<QByteArray> group{"idRole",         "nameRole",        "pathListRole",
                                  "nodeIdListRole", "nasPathListRole", "recordedDaysRole",
                                  "remainDaysRole", "oneDayUsageRole", "reserveTimeRole"};
    const QList<QByteArray> directory{"idRole", "nameRole"};
    QTest::newRow("getVolumeModel") << volume;
    QTest::newRow("getRecordingGroupModel") << group;
    QTest::newRow("getNASServerModel") << QList<QByteArray>{"idRole", "nameRole", "logonDomainRole", "userNameRole",
                                                            "passwordRole"};
    QTest::newRow("getNASServerDirModel") << directory;
    QTest::newRow("getServerDirModel") << directory;
    QTest::newRow("getStorageUsageModel") << group;
    QTest::newRow("getRecordingGroupTreeModel") << QList<QByteArray>{
        "idRole", "dataRole", "nameRole", "relayPathRole", "typeRole", "stationIPRole", "recordingGroupIDRole"};
}

void PluginLifeTest::modelsAreTheirRoleTables()
{
    QFETCH(QList<QByteArray>, roles);
    QVERIFY(initialise());
    const char *const getter = QTest::currentDataTag();
    QObject *const object = qstrcmp(getter, "getStorageUsageModel") == 0 ? usageModel("relay-7") : model(getter);
    const auto itemModel = qobject_cast<QAbstractItemModel *>(object);
    QVERIFY(itemModel);
    QHash<int, QByteArray> expected;
    for (int i = 0; i < roles.size(); ++i)
        expected.insert(257 + i, roles[i]);
    QCOMPARE(itemModel->roleNames(), expected);
    QVERIFY(object->inherits("QStandardItemModel"));
    QCOMPARE(itemModel->rowCount(), 0);
    QCOMPARE(object->parent(), m_plugin.get());
}

void PluginLifeTest::modelsBelongToThePlugin()
{
    QVERIFY(initialise());
    QSet<QObject *> different;
    for (const char *getter : initGetters) {
        QCOMPARE(model(getter), model(getter));
        QCOMPARE(model(getter)->parent(), m_plugin.get());
        different.insert(model(getter));
    }
    QCOMPARE(different.size(), 5);
}

void PluginLifeTest::secondInitialisationReplacesTheModels()
{
    QVERIFY(initialise());
    QList<QPointer<QObject>> old;
    for (const char *getter : initGetters)
        old.append(model(getter));
    const QPointer<QObject> oldTree = model("getRecordingGroupTreeModel");
    QVERIFY(oldTree);

    QVERIFY(initialise());
    for (int i = 0; i < old.size(); ++i) {
        QVERIFY(old[i]); // pages may still show it
        QCOMPARE(old[i]->parent(), m_plugin.get());
        QVERIFY(model(initGetters[i]));
        QVERIFY(model(initGetters[i]) != old[i]);
    }
    QVERIFY(!oldTree);
    QVERIFY(model("getRecordingGroupTreeModel"));
}

void PluginLifeTest::destructionTakesTheModelsAlong()
{
    QVERIFY(initialise());
    QList<QPointer<QObject>> models{usageModel("relay-7"), model("getRecordingGroupTreeModel")};
    for (const char *getter : initGetters)
        models.append(model(getter));
    m_log.reset();
    m_plugin.reset();
    for (const QPointer<QObject> &gone : std::as_const(models))
        QVERIFY(!gone);
}

void PluginLifeTest::usageModelIsOneForEachRelayPath()
{
    QVERIFY(initialise());
    QObject *const direct = usageModel(QString());
    QVERIFY(direct);
    QCOMPARE(usageModel(QString()), direct);
    QCOMPARE(usageModel(QStringLiteral("")), direct);
    QVERIFY(usageModel("relay-7") != direct);
    QCOMPARE(usageModel("relay-7"), usageModel("relay-7"));
}

void PluginLifeTest::groupVolumeModelIsNotMadeByAsking()
{
    QVERIFY(initialise());
    QVERIFY(!groupVolumeModel("relay-7", "g1"));
    QVERIFY(!groupVolumeModel("relay-7", "g1"));

    const QVariantMap disk{{"recordingPath", "D:/Rec"}, {"recordingGroupID", "g1"}};
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, QVariantList{disk}, "relay-7");
    QVERIFY(!groupVolumeModel("relay-8", "g1"));
    QVERIFY(!groupVolumeModel("relay-7", "g2"));
}

void PluginLifeTest::connectionSendsThreeRequestsInOrder()
{
    QVERIFY(initialise());
    m_plugin->PluginServerConnected();
    const QList<RecordingFramework::Sent> sent = m_framework.sent;
    QCOMPARE(m_framework.takeCommands(), QStringList({"GetNasServers", "getRecordingGroup", "reloadStorageUsageInfo"}));
    for (const RecordingFramework::Sent &request : sent) {
        QCOMPARE(request.relayPath, QString());
        QCOMPARE(request.handle, &m_handle);
        QVERIFY(!request.flag);
    }
    QVERIFY(!sent[0].context);
    QVERIFY(sent[1].context);
    QVERIFY(!sent[2].context);
    reply("getRecordingGroup", "0", {}, sent[1].context); // which destroys the context
}

void PluginLifeTest::connectionForgetsTheUsageModels()
{
    QVERIFY(initialise());
    m_framework.accepts = false; // no context to give back
    const QPointer<QObject> direct = usageModel(QString());
    const QPointer<QObject> relayed = usageModel("relay-7");
    m_plugin->PluginServerConnected();
    QVERIFY(!direct);
    QVERIFY(!relayed);
    QVERIFY(usageModel(QString()));
}

void PluginLifeTest::replyReachesItsHandler_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("returnCode");
    QTest::addColumn<bool>("finish");
    QTest::addColumn<QStringList>("emitted");
    const auto row = [](const char *command, const char *code, bool finish, const QStringList &emitted) {
        QTest::addRow("%s, \"%s\"%s", command, code, finish ? "" : ", more to come")
            << command << code << finish << emitted;
    };
    row("GetNasServers", "0", true, {"getNASServersResponded(true)"});
    row("getNasServers", "0", true, {});
    row("GETNASSERVERS", "0", true, {});
    row("addNASPathsToVolume", "0", true, {"addNASPathsToVolumeResp(true)"});
    row("AddNASServer", "0", true, {});
    row("GetNasDir", "0", true, {"getNASServerDirResponded(NonError, \"\")"});
    row("GetNasDir", "LogonNASServerFaled", true, {"getNASServerDirResponded(LogonFailed, \"\")"});
    row("GetNasDir", "LogonNASServerFailed", true, {"getNASServerDirResponded(Unknown, \"\")"});
    row("GetNasCapacity", "0", true, {"getNASServerCapacityResponded(NonError, 0, 0)"});
    row("getVolume", "0", true, {"getVolumeResponded(true)"});
    row("getVolume", "1", true, {"getVolumeResponded(false)"});
    row("addPathToRecordingGroup", "0", true, {"addPathToRecordingGroupResponded(true)"});
    row("addPathToRecordingGroup", "5", true, {"addPathToRecordingGroupResponded(false)"});
    row("removePathFromRecordingGroup", "0", false, {"removePathFromRecordingGroupResp(true, false)"});
    row("removePathFromRecordingGroup", "0", true, {"removePathFromRecordingGroupResp(true, true)"});
    row("addRecordingGroup", "0", true, {"addRecordingGroupResponded(true)"});
    row("createDirectory", "0", true, {"createDirectoryResponded(true)"});
    row("createDirectory", "00", true, {"createDirectoryResponded(false)"});
    row("createDirectory", "", true, {"createDirectoryResponded(false)"});
    row("removeRecordingGroup", "0", false, {"removeRecordingGroupResp(true, false)"});
    row("removeRecordingGroup", "9", true, {"removeRecordingGroupResp(false, true)"});
    row("getServerDir", "0", true, {"getServerDirResponded(\"\")"});
    row("retrieveRecordingGroupTreeModel", "0", true, {"retrieveRecordingGroupTreeModelFinish()"});
    row("retrieveRecordingGroupTreeModel", "1", true, {});
    row("reloadStorageUsageInfo", "0", true, {});
    row("{2C85B19D-AE6F-45D9-B8FE-DC436FCBEABE}FrameworkInternalError", "0", true, {});
    row("", "0", true, {});
}

void PluginLifeTest::replyReachesItsHandler()
{
    QFETCH(QString, command);
    QFETCH(QString, returnCode);
    QFETCH(bool, finish);
    QVERIFY(initialise());
    reply(command, returnCode, {}, nullptr, finish);
    QTEST(m_log->take(), "emitted");
}

void PluginLifeTest::contextComesBackToItsHandler()
{
    QVERIFY(initialise());
    bool accepted = false;
    QMetaObject::invokeMethod(m_plugin.get(), "removeNASServer", Q_RETURN_ARG(bool, accepted),
                              Q_ARG(QString, QStringLiteral("n1")));
    QVERIFY(accepted);
    void *const context = m_framework.sent.constLast().context;
    QVERIFY(context);
    reply("RemoveNASServer", "0", {}, context);
    QCOMPARE(m_log->take(), QStringList{"removeNASServerResponsed(true)"});
}

void PluginLifeTest::volumeChangedIsTheOnlyEvent()
{
    QVERIFY(initialise());
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, {}, {});
    QCOMPARE(m_log->take(), QStringList{"volumeInfoChanged()"});
    for (const char *other : {"volumeChanged", "VOLUMECHANGED", "getVolume", ""})
        m_plugin->EventProcessor(other, 0, 0, 0, {}, {});
    QCOMPARE(m_log->take(), QStringList{});
}

QTEST_GUILESS_MAIN(PluginLifeTest)
#include "tst_plugin_life.moc"
