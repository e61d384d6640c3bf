#pragma once

#include "FolderReader.h"
#include "RecordingIndex.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <optional>
#include <utility>

class FolderWatch;

/// A recording place as the index reads it.
struct IndexedPlace
{
    qint64 number = 0;
    QString path;
    QString root; ///< the path, or a folder directly in it
    bool isPresent = false; ///< else its files are not there to be read, and its index stays as it is
    quint64 device = 0; ///< of the file system that the path is on

    friend bool operator==(const IndexedPlace &, const IndexedPlace &) = default;
};

/// A folder, or a file, to be read again.
struct ReadTask
{
    enum class Kind { Place, Camera, Day, File };
    Kind kind = Kind::Place;
    qint64 place = 0;
    bool isDeep = true; ///< everything below, too; else only what is new there
    QString camera = {};
    QString day = {};
    QString file = {};

    /// What @p path, a place's root or something below it, is in @p place.
    static ReadTask of(const QString &path, const IndexedPlace &place);
};

/// Reads the folders of recording places, one at a time, and brings the index in line with them.
///
/// Watches what it reads: the place's path, the group's, the cameras' and the newest days' folders (as many as the
/// one-day usage is taken from, and today), the oldest day's, and in the newest day the file written last.
class PlaceReader
{
public:
    /// Both must outlive this object.
    PlaceReader(RecordingIndex &index, FolderWatch &watch);

    /// Does @p task and gives what is to be read next. Changes of files wait for write(). Throws DatabaseError.
    QList<ReadTask> read(const ReadTask &task, const IndexedPlace &place);
    /// Writes what was read. Throws DatabaseError.
    void write();

    /// Whether all of a place could be read since it was read deeply.
    bool isComplete(qint64 place) const { return !m_incomplete.contains(place); }
    /// The folders that could not be read, one for each place that is not complete and still on its file system.
    QStringList unreadable() const;
    qint64 filesRead() const { return m_filesRead; } ///< since the start
    /// Whether a place was found not to be on its file system since the last call; nothing is changed for it then.
    bool takeHasLeft() { return std::exchange(m_hasLeft, false); }

private:
    QList<ReadTask> readPlace(const ReadTask &task, const IndexedPlace &place);
    QList<ReadTask> readCamera(const ReadTask &task, const IndexedPlace &place);
    void readDay(const ReadTask &task, const IndexedPlace &place);
    QList<ReadTask> readFile(const ReadTask &task, const IndexedPlace &place);
    std::optional<SubFolders> readWatched(const QString &path, const IndexedPlace &place);
    void watchDays(const IndexedPlace &place, const QString &camera, QList<SubFolder> days);
    bool isUsable(ReadResult result, const IndexedPlace &place, const QString &path);

    RecordingIndex &m_index;
    FolderWatch &m_watch;
    QList<DayChange> m_changes; // read, not written yet
    QHash<QString, QString> m_newestDay; // of each camera's folder
    QHash<qint64, QString> m_incomplete; // by place, a folder that could not be read; empty where the disk left
    qint64 m_filesRead = 0;
    bool m_hasLeft = false;
};
