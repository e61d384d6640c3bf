#include "FakeFramework.h"
#include "FakeStationPlugin.h"
#include "InvokableCalls.h"
#include "PluginRecordingManagement.h"
#include "RequestContexts.h"
#include "SignalLog.h"

#include <QMetaMethod>
#include <QRegularExpression>
#include <QSet>
#include <QStandardItemModel>
#include <QTest>

#include <array>
#include <utility>

namespace {

// Every command that the plug-in sends, by calling each of its invokables.
QSet<QString> sentCommands()
{
    FakeFramework framework;
    FakeStationPlugin station;
    framework.pluginObjects.insert(FakeStationPlugin::pluginId, &station);
    PluginRecordingManagement plugin;
    plugin.InitialPluginBase(nullptr, nullptr, &framework);
    for (const Call &call : calls) {
        const int method = formsOf(call).constFirst();
        QVariant result(plugin.metaObject()->method(method).returnMetaType());
        QVariantList arguments = call.arguments;
        std::array<void *, 16> raw{result.isValid() ? result.data() : nullptr};
        for (int i = 0; i < arguments.size(); ++i)
            raw[static_cast<std::size_t>(i) + 1] = arguments[i].data();
        plugin.qt_metacall(QMetaObject::InvokeMetaMethod, method, raw.data());
    }
    QSet<QString> commands;
    for (const FakeFramework::Sent &sent : std::as_const(framework.sent)) {
        commands.insert(sent.command);
        plugin.CommandProcessor(sent.command, {}, sent.context, "0", {}, true, {}); // takes its context back
    }
    return commands;
}

} // namespace

/// An object that QML made, or that no framework initialised yet: nothing to send through and no models.
class BeforeInitTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everythingIsEmptyAtFirst();
    void everyInvokableAnswers_data();
    void everyInvokableAnswers();
    void everyReplyAndEventAnswers_data();
    void everyReplyAndEventAnswers();
    void aMissingModelTakesNoRow();
    void initialisingWithoutAFrameworkSucceedsButSendsNothing();
    void connectingBeforeInitSendsNothing();
    void secondInitReplacesTheModels();

private:
    std::unique_ptr<PluginRecordingManagement> m_plugin;
};

void BeforeInitTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_plugin = std::make_unique<PluginRecordingManagement>();
}

void BeforeInitTest::everythingIsEmptyAtFirst()
{
    QCOMPARE(m_plugin->parent(), nullptr);
    QCOMPARE(m_plugin->getVolumeModel(), nullptr);
    QCOMPARE(m_plugin->getRecordingGroupModel(), nullptr);
    QCOMPARE(m_plugin->getNASServerModel(), nullptr);
    QCOMPARE(m_plugin->getNASServerDirModel(), nullptr);
    QCOMPARE(m_plugin->getServerDirModel(), nullptr);
    QCOMPARE(m_plugin->getRecordingGroupTreeModel(), nullptr);
    QCOMPARE(m_plugin->getGroupVolumeModel("", ""), nullptr);
    QVERIFY(m_plugin->getStorageUsageModel(""));
    QCOMPARE(m_plugin->property("recordingGroupRetrieved"), QVariant(0));
    QVERIFY(!m_plugin->getVolume());
    QCOMPARE(m_plugin->getRecordingGroup(), QString());
    QVERIFY(!m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(m_plugin->getVolumeInfo("C:/", "").value("size"), QVariant(Q_INT64_C(0)));
}

void BeforeInitTest::everyInvokableAnswers_data()
{
    QTest::addColumn<int>("method");
    const QMetaObject &meta = PluginRecordingManagement::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Method)
            QTest::newRow(meta.method(i).methodSignature().constData()) << i;
    }
}

void BeforeInitTest::everyInvokableAnswers()
{
    QFETCH(int, method);
    const QMetaMethod invokable = m_plugin->metaObject()->method(method);
    QVariant result(invokable.returnMetaType());
    QList<QVariant> arguments;
    for (int i = 0; i < invokable.parameterCount(); ++i) {
        const QMetaType type = invokable.parameterMetaType(i);
        arguments.append(type == QMetaType::fromType<QString>() ? QVariant("x") : QVariant(type));
    }
    std::array<void *, 16> raw{result.isValid() ? result.data() : nullptr};
    for (int i = 0; i < arguments.size(); ++i)
        raw[static_cast<std::size_t>(i) + 1] = arguments[i].data();
    m_plugin->qt_metacall(QMetaObject::InvokeMetaMethod, method, raw.data());
    if (result.metaType() == QMetaType::fromType<bool>())
        QVERIFY(!result.toBool());
}

void BeforeInitTest::everyReplyAndEventAnswers_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a list of maps") << QVariant(
        QVariantList{QVariantMap{{"id", "1"}, {"host", "h"}, {"recordingGroupID", "g"}}});
    QTest::newRow("a map") << QVariant(
        QVariantMap{{"basePath", "/"}, {"dirFolderList", QStringList{"a"}}, {"total", 1}, {"used", 1}});
}

void BeforeInitTest::everyReplyAndEventAnswers()
{
    QFETCH(QVariant, data);
    const QSet<QString> commands = sentCommands();
    QVERIFY(commands.size() >= 18);
    for (const QString &command : commands) {
        for (const char *code : {"0", "1"})
            m_plugin->CommandProcessor(command, data, nullptr, code, {}, true, {});
    }
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, data, "s");
    QVERIFY(m_plugin->getStorageUsageModel("s"));
}

void BeforeInitTest::aMissingModelTakesNoRow()
{
    SignalLog log(m_plugin.get());
    const auto reply = [this, &log](const QString &command, const QVariant &data, void *context = nullptr) {
        m_plugin->CommandProcessor(command, data, context, "0", {}, true, {});
        return log.take();
    };
    const QVariantMap server{{"id", "1"}, {"host", "h"}};
    const QVariantMap listing{{"basePath", "/"}, {"dirFolderList", QStringList{"a"}}};
    QCOMPARE(reply("getVolume", QVariantList{QVariantMap{}}), QStringList{"getVolumeResponded(true)"});
    QCOMPARE(reply("getServerDir", listing), QStringList{"getServerDirResponded(\"\")"});
    QCOMPARE(reply("GetNasDir", listing), QStringList{"getNASServerDirResponded(Unknown, \"\")"});
    QCOMPARE(reply("GetNasServers", QVariantList{server}), QStringList{"getNASServersResponded(false)"});
    QCOMPARE(reply("GetNasServers", QVariantList{}), QStringList{"getNASServersResponded(true)"});
    QCOMPARE(reply("AddNasServer", "1", new AddNASServerContext), QStringList{"addNASServerResponded(Unknown, \"\")"});
    QCOMPARE(reply("getRecordingGroup", QVariantList{QVariantMap{}}),
             (QStringList{"recordingGroupRetrievedChanged()", "getRecordingGroupResponded(\"\")"}));
}

void BeforeInitTest::initialisingWithoutAFrameworkSucceedsButSendsNothing()
{
    QVERIFY(m_plugin->InitialPluginBase(nullptr, nullptr, nullptr));
    QVERIFY(m_plugin->getVolumeModel());
    QVERIFY(!m_plugin->getVolume());
    QVERIFY(!m_plugin->createDirectory("d"));
}

void BeforeInitTest::connectingBeforeInitSendsNothing()
{
    m_plugin->getStorageUsageModel("");
    m_plugin->PluginServerConnected();
    QVERIFY(m_plugin->getStorageUsageModel(""));
}

void BeforeInitTest::secondInitReplacesTheModels()
{
    QVERIFY(m_plugin->Init(nullptr));
    const std::array before{m_plugin->getVolumeModel(), m_plugin->getRecordingGroupModel(),
                            m_plugin->getNASServerModel(), m_plugin->getNASServerDirModel(),
                            m_plugin->getServerDirModel()};
    const QPointer<QObject> tree = m_plugin->getRecordingGroupTreeModel();
    QVERIFY(m_plugin->Init(nullptr));
    const std::array after{m_plugin->getVolumeModel(), m_plugin->getRecordingGroupModel(),
                           m_plugin->getNASServerModel(), m_plugin->getNASServerDirModel(),
                           m_plugin->getServerDirModel()};
    for (std::size_t i = 0; i < before.size(); ++i) {
        QVERIFY(after[i]);
        QVERIFY(before[i] != after[i]);
        QCOMPARE(before[i]->parent(), m_plugin.get()); // the old one remains a child
    }
    QVERIFY(tree.isNull());
    QVERIFY(m_plugin->getRecordingGroupTreeModel());
}

QTEST_GUILESS_MAIN(BeforeInitTest)
#include "tst_before_init.moc"
