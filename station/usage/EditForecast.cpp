#include "EditForecast.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "groups/GroupMaps.h"

#include <QMap>
#include <QSet>

#include <algorithm>

namespace {
using Storage = UsagePlace::Storage;

constexpr qint64 unknown = -1;

/// The streams that @p group records.
QSet<std::pair<QString, int>> streamsOf(const RecordingGroup &group)
{
    QSet<std::pair<QString, int>> streams;
    for (const GroupMember &member : group.members)
        streams.insert({member.camera, member.stream});
    return streams;
}

const RecordingGroup *findGroup(const QList<RecordingGroup> &groups, const QString &id)
{
    const auto found =
        std::find_if(groups.cbegin(), groups.cend(), [&id](const RecordingGroup &group) { return group.id == id; });
    return found == groups.cend() ? nullptr : &*found;
}

/// What a volume holds and what is reserved on it.
struct VolumeReserve
{
    Volume volume;
    bool isThere = false;
    qint64 now = 0;
    qint64 then = 0;
};

QString keyOf(const UsagePlace &place)
{
    return place.volume.path.isEmpty() ? place.path : place.volume.path;
}

/// The places of @p places whose path, or its reserve, @p others do not have.
QList<UsagePlace> differing(const QList<UsagePlace> &places, const QList<UsagePlace> &others)
{
    QList<UsagePlace> list = places;
    list.removeIf([&others](const UsagePlace &place) {
        return std::any_of(others.cbegin(), others.cend(), [&place](const UsagePlace &other) {
            return other.groupId == place.groupId && other.path == place.path && other.isNas == place.isNas
                && other.reservedMegabytes == place.reservedMegabytes;
        });
    });
    return list;
}
} // namespace

EditForecast::EditForecast(GroupSite site, QList<UsagePlace> places, const QDate &day)
    : m_before(site.groups)
    , m_site(std::move(site))
    , m_places(std::move(places))
    , m_day(day)
    , m_returnCode(ReturnCode::Success)
{
}

void EditForecast::apply(const QList<EditRequest> &requests, const std::optional<QString> &refusal, bool areSeveral)
{
    for (qsizetype place = 0; place < requests.size(); ++place) {
        const EditRequest &request = requests.at(place);
        const EditOutcome outcome = judge(request, m_site);
        QString returnCode = outcome.returnCode();
        if (outcome.errors.isEmpty() && refusal)
            returnCode = *refusal;
        if (m_returnCode == ReturnCode::Success)
            m_returnCode = returnCode;
        for (EditError error : outcome.errors) {
            if (areSeveral)
                error.index = static_cast<int>(place); // each entry is an edit of its own
            m_errors.append(error);
        }
        if (outcome.errors.isEmpty() && refusal)
            return; // the edit ends there, too
        if (!outcome.errors.isEmpty())
            continue;
        const QString id = request.kind == EditRequest::Kind::Add ? outcome.after.id : request.id;
        m_site.groups.removeIf(
            [&](const RecordingGroup &group) { return request.kind == EditRequest::Kind::Remove && group.id == id; });
        if (request.kind == EditRequest::Kind::Add)
            m_site.groups.append(outcome.after);
        for (RecordingGroup &group : m_site.groups) {
            if (group.id == id)
                group = outcome.after;
        }
        if (!m_edited.contains(id))
            m_edited.append(id);
    }
}

QVariantMap EditForecast::map()
{
    QVariantMap map{{StationKey::returnCode, m_returnCode},
                    {StationKey::errors, errorList(m_errors)},
                    {StationKey::groups, QVariantList()},
                    {StationKey::volumes, QVariantList()}};
    if (m_edited.isEmpty())
        return map;
    const QList<UsagePlace> now = placesOf(m_before);
    const QList<UsagePlace> then = placesOf(m_site.groups);
    map.insert(StationKey::groups, groupList(now, then));
    map.insert(StationKey::volumes, volumeList(now, then));
    return map;
}

const RecordingGroup *EditForecast::groupBefore(const QString &id) const
{
    return findGroup(m_before, id);
}

/// The paths of @p groups, and the backup area, which shares the volumes with them.
QList<UsagePlace> EditForecast::placesOf(const QList<RecordingGroup> &groups)
{
    QList<UsagePlace> places;
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths)
            places.append(placeOf(group, path));
    }
    for (const UsagePlace &place : std::as_const(m_places)) {
        if (place.groupId == UsageGroup::backup)
            places.append(place);
    }
    return places;
}

UsagePlace EditForecast::placeOf(const RecordingGroup &group, const GroupPath &path)
{
    const bool isNas = path.kind != PathKind::Local;
    const auto isSame = [&path, isNas](const UsagePlace &other) {
        return other.path == path.path && other.isNas == isNas;
    };
    UsagePlace place;
    place.groupId = group.id;
    const auto own = std::find_if(m_places.cbegin(), m_places.cend(),
                                  [&](const UsagePlace &other) { return other.groupId == group.id && isSame(other); });
    const auto another = std::find_if(m_places.cbegin(), m_places.cend(), [&](const UsagePlace &other) {
        return isSame(other) && other.storage != Storage::Unknown;
    });
    if (own != m_places.cend()) {
        place = *own;
    } else {
        const RecordingGroup *before = groupBefore(group.id);
        const bool isNew = !before
            || std::none_of(before->paths.cbegin(), before->paths.cend(),
                            [&](const GroupPath &other) { return other.path == path.path; });
        if (isNew)
            place.days = DaySums();
        place.path = path.path;
        if (another != m_places.cend()) {
            place.storage = another->storage;
            place.volume = another->volume;
        } else {
            askFor(place, path);
        }
    }
    place.groupName = group.name;
    place.reservedMinutes = group.isReservedTimeEnabled ? group.reservedMinutes : 0;
    place.reservedMegabytes = path.reservedMegabytes;
    place.isNas = isNas;
    return place;
}

void EditForecast::askFor(UsagePlace &place, const GroupPath &path)
{
    const std::pair<int, QString> key(static_cast<int>(path.kind), path.path);
    auto facts = m_asked.constFind(key);
    if (facts == m_asked.cend())
        facts = m_asked.insert(key, m_site.paths.volumeOf(path.kind, path.path));
    if (facts->returnCode != ReturnCode::Success)
        return;
    place.storage = Storage::Present;
    place.volume.path = facts->volume;
    place.volume.name = facts->volumeName;
    place.volume.bytesTotal = facts->bytesTotal;
    place.volume.bytesAvailable = facts->bytesAvailable;
    const auto seen = std::find_if(m_places.cbegin(), m_places.cend(), [&facts](const UsagePlace &other) {
        return other.storage == Storage::Present && other.volume.path == facts->volume;
    });
    if (seen != m_places.cend()) // all sharers of a volume share the same free space
        place.volume = seen->volume;
}

EditForecast::FiguresOfGroups EditForecast::figuresOf(const QList<UsagePlace> &places) const
{
    return groupFigures(usageEntries(places, m_day));
}

/// A group goes on recording as much as it did, on whatever paths it has; with other members nobody knows how much.
GroupFigures EditForecast::figuresThen(const RecordingGroup &group, GroupFigures told, const FiguresOfGroups &now) const
{
    const RecordingGroup *before = groupBefore(group.id);
    const bool isAsMuch = before && streamsOf(*before) == streamsOf(group);
    told.bytesPerDay = isAsMuch && !group.paths.isEmpty() ? now.value(group.id).bytesPerDay : unknown;
    told.remainingDays = remainingDays(told.available, told.bytesPerDay);
    if (!before)
        told.recordedDays = unknown; // its folder may have been another group's
    return told;
}

QVariantList EditForecast::groupList(const QList<UsagePlace> &before, const QList<UsagePlace> &after) const
{
    const auto mapOf = [](const RecordingGroup &group, const GroupFigures &figures) {
        return QVariantMap{
            {FieldKey::recordingGroupName, group.name},
            {FieldKey::recordingGroupReservedTime, group.isReservedTimeEnabled ? group.reservedMinutes : 0},
            {StationKey::recordedDays, figures.recordedDays},
            {StationKey::remainingDays, figures.remainingDays},
            {StationKey::bytesPerDay, figures.bytesPerDay},
        };
    };
    const FiguresOfGroups figuresNow = figuresOf(before);
    const FiguresOfGroups toldThen = figuresOf(after);
    QList<RecordingGroup> all = m_before;
    for (const RecordingGroup &group : m_site.groups) {
        if (!groupBefore(group.id))
            all.append(group);
    }
    QVariantList list;
    for (const RecordingGroup &group : std::as_const(all)) {
        const RecordingGroup *old = groupBefore(group.id);
        const RecordingGroup *changed = findGroup(m_site.groups, group.id);
        const QVariantMap now = old ? mapOf(*old, figuresNow.value(group.id)) : QVariantMap();
        const QVariantMap then =
            changed ? mapOf(*changed, figuresThen(*changed, toldThen.value(group.id), figuresNow)) : QVariantMap();
        if (!m_edited.contains(group.id) && now == then)
            continue;
        QVariantMap map{{FieldKey::recordingGroupID, old ? group.id : QString()}};
        if (old)
            map.insert(StationKey::now, now);
        if (changed)
            map.insert(StationKey::then, then);
        list.append(map);
    }
    return list;
}

QVariantList EditForecast::volumeList(const QList<UsagePlace> &now, const QList<UsagePlace> &then) const
{
    QMap<QString, VolumeReserve> volumes;
    for (const UsagePlace &place : differing(now, then) + differing(then, now)) {
        VolumeReserve &volume = volumes[keyOf(place)];
        if (!volume.isThere) {
            volume.volume = place.volume;
            volume.volume.path = place.isNas || place.volume.path.isEmpty() ? place.path : place.volume.path;
            volume.isThere = place.storage == Storage::Present;
        }
    }
    const auto sum = [&volumes](const QList<UsagePlace> &places, qint64 VolumeReserve::*reserve) {
        for (const UsagePlace &place : places) {
            const auto volume = volumes.find(keyOf(place));
            if (volume != volumes.end())
                (*volume).*reserve = saturatedSum((*volume).*reserve, place.reservedMegabytes);
        }
    };
    sum(now, &VolumeReserve::now);
    sum(then, &VolumeReserve::then);
    QVariantList list;
    for (const VolumeReserve &volume : std::as_const(volumes)) {
        list.append(QVariantMap{
            {FieldKey::volumePath, volume.volume.path},
            {FieldKey::volumeName, volume.volume.name},
            {StationKey::size, volume.isThere ? volume.volume.bytesTotal : unknown},
            {StationKey::now, QVariantMap{{FieldKey::reserveSpace, volume.now}}},
            {StationKey::then, QVariantMap{{FieldKey::reserveSpace, volume.then}}},
        });
    }
    return list;
}
