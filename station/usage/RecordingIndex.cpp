#include "RecordingIndex.h"

#include "store/Database.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {
QStringList firstColumn(Rows rows)
{
    QStringList values;
    while (rows.next())
        values.append(rows.value(0).toString());
    return values;
}

/// All files of a day in one value: a row at a time costs about twice as much.
QString json(const QJsonDocument &document)
{
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

QJsonObject objectOf(const QHash<QString, qint64> &files)
{
    QVariantMap sorted; // an object of its own moves what it has with every insertion
    for (auto file = files.cbegin(); file != files.cend(); ++file)
        sorted.insert(file.key(), file.value());
    return QJsonObject::fromVariantMap(sorted);
}
} // namespace

qint64 fileCount(const PlaceSums &sums)
{
    qint64 files = 0;
    for (const PlaceSum &place : sums) {
        for (const DaySum &day : place.days)
            files += day.files;
    }
    return files;
}

DayChange difference(const DayFolder &folder, const QHash<QString, qint64> &before, const QHash<QString, qint64> &now)
{
    DayChange change{folder, {}, {}, {}};
    for (auto file = now.cbegin(); file != now.cend(); ++file) {
        ++change.sum.files;
        change.sum.bytes += file.value();
        const auto known = before.constFind(file.key());
        if (known == before.cend() || *known != file.value())
            change.written.insert(file.key(), file.value());
    }
    for (auto file = before.cbegin(); file != before.cend(); ++file) {
        if (!now.contains(file.key()))
            change.removed.append(file.key());
    }
    return change;
}

bool isDayFolder(const QString &name)
{
    constexpr qsizetype length = 10; // yyyy-mm-dd
    return name.size() == length && QDate::fromString(name, Qt::ISODate).isValid();
}

RecordingIndex::RecordingIndex(Database &database)
    : m_database(database)
{
}

QStringList RecordingIndex::cameras(qint64 place) const
{
    return firstColumn(
        m_database.rows(QStringLiteral("SELECT DISTINCT camera FROM recorded_day WHERE place = ?"), {place}));
}

/// Goes from one camera to the next: a place may have many days of each.
QStringList RecordingIndex::recordedCameras(qint64 place) const
{
    return firstColumn(m_database.rows(
        QStringLiteral("WITH RECURSIVE found(name) AS (SELECT min(camera) FROM recorded_day WHERE place = ? UNION ALL"
                       " SELECT (SELECT min(camera) FROM recorded_day WHERE place = ? AND camera > name)"
                       " FROM found WHERE name IS NOT NULL)"
                       " SELECT name FROM found WHERE name IS NOT NULL AND EXISTS"
                       " (SELECT 1 FROM recorded_day WHERE place = ? AND camera = name AND files > 0)"),
        {place, place, place}));
}

QStringList RecordingIndex::days(qint64 place, const QString &camera) const
{
    return firstColumn(m_database.rows(QStringLiteral("SELECT day FROM recorded_day WHERE place = ? AND camera = ?"),
                                       {place, camera}));
}

std::optional<QHash<QString, qint64>> RecordingIndex::files(const DayFolder &folder) const
{
    Rows rows = m_database.rows(
        QStringLiteral("SELECT (SELECT json_group_object(name, bytes) FROM recorded_file WHERE day_number = number)"
                       " FROM recorded_day WHERE place = ? AND camera = ? AND day = ?"),
        {folder.place, folder.camera, folder.day});
    if (!rows.next())
        return {};
    const QJsonObject object = QJsonDocument::fromJson(rows.value(0).toString().toUtf8()).object();
    QHash<QString, qint64> files;
    files.reserve(object.size());
    for (auto file = object.begin(); file != object.end(); ++file)
        files.insert(file.key(), file.value().toInteger());
    return files;
}

PlaceSums RecordingIndex::sums() const
{
    PlaceSums sums;
    readSums(sums, QStringLiteral("TRUE"), {});
    return sums;
}

void RecordingIndex::updateSum(PlaceSums &sums, qint64 number) const
{
    sums.remove(number);
    readSums(sums, QStringLiteral("place = ?"), {number});
}

void RecordingIndex::readSums(PlaceSums &sums, const QString &condition, const QVariantList &values) const
{
    Rows places = m_database.rows(
        QStringLiteral("SELECT number AS place, is_read FROM recording_place WHERE %1").arg(condition), values);
    while (places.next())
        sums[places.value(0).toLongLong()].isRead = places.value(1).toBool();
    // sum() fails where a sum needs more than 64 bits.
    Rows days = m_database.rows(
        QStringLiteral("SELECT place, day, sum(files), CAST(min(total(bytes), 9.2e18) AS INTEGER) FROM recorded_day"
                       " WHERE files > 0 AND %1 GROUP BY place, day")
            .arg(condition),
        values);
    while (days.next()) {
        const QDate day = QDate::fromString(days.value(1).toString(), Qt::ISODate);
        sums[days.value(0).toLongLong()].days.insert(day, {days.value(2).toLongLong(), days.value(3).toLongLong()});
    }
}

void RecordingIndex::apply(const QList<DayChange> &changes)
{
    Transaction transaction(m_database);
    Statement setDay = m_database.prepared(
        QStringLiteral("INSERT INTO recorded_day (place, camera, day, files, bytes) VALUES (?, ?, ?, ?, ?)"
                       " ON CONFLICT (place, camera, day) DO UPDATE SET files = excluded.files, bytes = excluded.bytes"
                       " RETURNING number"));
    Statement write =
        m_database.prepared(QStringLiteral("INSERT OR REPLACE INTO recorded_file (day_number, name, bytes)"
                                           " SELECT ?, key, value FROM json_each(?)"));
    Statement remove = m_database.prepared(
        QStringLiteral("DELETE FROM recorded_file WHERE day_number = ? AND name IN (SELECT value FROM json_each(?))"));
    for (const DayChange &change : changes) {
        const DayFolder &folder = change.folder;
        const QVariant number =
            setDay.value({folder.place, folder.camera, folder.day, change.sum.files, change.sum.bytes});
        if (!change.written.isEmpty())
            write.run({number, json(QJsonDocument(objectOf(change.written)))});
        if (!change.removed.isEmpty())
            remove.run({number, json(QJsonDocument(QJsonArray::fromStringList(change.removed)))});
    }
    transaction.commit();
}

bool RecordingIndex::resize(const DayFolder &folder, const QString &name, qint64 bytes)
{
    Transaction transaction(m_database);
    Rows rows = m_database.rows(QStringLiteral("SELECT number, recorded_file.bytes FROM recorded_day"
                                               " JOIN recorded_file ON day_number = number"
                                               " WHERE place = ? AND camera = ? AND day = ? AND name = ?"),
                                {folder.place, folder.camera, folder.day, name});
    if (!rows.next())
        return false;
    const qint64 number = rows.value(0).toLongLong();
    const qint64 grownBy = bytes - rows.value(1).toLongLong();
    m_database.run(QStringLiteral("UPDATE recorded_file SET bytes = ? WHERE day_number = ? AND name = ?"),
                   {bytes, number, name});
    m_database.run(
        QStringLiteral("UPDATE recorded_day SET bytes = CAST(min(bytes + ?, 9.2e18) AS INTEGER) WHERE number = ?"),
        {grownBy, number});
    transaction.commit();
    return true;
}

void RecordingIndex::removeCameras(qint64 place, const QStringList &cameras)
{
    Transaction transaction(m_database);
    for (const QString &camera : cameras)
        m_database.run(QStringLiteral("DELETE FROM recorded_day WHERE place = ? AND camera = ?"), {place, camera});
    transaction.commit();
}

void RecordingIndex::removeDays(qint64 place, const QString &camera, const QStringList &days)
{
    Transaction transaction(m_database);
    for (const QString &day : days) {
        m_database.run(QStringLiteral("DELETE FROM recorded_day WHERE place = ? AND camera = ? AND day = ?"),
                       {place, camera, day});
    }
    transaction.commit();
}

void RecordingIndex::markRead(qint64 place, const QDateTime &readAt)
{
    Transaction transaction(m_database);
    m_database.run(QStringLiteral("UPDATE recording_place SET is_read = 1 WHERE number = ?"), {place});
    if (readAt.isValid()) {
        m_database.run(QStringLiteral("UPDATE recording_place SET read_at = ? WHERE number = ?"),
                       {readAt.toSecsSinceEpoch(), place});
    }
    m_database.run(QStringLiteral("DELETE FROM recording_place WHERE number = ? AND group_id = '' AND NOT EXISTS"
                                  " (SELECT 1 FROM recorded_day WHERE place = recording_place.number AND files > 0)"),
                   {place});
    transaction.commit();
}
