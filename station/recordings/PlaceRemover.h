#pragma once

#include "PlaceFolder.h"
#include "usage/RecordingIndex.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include <atomic>
#include <functional>

/// How far a deletion has come; read on one thread while another one deletes.
struct DeletionProgress
{
    std::atomic<bool> isCancelled = false; ///< it shall stop before the next file
    std::atomic<qint64> files = 0; ///< deleted
    std::atomic<qint64> bytes = 0; ///< that they had
};

/// Something that a deletion left in its place.
struct LeftEntry
{
    QString path;
    QString reason; ///< a word of the protocol
};

/// What a deletion came to.
struct DeletionResult
{
    QString returnCode;
    qint64 leftFiles = -1; ///< recordings that could not be deleted; -1: it stopped before the end
    qint64 leftBytes = -1;
    qint64 leftEntries = -1; ///< these, and all else that is there
    QList<LeftEntry> left = {}; ///< the first 100 of them
};

/// Deletes the recordings of one place: the files that the index has, and the folders that are empty then. Whatever
/// else is there stays. Works in folders that are held open: it follows no symbolic link, and never leaves the place,
/// nor its file system.
class PlaceRemover
{
public:
    using Days = QMap<QString, QStringList>; ///< by camera

    /// What is asked while it works.
    struct Questions
    {
        /// Files of a day as the index has them; asked right before they are deleted. Throws what stops the deletion.
        std::function<QHash<QString, qint64>(const QString &camera, const QString &day)> files;
        /// Asked before each file: false ends the deletion.
        std::function<bool()> goesOn;
    };

    /// @param root path of the place, for what is told
    PlaceRemover(QString root, const PlaceFolder &place, Questions questions, DeletionProgress &progress);

    /// Whether it came to the end of @p days: all that the index has of the place.
    bool remove(const Days &days);
    /// What is left, without its return code.
    const DeletionResult &result() const { return m_result; }

private:
    bool removeCamera(const QString &camera, const QStringList &days);
    bool removeDay(const PlaceFolder &camera, const QString &cameraName, const QString &day);
    void leaveFiles(const QHash<QString, qint64> &files);
    void leave(const QString &path, const QString &reason);
    void leaveRest(const PlaceFolder &folder, const QString &path, const QSet<QString> &known);

    QString m_root;
    const PlaceFolder &m_place;
    Questions m_questions;
    DeletionProgress &m_progress;
    DeletionResult m_result;
};

/// Why the system refused something in a place, as a word of the protocol.
QString leftReason(int error);
