#include "DetachedStart.h"

#include "files/OpenFile.h"

#include <QByteArray>
#include <QFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int longestStart = 30'000; // milliseconds
constexpr auto started = "started";

/// What comes through @p pipe until it is closed, or until it took too long.
QByteArray textFrom(int pipe)
{
    QByteArray text;
    std::array<char, 512> buffer{};
    pollfd waiting = {pipe, POLLIN, 0};
    while (poll(&waiting, 1, longestStart) > 0) {
        const ssize_t size = read(pipe, buffer.data(), buffer.size());
        if (size <= 0)
            return text;
        text.append(buffer.data(), static_cast<qsizetype>(size));
    }
    return text.isEmpty() ? QByteArray("the station takes too long to start") : text;
}

void write(int descriptor, const QByteArray &text)
{
    static_cast<void>(!::write(descriptor, text.constData(), static_cast<size_t>(text.size())));
}

/// The log, for this user alone; one that is too large becomes the older one.
OpenFile openLog(const QString &path)
{
    constexpr off_t largest = 1024 * 1024;
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (lstat(name.constData(), &status) == 0 && status.st_size > largest)
        std::rename(name.constData(), (name + ".1").constData());
    return OpenFile(
        open(name.constData(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR));
}

void leaveTerminal(const QString &logFile)
{
    setsid();
    static_cast<void>(!chdir("/"));
    const OpenFile null(open("/dev/null", O_RDWR | O_CLOEXEC));
    const OpenFile log = openLog(logFile);
    dup2(null.get(), STDIN_FILENO);
    dup2(log.isOpen() ? log.get() : null.get(), STDOUT_FILENO);
    dup2(log.isOpen() ? log.get() : null.get(), STDERR_FILENO);
}

int refuse(const QByteArray &error)
{
    write(STDERR_FILENO, error + '\n');
    return EXIT_FAILURE;
}
} // namespace

int runDetached(const QString &logFile, const std::function<int(const ReportStart &)> &run)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return refuse(QByteArray("no pipe can be made: ") + std::strerror(errno));
    OpenFile reading(ends[0]);
    OpenFile writing(ends[1]);
    const pid_t child = fork();
    if (child < 0)
        return refuse(QByteArray("no process can be made: ") + std::strerror(errno));
    if (child > 0) {
        writing = OpenFile();
        const QByteArray text = textFrom(reading.get());
        if (text == started)
            return EXIT_SUCCESS;
        return refuse(text.isEmpty()
                          ? QByteArray("the station ended while it started; see ") + QFile::encodeName(logFile)
                          : text);
    }
    reading = OpenFile();
    leaveTerminal(logFile);
    const auto report = [pipe = std::make_shared<OpenFile>(std::move(writing))](const QString &error) {
        if (pipe->isOpen())
            write(pipe->get(), error.isEmpty() ? QByteArray(started) : error.toUtf8());
        *pipe = OpenFile();
    };
    std::exit(run(report));
}
