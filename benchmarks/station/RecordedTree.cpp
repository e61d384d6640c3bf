#include "RecordedTree.h"

#include "Program.h"
#include "RecordedSite.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr qint64 kilobyte = 1024;
constexpr qint64 terabyte = kilobyte * kilobyte * kilobyte * kilobyte;

std::string text(const char *format, int first, int second = 0)
{
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, first, second);
    return buffer.data();
}

std::string groupName(int group)
{
    return text("Group %02d", group + 1);
}

QDate dayOf(const RecordedTree::File &file)
{
    return RecordedTree::newestDay().addDays(-file.day);
}

/// About 40 MB, and different for different files.
qint64 bytesOf(const RecordedTree::File &file)
{
    return (40'000 + (file.group * 31 + file.camera * 17 + file.day * 7 + file.file * 3) % 1000) * kilobyte;
}

void makeFile(const std::string &path, qint64 bytes)
{
    const int file = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    const bool isMade = file >= 0 && ftruncate(file, bytes) == 0;
    require(isMade, path + " cannot be made: " + std::strerror(errno) + "; see --help");
    close(file);
}
} // namespace

RecordedTree::RecordedTree(const Layout &layout, const std::string &path)
    : m_layout(layout)
    , m_path(path)
    , m_sums(layout.groups)
{
    std::filesystem::create_directory(path);
    for (int number = 0; number < layout.all(); ++number) {
        File file{.file = number % layout.files};
        file.day = layout.days - 1 - number / layout.files % layout.days; // the newest comes last
        file.camera = number / (layout.files * layout.days) % layout.cameras;
        file.group = number / (layout.files * layout.days * layout.cameras);
        if (file.file == 0)
            std::filesystem::create_directories(std::filesystem::path(filePath(file)).parent_path());
        makeFile(filePath(file), bytesOf(file));
        count(file, 1, bytesOf(file));
    }
}

Volume RecordedTree::volume() const
{
    return {QString::fromStdString(m_path), QStringLiteral("Disk"), 100 * terabyte, 40 * terabyte, false, false};
}

QList<RecordingGroup> RecordedTree::groups() const
{
    QList<RecordingGroup> groups;
    for (int group = 0; group < m_layout.groups; ++group)
        groups.append(RecordedSite::group(QString::fromStdString(groupName(group)), {QString::fromStdString(m_path)}));
    return groups;
}

std::string RecordedTree::filePath(const File &file) const
{
    return m_path + '/' + groupName(file.group) + text("/Camera %03d/", file.camera + 1)
        + dayOf(file).toString(Qt::ISODate).toStdString()
        + text("/%02d-%02d.rec", file.file / 6, file.file % 6 * 10); // one for ten minutes
}

void RecordedTree::count(const File &file, qint64 files, qint64 bytes)
{
    DaySum &sum = m_sums[file.group][dayOf(file)];
    sum.files += files;
    sum.bytes += bytes;
    m_bytes += bytes;
}

void RecordedTree::grow(const File &file, qint64 bytes)
{
    const std::string path = filePath(file);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) + static_cast<std::uintmax_t>(bytes));
    count(file, 0, bytes);
}

void RecordedTree::add(int group)
{
    const File file{group, 0, 0, m_layout.files};
    const std::string elsewhere = m_path + ".new";
    makeFile(elsewhere, bytesOf(file));
    std::filesystem::rename(elsewhere, filePath(file));
    count(file, 1, bytesOf(file));
}

void RecordedTree::remove(int group)
{
    const File file{group, 0, 0, m_layout.files};
    std::filesystem::remove(filePath(file));
    count(file, -1, -bytesOf(file));
}
