#include "BrokerSite.h"
#include "ClientSession.h"
#include "ToolRun.h"
#include "companions/StationPlugin.h"
#include "companions/StatusMonitorPlugin.h"
#include "interface/Roles.h"
#include "mqtt/Deflate.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttTopics.h"

#include <QAbstractItemModel>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStorageInfo>
#include <QTest>
#include <QUuid>

#include <limits>

using namespace Qt::StringLiterals;
using namespace Recording;

namespace {
constexpr int patience = 20'000;
const QString python = u"/usr/bin/python3"_s; // Debian's own, which finds Debian's modules
const QString success = u"0"_s;

/// examples/own-station as a process.
class ExampleStation
{
public:
    explicit ExampleStation(QStringList arguments, const QString &program = u"station.py"_s)
        : m_arguments(std::move(arguments))
    {
        m_arguments.prepend(QStringLiteral(EXAMPLES) + program);
        m_arguments.prepend(u"-B"_s); // leaves nothing beside the sources
        m_process.setProcessChannelMode(QProcess::MergedChannels);
    }
    ~ExampleStation() { stop(); }

    void start()
    {
        m_process.start(python, m_arguments);
        m_process.waitForStarted();
    }
    void stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.terminate();
        if (!m_process.waitForFinished(patience))
            kill();
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(patience);
    }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    int exitCode() const { return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1; }
    QString log()
    {
        m_log += QString::fromUtf8(m_process.readAll());
        return m_log;
    }

private:
    QStringList m_arguments;
    QProcess m_process;
    QString m_log;
};

/// Whoever sends the station what no client would.
class Stranger
{
public:
    explicit Stranger(const QString &brokerUrl)
        : m_connection(readBrokerUrl(brokerUrl, &m_error)->settings, m_id)
    {
        QObject::connect(&m_connection, &MqttConnection::received, &m_connection, [this](const MqttMessage &message) {
            if (message.topic == MqttTopics::replies(m_id))
                parts.append(message);
        });
        QObject::connect(&m_connection, &MqttConnection::subscribed, &m_connection, [this] { m_isListening = true; });
        m_connection.start();
    }
    bool listens()
    {
        if (!QTest::qWaitFor([this] { return m_connection.isUp(); }, patience))
            return false;
        m_connection.subscribe(MqttTopics::replies(m_id));
        return QTest::qWaitFor([this] { return m_isListening; }, patience);
    }
    void publish(const MqttMessage &message) { m_connection.publish(message); }

    /// The parts of the reply to @p body; empty where the last one does not come.
    QList<QVariantMap> ask(const QByteArray &body, const QString &contentType = u"application/json"_s)
    {
        parts.clear();
        MqttMessage command;
        command.topic = MqttTopics::commands(u"shed"_s);
        command.responseTopic = MqttTopics::replies(m_id);
        command.correlation = QUuid::createUuid().toRfc4122();
        command.contentType = contentType;
        command.payload = body;
        publish(command);
        QList<QVariantMap> maps;
        const bool isAnswered = QTest::qWaitFor(
            [&] {
                maps.clear();
                for (const MqttMessage &part : std::as_const(parts)) {
                    if (part.correlation == command.correlation)
                        maps.append(decodeBody(part.payload, part.contentType));
                }
                return !maps.isEmpty() && maps.constLast().value(u"finish"_s).toBool();
            },
            patience);
        return isAnswered ? maps : QList<QVariantMap>();
    }
    QString code(const QByteArray &body, const QString &contentType = u"application/json"_s)
    {
        return ask(body, contentType).value(0).value(u"returnCode"_s).toString();
    }

    QList<MqttMessage> parts;

private:
    QString m_id = u"stranger-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
    QString m_error;
    MqttConnection m_connection;
    bool m_isListening = false;
};

QVariantMap settings(const QString &name, int minutes = 0)
{
    return {{FieldKey::recordingGroupName, name},
            {FieldKey::recordingGroupReservedTimeEnabled, minutes > 0},
            {FieldKey::recordingGroupReservedTime, minutes}};
}

QVariantMap pathMap(const QString &path, qlonglong reserve = 1024)
{
    return {{FieldKey::path, path},
            {FieldKey::pathType, 0},
            {FieldKey::reserveSpace, reserve},
            {FieldKey::isRecoveryMode, false}};
}
} // namespace

/// The station of examples/own-station, which knows this system from its documents alone, behind a broker; the plug-in
/// as it is built, and recordingctl.
class OwnStationTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void pluginSeesTheVolume();
    void pluginEditsGroups();
    void eventFollowsAnEdit();
    void refusalNamesTheElements();
    void editUnderOneIdTakesEffectOnce();
    void wrongCommandsAreRefused_data();
    void wrongCommandsAreRefused();
    void wrongBodiesAreRefused();
    void replyGoesToClientsAlone();
    void manyPartsAndLargeBodies();
    void lostVolumeIsAnAlarm();
    void endIsKnown();
    void lateLastWillIsPutRight();
    void brokerComesBack();
    void toolWorksWithIt();
    void wrongUseIsAClearError();
    void smallestOneIsAStation();

private:
    QString url() const { return m_broker->url() + u"/shed"_s; }
    QString folder(const QString &name) const { return m_volume + u'/' + name; }
    void startSession();
    template<typename... Arguments>
    bool call(const char *method, const Arguments &...arguments)
    {
        bool accepted = false;
        return QMetaObject::invokeMethod(m_session->plugin(), method, QGenericReturnArgument("bool", &accepted),
                                         QGenericArgument(QMetaType::fromType<Arguments>().name(), &arguments)...)
            && accepted;
    }
    QAbstractItemModel *model(const char *getter) const;
    QAbstractItemModel *usage() const;
    QString addGroup(const QString &name);

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_volume;
    std::unique_ptr<MqttBroker> m_broker;
    std::unique_ptr<ExampleStation> m_station;
    std::unique_ptr<ClientSession> m_session;
};

void OwnStationTest::initTestCase()
{
    QProcess process;
    process.start(python, {u"-c"_s, u"import cbor2, paho.mqtt.client"_s});
    const Run imported = finished(process);
    QVERIFY2(imported.exitCode == 0,
             qPrintable(u"Debian's packages python3-paho-mqtt and python3-cbor2 are needed: "_s + imported.errors));
}

void OwnStationTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>();
    m_volume = QFileInfo(m_folder->path()).canonicalFilePath() + u"/video"_s;
    QVERIFY(QDir().mkpath(folder(u"north"_s)) && QDir().mkpath(folder(u"south"_s)));
    m_broker = std::make_unique<MqttBroker>();
    QVERIFY2(m_broker->start(), qPrintable(m_broker->error()));
    m_station = std::make_unique<ExampleStation>(QStringList{m_volume, u"--id"_s, u"shed"_s, u"--name"_s, u"The shed"_s,
                                                             u"--broker"_s, u"127.0.0.1"_s, u"--port"_s,
                                                             QString::number(m_broker->port())});
    m_station->start();
}

void OwnStationTest::cleanup()
{
    m_session.reset();
    m_station->stop();
    if (QTest::currentTestFailed())
        qInfo("%s", qPrintable(m_station->log()));
    m_station.reset();
    m_broker.reset();
    m_folder.reset();
}

void OwnStationTest::startSession()
{
    m_session = std::make_unique<ClientSession>();
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.url = url();
    options.linkKinds = MqttLink::kinds();
    QVERIFY2(m_session->start(options), qPrintable(m_session->error()));
    QTRY_VERIFY_WITH_TIMEOUT(m_session->isConnected(), patience);
}

QAbstractItemModel *OwnStationTest::model(const char *getter) const
{
    QObject *object = nullptr;
    QMetaObject::invokeMethod(m_session->plugin(), getter, Q_RETURN_ARG(QObject *, object));
    return qobject_cast<QAbstractItemModel *>(object);
}

QAbstractItemModel *OwnStationTest::usage() const
{
    QObject *object = nullptr;
    QMetaObject::invokeMethod(m_session->plugin(), "getStorageUsageModel", Q_RETURN_ARG(QObject *, object),
                              Q_ARG(QString, QString()));
    return qobject_cast<QAbstractItemModel *>(object);
}

/// Its id; empty where it was refused.
QString OwnStationTest::addGroup(const QString &name)
{
    QSignalSpy answered(m_session->plugin(),
                        SIGNAL(addRecordingGroupWithCompleteInfoResp(bool, QString, QVariantList)));
    const QVariantList paths{pathMap(folder(u"north"_s))};
    if (!call("addRecordingGroupWithCompleteInfo", settings(name, 1440), paths, QVariantList())
        || !answered.wait(patience) || !answered.constFirst().at(0).toBool())
        return {};
    return answered.constFirst().at(1).toString();
}

void OwnStationTest::pluginSeesTheVolume()
{
    startSession();
    QSignalSpy answered(m_session->plugin(), SIGNAL(getVolumeResponded(bool)));
    QVERIFY(call("getVolume", QString()));
    QVERIFY(answered.wait(patience));
    QCOMPARE(answered.constFirst(), QVariantList{true});
    const QAbstractItemModel *const volumes = model("getVolumeModel");
    QCOMPARE(volumes->rowCount(), 1);
    const QModelIndex row = volumes->index(0, 0);
    QCOMPARE(row.data(VolumeRole::RootPath).toString(), m_volume);
    QCOMPARE(row.data(VolumeRole::Name).toString(), u"video"_s);
    const QStorageInfo disk(m_volume);
    QCOMPARE(row.data(VolumeRole::Size).toLongLong(), disk.bytesTotal() / 1024);
    QVERIFY(row.data(VolumeRole::AvailableSize).toLongLong() > 0);
    QTRY_VERIFY_WITH_TIMEOUT(m_session->areAlarmsKnown(), patience);
    QCOMPARE(m_session->statusMonitor()->rowCount(), 0);
}

void OwnStationTest::pluginEditsGroups()
{
    startSession();
    const QString id = addGroup(u"North"_s);
    QVERIFY(!id.isEmpty());

    QSignalSpy updated(m_session->plugin(), SIGNAL(updateRecordingGroupResp(bool, QVariantList)));
    const QVariantList added{pathMap(folder(u"south"_s), 2048)};
    const QVariantList changed{QVariantMap{{FieldKey::path, folder(u"north"_s)}, {FieldKey::isRecoveryMode, true}}};
    QVERIFY(call("updateRecordingGroup", id, QVariantList(), QVariantList(), added, QVariantList(), changed,
                 settings(u"Gate"_s, 2880)));
    QVERIFY(updated.wait(patience));
    QCOMPARE(updated.constFirst(), (QVariantList{true, QVariantList()}));

    updated.clear(); // all of an edit, or nothing
    const QVariantList nowhere{QVariantMap{{FieldKey::path, folder(u"none"_s)}, {FieldKey::isRecoveryMode, true}}};
    QVERIFY(call("updateRecordingGroup", id, QVariantList(), QVariantList(), QVariantList(),
                 QVariantList{folder(u"north"_s)}, nowhere, settings(u"Yard"_s)));
    QVERIFY(updated.wait(patience));
    QCOMPARE(updated.constFirst().at(0), QVariant(false));
    const QVariantMap error = updated.constFirst().at(1).toList().value(0).toMap();
    QCOMPARE(error.value(u"element"_s).toString(), u"updateSetPathList"_s);
    QCOMPARE(error.value(u"returnCode"_s).toString(), StationReturnCode::PathNotInGroup);

    QSignalSpy listed(m_session->plugin(), SIGNAL(getRecordingGroupResponded(QString)));
    QVERIFY(QMetaObject::invokeMethod(m_session->plugin(), "getRecordingGroup"));
    QVERIFY(listed.wait(patience));
    const QAbstractItemModel *const groups = model("getRecordingGroupModel");
    QCOMPARE(groups->rowCount(), 1);
    QCOMPARE(groups->index(0, 0).data(RecordingGroupRole::Id).toString(), id);
    QCOMPARE(groups->index(0, 0).data(RecordingGroupRole::Name).toString(), u"Gate"_s);
    QCOMPARE(groups->index(0, 0).data(RecordingGroupRole::PathList).toStringList(),
             (QStringList{folder(u"north"_s), folder(u"south"_s)}));

    QSignalSpy retrieved(m_session->plugin(), SIGNAL(retrieveRecordingGroupTreeModelFinish()));
    QVERIFY(call("retrieveRecordingGroupTreeModel"));
    QVERIFY(retrieved.wait(patience));
    const QAbstractItemModel *const tree = model("getRecordingGroupTreeModel");
    const QModelIndex station = tree->index(0, 0);
    QCOMPARE(station.data(TreeRole::RelayPath).toString(), u"shed"_s);
    QCOMPARE(tree->rowCount(station), 1);
    QCOMPARE(tree->index(0, 0, station).data(TreeRole::RecordingGroupId).toString(), id);
    const auto cached = [&](const char *getter) {
        QVariantList values;
        QMetaObject::invokeMethod(m_session->plugin(), getter, Q_RETURN_ARG(QVariantList, values), Q_ARG(QString, id),
                                  Q_ARG(QString, u"shed"_s));
        return values;
    };
    QCOMPARE(cached("getRecordingGroupReservedSpaceList"), (QVariantList{1024, 2048}));
    QCOMPARE(cached("getRecordingGroupRecoveryPathList"), QVariantList{folder(u"north"_s)});

    QSignalSpy removed(m_session->plugin(), SIGNAL(removeRecordingGroupResp(bool, bool)));
    QVERIFY(call("removeRecordingGroup", QStringList{id, u"{none}"_s}));
    QTRY_COMPARE_WITH_TIMEOUT(removed.size(), 2, patience);
    QCOMPARE(removed.at(0), (QVariantList{true, false}));
    QCOMPARE(removed.at(1), (QVariantList{false, true}));
    QVERIFY(call("retrieveRecordingGroupTreeModel"));
    QVERIFY(retrieved.wait(patience));
    QCOMPARE(tree->rowCount(tree->index(0, 0)), 0);
}

void OwnStationTest::eventFollowsAnEdit()
{
    startSession();
    const QString id = addGroup(u"North"_s);
    QVERIFY(!id.isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(usage() && usage()->rowCount() == 1, patience);
    const QModelIndex group = usage()->index(0, 0);
    QCOMPARE(group.data(RecordingGroupRole::Name).toString(), u"North"_s);
    QCOMPARE(group.data(RecordingGroupRole::ReserveTime).toInt(), 1440);
    QCOMPARE(group.data(RecordingGroupRole::RecordedDays).toInt(), -1);
    BrokerClient later(url()); // is told without asking
    QTRY_VERIFY_WITH_TIMEOUT(later.events.contains(u"shed "_s + ServerEvent::VolumeChanged), patience);
    const QVariantList entries = later.lastData.value(u"shed "_s + ServerEvent::VolumeChanged).toList();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.constFirst().toMap().value(FieldKey::recordingPath).toString(), folder(u"north"_s));
    QVERIFY(entries.constFirst().toMap().value(FieldKey::volumeAvailableSize).toLongLong() > 0);

    const QString event = u"shed "_s + ServerEvent::VolumeChanged;
    const qsizetype before = later.events.count(event);
    const auto removal = [](const QString &groupId) {
        return QVariantMap{{FieldKey::recordingGroupIDList, QStringList{groupId}}};
    };
    const int refused = later.send(ServerCommand::removeRecordingGroup, removal(u"{none}"_s));
    const int removed = later.send(ServerCommand::removeRecordingGroup, removal(id));
    QTRY_COMPARE_WITH_TIMEOUT(later.lastData.value(event).toList(), QVariantList(), patience);
    QCOMPARE(later.code(refused), StationReturnCode::RecordingGroupNotFound);
    QCOMPARE(later.code(removed), success);
    QCOMPARE(later.events.count(event), before + 1); // a refusal changes nothing, and has none
}

void OwnStationTest::refusalNamesTheElements()
{
    startSession();
    QVERIFY(!addGroup(u"North"_s).isEmpty());
    QSignalSpy answered(m_session->plugin(),
                        SIGNAL(addRecordingGroupWithCompleteInfoResp(bool, QString, QVariantList)));
    const QVariantList paths{pathMap(folder(u"south"_s)), pathMap(u"/proc"_s), pathMap(folder(u"none"_s)),
                             pathMap(folder(u"south"_s)), pathMap(folder(u"north"_s), -1024)};
    const QVariantList devices{QVariantMap{
        {u"camName"_s, u"Gate"_s}, {u"streamIndex"_s, 0}, {u"enableTimeShift"_s, false}, {u"enableSeamless"_s, false}}};
    QVERIFY(call("addRecordingGroupWithCompleteInfo", settings(u"North"_s), paths, devices));
    QVERIFY(answered.wait(patience));
    QCOMPARE(answered.constFirst().at(0), QVariant(false));
    QStringList errors;
    const QVariantList list = answered.constFirst().at(2).toList();
    for (const QVariant &element : list) {
        const QVariantMap error = element.toMap();
        errors.append(u"%1 %2 %3"_s.arg(error.value(u"element"_s).toString(), error.value(u"index"_s).toString(),
                                        error.value(u"returnCode"_s).toString()));
    }
    QCOMPARE(errors,
             (QStringList{u"recordingGroupName -1 RecordingGroupNameInUse"_s, u"pathInfoList 1 OutsideVolumes"_s,
                          u"pathInfoList 2 DirectoryNotFound"_s, u"pathInfoList 3 PathInGroup"_s,
                          u"pathInfoList 4 ReservedSpaceRefused"_s, u"deviceInfos 0 CameraNotFound"_s}));
}

void OwnStationTest::editUnderOneIdTakesEffectOnce()
{
    Stranger stranger(m_broker->url());
    QVERIFY(stranger.listens());
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const auto names = [&client] {
        const int sent = client.send(ServerCommand::getRecordingGroup);
        QStringList found;
        if (!QTest::qWaitFor([&] { return client.code(sent) == success; }, patience))
            return QStringList{u"no answer"_s};
        const QVariantList groups = client.data(sent).toList();
        for (const QVariant &group : groups)
            found.append(group.toMap().value(FieldKey::recordingGroupName).toString());
        return found;
    };
    const QVariantMap add{{u"name"_s, ServerCommand::addRecordingGroupWithCompleteInfo},
                          {u"id"_s, u"edit-1"_s},
                          {u"data"_s, settings(u"North"_s)}};
    const QByteArray json = encodeBody(add, BodyForm::Json).bytes;
    const QList<QVariantMap> first = stranger.ask(json);
    QCOMPARE(first.size(), 1);
    QCOMPARE(first.constFirst().value(u"returnCode"_s).toString(), success);
    QCOMPARE(stranger.ask(json), first); // the same id of the group, too
    QCOMPARE(names(), QStringList{u"North"_s});
    const QList<QVariantMap> inCbor = stranger.ask(encodeBody(add).bytes, ContentType::Cbor);
    QCOMPARE(inCbor, first);

    QVariantMap other = add;
    other.insert(u"data"_s, settings(u"South"_s));
    QCOMPARE(stranger.code(encodeBody(other, BodyForm::Json).bytes), StationReturnCode::RequestIdInUse);
    other.insert(u"id"_s, u"edit-2"_s);
    other.insert(u"data"_s, settings(u"North"_s));
    const QByteArray refused = encodeBody(other, BodyForm::Json).bytes;
    QCOMPARE(stranger.code(refused), StationReturnCode::RecordingGroupNameInUse);
    const QByteArray removal =
        R"({"name": "removeRecordingGroup", "data": {"recordingGroupIDList": ["%1"]}})"_ba.replace(
            "%1", first.constFirst().value(u"data"_s).toMap().value(u"recordingGroupID"_s).toByteArray());
    QCOMPARE(stranger.code(removal), success);
    QCOMPARE(stranger.code(refused), StationReturnCode::RecordingGroupNameInUse); // a refusal is answered alike, too
    QCOMPARE(names(), QStringList());
    other.remove(u"id"_s);
    QCOMPARE(stranger.code(encodeBody(other, BodyForm::Json).bytes), success);
    QCOMPARE(names(), QStringList{u"North"_s});
}

void OwnStationTest::wrongCommandsAreRefused_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("code");
    QTest::newRow("unknown") << R"({"name": "makeCoffee"})"_ba << u"UnknownCommand"_s;
    QTest::newRow("capitals") << R"({"name": "GetVolume"})"_ba << u"UnknownCommand"_s;
    QTest::newRow("no name") << R"({"nome": 1})"_ba << u"BadRequest"_s;
    QTest::newRow("name is a list") << R"({"name": []})"_ba << u"BadRequest"_s;
    QTest::newRow("no JSON") << "getVolume"_ba << u"BadRequest"_s;
    QTest::newRow("no map") << "[1]"_ba << u"BadRequest"_s;
    QTest::newRow("no Unicode") << R"({"name": "getVolume", "data": "\ud800"})"_ba << u"BadRequest"_s;
    QTest::newRow("deep") << QByteArray(100'000, '[') << u"BadRequest"_s;
    QTest::newRow("another station") << R"({"name": "retrieveRecordingGroupTreeModel", "data": {"relayPath": "x"}})"_ba
                                     << u"UnknownStation"_s;
    QTest::newRow("data missing") << R"({"name": "addRecordingGroupWithCompleteInfo"})"_ba << u"BadRequest"_s;
    QTest::newRow("number for a text") << R"({"name": "updateRecordingGroup", "data": {"recordingGroupID": 1}})"_ba
                                       << u"BadRequest"_s;
    QTest::newRow("no such group") << R"({"name": "updateRecordingGroup", "data": {"recordingGroupID": "x"}})"_ba
                                   << u"RecordingGroupNotFound"_s;
    QTest::newRow("nothing to remove") << R"({"name": "removeRecordingGroup", "data": {"recordingGroupIDList": []}})"_ba
                                       << u"BadRequest"_s;
    QTest::newRow("id is a number") << R"({"name": "removeRecordingGroup", "id": 1})"_ba << u"BadRequest"_s;
    QTest::newRow("id is too long") << R"({"name": "removeRecordingGroup", "id": "%1"})"_ba.replace(
        "%1", QByteArray(129, 'x')) << u"BadRequest"_s;
}

void OwnStationTest::wrongCommandsAreRefused()
{
    QFETCH(const QByteArray, body);
    Stranger stranger(m_broker->url());
    QVERIFY(stranger.listens());
    QTRY_VERIFY_WITH_TIMEOUT(m_station->log().contains(u"Clients are served"_s), patience);
    const QList<QVariantMap> reply = stranger.ask(body);
    QCOMPARE(reply.size(), 1);
    QTEST(reply.constFirst().value(u"returnCode"_s).toString(), "code");
    QCOMPARE(stranger.code(R"({"name": "getVolume"})"), success); // and it goes on
}

void OwnStationTest::wrongBodiesAreRefused()
{
    Stranger stranger(m_broker->url());
    QVERIFY(stranger.listens());
    QTRY_VERIFY_WITH_TIMEOUT(m_station->log().contains(u"Clients are served"_s), patience);
    const QByteArray cbor = encodeBody({{u"name"_s, u"getVolume"_s}}).bytes;
    QCOMPARE(stranger.code(cbor, {}), success); // without a content type it is CBOR
    QCOMPARE(stranger.code(cbor, u"text/plain"_s), u"BadRequest"_s);
    QCOMPARE(stranger.code(cbor.chopped(3), ContentType::Cbor), u"BadRequest"_s);
    QCOMPARE(stranger.code(cbor, ContentType::DeflatedCbor), u"BadRequest"_s);
    QCOMPARE(stranger.code({}, ContentType::Cbor), u"BadRequest"_s);
    QCOMPARE(stranger.code(deflated(cbor), ContentType::DeflatedCbor), success);
    QCOMPARE(stranger.code(deflated(cbor).chopped(1), ContentType::DeflatedCbor), u"BadRequest"_s);
    const MessageLimits none{std::numeric_limits<int>::max()};
    const QVariantMap large{{u"name"_s, u"getVolume"_s}, {u"data"_s, QByteArray(65 * 1024 * 1024, 'x')}};
    const MqttBody bomb = encodeBody(large, BodyForm::Cbor, none);
    QVERIFY(bomb.bytes.size() < 1024 * 1024);
    QCOMPARE(stranger.code(bomb.bytes, bomb.contentType), u"BadRequest"_s);
    QCOMPARE(stranger.code(cbor, ContentType::Cbor), success);
}

void OwnStationTest::replyGoesToClientsAlone()
{
    Stranger stranger(m_broker->url());
    QVERIFY(stranger.listens());
    QTRY_VERIFY_WITH_TIMEOUT(m_station->log().contains(u"Clients are served"_s), patience);
    MqttMessage command;
    command.topic = MqttTopics::commands(u"shed"_s);
    command.contentType = ContentType::Json;
    command.payload = R"({"name": "getVolume"})";
    for (const QString &topic : {MqttTopics::status(u"shed"_s), u"recording/1/clients/a/b/replies"_s, QString()}) {
        command.responseTopic = topic;
        stranger.publish(command);
    }
    QCOMPARE(stranger.code(command.payload), success);
    QCOMPARE(m_station->log().count(u"wants its reply under"_s), 3);
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
}

void OwnStationTest::manyPartsAndLargeBodies()
{
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QStringList ids;
    for (int i = 0; i < 500; ++i) // travels deflated
        ids.append(QUuid::createUuid().toString());
    const int sent =
        client.send(ServerCommand::removeRecordingGroup, QVariantMap{{FieldKey::recordingGroupIDList, ids}});
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), StationReturnCode::RecordingGroupNotFound, patience);
    const QList<StationReply> parts = client.replies.value(sent);
    QCOMPARE(parts.size(), ids.size());
    for (qsizetype i = 0; i < parts.size(); ++i)
        QCOMPARE(parts.at(i).data.toMap().value(FieldKey::recordingGroupID).toString(), ids.at(i));
}

void OwnStationTest::lostVolumeIsAnAlarm()
{
    startSession();
    const QString id = addGroup(u"North"_s);
    QVERIFY(!id.isEmpty());
    QVERIFY(QDir().rename(m_volume, m_volume + u"-away"_s));
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const int volumes = client.send(ServerCommand::getVolume);
    const int alarms = client.send(StationCommandName::listAlarms);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(alarms), success, patience);
    QCOMPARE(client.data(volumes).toList(), QVariantList());
    const QVariantMap alarm = client.data(alarms).toMap().value(StationKey::alarms).toList().value(0).toMap();
    QCOMPARE(alarm.value(StationKey::kind).toString(), u"VolumeGone"_s);
    QCOMPARE(alarm.value(StationKey::subject).toString(), m_volume);
    QVERIFY(QDateTime::fromString(alarm.value(StationKey::since).toString(), Qt::ISODateWithMs).isValid());
    QVERIFY(call("reloadStorageUsageInfo", QString()));
    QTRY_VERIFY_WITH_TIMEOUT(m_session->statusMonitor()->rowCount() > 0, patience); // the plug-in judges by the event

    const auto change = [&](const QVariantMap &path) {
        const QVariantMap request{{FieldKey::recordingGroupID, id}, {FieldKey::updateSetPathList, QVariantList{path}}};
        return client.send(ServerCommand::updateRecordingGroup, request);
    };
    const int recovery = change({{FieldKey::path, folder(u"north"_s)}, {FieldKey::isRecoveryMode, true}});
    const int reserve = change({{FieldKey::path, folder(u"north"_s)}, {FieldKey::reserveSpace, 4096}});
    QTRY_COMPARE_WITH_TIMEOUT(client.code(reserve), StationReturnCode::ReservedSpaceExceedsVolume, patience);
    QCOMPARE(client.code(recovery), success);
}

void OwnStationTest::endIsKnown()
{
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const StationPresence presence = client.link().stations().constFirst();
    QCOMPARE(presence.name, u"The shed"_s);
    QVERIFY(!presence.address.isEmpty() && presence.since.isValid());
    m_station->stop();
    QCOMPARE(m_station->exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client.reason(), u"The station was ended."_s, patience);
    m_station->start();
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    m_station->kill();
    QTRY_COMPARE_WITH_TIMEOUT(client.link().state().kind, StationState::Kind::Down, patience);
    QVERIFY2(client.reason().contains(u"lost"_s), qPrintable(client.reason()));
    m_station->start();
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
}

void OwnStationTest::lateLastWillIsPutRight()
{
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    Stranger stranger(m_broker->url());
    QVERIFY(stranger.listens());
    MqttMessage will;
    will.topic = MqttTopics::status(u"shed"_s);
    will.contentType = ContentType::Json;
    will.isRetained = true;
    will.payload = R"({"state": "lost", "instance": "before", "startedAt": "2026-03-20T14:00:00.000Z"})";
    stranger.publish(will);
    const auto wasLost = [&client] {
        const QList<StationState> states = client.states.value(u"shed"_s);
        return std::any_of(states.begin(), states.end(),
                           [](const StationState &state) { return state.kind == StationState::Kind::Down; });
    };
    QTRY_VERIFY_WITH_TIMEOUT(wasLost() && client.isUp(), patience);
}

void OwnStationTest::brokerComesBack()
{
    BrokerClient client(url());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    m_broker->stop();
    QTRY_VERIFY_WITH_TIMEOUT(!client.isUp(), patience);
    QVERIFY(m_broker->start());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), 3 * patience);
    m_broker->stop();
    m_station->stop(); // without a broker, too
    QCOMPARE(m_station->exitCode(), 0);
}

void OwnStationTest::toolWorksWithIt()
{
    QTRY_VERIFY_WITH_TIMEOUT(m_station->log().contains(u"Clients are served"_s), patience);
    const auto tool = [this](const QStringList &arguments) {
        return run(QStringList{u"--connect"_s, url()} + arguments);
    };
    const Run volumes = tool({u"volumes"_s});
    QCOMPARE(volumes.exitCode, 0);
    QVERIFY2(volumes.output.contains(m_volume), qPrintable(volumes.output));
    QCOMPARE(tool({u"group-add"_s, u"North"_s, u"--path"_s, folder(u"north"_s)}).exitCode, 0);
    QCOMPARE(tool({u"group-update"_s, u"North"_s, u"--name"_s, u"Gate"_s}).exitCode, 0);
    QVERIFY(tool({u"tree"_s}).output.contains(u"Gate"_s));
    const Run again = tool({u"group-add"_s, u"Gate"_s, u"--path"_s, folder(u"south"_s)});
    QCOMPARE(again.exitCode, 1);
    QVERIFY2(again.errors.contains(StationReturnCode::RecordingGroupNameInUse), qPrintable(again.errors));
    const Run figures = tool({u"usage"_s});
    QVERIFY2(figures.exitCode == 0 && figures.output.contains(u"Gate"_s), qPrintable(figures.errors));
    const Run unknown = tool({u"storage"_s});
    QCOMPARE(unknown.exitCode, 1);
    QVERIFY2(unknown.errors.contains(StationReturnCode::UnknownCommand), qPrintable(unknown.errors));
    QCOMPARE(tool({u"group-remove"_s, u"Gate"_s}).exitCode, 0);
    QVERIFY(!tool({u"groups"_s}).output.contains(u"Gate"_s));
}

void OwnStationTest::wrongUseIsAClearError()
{
    ExampleStation noFolder({folder(u"none"_s), u"--id"_s, u"x"_s});
    noFolder.start();
    QTRY_VERIFY_WITH_TIMEOUT(!noFolder.isRunning(), patience);
    QCOMPARE(noFolder.exitCode(), 2);
    QVERIFY2(noFolder.log().contains(folder(u"none"_s) + u" cannot be a volume: No such file"_s),
             qPrintable(noFolder.log()));
    ExampleStation noId({m_volume});
    noId.start();
    QTRY_VERIFY_WITH_TIMEOUT(!noId.isRunning(), patience);
    QCOMPARE(noId.exitCode(), 2);
    QVERIFY2(noId.log().contains(u"--id"_s), qPrintable(noId.log()));
    m_broker->stop();
    ExampleStation alone(
        {m_volume, u"--id"_s, u"x"_s, u"--broker"_s, u"127.0.0.1"_s, u"--port"_s, QString::number(m_broker->port())});
    alone.start();
    QTRY_VERIFY_WITH_TIMEOUT(alone.log().contains(u"The broker cannot be reached; trying again"_s), patience);
    alone.stop();
    QCOMPARE(alone.exitCode(), 0);
}

void OwnStationTest::smallestOneIsAStation()
{
    m_station->stop();
    m_station = std::make_unique<ExampleStation>(
        QStringList{m_volume, u"--id"_s, u"shed"_s, u"--port"_s, QString::number(m_broker->port())}, u"smallest.py"_s);
    m_station->start();
    pluginSeesTheVolume();
    if (QTest::currentTestFailed())
        return;
    QVERIFY(addGroup(u"North"_s).isEmpty());
    const auto tool = [this](const QString &command) { return run({u"--connect"_s, url(), command}); };
    for (const QString &command : {u"volumes"_s, u"groups"_s, u"tree"_s, u"usage"_s, u"alarms"_s}) {
        const Run shown = tool(command);
        QVERIFY2(shown.exitCode == 0, qPrintable(command + shown.errors));
    }
    QVERIFY(QDir(m_volume).removeRecursively());
    const Run alarms = tool(u"alarms"_s);
    QCOMPARE(alarms.exitCode, 1);
    QVERIFY2(alarms.output.contains(m_volume), qPrintable(alarms.output));
    m_station->stop();
    QCOMPARE(m_station->exitCode(), 0);
    QCOMPARE(tool(u"volumes"_s).exitCode, 3);
}

QTEST_GUILESS_MAIN(OwnStationTest)
#include "tst_own_station.moc"
