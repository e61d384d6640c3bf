#include "Interruption.h"

#include <QSocketNotifier>

#include <csignal>

#include <unistd.h>

namespace {

int pipeEnds[2] = {-1, -1}; // a signal handler may write to a pipe and do little else

void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const int number : {SIGINT, SIGTERM})
        sigaction(number, &action, nullptr);
}

} // namespace

Interruption::Interruption(const std::function<void()> &interrupted)
{
    if (::pipe(pipeEnds) != 0)
        return; // the process can still be ended, only less gently
    m_notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this, interrupted] {
        m_notifier->setEnabled(false);
        interrupted();
    });
    setHandler(onSignal);
}

Interruption::~Interruption()
{
    if (!m_notifier)
        return;
    setHandler(SIG_DFL);
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}
