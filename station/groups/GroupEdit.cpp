#include "GroupEdit.h"

#include "FolderNames.h"
#include "PathText.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <algorithm>
#include <utility>

namespace {
constexpr qint64 bytesPerMegabyte = 1024 * 1024;
constexpr qint64 reserveUnit = 1024; // megabytes

bool isKind(int kind)
{
    return kind >= static_cast<int>(PathKind::Local) && kind <= static_cast<int>(PathKind::NetDomain);
}

/// "0" when the station has the camera and that stream of it.
QString checkStream(const QList<Camera> &cameras, const GroupMember &member)
{
    const auto camera = std::find_if(cameras.begin(), cameras.end(),
                                     [&member](const Camera &known) { return known.name == member.camera; });
    if (camera == cameras.end())
        return StationReturnCode::CameraNotFound;
    return member.stream >= 0 && member.stream < camera->streams ? ReturnCode::Success
                                                                 : StationReturnCode::StreamNotFound;
}
} // namespace

GroupEdit::GroupEdit(RecordingGroup group, const GroupSite &site)
    : m_group(std::move(group))
    , m_site(site)
    , m_reserves(site.paths)
{
}

void GroupEdit::change(const GroupSettings &settings)
{
    beginStep(FieldKey::recordingGroupName);
    if (settings.name) {
        const QString &name = *settings.name;
        const Place place{FieldKey::recordingGroupName, -1, name};
        const bool isInUse =
            std::any_of(m_site.groups.begin(), m_site.groups.end(), [this, &name](const RecordingGroup &other) {
                return other.id != m_group.id && other.name == name;
            });
        if (name.trimmed().isEmpty())
            refuse(place, StationReturnCode::EmptyRecordingGroupName);
        else if (folderName(name).isEmpty())
            refuse(place, StationReturnCode::NameRefused);
        else if (isInUse)
            refuse(place, StationReturnCode::RecordingGroupNameInUse);
        m_group.name = name;
    }
    beginStep(FieldKey::recordingGroupReservedTime);
    if (settings.isReservedTimeEnabled || settings.reservedMinutes) {
        m_group.isReservedTimeEnabled = settings.isReservedTimeEnabled.value_or(m_group.isReservedTimeEnabled);
        m_group.reservedMinutes = settings.reservedMinutes.value_or(m_group.reservedMinutes);
        if (m_group.isReservedTimeEnabled && m_group.reservedMinutes < 1) {
            refuse({FieldKey::recordingGroupReservedTime, -1, QString::number(m_group.reservedMinutes)},
                   StationReturnCode::ReservedTimeRefused);
        }
    }
    if (settings.nodeIds) {
        m_group.nodeIds = *settings.nodeIds;
        m_group.nodeIds.removeDuplicates();
    }
}

void GroupEdit::removeMembers(const QString &element, const QList<MemberRemoval> &removals)
{
    beginStep(element);
    for (int index = 0; index < removals.size(); ++index) {
        const MemberRemoval &removal = removals.at(index);
        const auto isMeant = [&removal](const GroupMember &member) {
            return member.camera == removal.camera && member.stream == removal.stream.value_or(member.stream);
        };
        if (m_group.members.removeIf(isMeant) == 0)
            refuse({element, index, removal.camera}, StationReturnCode::CameraNotInGroup);
    }
}

void GroupEdit::addMembers(const QString &element, const QList<GroupMember> &members)
{
    beginStep(element);
    for (int index = 0; index < members.size(); ++index) {
        const GroupMember &added = members.at(index);
        const Place place{element, index, added.camera};
        const bool isThere =
            std::any_of(m_group.members.begin(), m_group.members.end(), [&added](const GroupMember &member) {
                return member.camera == added.camera && member.stream == added.stream;
            });
        if (isThere) {
            refuse(place, StationReturnCode::CameraInGroup);
            continue;
        }
        const QString returnCode = checkStream(m_site.cameras, added);
        if (returnCode != ReturnCode::Success)
            refuse(place, returnCode);
        m_group.members.append(added);
    }
}

void GroupEdit::removePaths(const QString &element, const QStringList &paths)
{
    beginStep(element);
    for (int index = 0; index < paths.size(); ++index) {
        const Place place{element, index, paths.at(index)};
        const QString path = keptPath(place.value);
        if (m_group.paths.removeIf([&path](const GroupPath &other) { return other.path == path; }) == 0)
            refuse(place, StationReturnCode::PathNotInGroup);
        else
            m_removedPath = place;
    }
}

void GroupEdit::addPaths(const QString &element, const QList<NewPath> &paths)
{
    beginStep(element);
    m_pathsElement = element;
    for (int index = 0; index < paths.size(); ++index) {
        const NewPath &added = paths.at(index);
        const Place place{element, index, added.path};
        const QString path = keptPath(added.path);
        if (findPath(path)) {
            refuse(place, StationReturnCode::PathInGroup);
            continue;
        }
        const bool isUsable = lookAt(place, path, added.kind);
        const bool isReservable = checkReserve(place, added.reservedMegabytes);
        const qint64 reserved = isReservable ? added.reservedMegabytes : 0;
        const PathKind kind = isKind(added.kind) ? static_cast<PathKind>(added.kind) : PathKind::Local;
        m_group.paths.append({path, kind, reserved, added.isRecovery});
        if (isUsable && reserved > 0)
            m_claims.append({place, path});
    }
}

void GroupEdit::changePaths(const QString &element, const QList<PathChange> &changes)
{
    beginStep(element);
    for (int index = 0; index < changes.size(); ++index) {
        const PathChange &change = changes.at(index);
        const Place place{element, index, change.path};
        GroupPath *path = findPath(keptPath(change.path));
        if (!path) {
            refuse(place, StationReturnCode::PathNotInGroup);
            continue;
        }
        const bool isMoved = change.kind && *change.kind != static_cast<int>(path->kind);
        const bool isUsable = !isMoved || lookAt(place, path->path, *change.kind);
        if (isMoved && isKind(*change.kind))
            path->kind = static_cast<PathKind>(*change.kind);
        path->isRecovery = change.isRecovery.value_or(path->isRecovery);
        const qint64 before = isMoved ? 0 : path->reservedMegabytes;
        if (!change.reservedMegabytes || checkReserve(place, *change.reservedMegabytes))
            path->reservedMegabytes = change.reservedMegabytes.value_or(path->reservedMegabytes);
        if (isUsable && path->reservedMegabytes > before)
            m_claims.append({place, path->path});
    }
}

QList<EditError> GroupEdit::finish()
{
    if (!m_group.members.isEmpty() && m_group.paths.isEmpty())
        refuse(m_removedPath.value_or(Place{m_pathsElement, -1, {}}), StationReturnCode::LastPathOfGroup);
    checkVolumes();
    const auto place = [this](const EditError &error) {
        return std::pair(m_steps.indexOf(error.element), error.index);
    };
    std::stable_sort(m_errors.begin(), m_errors.end(),
                     [&place](const EditError &left, const EditError &right) { return place(left) < place(right); });
    return m_errors;
}

void GroupEdit::refuse(const Place &place, const QString &returnCode, const QString &reason)
{
    m_errors.append({place.element, place.index, place.value, returnCode, reason});
}

void GroupEdit::refuse(const Place &place, const PathFacts &facts)
{
    refuse(place, facts.returnCode, facts.reason);
}

bool GroupEdit::checkReserve(const Place &place, qint64 megabytes)
{
    const bool isTaken = megabytes >= 0 && megabytes % reserveUnit == 0;
    if (!isTaken)
        refuse(place, StationReturnCode::ReservedSpaceRefused);
    return isTaken;
}

/// Whether @p path can be used as one of @p kind; refuses it if not.
bool GroupEdit::lookAt(const Place &place, const QString &path, int kind)
{
    if (!isKind(kind)) {
        refuse(place, StationReturnCode::PathTypeRefused);
        return false;
    }
    PathFacts facts{checkPathText(path, static_cast<PathKind>(kind)), {}, {}, 0, {}};
    if (facts.returnCode == ReturnCode::Success)
        facts = m_site.paths.look(static_cast<PathKind>(kind), path);
    if (facts.returnCode == ReturnCode::Success
        && hasFolder(facts.folder, m_site.paths.sharedSpace(static_cast<PathKind>(kind), path), path))
        facts = {StationReturnCode::PathInGroup, {}, {}, 0, {}};
    if (facts.returnCode != ReturnCode::Success)
        refuse(place, facts);
    return facts.returnCode == ReturnCode::Success;
}

/// Whether another path than @p exceptPath leads to @p folder, which shares @p space.
bool GroupEdit::hasFolder(const QString &folder, const QString &space, const QString &exceptPath)
{
    return !folder.isEmpty()
        && std::any_of(m_group.paths.cbegin(), m_group.paths.cend(),
                       [this, &folder, &exceptPath, &space](const GroupPath &path) {
                           return path.path != exceptPath && m_site.paths.sharedSpace(path.kind, path.path) == space
                               && m_reserves.volumeOf(path).folder == folder;
                       });
}

GroupPath *GroupEdit::findPath(const QString &path)
{
    const auto found = std::find_if(m_group.paths.begin(), m_group.paths.end(),
                                    [&path](const GroupPath &other) { return other.path == path; });
    return found == m_group.paths.end() ? nullptr : &*found;
}

/// Where more is reserved than before, all groups together may not reserve more than there is.
void GroupEdit::checkVolumes()
{
    if (m_claims.isEmpty())
        return;
    QSet<QString> spaces;
    for (const Claim &claim : std::as_const(m_claims)) {
        if (const GroupPath *path = findPath(claim.path))
            spaces.insert(m_site.paths.sharedSpace(path->kind, path->path));
    }
    QList<RecordingGroup> groups = m_site.groups;
    groups.removeIf([this](const RecordingGroup &group) { return group.id == m_group.id; });
    groups.append(m_group);
    const QHash<QString, qint64> sums = m_reserves.sums(groups, spaces);
    for (const Claim &claim : std::as_const(m_claims)) {
        const GroupPath *path = findPath(claim.path);
        if (!path)
            continue; // a later step removed it
        const PathFacts &facts = m_reserves.volumeOf(*path);
        if (facts.returnCode != ReturnCode::Success)
            refuse(claim.place, facts);
        else if (sums.value(facts.volume) > facts.bytesTotal / bytesPerMegabyte)
            refuse(claim.place, StationReturnCode::ReservedSpaceExceedsVolume);
    }
}
