#include "ConsoleSession.h"
#include "ConsoleTypes.h"
#include "FakeFramework.h"
#include "PluginRecordingManagement.h"
#include "StationAnswers.h"
#include "companions/StatusMonitorPlugin.h"
#include "link/LateOutcome.h"

#include <QJsonDocument>
#include <QQmlContext>
#include <QQmlEngine>
#include <QStandardItemModel>
#include <QtQuickTest>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

/// Names the station, as the client's station plug-in does.
class TestStation : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE QVariant getStationTree() const
    {
        return QVariantMap{{QStringLiteral("name"), QStringLiteral("North station")},
                           {QStringLiteral("ip"), QStringLiteral("192.168.7.20")},
                           {QStringLiteral("relayPath"), QStringLiteral("st1")},
                           {QStringLiteral("type"), QStringLiteral("NVR")}};
    }
};

/// The plug-in with a server that the pages' tests play: they see what was asked and give the replies.
class TestServer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *recording READ recording NOTIFY renewed)
    Q_PROPERTY(QObject *session READ session NOTIFY renewed)
    Q_PROPERTY(int camerasAsked READ camerasAsked NOTIFY renewed)

public:
    TestServer() { renew(); }
    ~TestServer() override { answerAll(); }

    QObject *recording() const { return m_plugin.get(); }
    QObject *session() const { return m_session.get(); }

    int camerasAsked() const { return m_camerasAsked; } ///< how often so far

    /// Forgets everything: a new plug-in, connected. No page may be left.
    Q_INVOKABLE void renew()
    {
        answerAll();
        m_plugin = std::make_unique<PluginRecordingManagement>();
        m_framework = FakeFramework();
        m_framework.duringSend = [this](const FakeFramework::Sent &request) {
            if (m_framework.accepts)
                m_outstanding.append(request);
        };
        m_framework.pluginObjects.insert(QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD"), &m_station);
        m_plugin->InitialPluginBase(nullptr, nullptr, &m_framework);
        m_session = std::make_unique<ConsoleSession>();
        m_session->setConnected(true);
        m_answers = std::make_unique<StationAnswers>(*m_session);
        connect(m_session->cameraList(), &StationCameras::wanted, this, [this] { ++m_camerasAsked; });
        connect(m_session->cameraList(), &StationCameras::editWanted, this,
                [this](const QString &command, const QVariantMap &data) {
                    m_cameraEdits.append(command + u' ' + data.value(QStringLiteral("camName")).toString());
                });
        connect(m_session.get(), &ConsoleSession::acknowledgementWanted, this,
                [this](const QString &command, const QVariant &data, const QString &source) {
                    m_acknowledgements.append(
                        (source.isEmpty() ? QString() : source + u' ') + command + u' '
                        + QString::fromUtf8(QJsonDocument::fromVariant(data).toJson(QJsonDocument::Compact)));
                });
        m_stations.clear();
        m_chosenStations.clear();
        connect(m_session->stations(), &StationOverview::chosen, this,
                [this](const QString &path) { m_chosenStations.append(path); });
        m_unassignedRequests.clear();
        m_session->unassigned()->setPause(std::chrono::hours(1)); // no request that a test does not cause
        connect(m_session->unassigned(), &UnassignedRecordingsModel::requested, this,
                [this](const QString &command, const QVariantMap &data) {
                    m_unassignedRequests.append({command, data});
                });
        emit renewed();
    }

    Q_INVOKABLE void setConnected(bool connected) { m_session->setConnected(connected); }
    Q_INVOKABLE void setAlarmsKnown(bool known) { m_session->setAlarmsKnown(known); }
    /// What the station tells of its volumes.
    Q_INVOKABLE void setStorage(const QVariantList &volumes) { m_session->storage()->take(volumes); }
    Q_INVOKABLE void failStorage(const QString &returnCode)
    {
        m_session->storage()->fail(m_session->refusalText(returnCode));
    }
    Q_INVOKABLE void setAccepts(bool accepts) { m_framework.accepts = accepts; }
    /// What the plug-in's error line said last.
    Q_INVOKABLE void setPluginFact(const QString &fact)
    {
        m_session->setPluginFact([fact] { return fact; });
    }

    /// What was sent since the last call, as "command data".
    Q_INVOKABLE QStringList takeSent()
    {
        QStringList lines;
        const QList<FakeFramework::Sent> sent = std::exchange(m_framework.sent, {});
        for (const FakeFramework::Sent &request : sent)
            lines.append((request.command + u' ' + request.data.toString()).trimmed());
        return lines;
    }

    /// What was sent since the last call of either, as "command data" with the data whole, as JSON.
    Q_INVOKABLE QStringList takeRequests()
    {
        QStringList lines;
        const QList<FakeFramework::Sent> sent = std::exchange(m_framework.sent, {});
        for (const FakeFramework::Sent &request : sent)
            lines.append(request.command + u' '
                         + QString::fromUtf8(QJsonDocument::fromVariant(request.data).toJson(QJsonDocument::Compact)));
        return lines;
    }

    /// The same with the data as it was sent: maps with "command" and "data".
    Q_INVOKABLE QVariantList takeRequestMaps()
    {
        QVariantList requests;
        const QList<FakeFramework::Sent> sent = std::exchange(m_framework.sent, {});
        for (const FakeFramework::Sent &request : sent)
            requests.append(
                QVariantMap{{QStringLiteral("command"), request.command}, {QStringLiteral("data"), request.data}});
        return requests;
    }

    /// How many requests of this command have no reply yet.
    Q_INVOKABLE int outstanding(const QString &command) const
    {
        return static_cast<int>(std::count_if(m_outstanding.cbegin(), m_outstanding.cend(),
                                              [&command](const auto &request) { return request.command == command; }));
    }

    /// Answers the oldest request of @p command that has no reply yet.
    Q_INVOKABLE void reply(const QString &command, const QVariant &data, const QString &returnCode, bool finish = true)
    {
        m_session->noteAnswer(command, returnCode);
        m_plugin->CommandProcessor(command, data, finish ? takeContext(command) : nullptr, returnCode, {}, finish, {});
    }

    /// Answers the newest one, and leaves the older ones waiting.
    Q_INVOKABLE void replyToNewest(const QString &command, const QVariant &data, const QString &returnCode)
    {
        const auto newest = std::find_if(m_outstanding.rbegin(), m_outstanding.rend(),
                                         [&command](const auto &request) { return request.command == command; });
        if (newest != m_outstanding.rend())
            std::rotate(m_outstanding.begin(), std::prev(newest.base()), newest.base());
        reply(command, data, returnCode);
    }

    Q_INVOKABLE void raise(const QString &event, const QVariant &data = QVariantList(), const QString &source = {})
    {
        m_session->noteArrival(source);
        m_plugin->EventProcessor(event, 0, 0, 0, data, source);
        m_session->noteArrival({});
        m_session->noteEvent(event, data, source);
    }

    /// What is known of these stations now: maps with "path", "name", "state" (of StationState::Kind), "since",
    /// "reason", "missing", "short", "free", "alarms", "errors"; a station without "missing" has told no figures.
    Q_INVOKABLE void setStations(const QVariantList &stations)
    {
        QStringList paths;
        for (const QVariant &value : stations) {
            const QVariantMap map = value.toMap();
            const QString path = map.value(QStringLiteral("path")).toString();
            StationDirectory::Record record;
            record.presence.relayPath = path;
            record.presence.name = map.value(QStringLiteral("name"), path).toString();
            record.presence.address = path + QStringLiteral(".site.example");
            record.presence.state = {static_cast<StationState::Kind>(map.value(QStringLiteral("state"), 2).toInt()),
                                     map.value(QStringLiteral("reason")).toString()};
            record.presence.since = map.value(QStringLiteral("since")).toDateTime();
            if (map.contains(QStringLiteral("missing"))) {
                record.figures.groups = 3;
                record.figures.missingDays = map.value(QStringLiteral("missing")).toInt();
                record.figures.shortGroups = map.value(QStringLiteral("short")).toInt();
                record.figures.freeBytes = map.value(QStringLiteral("free"), -1).toDouble();
            }
            record.alarms = map.value(QStringLiteral("alarms")).toInt();
            record.errors = map.value(QStringLiteral("errors")).toInt();
            record.areAlarmsTold = map.contains(QStringLiteral("alarms"));
            m_stations.insert(path, record);
            paths.append(path);
        }
        int notUp = 0;
        int untold = 0;
        for (const StationDirectory::Record &record : std::as_const(m_stations)) {
            notUp += record.isUp() ? 0 : 1;
            untold += record.isUp() && !record.areAlarmsTold ? 1 : 0;
        }
        m_session->stations()->take(paths, [this](const QString &path) { return m_stations.value(path); });
        m_session->stations()->setCounts(static_cast<int>(m_stations.size()), notUp, untold);
    }
    Q_INVOKABLE void setDirectStation(const QString &path) { m_session->stations()->setDirect(path); }
    /// The stations that the session wanted to work on since the last call.
    Q_INVOKABLE QStringList takeChosenStations() { return std::exchange(m_chosenStations, {}); }
    Q_INVOKABLE void refuseStation(const QString &sentence) { m_session->stations()->refuse(sentence); }
    /// The client works on another station, as the session hears of it.
    Q_INVOKABLE void changeStation(const QString &path)
    {
        m_session->leaveStation();
        m_session->stations()->setDirect(path);
        m_plugin->PluginServerConnected();
        m_session->enterStation(true);
    }

    /// An edit that timed out at 14:02 has an outcome now.
    Q_INVOKABLE void tellLateOutcome(const QString &command, const QString &subject, const QString &returnCode,
                                     bool isDoneInPart = false)
    {
        const QDateTime time(QDate(2026, 3, 20), QTime(14, 2));
        m_session->noteLateOutcome({command, subject, {}, time.toUTC(), returnCode, isDoneInPart});
    }

    /// The connection goes down and comes up again, as the plug-in and the pages hear of it.
    Q_INVOKABLE void reconnect()
    {
        m_session->setConnected(false);
        m_plugin->PluginServerConnected();
        m_session->setConnected(true);
    }

    /// From now on the client has a status monitor, and the session shows what it keeps.
    Q_INVOKABLE void addStatusMonitor()
    {
        m_monitor = std::make_unique<StatusMonitorPlugin>();
        m_framework.pluginObjects.insert(StatusMonitorPlugin::pluginId, m_monitor.get());
        m_session->setAlarms(m_monitor.get());
    }

    /// What a status monitor would keep: maps by role name.
    Q_INVOKABLE void setAlarms(const QVariantList &alarms)
    {
        m_alarms.clear();
        for (const QVariant &alarm : alarms)
            addAlarm(alarm.toMap());
        m_session->setAlarms(&m_alarms);
    }
    Q_INVOKABLE void addAlarm(const QVariantMap &alarm)
    {
        static const QHash<int, QByteArray> roles{
            {Qt::UserRole + 1, "sourceRole"},          {Qt::UserRole + 2, "kindRole"},
            {Qt::UserRole + 3, "groupIdRole"},         {Qt::UserRole + 4, "groupNameRole"},
            {Qt::UserRole + 5, "sinceRole"},           {Qt::UserRole + 6, "textRole"},
            {Qt::UserRole + 7, "remedyRole"},          {Qt::UserRole + 8, "wordRole"},
            {Qt::UserRole + 9, "subjectRole"},         {Qt::UserRole + 10, "acknowledgedAtRole"},
            {Qt::UserRole + 11, "acknowledgedByRole"}, {Qt::UserRole + 12, "noteRole"}};
        m_alarms.setItemRoleNames(roles);
        auto item = std::make_unique<QStandardItem>();
        for (auto role = roles.begin(); role != roles.end(); ++role)
            item->setData(alarm.value(QString::fromLatin1(*role)), role.key());
        m_alarms.appendRow(item.release());
    }
    /// What the session asked the client to send about alarms since the last call, as JSON.
    Q_INVOKABLE QStringList takeAcknowledgements() { return std::exchange(m_acknowledgements, {}); }
    Q_INVOKABLE void answerAcknowledgement(const QString &returnCode) { m_session->noteAcknowledgement(returnCode); }
    Q_INVOKABLE void removeAlarm(int row) { m_alarms.removeRow(row); }

    /// The data of the station's own commands that have no answer yet, the oldest first.
    Q_INVOKABLE QVariantList stationCalls() const
    {
        QVariantList list;
        for (const StationAnswers::Call &call : std::as_const(m_answers->calls))
            list.append(call.data);
        return list;
    }
    /// Answers the oldest of them.
    Q_INVOKABLE void answerStation(const QVariant &data, const QString &returnCode = QStringLiteral("0"))
    {
        m_answers->answer(data, returnCode);
    }

    /// What was asked about recordings of no group and has no answer yet, as "command data" with the data as JSON.
    Q_INVOKABLE QStringList unassignedRequests() const
    {
        QStringList lines;
        for (const auto &[command, data] : m_unassignedRequests)
            lines.append((command + u' '
                          + (data.isEmpty()
                                 ? QString()
                                 : QString::fromUtf8(QJsonDocument::fromVariant(data).toJson(QJsonDocument::Compact))))
                             .trimmed());
        return lines;
    }
    /// Answers the oldest of these.
    Q_INVOKABLE void answerUnassigned(const QString &returnCode, const QVariant &data = {})
    {
        const auto [command, request] = m_unassignedRequests.takeFirst();
        m_session->unassigned()->takeReply(command, request, returnCode, data);
    }

    /// What the client does when the session asks for the cameras.
    Q_INVOKABLE void setCameras(const QVariantList &cameras) { m_session->cameraList()->take(cameras); }
    Q_INVOKABLE void failCameras(const QString &returnCode)
    {
        m_session->cameraList()->fail(m_session->refusalText(returnCode));
    }
    /// What the session asked the client to change about cameras since the last call, as "command name".
    Q_INVOKABLE QStringList takeCameraEdits() { return std::exchange(m_cameraEdits, {}); }
    Q_INVOKABLE void answerCameraEdit(const QString &returnCode)
    {
        m_session->cameraList()->noteEdit(m_session->refusalText(returnCode));
    }

signals:
    void renewed();

private:
    void *takeContext(const QString &command)
    {
        for (qsizetype i = 0; i < m_outstanding.size(); ++i) {
            if (m_outstanding.at(i).command == command)
                return m_outstanding.takeAt(i).context;
        }
        return nullptr;
    }

    /// What was sent along comes back with each reply, as a client's framework sees to when it closes.
    void answerAll()
    {
        while (!m_outstanding.isEmpty()) {
            const QString command = m_outstanding.constFirst().command; // the request goes with its reply
            reply(command, {}, QStringLiteral("Closing"));
        }
    }

    FakeFramework m_framework;
    QList<FakeFramework::Sent> m_outstanding; // without a reply, in the order of sending
    QStandardItemModel m_alarms;
    std::unique_ptr<StatusMonitorPlugin> m_monitor;
    TestStation m_station;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<StationAnswers> m_answers;
    std::unique_ptr<ConsoleSession> m_session;
    QStringList m_acknowledgements;
    QList<std::pair<QString, QVariantMap>> m_unassignedRequests;
    QStringList m_cameraEdits;
    QHash<QString, StationDirectory::Record> m_stations;
    QStringList m_chosenStations;
    int m_camerasAsked = 0;
};

class Setup : public QObject
{
    Q_OBJECT
public slots:
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        m_server = std::make_unique<TestServer>();
        prepareConsoleEngine(*engine);
        engine->addImportPath(QStringLiteral(QML_TYPES_FOLDER));
        engine->rootContext()->setContextProperty(QStringLiteral("server"), m_server.get());
    }

private:
    std::unique_ptr<TestServer> m_server;
};

QUICK_TEST_MAIN_WITH_SETUP(console_pages, Setup)
#include "tst_console_pages.moc"
