#include "FakeFramework.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTest>

#include <memory>

namespace {
// Every key with its value and, where it is no text, its type: a value of the wrong type reads differently.
QString requestText(const QVariant &data)
{
    if (data.metaType() != QMetaType::fromType<QVariantMap>())
        return valueText(data);
    QStringList entries;
    const QVariantMap map = data.toMap();
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        entries.append(entry.key() + QStringLiteral("=") + valueText(entry.value()));
    return entries.join(QStringLiteral(" "));
}
} // namespace

/// The plug-in's object as QML sees it: a real engine makes every call.
class tst_qml_surface : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void leftOutArgumentsTakeTheirDefaults_data();
    void leftOutArgumentsTakeTheirDefaults();
    void recordingGroupRetrievedIsANumber();
    void enumValuesAreVisible_data();
    void enumValuesAreVisible();
    void modelsAnswerByRoleName();
    void viewOfAGroupsVolumesMayOutliveItsModel();
    void signalsReachHandlers();
    void typeCanBeMadeInQml();

private:
    QVariant evaluate(const QString &expression);
    std::unique_ptr<QObject> create(const QByteArray &document);

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<QQmlEngine> m_engine;
    int m_handle = 0;
};

void tst_qml_surface::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_engine.reset();
    m_framework = FakeFramework();
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, &m_handle, &m_framework));
    m_engine = std::make_unique<QQmlEngine>();
    m_engine->rootContext()->setContextProperty(QStringLiteral("recording"), m_plugin.get());
}

QVariant tst_qml_surface::evaluate(const QString &expression)
{
    QQmlExpression script(m_engine->rootContext(), nullptr, expression);
    const QVariant value = script.evaluate();
    if (script.hasError())
        qWarning() << script.error();
    return value;
}

std::unique_ptr<QObject> tst_qml_surface::create(const QByteArray &document)
{
    QQmlComponent component(m_engine.get());
    component.setData(document, {});
    std::unique_ptr<QObject> object(component.create());
    if (!object)
        qWarning() << component.errorString();
    return object;
}

void tst_qml_surface::leftOutArgumentsTakeTheirDefaults_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("request");
    QTest::addColumn<QString>("relayPath");
    const auto row = [](const char *call, const char *command, const char *request, const char *relayPath = "") {
        QTest::newRow(call) << QString::fromLatin1(call) << QString::fromLatin1(command) << QString::fromLatin1(request)
                            << QString::fromLatin1(relayPath);
    };
    row("getVolume()", "getVolume", "invalid");
    row("getVolume('r')", "getVolume", "invalid", "r");
    row("addRecordingGroup('g', '/p', 0)", "addRecordingGroup",
        "path=/p pathType=int:0 recordingGroupName=g reserveSpace=qlonglong:2048");
    row("addRecordingGroup('g', '/p', 2, 4096)", "addRecordingGroup",
        "path=/p pathType=int:2 recordingGroupName=g reserveSpace=qlonglong:4096");
    row("addPathToRecordingGroup('g', '/p', 1)", "addPathToRecordingGroup",
        "path=/p pathType=int:1 recordingGroupID=g reserveSpace=qlonglong:2048");
    row("addPathToRecordingGroup('g', '/p', 1, 1024)", "addPathToRecordingGroup",
        "path=/p pathType=int:1 recordingGroupID=g reserveSpace=qlonglong:1024");
    row("getServerDir('/b')", "getServerDir", "/b");
    row("getServerDir('/b', 'r')", "getServerDir", "/b", "r");
    row("getNASServers()", "GetNasServers", "");
    row("getNASServers('r')", "GetNasServers", "r");
    row("addNASServer('h')", "AddNasServer", "host=h logonDomain=Host password= relayPath= userName=Guest");
    row("addNASServer('h', 'd')", "AddNasServer", "host=h logonDomain=d password= relayPath= userName=Guest");
    row("addNASServer('h', 'd', 'u')", "AddNasServer", "host=h logonDomain=d password= relayPath= userName=u");
    row("addNASServer('h', 'd', 'u', 'p')", "AddNasServer", "host=h logonDomain=d password=p relayPath= userName=u");
    row("addNASServer('h', 'd', 'u', 'p', 'r')", "AddNasServer",
        "host=h logonDomain=d password=p relayPath=r userName=u");
    row("updateNASServer('i', 'h', 'd', 'u', 'p')", "UpdateNASServer",
        "host=h id=i logonDomain=d password=p relayPath= userName=u");
    row("updateNASServer('i', 'h', 'd', 'u', 'p', 'r')", "UpdateNASServer",
        "host=h id=i logonDomain=d password=p relayPath=r userName=u");
    row("removeNASServer('i')", "RemoveNASServer", "id=i relayPath=");
    row("removeNASServer('i', 'r')", "RemoveNASServer", "id=i relayPath=r");
    const char *guest = "basePath=b logonDomain=Host password= relayPath= userName=Guest";
    const char *domain = "basePath=b logonDomain=d password= relayPath= userName=Guest";
    const char *user = "basePath=b logonDomain=d password= relayPath= userName=u";
    const char *password = "basePath=b logonDomain=d password=p relayPath= userName=u";
    const char *relayed = "basePath=b logonDomain=d password=p relayPath=r userName=u";
    row("getNASServerDir('b')", "GetNasDir", guest);
    row("getNASServerDir('b', 'd')", "GetNasDir", domain);
    row("getNASServerDir('b', 'd', 'u')", "GetNasDir", user);
    row("getNASServerDir('b', 'd', 'u', 'p')", "GetNasDir", password);
    row("getNASServerDir('b', 'd', 'u', 'p', 'r')", "GetNasDir", relayed);
    row("getNASServerDir('b', 'd', 'u', 'p', 'r', 1)", "GetNasDir", relayed);
    row("getNASServerCapacity('b')", "GetNasCapacity", guest);
    row("getNASServerCapacity('b', 'd')", "GetNasCapacity", domain);
    row("getNASServerCapacity('b', 'd', 'u')", "GetNasCapacity", user);
    row("getNASServerCapacity('b', 'd', 'u', 'p')", "GetNasCapacity", password);
    row("getNASServerCapacity('b', 'd', 'u', 'p', 'r')", "GetNasCapacity", relayed);
    row("addNASPathToVolume('b')", "GetNasCapacity", "basePath=b logonDomain=Host password= relayPath= userName=");
    row("addNASPathToVolume('b', 'd')", "GetNasCapacity", "basePath=b logonDomain=d password= relayPath= userName=");
    row("addNASPathToVolume('b', 'd', 'u')", "GetNasCapacity", user);
    row("addNASPathToVolume('b', 'd', 'u', 'p')", "GetNasCapacity", password);
    row("addNASPathToVolume('b', 'd', 'u', 'p', 'r')", "GetNasCapacity", relayed);
    row("reloadStorageUsageInfo()", "reloadStorageUsageInfo", "invalid");
    row("reloadStorageUsageInfo('r')", "reloadStorageUsageInfo", "invalid", "r");
}

void tst_qml_surface::leftOutArgumentsTakeTheirDefaults()
{
    QFETCH(const QString, call);
    QFETCH(const QString, command);
    QFETCH(const QString, request);
    QFETCH(const QString, relayPath);

    QCOMPARE(evaluate(QStringLiteral("recording.") + call), QVariant(true));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, command);
    QCOMPARE(requestText(sent.data), request);
    QCOMPARE(sent.relayPath, relayPath);
    QCOMPARE(sent.handle, static_cast<void *>(&m_handle));
    if (command == QStringLiteral("GetNasDir")) {
        const qintptr filter = call.endsWith(QStringLiteral(", 1)")) ? 1 : 3;
        QCOMPARE(reinterpret_cast<qintptr>(sent.context), filter);
    }
    // A refusal takes the context back.
    m_plugin->CommandProcessor(command, {}, sent.context, QStringLiteral("1"), {}, true, {});
}

void tst_qml_surface::recordingGroupRetrievedIsANumber()
{
    const QString type = QStringLiteral("typeof recording.recordingGroupRetrieved");
    const QString value = QStringLiteral("recording.recordingGroupRetrieved");
    QCOMPARE(evaluate(type), QVariant(QStringLiteral("number")));
    QCOMPARE(valueText(evaluate(value)), QStringLiteral("int:0"));

    QVERIFY(!evaluate(QStringLiteral("recording.getRecordingGroup()")).toString().isEmpty());
    const FakeFramework::Sent sent = m_framework.sent.constFirst();
    m_plugin->CommandProcessor(sent.command, {}, sent.context, QStringLiteral("0"), {}, true, {});
    QCOMPARE(evaluate(type), QVariant(QStringLiteral("number")));
    QCOMPARE(valueText(evaluate(value)), QStringLiteral("int:1"));
}

void tst_qml_surface::enumValuesAreVisible_data()
{
    QTest::addColumn<int>("value");
    const std::pair<const char *, int> values[] = {
        {"Local", 0},       {"NetHost", 1},     {"NetDomain", 2},    {"NonError", 0},
        {"LogonFailed", 1}, {"ServerExist", 2}, {"GetDirFailed", 3}, {"GetCapacityFailed", 4},
        {"Unknown", 5},     {"NoDot", 1},       {"NoDotDot", 2},     {"NoDotAndDotDot", 3},
    };
    for (const auto &[name, value] : values)
        QTest::newRow(name) << value;
}

void tst_qml_surface::enumValuesAreVisible()
{
    QFETCH(const int, value);
    const std::unique_ptr<QObject> object =
        create(QByteArrayLiteral("import QtQml\nimport com.meridon.pluginrecordingmanagement 1.0\n"
                                 "QtObject { property int value: PluginRecordingManagement.")
               + QTest::currentDataTag() + QByteArrayLiteral(" }"));
    QVERIFY(object);
    QCOMPARE(object->property("value").toInt(), value);
}

void tst_qml_surface::modelsAnswerByRoleName()
{
    const QVariantMap volume{
        {QStringLiteral("volumePath"), QStringLiteral("/data")},
        {QStringLiteral("volumeName"), QStringLiteral("Data")},
        {QStringLiteral("volumeSize"), qlonglong(8) << 30},
        {QStringLiteral("volumeAvailableSize"), qlonglong(3) << 30},
        {QStringLiteral("volumeIsSystem"), true},
    };
    m_plugin->CommandProcessor(QStringLiteral("getVolume"), QVariantList{volume}, nullptr, QStringLiteral("0"), {},
                               true, {});
    const std::unique_ptr<QObject> rows =
        create("import QtQml\n"
               "Instantiator { model: recording.getVolumeModel(); delegate: QtObject {\n"
               "required property string idRole; required property string rootPathRole\n"
               "required property string nameRole; required property real sizeRole\n"
               "required property real availableSizeRole; required property bool isSystemRole\n"
               "required property bool isNASRole\n"
               "property string row: [idRole.length, rootPathRole, nameRole, sizeRole, availableSizeRole, "
               "isSystemRole, isNASRole].join(' ') } }");
    QVERIFY(rows);
    QCOMPARE(rows->property("count").toInt(), 1);
    QCOMPARE(qvariant_cast<QObject *>(rows->property("object"))->property("row").toString(),
             QStringLiteral("38 /data Data 8589934592 3221225472 true false"));
}

void tst_qml_surface::viewOfAGroupsVolumesMayOutliveItsModel()
{
    const auto report = [this](int volumes) {
        QVariantList entries;
        for (int i = 0; i < volumes; ++i)
            entries.append(QVariantMap{{QStringLiteral("recordingGroupID"), QStringLiteral("g")},
                                       {QStringLiteral("recordingPath"), QStringLiteral("/%1").arg(i)}});
        m_plugin->EventProcessor(QStringLiteral("VolumeChanged"), 0, 0, 0, entries, {});
    };
    report(2);
    const std::unique_ptr<QObject> view =
        create("import QtQuick\n"
               "ListView { id: view; height: 500; width: 100; property int asked: 0\n"
               "property string paths\n"
               "model: (asked, recording.getGroupVolumeModel('', 'g'))\n"
               "delegate: Item { required property string rootPathRole; width: 1; height: 1\n"
               "Component.onCompleted: view.paths += rootPathRole + ' ' } }");
    QVERIFY(view);
    QCOMPARE(view->property("count").toInt(), 2);
    for (int volumes = 1; volumes < 5; ++volumes) {
        report(volumes);
        QCoreApplication::processEvents(); // whatever the view still does with the model that it lost
        view->setProperty("paths", QString());
        view->setProperty("asked", volumes);
        QCOMPARE(view->property("count").toInt(), volumes);
        QCOMPARE(view->property("paths").toString().count(u'/'), volumes);
    }
}

void tst_qml_surface::signalsReachHandlers()
{
    const std::unique_ptr<QObject> listener =
        create("import QtQml\n"
               "Connections { target: recording; property var heard: []\n"
               "function onGetVolumeResponded(success) { heard.push('volumes ' + success) }\n"
               "function onGetServerDirResponded(path) { heard.push('folder ' + path) }\n"
               "function onRemoveNASServerResponsed(success) { heard.push('removed ' + success) }\n"
               "property string text: '' \n function say() { return heard.join(', ') } }");
    QVERIFY(listener);
    m_plugin->CommandProcessor(QStringLiteral("getVolume"), {}, nullptr, QStringLiteral("1"), {}, true, {});
    m_plugin->CommandProcessor(QStringLiteral("getServerDir"),
                               QVariantMap{{QStringLiteral("basePath"), QStringLiteral("/x")}}, nullptr,
                               QStringLiteral("0"), {}, true, {});
    m_plugin->CommandProcessor(QStringLiteral("RemoveNASServer"), {}, nullptr, QStringLiteral("1"), {}, true, {});
    QVariant heard;
    QVERIFY(QMetaObject::invokeMethod(listener.get(), "say", Q_RETURN_ARG(QVariant, heard)));
    QCOMPARE(heard.toString(), QStringLiteral("volumes false, folder /x, removed false"));
}

void tst_qml_surface::typeCanBeMadeInQml()
{
    const std::unique_ptr<QObject> object =
        create("import com.meridon.pluginrecordingmanagement 1.0\nPluginRecordingManagement {}");
    QVERIFY(object);
    QCOMPARE(object->property("recordingGroupRetrieved").toInt(), 0);
}

QTEST_MAIN(tst_qml_surface)
#include "tst_qml_surface.moc"
