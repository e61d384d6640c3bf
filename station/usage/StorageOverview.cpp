#include "StorageOverview.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "smb/SmbPath.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace {
using Storage = UsagePlace::Storage;

constexpr qint64 unknown = -1;

/// A volume, and the places of recordings on it.
struct Block
{
    Volume volume;
    bool isNas = false;
    QString state;
    QDateTime since;
    QList<UsagePlace> places;

    bool isThere() const { return state == StationVolumeState::there || state == StationVolumeState::readOnly; }
    bool isMissing(const UsagePlace &place) const
    {
        return !place.days || (isThere() && place.storage == Storage::Gone); // moved or deleted: nobody knows
    }
};

/// The same for every spelling: names on NAS servers are the same in capitals and small letters.
QString shareKey(const QString &path)
{
    const std::optional<SmbPath> place = SmbPath::parse(path);
    return place ? place->shareKey() : path.toCaseFolded();
}

/// The first trouble of one of @p kinds about one of @p subjects.
std::optional<StationTrouble> troubleOf(const QList<StationTrouble> &troubles, const QStringList &kinds,
                                        const QStringList &subjects)
{
    for (const StationTrouble &trouble : troubles) {
        if (kinds.contains(trouble.kind) && subjects.contains(trouble.subject, Qt::CaseInsensitive))
            return trouble;
    }
    return {};
}

qint64 bytesOf(const UsagePlace &place)
{
    qint64 bytes = 0;
    const DaySums days = place.days.value_or(DaySums());
    for (const DaySum &day : days)
        bytes = saturatedSum(bytes, day.bytes);
    return bytes;
}

/// -1 where one of @p places is not known.
qint64 bytesOf(const Block &block, const QList<UsagePlace> &places)
{
    qint64 bytes = 0;
    for (const UsagePlace &place : places) {
        if (block.isMissing(place))
            return unknown;
        bytes = saturatedSum(bytes, bytesOf(place));
    }
    return bytes;
}

/// The blocks of a station's volumes, each once.
class Blocks
{
public:
    Blocks(const QList<Volume> &mounted, const QList<StationTrouble> &troubles)
        : m_troubles(troubles)
    {
        for (const Volume &volume : mounted) {
            Block &block = add(volume.path, volume);
            block.state = volume.isReadOnly ? StationVolumeState::readOnly : StationVolumeState::there;
            if (volume.bytesTotal <= 0) // the root is listed even when it says nothing
                setSilent(block, {volume.path}, StationVolumeState::unknown);
        }
        for (const StationTrouble &trouble : troubles) {
            if (trouble.kind == StationAlarmKind::VolumeNotAnswering && !m_indexes.contains(trouble.subject)) {
                Block &block = add(trouble.subject, {trouble.subject, {}, 0, 0, false, false});
                setSilent(block, {trouble.subject}, StationVolumeState::notAnswering);
            }
        }
    }

    /// What belongs to no group keeps no volume in the list that is not there.
    void take(const UsagePlace &place)
    {
        const QString path = place.volume.path.isEmpty() ? place.path : place.volume.path;
        const QString key = place.isNas ? shareKey(place.path) : path;
        if (!m_indexes.contains(key)) {
            if (place.groupId.isEmpty())
                return;
            Volume volume = place.volume;
            volume.path = place.isNas ? place.volume.name : path;
            Block &block = add(key, volume);
            block.isNas = place.isNas;
            if (!place.isNas)
                setLost(block, place);
        }
        Block &block = m_blocks[m_indexes.value(key)];
        if (place.isNas)
            updateShare(block, place);
        block.places.append(place);
    }

    const QList<Block> &list() const { return m_blocks; }

private:
    Block &add(const QString &key, const Volume &volume)
    {
        m_indexes.insert(key, m_blocks.size());
        m_blocks.append({volume, false, StationVolumeState::unknown, {}, {}});
        return m_blocks.last();
    }

    /// @param otherwise its state where nobody says that it is silent
    void setSilent(Block &block, const QStringList &subjects, const QString &otherwise)
    {
        const std::optional<StationTrouble> trouble = troubleOf(
            m_troubles, {StationAlarmKind::VolumeNotAnswering, StationAlarmKind::FolderNotAnswering}, subjects);
        block.state = trouble ? StationVolumeState::notAnswering : otherwise;
        block.since = trouble ? trouble->since : QDateTime();
    }

    void setLost(Block &block, const UsagePlace &place)
    {
        if (place.storage == Storage::Unknown)
            return setSilent(block, {block.volume.path, place.path}, StationVolumeState::unknown);
        const std::optional<StationTrouble> trouble =
            troubleOf(m_troubles, {StationAlarmKind::VolumeGone}, {block.volume.path, place.path});
        block.state = StationVolumeState::gone;
        block.since = trouble ? trouble->since : QDateTime();
    }

    /// A share is there where one of its paths is; else as the worst of its troubles says.
    void updateShare(Block &block, const UsagePlace &place)
    {
        if (block.state == StationVolumeState::there)
            return;
        const QStringList subjects{place.volume.name, place.path, QStringLiteral("nas.key")};
        if (place.storage == Storage::Present) {
            const QString path = block.volume.path;
            block.volume = place.volume;
            block.volume.path = path;
            block.state = StationVolumeState::there;
            block.since = {};
        } else if (const auto silent = troubleOf(m_troubles, {StationAlarmKind::ShareNotAnswering}, subjects)) {
            block.state = StationVolumeState::notAnswering;
            block.since = silent->since;
        } else if (place.storage == Storage::Gone) {
            const std::optional<StationTrouble> trouble = troubleOf(
                m_troubles,
                {StationAlarmKind::ShareRefused, StationAlarmKind::ShareMissing, StationAlarmKind::NasKeyUnusable},
                subjects);
            block.state = StationVolumeState::gone;
            block.since = trouble ? trouble->since : QDateTime();
        } else if (const auto asked = troubleOf(m_troubles, {StationAlarmKind::SharePending}, subjects)) {
            block.since = asked->since;
        }
    }

    const QList<StationTrouble> &m_troubles;
    QList<Block> m_blocks;
    QHash<QString, qsizetype> m_indexes;
};

/// Bytes that a group records in a day, by group and path.
using DayUsages = QHash<std::pair<QString, QString>, qint64>;

DayUsages dayUsagesOf(const QList<UsagePlace> &places, const QDate &day)
{
    DayUsages usages;
    const QVariantList entries = usageEntries(places, day);
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        usages.insert(
            {entry.value(FieldKey::recordingGroupID).toString(), entry.value(FieldKey::recordingPath).toString()},
            entry.value(FieldKey::volumeOneDayUsage).toLongLong());
    }
    return usages;
}

qint64 dayCount(const QList<UsagePlace> &places, const QDate &today)
{
    QSet<QDate> days;
    for (const UsagePlace &place : places) {
        const QList<QDate> own = place.days.value_or(DaySums()).keys();
        for (const QDate &day : own) {
            if (!isOfTheFuture(day, today))
                days.insert(day);
        }
    }
    return days.size();
}

/// Nothing follows the changes of a volume that is not there.
bool isCounted(const Block &block, const QList<UsagePlace> &places)
{
    return block.isThere()
        && std::all_of(places.cbegin(), places.cend(), [](const UsagePlace &place) { return place.isCounted; });
}

/// @param places of one group on the volume of @p block, at least one
QVariantMap groupMap(const Block &block, const QList<UsagePlace> &places, const DayUsages &usages, const QDate &today)
{
    QStringList paths;
    qint64 reserved = 0;
    qint64 perDay = 0;
    for (const UsagePlace &place : places) {
        paths.append(place.path);
        reserved = saturatedSum(reserved, place.reservedMegabytes);
        const qint64 usage = usages.value({place.groupId, place.path}, unknown);
        perDay = usage < 0 || perDay < 0 ? unknown : saturatedSum(perDay, usage);
    }
    const qint64 bytes = bytesOf(block, places);
    return {
        {FieldKey::recordingGroupID, places.constFirst().groupId},
        {FieldKey::recordingGroupName, places.constFirst().groupName},
        {StationKey::paths, paths},
        {StationKey::recordedBytes, bytes},
        {StationKey::recordedDays, bytes < 0 || !today.isValid() ? unknown : dayCount(places, today)},
        {StationKey::bytesPerDay, perDay},
        {FieldKey::reserveSpace, reserved},
        {StationKey::counted, isCounted(block, places)},
    };
}

/// The latest time at which all of @p places were counted; null where one was not.
QDateTime countedAt(const QList<UsagePlace> &places)
{
    QDateTime earliest;
    for (const UsagePlace &place : places) {
        if (place.countedAt.isNull())
            return {};
        if (earliest.isNull() || place.countedAt < earliest)
            earliest = place.countedAt;
    }
    return earliest;
}

/// Adds what is not recordings to @p map, so that all parts come to the size.
/// @param recordings the bytes of those on the volume, in parts; -1: not known
void insertRest(QVariantMap &map, const Volume &volume, const QList<qint64> &recordings)
{
    const bool isSized = volume.bytesTotal > 0;
    const qint64 reserved =
        isSized && volume.bytesFree >= 0 ? qMax<qint64>(0, volume.bytesFree - volume.bytesAvailable) : unknown;
    map.insert(StationKey::size, isSized ? volume.bytesTotal : unknown);
    map.insert(StationKey::free, isSized ? volume.bytesAvailable : unknown);
    map.insert(StationKey::reservedForRoot, reserved);
    const bool isAllKnown = !recordings.contains(unknown);
    qint64 known = 0;
    for (const qint64 bytes : recordings)
        known = saturatedSum(known, qMax<qint64>(0, bytes));
    const qint64 rest = volume.bytesTotal - volume.bytesAvailable - qMax<qint64>(0, reserved) - known;
    const qint64 notRecordings = qMax<qint64>(0, rest);
    map.insert(StationKey::otherBytes, isSized && isAllKnown ? notRecordings : unknown);
    map.insert(StationKey::unknownBytes, isSized ? (isAllKnown ? 0 : notRecordings) : unknown);
    map.insert(StationKey::excessBytes, isSized ? qMax<qint64>(0, -rest) : unknown);
}

QVariantMap blockMap(const Block &block, const DayUsages &usages, const QDate &today)
{
    QStringList order;
    QHash<QString, QList<UsagePlace>> groups;
    for (const UsagePlace &place : block.places) {
        if (!groups.contains(place.groupId))
            order.append(place.groupId);
        groups[place.groupId].append(place);
    }
    const qint64 backup = bytesOf(block, groups.value(UsageGroup::backup));
    const qint64 withoutGroup = bytesOf(block, groups.value(QString()));
    QList<qint64> recordings{backup, withoutGroup};
    QVariantList list;
    for (const QString &id : std::as_const(order)) {
        if (id.isEmpty() || id == UsageGroup::backup)
            continue;
        const QVariantMap group = groupMap(block, groups.value(id), usages, today);
        recordings.append(group.value(StationKey::recordedBytes).toLongLong());
        list.append(group);
    }
    QVariantMap map{
        {FieldKey::volumePath, block.volume.path},
        {FieldKey::volumeName, block.volume.name},
        {FieldKey::volumeIsSystem, block.volume.isSystem},
        {StationKey::kind, block.isNas ? StationVolumeKind::NAS : StationVolumeKind::local},
        {StationKey::state, block.state},
        {StationKey::groups, list},
        {StationKey::backupBytes, backup},
        {StationKey::withoutGroupBytes, withoutGroup},
        {StationKey::counted, isCounted(block, block.places)},
    };
    if (block.since.isValid())
        map.insert(StationKey::since, block.since.toString(Qt::ISODateWithMs));
    const QDateTime counted = countedAt(block.places);
    if (counted.isValid())
        map.insert(StationKey::countedAt, counted.toString(Qt::ISODateWithMs));
    Volume volume = block.volume;
    if (!block.isThere())
        volume.bytesTotal = 0;
    insertRest(map, volume, recordings);
    return map;
}
} // namespace

QVariantList storageOverview(const QList<Volume> &mounted, const QList<UsagePlace> &places, const QDate &day,
                             const QList<StationTrouble> &troubles)
{
    Blocks blocks(mounted, troubles);
    QList<UsagePlace> inOrder = places; // those of no group behind those that may bring a lost volume
    std::stable_sort(inOrder.begin(), inOrder.end(), [](const UsagePlace &left, const UsagePlace &right) {
        const auto rank = [](const UsagePlace &place) {
            return (place.isNas ? 2 : 0) + (place.groupId.isEmpty() ? 1 : 0);
        };
        return rank(left) < rank(right);
    });
    for (const UsagePlace &place : std::as_const(inOrder))
        blocks.take(place);
    const DayUsages usages = dayUsagesOf(places, day);
    QVariantList list;
    for (const Block &block : blocks.list())
        list.append(blockMap(block, usages, day));
    return list;
}
