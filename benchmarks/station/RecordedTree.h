#pragma once

#include "groups/RecordingGroup.h"
#include "usage/UsageFigures.h"

/// How many of each there are; the files of a tree are their product.
struct Layout
{
    int groups = 10;
    int cameras = 1; ///< of each group
    int days = 20; ///< of each camera
    int files = 50; ///< of each day

    int all() const { return groups * cameras * days * files; }
};

/// Folders of recordings, laid out as a station has them, with sparse files. Everything may throw std::runtime_error
/// with a text for people.
class RecordedTree
{
public:
    struct File
    {
        int group = 0;
        int camera = 0;
        int day = 0; ///< 0: the newest
        int file = 0;
    };

    /// Makes the files in the new folder @p path.
    RecordedTree(const Layout &layout, const QString &path);

    const Layout &layout() const { return m_layout; }
    const QString &path() const { return m_path; } ///< of all groups
    QList<RecordingGroup> groups() const;
    static QDate newestDay() { return {2026, 3, 19}; }

    /// Of each group, as the files are now.
    const QList<DaySums> &sums() const { return m_sums; }
    qint64 bytes() const { return m_bytes; } ///< of all files, as they are now

    /// Gives that file @p bytes more, or less.
    void grow(const File &file, qint64 bytes);
    /// A file behind all others of the newest day of the group's first camera comes, complete, and goes.
    void add(int group);
    void remove(int group);

private:
    QString filePath(const File &file) const;
    void count(const File &file, qint64 files, qint64 bytes);

    Layout m_layout;
    QString m_path;
    QList<DaySums> m_sums;
    qint64 m_bytes = 0;
};
