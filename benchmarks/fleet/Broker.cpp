#include "Broker.h"

#include "Child.h"
#include "Loopback.h"
#include "Measuring.h"
#include "Program.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace {
constexpr int patience = 20'000; // milliseconds

// As many messages as a thousand stations send at once may wait for a client.
const QString configuration = QStringLiteral("listener %1 127.0.0.1\n"
                                             "allow_anonymous true\n"
                                             "persistence false\n"
                                             "set_tcp_nodelay true\n"
                                             "max_inflight_messages 1000\n"
                                             "max_queued_messages 100000\n"
                                             "user %2\n"
                                             "log_dest stderr\n"
                                             "log_type error\n"
                                             "log_type warning\n"
                                             "log_type notice\n");
} // namespace

Broker::Broker()
    : m_port(freePort())
{
    QFile file(m_folder.filePath(QStringLiteral("broker.conf")));
    const QString user =
        geteuid() == 0 ? QStringLiteral("root") : qEnvironmentVariable("USER", QStringLiteral("nobody"));
    require(m_folder.isValid() && file.open(QIODevice::WriteOnly), "no temporary folder for the broker");
    file.write(configuration.arg(m_port).arg(user).toUtf8());
    file.close();
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); }); // however this process ends
    start();
}

Broker::~Broker()
{
    m_process.terminate();
    if (!m_process.waitForFinished(patience))
        m_process.kill();
    m_process.waitForFinished(patience);
}

void Broker::start()
{
    const QString program = QStandardPaths::findExecutable(
        QStringLiteral("mosquitto"),
        {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin"), QStringLiteral("/usr/local/sbin")});
    require(!program.isEmpty(), "there is no mosquitto; install Debian's package mosquitto");
    m_process.setStandardErrorFile(m_folder.filePath(QStringLiteral("broker.log")));
    m_process.start(program, {QStringLiteral("-c"), m_folder.filePath(QStringLiteral("broker.conf"))});
    const QDeadlineTimer deadline(patience);
    while (!isListening(m_port)) {
        m_process.waitForFinished(5);
        require(m_process.state() != QProcess::NotRunning && !deadline.hasExpired(), "the broker does not serve");
    }
}

void Broker::crashAndRestart()
{
    m_process.kill();
    m_process.waitForFinished(patience);
    start();
}

QString Broker::url(const QString &station) const
{
    return QStringLiteral("mqtt://127.0.0.1:%1/%2").arg(m_port).arg(station);
}

double Broker::cpuSeconds() const
{
    return cpuSecondsOf(m_process.processId());
}

double Broker::residentBytes() const
{
    return ::residentBytes(std::to_string(m_process.processId()));
}
