#include "ConsoleSession.h"
#include "ConsoleTypes.h"
#include "FakeFramework.h"
#include "PluginRecordingManagement.h"
#include "companions/StatusMonitorPlugin.h"

#include <QJsonDocument>
#include <QQmlContext>
#include <QQmlEngine>
#include <QStandardItemModel>
#include <QtQuickTest>

#include <algorithm>
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
        connect(m_session.get(), &ConsoleSession::camerasWanted, this, [this] { ++m_camerasAsked; });
        emit renewed();
    }

    Q_INVOKABLE void setConnected(bool connected) { m_session->setConnected(connected); }
    Q_INVOKABLE void setAccepts(bool accepts) { m_framework.accepts = accepts; }

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
        m_plugin->EventProcessor(event, 0, 0, 0, data, source);
        m_session->noteEvent(event, data);
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
            {Qt::UserRole + 1, "sourceRole"},    {Qt::UserRole + 2, "kindRole"},  {Qt::UserRole + 3, "groupIdRole"},
            {Qt::UserRole + 4, "groupNameRole"}, {Qt::UserRole + 5, "sinceRole"}, {Qt::UserRole + 6, "textRole"},
            {Qt::UserRole + 7, "remedyRole"}};
        m_alarms.setItemRoleNames(roles);
        auto item = std::make_unique<QStandardItem>();
        for (auto role = roles.begin(); role != roles.end(); ++role)
            item->setData(alarm.value(QString::fromLatin1(*role)), role.key());
        m_alarms.appendRow(item.release());
    }
    Q_INVOKABLE void removeAlarm(int row) { m_alarms.removeRow(row); }

    /// What the client does when the session asks for the cameras.
    Q_INVOKABLE void setCameras(const QVariantList &cameras) { m_session->setCameras(cameras); }

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
    std::unique_ptr<ConsoleSession> m_session;
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
