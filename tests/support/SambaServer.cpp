#include "SambaServer.h"

#include "Loopback.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>
#include <csignal>
#include <functional>

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

bool writeFile(const QString &name, const QString &text)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.flush();
}
} // namespace

SambaServer::SambaServer()
    : m_password(QStringLiteral("Geheim-") + QUuid::createUuid().toString(QUuid::Id128))
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

SambaServer::~SambaServer()
{
    stop();
}

bool SambaServer::start()
{
    if (!m_folder.isValid() || currentUser().isEmpty()) {
        m_error = QStringLiteral("No temporary folder, or no user to run as");
        return false;
    }
    if (program(QStringLiteral("smbd")).isEmpty()) {
        m_error = QStringLiteral("There is no smbd; install Debian's package samba");
        return false;
    }
    if (m_port != 0)
        return startOnce();
    constexpr int attempts = 3; // somebody may take the port before smbd does
    for (int i = 0; i < attempts; ++i) {
        m_port = freePort();
        if (makeUser() && startOnce())
            return true;
    }
    return false;
}

void SambaServer::stop()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        // A helper of smbd that outlives it, and would keep the end of smbd waiting.
        QFile helper(file(QStringLiteral("run/samba-dcerpcd.pid")));
        const int helperId = helper.open(QIODevice::ReadOnly) ? helper.readAll().trimmed().toInt() : 0;
        if (helperId > 0)
            kill(helperId, SIGTERM);
        if (!m_process.waitForFinished(patience))
            m_process.kill();
        m_process.waitForFinished(patience);
    }
    waitForHeirs();
}

/// smbd's children and helpers end after it, and write to its folder until then.
void SambaServer::waitForHeirs() const
{
    const QByteArray ours = file(QStringLiteral("smb.conf")).toUtf8();
    const auto isOurs = [&ours](const QString &process) {
        // A process that has ended has no arguments, also while nobody has asked how it ended.
        QFile arguments(QStringLiteral("/proc/%1/cmdline").arg(process));
        return arguments.open(QIODevice::ReadOnly) && arguments.readAll().contains(ours);
    };
    const QDir processes(QStringLiteral("/proc"));
    const QDeadlineTimer deadline(patience);
    QStringList left;
    do {
        left = processes.entryList({QStringLiteral("[1-9]*")}, QDir::Dirs);
        left.erase(std::remove_if(left.begin(), left.end(), std::not_fn(isOurs)), left.end());
    } while (!left.isEmpty() && !deadline.hasExpired());
    if (!left.isEmpty())
        qWarning("Processes of smbd do not end: %s", qPrintable(left.join(u' ')));
}

bool SambaServer::signalAll(int signal)
{
    const auto leader = static_cast<pid_t>(m_process.processId());
    return leader > 0 && kill(-leader, signal) == 0;
}

QString SambaServer::host() const
{
    return QStringLiteral("127.0.0.1:%1").arg(m_port);
}

void SambaServer::addShare(const QString &name, const QStringList &options)
{
    QDir().mkpath(folderOf(name));
    m_shares.insert(name, options);
    writeConfiguration();
}

bool SambaServer::removeShare(const QString &name)
{
    m_shares.remove(name);
    writeConfiguration();
    const QStringList arguments{QStringLiteral("--configfile=") + file(QStringLiteral("smb.conf")),
                                QStringLiteral("smbd"), QStringLiteral("close-share"), name};
    return QProcess::execute(program(QStringLiteral("smbcontrol")), arguments) == 0;
}

QString SambaServer::folderOf(const QString &name) const
{
    return file(QStringLiteral("shares/") + name);
}

bool SambaServer::setPassword(const QString &password)
{
    m_password = password;
    return edit({QStringLiteral("--delete"), QStringLiteral("--user=") + currentUser()}) && makeUser();
}

bool SambaServer::setLockout(int attempts)
{
    return edit({QStringLiteral("--account-policy=bad lockout attempt"),
                 QStringLiteral("--value=") + QString::number(attempts)});
}

bool SambaServer::makeUser()
{
    writeConfiguration();
    return edit({QStringLiteral("--create"), QStringLiteral("--password-from-stdin"),
                 QStringLiteral("--user=") + currentUser()},
                QStringLiteral("%1\n%1\n").arg(m_password));
}

/// Changes the data base of users.
bool SambaServer::edit(const QStringList &arguments, const QString &input)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program(QStringLiteral("pdbedit")),
                  QStringList{QStringLiteral("--configfile=") + file(QStringLiteral("smb.conf"))} + arguments);
    process.write(input.toUtf8());
    process.closeWriteChannel();
    if (process.waitForFinished(patience) && process.exitCode() == 0)
        return true;
    m_error = QStringLiteral("pdbedit failed: ") + QString::fromUtf8(process.readAll());
    return false;
}

bool SambaServer::startOnce()
{
    writeConfiguration();
    m_process.start(program(QStringLiteral("smbd")),
                    {QStringLiteral("--foreground"), QStringLiteral("--debug-stdout"),
                     QStringLiteral("--configfile=") + file(QStringLiteral("smb.conf"))});
    const QDeadlineTimer deadline(patience);
    while (!deadline.hasExpired() && !m_process.waitForFinished(20) && m_process.state() != QProcess::NotRunning) {
        if (isListening(m_port))
            return true;
    }
    m_error = QStringLiteral("smbd does not serve: ") + QString::fromUtf8(m_process.readAll());
    stop();
    return false;
}

void SambaServer::writeConfiguration() const
{
    const QString run = file(QStringLiteral("run"));
    QDir().mkpath(run);
    QString text = QStringLiteral("[global]\n"
                                  "server role = standalone server\n"
                                  "netbios name = TESTNAS\n"
                                  "workgroup = TESTNAS\n"
                                  "disable netbios = yes\n"
                                  "interfaces = lo\n"
                                  "bind interfaces only = yes\n"
                                  "smb ports = %1\n"
                                  "pid directory = %2\n"
                                  "lock directory = %2\n"
                                  "state directory = %2\n"
                                  "cache directory = %2\n"
                                  "private dir = %2\n"
                                  "ncalrpc dir = %2/rpc\n"
                                  "log file = %2/log\n"
                                  "passdb backend = tdbsam:%2/passwords.tdb\n"
                                  "username map = %3\n"
                                  "map to guest = Bad User\n"
                                  "guest account = %4\n"
                                  "load printers = no\n"
                                  "printing = bsd\n"
                                  "printcap name = /dev/null\n"
                                  "disable spoolss = yes\n")
                       .arg(m_port)
                       .arg(run, file(QStringLiteral("users")), currentUser());
    for (auto share = m_shares.cbegin(); share != m_shares.cend(); ++share) {
        text += QStringLiteral("[%1]\npath = %2\nread only = no\nforce user = %3\n")
                    .arg(share.key(), folderOf(share.key()), currentUser());
        for (const QString &option : share.value())
            text += option + u'\n';
    }
    writeFile(file(QStringLiteral("smb.conf")), text);
    writeFile(file(QStringLiteral("users")), QStringLiteral("%1 = %2\n").arg(currentUser(), userName()));
}
