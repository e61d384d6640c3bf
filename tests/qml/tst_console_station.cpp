#include "ClientSession.h"
#include "ConsoleSession.h"
#include "ConsoleTypes.h"
#include "FollowClient.h"
#include "Loopback.h"
#include "SambaServer.h"
#include "VolumeFolder.h"
#include "companions/StatusMonitorPlugin.h"
#include "embedded/EmbeddedLink.h"
#include "link/LateOutcome.h"
#include "link/StationCalls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJSValue>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtQuickTest>

#include <memory>
#include <optional>

using namespace std::chrono_literals;

/// A station of its own for each test, in this process, with the client and the plug-in before it as in the console.
class StationOfThePage : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *recording READ recording NOTIFY renewed)
    Q_PROPERTY(QObject *session READ session NOTIFY renewed)
    Q_PROPERTY(QString nasHost READ nasHost CONSTANT)
    Q_PROPERTY(QString nasUser READ nasUser CONSTANT)
    Q_PROPERTY(QString nasPassword READ nasPassword CONSTANT)
    Q_PROPERTY(QString silentHost READ silentHost CONSTANT)

public:
    StationOfThePage() { renew(); }
    ~StationOfThePage() override
    {
        m_session.reset();
        m_client.reset();
    }

    QObject *recording() const { return m_client->plugin(); }
    QObject *session() const { return m_session.get(); }

    /// A new station that knows nothing. No page may be left.
    Q_INVOKABLE void renew()
    {
        m_session.reset();
        m_client.reset();
        m_folder = std::make_unique<QTemporaryDir>(onAVolume(QStringLiteral("station-XXXXXX")));
        m_client = std::make_unique<ClientSession>();
        ClientSession::Options options;
        options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
        options.url = QStringLiteral("embedded:") + m_folder->filePath(QStringLiteral("station"));
        options.linkKinds = {EmbeddedLink::kind()};
        if (!m_client->start(options))
            qFatal("%s", qPrintable(m_client->error()));
        m_session = std::make_unique<ConsoleSession>();
        followClient(*m_client, *m_session);
        if (!QTest::qWaitFor([this] { return m_session->isConnected(); }))
            qFatal("There is no connection to the station");
        emit renewed();
    }

    /// Sends the station a command by itself, past the plug-in, and waits for the answer.
    Q_INVOKABLE QVariant ask(const QString &command, const QJSValue &data = {})
    {
        std::optional<StationReply> answer;
        m_client->stationCalls()->send(command, data.toVariant(), this,
                                       [&answer](const StationReply &part) { answer = part; });
        if (!QTest::qWaitFor([&answer] { return answer.has_value(); }, 10000))
            return {};
        return answer->returnCode == QStringLiteral("0") ? answer->data : QVariant(answer->returnCode);
    }

    /// Has the client say that the edit of the group @p name, which had timed out, was done.
    Q_INVOKABLE void tellLateOutcome(const QString &name)
    {
        emit m_client->lateOutcomeCame({QStringLiteral("updateRecordingGroup"),
                                        name,
                                        {},
                                        QDateTime::currentDateTimeUtc(),
                                        QStringLiteral("0"),
                                        false});
    }

    /// Makes a folder that the station can record into, and gives its path.
    Q_INVOKABLE QString makeFolder(const QString &name)
    {
        QDir(m_folder->path()).mkpath(name);
        return m_folder->filePath(name);
    }
    /// A recorded file, sparse, of that many bytes.
    Q_INVOKABLE void record(const QString &file, int bytes)
    {
        const QString path = m_folder->filePath(file);
        QDir().mkpath(QFileInfo(path).path());
        QFile recording(path);
        if (!recording.open(QIODevice::WriteOnly) || !recording.resize(bytes))
            qFatal("%s cannot be made", qPrintable(path));
    }
    /// Removes a file and the folder that it was in.
    Q_INVOKABLE void removeFile(const QString &file)
    {
        QFile::remove(m_folder->filePath(file));
        QDir().rmdir(QFileInfo(m_folder->filePath(file)).path());
    }
    Q_INVOKABLE bool exists(const QString &file) const { return QFileInfo::exists(m_folder->filePath(file)); }
    Q_INVOKABLE QString pathOf(const QString &name) const { return m_folder->filePath(name); }

    /// Starts an SMB server with a share "video" and a folder "north" in it; empty, or why that failed.
    Q_INVOKABLE QString startNas()
    {
        m_nas.addShare(QStringLiteral("video"));
        QDir(m_nas.folderOf(QStringLiteral("video"))).mkpath(QStringLiteral("north"));
        return m_nas.start() ? QString() : m_nas.error();
    }
    Q_INVOKABLE void stopNas() { m_nas.stop(); }
    QString nasHost() const { return m_nas.host(); }
    QString nasUser() const { return m_nas.userName(); }
    QString nasPassword() const { return m_nas.password(); }
    QString silentHost() const { return QStringLiteral("127.0.0.1:%1").arg(m_silent.port()); }

signals:
    void renewed();

private:
    SambaServer m_nas;
    SilentServer m_silent;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ClientSession> m_client;
    std::unique_ptr<ConsoleSession> m_session;
};

class Setup : public QObject
{
    Q_OBJECT
public slots:
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        m_server.reset(); // of the file of tests before: the plug-in is there once
        m_server = std::make_unique<StationOfThePage>();
        prepareConsoleEngine(*engine);
        engine->addImportPath(QStringLiteral(QML_TYPES_FOLDER));
        engine->rootContext()->setContextProperty(QStringLiteral("server"), m_server.get());
    }
    void cleanupTestCase() { m_server.reset(); } // while there is an application

private:
    std::unique_ptr<StationOfThePage> m_server;
};

QUICK_TEST_MAIN_WITH_SETUP(console_station, Setup)
#include "tst_console_station.moc"
