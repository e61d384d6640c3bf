#include "RecordedTree.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <future>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {
constexpr qint64 kilobyte = 1024;
constexpr int makers = 2; // threads

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::string text(const char *format, int first, int second = 0)
{
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, first, second);
    return buffer.data();
}

std::string cameraName(int camera)
{
    return text("Camera %03d", camera + 1);
}

std::string dayName(int day)
{
    return RecordedTree::newestDay().addDays(-day).toString(Qt::ISODate).toStdString();
}

std::string fileName(int file)
{
    return text("%02d-%02d.rec", file / 6, file % 6 * 10); // one for ten minutes
}

/// About 40 MB, and different for different files.
qint64 bytesOf(const RecordedTree::File &file)
{
    return (40'000 + (file.group * 31 + file.camera * 17 + file.day * 7 + file.file * 3) % 1000) * kilobyte;
}

class Descriptor
{
public:
    Descriptor(int number, const std::string &what)
        : m_number(number)
    {
        if (number < 0)
            fail(what);
    }
    ~Descriptor() { close(m_number); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    operator int() const { return m_number; }

private:
    int m_number;
};

void makeFolder(const std::string &path)
{
    if (mkdir(path.c_str(), 0755) != 0)
        fail(path + " cannot be made");
}

void makeFile(int folder, const std::string &name, qint64 bytes)
{
    const Descriptor file(openat(folder, name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644), name);
    if (ftruncate(file, bytes) != 0)
        fail(name);
}

} // namespace

std::string missingRoom(const std::string &path, const Layout &layout)
{
    constexpr qint64 bytesOfAFile = 300; // inodes that are not laid out beforehand
    constexpr qint64 bytesOfAFolder = 8 * kilobyte;
    struct statvfs space = {};
    if (statvfs(path.c_str(), &space) != 0)
        return path + ": " + std::strerror(errno);
    const qint64 folders = layout.all() / layout.files + layout.groups * (layout.cameras + 1);
    const qint64 inodes = layout.all() + folders;
    const qint64 bytes = layout.all() * bytesOfAFile + folders * bytesOfAFolder;
    const auto freeInodes = static_cast<qint64>(space.f_favail);
    const auto freeBytes = static_cast<qint64>(space.f_bavail * space.f_frsize);
    if (space.f_files != 0 && freeInodes < inodes) // some file systems have no limit and tell 0
        return path + " takes " + std::to_string(freeInodes) + " more files, " + std::to_string(inodes) + " are needed";
    if (freeBytes < bytes) {
        return path + " has " + std::to_string(freeBytes / kilobyte) + " KB free, " + std::to_string(bytes / kilobyte)
            + " KB are needed";
    }
    return {};
}

RecordedTree::RecordedTree(const Layout &layout, const std::string &path)
    : m_layout(layout)
    , m_path(path)
    , m_sums(layout.groups)
{
    makeFolder(path);
    if (const std::string missing = missingRoom(path, layout); !missing.empty())
        throw std::runtime_error(missing + "; see --help");
    for (int group = 0; group < layout.groups; ++group) {
        makeFolder(m_path + '/' + groupName(group).toStdString());
        for (int camera = 0; camera < layout.cameras; ++camera) {
            for (int day = 0; day < layout.days; ++day) {
                for (int file = 0; file < layout.files; ++file)
                    count({group, camera, day, file}, 1, bytesOf({group, camera, day, file}));
            }
        }
    }
    std::vector<std::future<void>> parts;
    for (int part = 0; part < makers; ++part) {
        parts.push_back(std::async(std::launch::async, [this, part] {
            for (int number = part; number < m_layout.groups * m_layout.cameras; number += makers)
                makeCamera(number % m_layout.groups, number / m_layout.groups);
        }));
    }
    for (std::future<void> &part : parts)
        part.get();
}

void RecordedTree::makeCamera(int group, int camera) const
{
    const std::string path = cameraPath(group, camera);
    makeFolder(path);
    for (int day = m_layout.days - 1; day >= 0; --day) {
        const std::string folder = path + '/' + dayName(day);
        makeFolder(folder);
        const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), folder);
        for (int file = 0; file < m_layout.files; ++file)
            makeFile(descriptor, fileName(file), bytesOf({group, camera, day, file}));
    }
}

Volume RecordedTree::volume() const
{
    constexpr qint64 terabyte = kilobyte * kilobyte * kilobyte * kilobyte;
    return {path(), QStringLiteral("Disk"), 100 * terabyte, 40 * terabyte, false, false};
}

QDate RecordedTree::newestDay()
{
    return {2026, 3, 19};
}

QString RecordedTree::groupName(int group)
{
    return QString::fromStdString(text("Group %02d", group + 1));
}

QList<RecordingGroup> RecordedTree::groups() const
{
    QList<RecordingGroup> groups;
    for (int number = 0; number < m_layout.groups; ++number) {
        RecordingGroup group;
        group.id = groupName(number);
        group.name = groupName(number);
        group.folder = groupName(number);
        group.paths.append({path(), PathKind::Local, 0, false});
        groups.append(group);
    }
    return groups;
}

qint64 RecordedTree::bytes() const
{
    qint64 bytes = 0;
    for (const DaySums &days : m_sums) {
        for (const DaySum &day : days)
            bytes += day.bytes;
    }
    return bytes;
}

std::string RecordedTree::cameraPath(int group, int camera) const
{
    return m_path + '/' + groupName(group).toStdString() + '/' + cameraName(camera);
}

std::string RecordedTree::filePath(const File &file) const
{
    return cameraPath(file.group, file.camera) + '/' + dayName(file.day) + '/' + fileName(file.file);
}

void RecordedTree::count(const File &file, qint64 files, qint64 bytes)
{
    DaySum &sum = m_sums[file.group][newestDay().addDays(-file.day)];
    sum.files += files;
    sum.bytes += bytes;
}

void RecordedTree::grow(const File &file, qint64 bytes)
{
    const std::string path = filePath(file);
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || truncate(path.c_str(), status.st_size + bytes) != 0)
        fail(path);
    count(file, 0, bytes);
}

void RecordedTree::add(int group)
{
    const File file{group, 0, 0, m_layout.files};
    const std::string elsewhere = m_path + ".new";
    makeFile(AT_FDCWD, elsewhere, bytesOf(file));
    if (rename(elsewhere.c_str(), filePath(file).c_str()) != 0)
        fail(elsewhere);
    count(file, 1, bytesOf(file));
}

void RecordedTree::remove(int group)
{
    const File file{group, 0, 0, m_layout.files};
    if (unlink(filePath(file).c_str()) != 0)
        fail(filePath(file));
    count(file, -1, -bytesOf(file));
}
