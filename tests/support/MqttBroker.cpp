#include "MqttBroker.h"

#include "Loopback.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

#include <pwd.h>
#include <unistd.h>

namespace {
constexpr int patience = 20000; // milliseconds

QString currentUser()
{
    const passwd *const entry = getpwuid(geteuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString();
}

QString program(const QString &name)
{
    return QStandardPaths::findExecutable(
        name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin"), QStringLiteral("/usr/local/sbin")});
}

QString textOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool writeFile(const QString &name, const QString &text)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        && file.write(text.toUtf8()) >= 0 && file.flush();
}

QString backwards(QString text)
{
    std::reverse(text.begin(), text.end());
    return text;
}
} // namespace

MqttBroker::MqttBroker()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

MqttBroker::~MqttBroker()
{
    stop();
}

bool MqttBroker::start()
{
    if (!m_folder.isValid() || currentUser().isEmpty()) {
        m_error = QStringLiteral("No temporary folder, or no user to run as");
        return false;
    }
    if (program(QStringLiteral("mosquitto")).isEmpty()) {
        m_error = QStringLiteral("There is no mosquitto; install Debian's package of that name");
        return false;
    }
    if (m_port != 0)
        return startOnce();
    constexpr int attempts = 3; // somebody may take the port before the broker does
    for (int i = 0; i < attempts; ++i) {
        m_port = freePort();
        if (startOnce())
            return true;
    }
    return false;
}

bool MqttBroker::startOnce()
{
    writeFile(file(QStringLiteral("broker.conf")), configuration());
    m_process.start(program(QStringLiteral("mosquitto")), {QStringLiteral("-c"), file(QStringLiteral("broker.conf"))});
    const QDeadlineTimer deadline(patience);
    while (!deadline.hasExpired() && !m_process.waitForFinished(10) && m_process.state() != QProcess::NotRunning) {
        if (isListening(m_port))
            return true;
    }
    m_error = QStringLiteral("mosquitto does not serve: ") + QString::fromUtf8(m_process.readAll());
    kill();
    return false;
}

void MqttBroker::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(patience))
        kill();
}

void MqttBroker::kill()
{
    m_process.kill();
    m_process.waitForFinished(patience);
}

QString MqttBroker::url() const
{
    return QStringLiteral("mqtt://127.0.0.1:%1").arg(m_port);
}

QString MqttBroker::encryptedUrl(const QString &user) const
{
    return QStringLiteral("mqtts://%1@localhost:%2").arg(user).arg(m_port);
}

QString MqttBroker::configuration() const
{
    QStringList lines{QStringLiteral("user ") + currentUser()};
    if (m_example.isEmpty())
        lines += {QStringLiteral("listener %1 127.0.0.1").arg(m_port), QStringLiteral("allow_anonymous true"),
                  QStringLiteral("set_tcp_nodelay true"), QStringLiteral("max_queued_messages 100000")};
    else
        lines += {QStringLiteral("persistence_location %1/").arg(m_folder.path()),
                  QString(m_example).replace(QStringLiteral("listener 8883"),
                                             QStringLiteral("listener %1 localhost").arg(m_port))};
    return (lines + m_lines).join(u'\n') + u'\n';
}

bool MqttBroker::useExample(const QStringList &users)
{
    const QString examples = QStringLiteral(BROKER_EXAMPLES);
    m_example = textOf(examples + QStringLiteral("/mosquitto.conf"));
    m_example.replace(QStringLiteral("/etc/mosquitto/recording"), m_folder.path());
    QFile::copy(examples + QStringLiteral("/access"), file(QStringLiteral("access")));
    writeFile(file(QStringLiteral("passwords")), {});
    for (const QString &user : users) {
        writeFile(passwordFile(user), backwards(user) + u'\n');
        if (!run(program(QStringLiteral("mosquitto_passwd")),
                 {QStringLiteral("-b"), file(QStringLiteral("passwords")), user, backwards(user)}))
            return false;
    }
    const QString certificates = examples + QStringLiteral("/certificates");
    return run(certificates, {m_folder.path(), QStringLiteral("broker"), QStringLiteral("localhost")})
        && run(certificates, QStringList{m_folder.path(), QStringLiteral("user")} + users);
}

bool MqttBroker::run(const QString &name, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(name, arguments);
    if (process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return true;
    m_error = name + QStringLiteral(": ") + process.errorString() + u' ' + QString::fromUtf8(process.readAll());
    return false;
}
