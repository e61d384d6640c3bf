#include "DiskPath.h"

#include "DiskVisit.h"

#include <QString>

#include <cerrno>
#include <deque>
#include <string>
#include <system_error>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {
DiskPath failed(int error)
{
    return {{}, false, error};
}
} // namespace

DiskPath resolved(const fs::path &path, DiskVisit &visit)
{
    constexpr int mostLinks = 40; // as the kernel has it
    const fs::path relative = path.relative_path();
    std::deque<fs::path> ahead(relative.begin(), relative.end());
    DiskPath place{"/", true, 0};
    int links = 0;
    while (!ahead.empty()) {
        if (!place.isFolder)
            return failed(ENOTDIR);
        const fs::path name = ahead.front();
        ahead.pop_front();
        if (name.empty() || name == ".")
            continue;
        if (name == "..") {
            place.canonical = place.canonical.parent_path();
            continue;
        }
        const fs::path next = place.canonical / name;
        if (!visit.enter(QString::fromStdString(next.native())))
            return failed(ETIMEDOUT);
        struct stat status = {};
        if (lstat(next.c_str(), &status) != 0)
            return failed(errno);
        if (!S_ISLNK(status.st_mode)) {
            place = {next, S_ISDIR(status.st_mode), 0};
            continue;
        }
        std::error_code error;
        const fs::path target = fs::read_symlink(next, error);
        if (error || ++links > mostLinks)
            return failed(error ? error.value() : ELOOP);
        if (target.is_absolute())
            place.canonical = "/";
        const fs::path steps = target.relative_path();
        ahead.insert(ahead.begin(), steps.begin(), steps.end());
    }
    return place;
}
