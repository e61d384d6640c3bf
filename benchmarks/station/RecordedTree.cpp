#include "RecordedTree.h"

#include "Program.h"
#include "RecordedSite.h"

namespace {
constexpr qint64 kilobyte = 1024;

QString groupName(int group)
{
    return QString::asprintf("Group %02d", group + 1);
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
} // namespace

RecordedTree::RecordedTree(const Layout &layout, const QString &path)
    : m_layout(layout)
    , m_path(path)
    , m_sums(layout.groups)
{
    for (int number = 0; number < layout.all(); ++number) {
        File file{.file = number % layout.files};
        file.day = layout.days - 1 - number / layout.files % layout.days; // the newest comes last
        file.camera = number / (layout.files * layout.days) % layout.cameras;
        file.group = number / (layout.files * layout.days * layout.cameras);
        const QFileInfo info(filePath(file));
        RecordedSite::write(info.path(), info.fileName(), bytesOf(file));
        count(file, 1, bytesOf(file));
    }
}

QList<RecordingGroup> RecordedTree::groups() const
{
    QList<RecordingGroup> groups;
    for (int group = 0; group < m_layout.groups; ++group)
        groups.append(RecordedSite::group(groupName(group), {m_path}));
    return groups;
}

QString RecordedTree::filePath(const File &file) const
{
    const QString camera = QString::asprintf("Camera %03d", file.camera + 1);
    return RecordedSite::dayFolder(m_path, groupName(file.group), camera, dayOf(file))
        + QString::asprintf("/%02d-%02d.rec", file.file / 6, file.file % 6 * 10); // one for ten minutes
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
    const QString path = filePath(file);
    require(QFile::resize(path, QFileInfo(path).size() + bytes), "a recording cannot grow");
    count(file, 0, bytes);
}

void RecordedTree::add(int group)
{
    const File file{group, 0, 0, m_layout.files};
    const QString elsewhere = QFileInfo(m_path).path();
    RecordedSite::write(elsewhere, QStringLiteral("new"), bytesOf(file));
    require(QFile::rename(elsewhere + QStringLiteral("/new"), filePath(file)),
            "a recording cannot be moved into its folder");
    count(file, 1, bytesOf(file));
}

void RecordedTree::remove(int group)
{
    const File file{group, 0, 0, m_layout.files};
    require(QFile::remove(filePath(file)), "a recording cannot be removed");
    count(file, -1, -bytesOf(file));
}
