#pragma once

#include "UsageFigures.h"

#include <QDateTime>
#include <QHash>
#include <QMetaType>
#include <QStringList>

class Database;

/// A folder of one day's recordings of one camera.
struct DayFolder
{
    qint64 place = 0; ///< number of the recording place, see RecordingPlaces.h
    QString camera; ///< the camera's folder
    QString day; ///< "yyyy-mm-dd"
};

/// What is different in a day's folder from what the index has, and what all its files come to.
struct DayChange
{
    DayFolder folder;
    QHash<QString, qint64> written; ///< bytes of new and changed files, by name
    QStringList removed;
    DaySum sum;
};

/// What is different in @p folder, where the index has @p before and the folder @p now.
DayChange difference(const DayFolder &folder, const QHash<QString, qint64> &before, const QHash<QString, qint64> &now);

/// Whether a folder of that name has the recordings of a day: "yyyy-mm-dd".
bool isDayFolder(const QString &name);

struct PlaceSum
{
    bool isRead = false; ///< read through at least once; before, its days are not all known
    DaySums days;
};

/// By the number of the recording place.
using PlaceSums = QHash<qint64, PlaceSum>;
Q_DECLARE_METATYPE(PlaceSums)

/// Files that @p sums are made of.
qint64 fileCount(const PlaceSums &sums);

/// The index of recorded files in the station's database: name and size of each file under its place, camera and day.
/// Throws DatabaseError.
class RecordingIndex
{
public:
    /// @param database must outlive this object
    explicit RecordingIndex(Database &database);

    QStringList cameras(qint64 place) const;
    QStringList recordedCameras(qint64 place) const; ///< those with at least one file, by name
    QStringList days(qint64 place, const QString &camera) const;
    /// Bytes of each file by its name; none for a day that the index does not have.
    std::optional<QHash<QString, qint64>> files(const DayFolder &folder) const;
    PlaceSums sums() const;
    /// Brings @p sums up to date for the place @p number, which goes where the index does not have it any more.
    void updateSum(PlaceSums &sums, qint64 number) const;

    /// Together or not at all. Harmless when it is done twice.
    void apply(const QList<DayChange> &changes);
    /// Takes up that a file that the index has now has @p bytes; false where it does not have it, and nothing is done.
    bool resize(const DayFolder &folder, const QString &name, qint64 bytes);
    void removeCameras(qint64 place, const QStringList &cameras);
    void removeDays(qint64 place, const QString &camera, const QStringList &days);
    /// Every folder of the place was read. A place of no group that holds nothing is forgotten.
    /// @param readAt when, of a place on a NAS server; null: nobody asks
    void markRead(qint64 place, const QDateTime &readAt = {});

private:
    void readSums(PlaceSums &sums, const QString &condition, const QVariantList &values) const;

    Database &m_database;
};
