#include "ConsoleSession.h"
#include "ConsoleTypes.h"
#include "FakeFramework.h"
#include "PluginRecordingManagement.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include <memory>
#include <utility>

/// The plug-in with a server that the pages' tests play: they see what was asked and give the replies.
class TestServer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *recording READ recording NOTIFY renewed)
    Q_PROPERTY(QObject *session READ session NOTIFY renewed)

public:
    TestServer() { renew(); }

    QObject *recording() const { return m_plugin.get(); }
    QObject *session() const { return m_session.get(); }

    /// Forgets everything: a new plug-in, connected. No page may be left.
    Q_INVOKABLE void renew()
    {
        m_plugin = std::make_unique<PluginRecordingManagement>();
        m_framework = FakeFramework();
        m_plugin->InitialPluginBase(nullptr, nullptr, &m_framework);
        m_session = std::make_unique<ConsoleSession>();
        m_session->setConnected(true);
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

    Q_INVOKABLE void reply(const QString &command, const QVariant &data, const QString &returnCode)
    {
        m_session->noteAnswer(command, returnCode);
        m_plugin->CommandProcessor(command, data, nullptr, returnCode, {}, true, {});
    }

    Q_INVOKABLE void raise(const QString &event) { m_plugin->EventProcessor(event, 0, 0, 0, QVariantList(), {}); }

signals:
    void renewed();

private:
    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<ConsoleSession> m_session;
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
