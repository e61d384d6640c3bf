#include "PasswordPrompt.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <iterator>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int caughtSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGTTIN, SIGTTOU};

int signalPipe[2] = {-1, -1}; // a signal handler may write to a pipe and do little else

void onSignal(int number)
{
    const int error = errno;
    const auto byte = static_cast<char>(number);
    [[maybe_unused]] const auto written = write(signalPipe[1], &byte, 1);
    errno = error;
}

/// While it lives, the terminal does not show what is typed, and signals arrive in a pipe.
class HiddenInput
{
public:
    HiddenInput()
    {
        if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
            signalPipe[0] = signalPipe[1] = -1;
        struct sigaction action = {};
        action.sa_handler = onSignal;
        for (std::size_t i = 0; i < std::size(caughtSignals); ++i) {
            sigaction(caughtSignals[i], nullptr, &m_actions[i]);
            if (m_actions[i].sa_handler != SIG_IGN && signalPipe[0] >= 0)
                sigaction(caughtSignals[i], &action, nullptr);
        }
        tcgetattr(STDIN_FILENO, &m_before);
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    ~HiddenInput()
    {
        tcsetattr(STDIN_FILENO, TCSANOW, &m_before);
        for (std::size_t i = 0; i < std::size(caughtSignals); ++i)
            sigaction(caughtSignals[i], &m_actions[i], nullptr);
        for (int &end : signalPipe) {
            if (end >= 0)
                close(end);
            end = -1;
        }
    }
    HiddenInput(const HiddenInput &) = delete;
    HiddenInput &operator=(const HiddenInput &) = delete;

private:
    termios m_before{};
    struct sigaction m_actions[std::size(caughtSignals)];
};

struct Line
{
    std::optional<QByteArray> text;
    int signal = 0; ///< came in between
};

void writeText(const char *text)
{
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
}

Line readHidden(const char *question, qsizetype limit)
{
    const HiddenInput hidden;
    writeText(question);
    Line line;
    line.text.emplace();
    bool isTooLong = false;
    while (true) {
        pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {signalPipe[0], POLLIN, 0}};
        poll(sources, std::size(sources), -1);
        char byte = 0;
        if (sources[1].revents != 0 && read(signalPipe[0], &byte, 1) == 1) {
            line.signal = byte;
            break;
        }
        if (sources[0].revents == 0)
            continue;
        const ssize_t count = read(STDIN_FILENO, &byte, 1);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count == 1 && byte == '\n')
            break;
        isTooLong = isTooLong || line.text->size() >= limit;
        if (count <= 0) {
            if (line.text->isEmpty())
                line.text.reset();
            break;
        }
        if (!isTooLong)
            line.text->append(byte);
    }
    writeText("\n");
    if (isTooLong)
        line.text.reset();
    return line;
}

} // namespace

std::optional<QByteArray> askHidden(const char *question, qsizetype limit)
{
    while (true) {
        Line line = readHidden(question, limit);
        if (line.signal == 0)
            return line.text;
        if (line.text)
            explicit_bzero(line.text->data(), static_cast<std::size_t>(line.text->size()));
        raise(line.signal); // mostly the end
    }
}
