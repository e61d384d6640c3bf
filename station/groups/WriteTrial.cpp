#include "WriteTrial.h"

#include <QUuid>

#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr size_t size = 4096; // less may find room beside a file's name on a volume that is full

bool writeAll(int file)
{
    const std::vector<char> content(size);
    size_t written = 0;
    while (written < content.size()) {
        const ssize_t count = write(file, content.data() + written, content.size() - written);
        if (count < 0 && errno != EINTR)
            return false;
        written += count > 0 ? static_cast<size_t>(count) : 0;
    }
    return fsync(file) == 0; // network and thin volumes say only then that they are full
}

/// @param error of what was done with @p file before, 0 if all went well
int fillAndClose(int file, int error)
{
    if (error == 0 && !writeAll(file))
        error = errno;
    if (close(file) != 0 && error == 0)
        error = errno;
    return error;
}
/// Trying that would leave a file there for good.
bool keepsItsFiles(const std::filesystem::path &folder)
{
    struct statx facts = {};
    return statx(AT_FDCWD, folder.c_str(), 0, STATX_TYPE, &facts) == 0
        && (facts.stx_attributes & STATX_ATTR_APPEND) != 0;
}
} // namespace

int WriteTrial::tryFolder(const std::filesystem::path &folder)
{
    if (keepsItsFiles(folder))
        return EPERM;
    const int file = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    // Which error says that it cannot do without a name differs between file systems: one that is not meant so comes
    // again.
    return file < 0 ? tryNamed(folder) : fillAndClose(file, 0);
}

int WriteTrial::tryNamed(const std::filesystem::path &folder)
{
    if (keepsItsFiles(folder))
        return EPERM;
    const QByteArray name = ".recording-station-" + QUuid::createUuid().toByteArray(QUuid::Id128);
    const std::filesystem::path path = folder / name.toStdString();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        return errno;
    return fillAndClose(file, unlink(path.c_str()) == 0 ? 0 : errno);
}
