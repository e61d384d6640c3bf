// Loaded with LD_PRELOAD: calls that look at files below given folders hang or fail.
//
// FAULTY_DISK holds rules that are separated by semicolons, each "<fault>[.<call>]=<folder>", for instance
// "hang=/srv/a;EIO.readdir=/srv/b". A fault is hang (until the process ends), EIO, ENOSPC or EROFS; the latter two
// befall only calls that change something. Without a call all of them are meant. Folders are compared as text, links
// are not followed. FAULTY_DISK_LOG is a file that gets a line "<call> <path>" for every call that is befallen: a test
// waits for it.
//
// Two more faults befall calls only while the file FAULTY_DISK_GATE exists: wait holds the call up until the file is
// gone, as a frozen file system does; die removes the file and kills the process within the call.

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum class Kind { Look, Change };

/// The path of an open file, empty where it has none.
std::string pathOf(int descriptor)
{
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    char path[PATH_MAX];
    const long length = syscall(SYS_readlinkat, AT_FDCWD, link.c_str(), path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

/// @p path as the system finds it from @p folder on, an open folder or AT_FDCWD.
std::string pathAt(int folder, const char *path)
{
    if (!path)
        return {};
    if (*path == '/')
        return path;
    char current[PATH_MAX] = "";
    if (folder == AT_FDCWD && syscall(SYS_getcwd, current, sizeof current) < 0)
        return {};
    const std::string base = folder == AT_FDCWD ? current : pathOf(folder);
    return *path ? base + '/' + path : base;
}

bool isWithin(std::string_view path, std::string_view folder)
{
    return path.substr(0, folder.size()) == folder && (path.size() == folder.size() || path[folder.size()] == '/');
}

void writeLog(const char *call, const std::string &path)
{
    const char *const log = std::getenv("FAULTY_DISK_LOG");
    const long file = log ? syscall(SYS_openat, AT_FDCWD, log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600) : -1;
    if (file < 0)
        return;
    const std::string line = call + (' ' + path) + '\n';
    syscall(SYS_write, file, line.data(), line.size());
    syscall(SYS_close, file);
}

const char *gate()
{
    const char *const file = std::getenv("FAULTY_DISK_GATE");
    return file ? file : "";
}

bool isGateThere()
{
    return syscall(SYS_faccessat, AT_FDCWD, gate(), F_OK) == 0;
}

void waitForGate()
{
    constexpr timespec moment{0, 1'000'000}; // nanoseconds
    while (isGateThere())
        nanosleep(&moment, nullptr);
}

void dieAtGate()
{
    if (syscall(SYS_unlinkat, AT_FDCWD, gate(), 0) == 0) // one process alone
        kill(getpid(), SIGKILL);
}

/// Whether @p call on @p path fails, with errno set; does not return where it hangs.
bool fails(const char *call, const std::string &path, Kind kind)
{
    static const struct
    {
        std::string_view name;
        int error; // 0: hangs, or does as it is told at the gate
        bool isOfChanges;
        void (*atGate)();
    } faults[] = {{"hang", 0, false, nullptr},     {"EIO", EIO, false, nullptr},     {"ENOSPC", ENOSPC, true, nullptr},
                  {"EROFS", EROFS, true, nullptr}, {"wait", 0, false, &waitForGate}, {"die", 0, false, &dieAtGate}};

    const char *const setting = std::getenv("FAULTY_DISK");
    std::string_view rest = setting ? setting : "";
    while (!rest.empty() && !path.empty()) {
        const std::string_view rule = rest.substr(0, rest.find(';'));
        rest.remove_prefix(rule.size() < rest.size() ? rule.size() + 1 : rule.size());
        const std::size_t sign = rule.find('=');
        const std::string_view what = rule.substr(0, sign);
        const std::size_t dot = what.find('.');
        if (sign == std::string_view::npos || !isWithin(path, rule.substr(sign + 1))
            || (dot != std::string_view::npos && what.substr(dot + 1) != call))
            continue;
        for (const auto &fault : faults) {
            if (fault.name != what.substr(0, dot) || (fault.isOfChanges && kind == Kind::Look))
                continue;
            if (fault.atGate && !isGateThere())
                continue;
            writeLog(call, path);
            if (fault.atGate) {
                fault.atGate();
                continue;
            }
            while (fault.error == 0)
                pause();
            errno = fault.error;
            return true;
        }
    }
    return false;
}

Kind kindOfOpen(int flags)
{
    return (flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0 ? Kind::Change : Kind::Look;
}

} // namespace

// The names that the C library exports, without its declarations: those differ in what they promise not to throw.
#define REPLACE(result, name, parameters, arguments, call, path, kind, failure)                                        \
    extern "C" [[gnu::visibility("default")]] result faulty_##name parameters __asm__(#name);                          \
    result faulty_##name parameters                                                                                    \
    {                                                                                                                  \
        static const auto next = reinterpret_cast<decltype(&faulty_##name)>(dlsym(RTLD_NEXT, #name));                  \
        return fails(call, path, kind) ? failure : next arguments;                                                     \
    }

#define LOOK Kind::Look
#define CHANGE Kind::Change
#define HERE(path) pathAt(AT_FDCWD, path)

// clang-format off
// Two names for one call: the second is for files of more than 2 GB where numbers are small.
#define REPLACE_BOTH(result, name, parameters, arguments, call, path, kind, failure)                                   \
    REPLACE(result, name, parameters, arguments, call, path, kind, failure)                                            \
    REPLACE(result, name##64, parameters, arguments, call, path, kind, failure)

REPLACE_BOTH(int, stat, (const char *p, void *s), (p, s), "stat", HERE(p), LOOK, -1)
REPLACE_BOTH(int, lstat, (const char *p, void *s), (p, s), "stat", HERE(p), LOOK, -1)
REPLACE_BOTH(int, fstat, (int f, void *s), (f, s), "stat", pathOf(f), LOOK, -1)
REPLACE_BOTH(int, fstatat, (int d, const char *p, void *s, int o), (d, p, s, o), "stat", pathAt(d, p), LOOK, -1)
REPLACE(int, statx, (int d, const char *p, int o, unsigned m, void *s), (d, p, o, m, s), "stat", pathAt(d, p), LOOK, -1)
REPLACE_BOTH(int, statvfs, (const char *p, void *s), (p, s), "statvfs", HERE(p), LOOK, -1)
REPLACE_BOTH(int, fstatvfs, (int f, void *s), (f, s), "statvfs", pathOf(f), LOOK, -1)
REPLACE_BOTH(int, statfs, (const char *p, void *s), (p, s), "statvfs", HERE(p), LOOK, -1)
REPLACE_BOTH(int, fstatfs, (int f, void *s), (f, s), "statvfs", pathOf(f), LOOK, -1)
REPLACE_BOTH(int, open, (const char *p, int o, unsigned m), (p, o, m), "open", HERE(p), kindOfOpen(o), -1)
REPLACE_BOTH(int, openat, (int d, const char *p, int o, unsigned m), (d, p, o, m), "open", pathAt(d, p), kindOfOpen(o), -1)
REPLACE(DIR *, opendir, (const char *p), (p), "opendir", HERE(p), LOOK, nullptr)
REPLACE(DIR *, fdopendir, (int f), (f), "opendir", pathOf(f), LOOK, nullptr)
REPLACE_BOTH(void *, readdir, (DIR *d), (d), "readdir", pathOf(dirfd(d)), LOOK, nullptr)
REPLACE(char *, realpath, (const char *p, char *r), (p, r), "realpath", HERE(p), LOOK, nullptr)
REPLACE(char *, canonicalize_file_name, (const char *p), (p), "realpath", HERE(p), LOOK, nullptr)
REPLACE(ssize_t, readlink, (const char *p, char *b, size_t n), (p, b, n), "readlink", HERE(p), LOOK, -1)
REPLACE(ssize_t, readlinkat, (int d, const char *p, char *b, size_t n), (d, p, b, n), "readlink", pathAt(d, p), LOOK, -1)
REPLACE(int, access, (const char *p, int m), (p, m), "access", HERE(p), LOOK, -1)
REPLACE(int, faccessat, (int d, const char *p, int m, int o), (d, p, m, o), "access", pathAt(d, p), LOOK, -1)
REPLACE(ssize_t, read, (int f, void *b, size_t n), (f, b, n), "read", pathOf(f), LOOK, -1)
REPLACE_BOTH(ssize_t, pread, (int f, void *b, size_t n, long o), (f, b, n, o), "read", pathOf(f), LOOK, -1)
REPLACE(ssize_t, write, (int f, const void *b, size_t n), (f, b, n), "write", pathOf(f), CHANGE, -1)
REPLACE_BOTH(ssize_t, pwrite, (int f, const void *b, size_t n, long o), (f, b, n, o), "write", pathOf(f), CHANGE, -1)
REPLACE_BOTH(int, ftruncate, (int f, long n), (f, n), "write", pathOf(f), CHANGE, -1)
REPLACE(int, fsync, (int f), (f), "fsync", pathOf(f), CHANGE, -1)
REPLACE(int, fdatasync, (int f), (f), "fsync", pathOf(f), CHANGE, -1)
REPLACE(int, mkdir, (const char *p, unsigned m), (p, m), "mkdir", HERE(p), CHANGE, -1)
REPLACE(int, mkdirat, (int d, const char *p, unsigned m), (d, p, m), "mkdir", pathAt(d, p), CHANGE, -1)
REPLACE(int, rename, (const char *p, const char *t), (p, t), "rename", HERE(p), CHANGE, -1)
REPLACE(int, renameat, (int d, const char *p, int e, const char *t), (d, p, e, t), "rename", pathAt(d, p), CHANGE, -1)
REPLACE(int, renameat2, (int d, const char *p, int e, const char *t, unsigned o), (d, p, e, t, o), "rename", pathAt(d, p), CHANGE, -1)
REPLACE(int, unlink, (const char *p), (p), "unlink", HERE(p), CHANGE, -1)
REPLACE(int, unlinkat, (int d, const char *p, int o), (d, p, o), "unlink", pathAt(d, p), CHANGE, -1)
REPLACE(int, rmdir, (const char *p), (p), "unlink", HERE(p), CHANGE, -1)
REPLACE(int, remove, (const char *p), (p), "unlink", HERE(p), CHANGE, -1)
// As programs call them that are built to check sizes.
REPLACE(int, __open_2, (const char *p, int o), (p, o), "open", HERE(p), kindOfOpen(o), -1)
REPLACE(int, __open64_2, (const char *p, int o), (p, o), "open", HERE(p), kindOfOpen(o), -1)
REPLACE(int, __openat_2, (int d, const char *p, int o), (d, p, o), "open", pathAt(d, p), kindOfOpen(o), -1)
REPLACE(int, __openat64_2, (int d, const char *p, int o), (d, p, o), "open", pathAt(d, p), kindOfOpen(o), -1)
REPLACE(char *, __realpath_chk, (const char *p, char *r, size_t s), (p, r, s), "realpath", HERE(p), LOOK, nullptr)
REPLACE(ssize_t, __readlink_chk, (const char *p, char *b, size_t n, size_t s), (p, b, n, s), "readlink", HERE(p), LOOK, -1)
REPLACE(ssize_t, __read_chk, (int f, void *b, size_t n, size_t s), (f, b, n, s), "read", pathOf(f), LOOK, -1)
// clang-format on
