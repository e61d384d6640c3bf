#include "UnixSignals.h"

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {
sigset_t heardSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, signal);
    return set;
}
} // namespace

UnixSignals::UnixSignals(QObject *parent)
    : QObject(parent)
{
    const sigset_t set = heardSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr); // threads that begin later inherit this
    std::signal(SIGPIPE, SIG_IGN);
    m_signals = OpenFile(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &UnixSignals::read);
}

void UnixSignals::read()
{
    signalfd_siginfo info = {};
    while (::read(m_signals.get(), &info, sizeof(info)) == static_cast<ssize_t>(sizeof(info))) {
        if (info.ssi_signo == SIGHUP)
            emit settingsWanted();
        else
            emit endWanted();
    }
}
