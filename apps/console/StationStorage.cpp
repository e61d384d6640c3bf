#include "StationStorage.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeParts.h"

#include <algorithm>
#include <utility>

namespace {
bool isOfAGroup(const QVariantMap &volume, const QString &path)
{
    const QVariantList groups = volume.value(StationKey::groups).toList();
    return std::any_of(groups.cbegin(), groups.cend(), [&path](const QVariant &group) {
        return group.toMap().value(StationKey::paths).toStringList().contains(path);
    });
}

/// What a volume holds of a group; empty where it holds nothing of it.
QVariantMap partOf(const QVariantMap &volume, const QString &groupId)
{
    const QVariantList groups = volume.value(StationKey::groups).toList();
    const auto found = std::find_if(groups.cbegin(), groups.cend(), [&groupId](const QVariant &group) {
        return group.toMap().value(FieldKey::recordingGroupID) == groupId;
    });
    return found == groups.cend() ? QVariantMap() : found->toMap();
}

bool isWithin(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/');
}
} // namespace

void StationStorage::refresh()
{
    if (m_isAsked) {
        m_isAskedAgain = true;
        return;
    }
    m_isAsked = true;
    emit wanted();
}

void StationStorage::take(const QVariantList &volumes)
{
    m_failure.clear();
    m_volumes = volumes;
    answered();
}

void StationStorage::fail(const QString &sentence)
{
    m_failure = sentence;
    answered();
}

void StationStorage::answered()
{
    m_isAsked = false;
    emit changed();
    if (std::exchange(m_isAskedAgain, false))
        refresh();
}

void StationStorage::forget()
{
    forgetRequest();
    m_volumes.clear();
    m_failure.clear();
    emit changed();
}

void StationStorage::forgetRequest()
{
    m_isAsked = m_isAskedAgain = false;
}

QVariantMap StationStorage::holding(const QString &path, bool isNas) const
{
    QVariantMap holder;
    qsizetype longest = -1;
    for (const QVariant &entry : m_volumes) {
        const QVariantMap volume = entry.toMap();
        if ((volume.value(StationKey::kind) == StationVolumeKind::NAS) != isNas)
            continue;
        if (isOfAGroup(volume, path))
            return volume;
        const QString mount = volume.value(FieldKey::volumePath).toString();
        if (isWithin(path, mount) && mount.size() > longest) {
            holder = volume;
            longest = mount.size();
        }
    }
    return holder;
}

QVariantMap StationStorage::reserves(const QVariantMap &volume, const QString &groupId) const
{
    constexpr double megabyte = 1024 * 1024;
    const double size = volume.value(StationKey::size, -1).toDouble();
    double byOthers = 0;
    double recorded = 0;
    double bytesPerDay = 0;
    for (const QVariant &entry : volume.value(StationKey::groups).toList()) {
        const QVariantMap group = entry.toMap();
        if (!groupId.isEmpty() && group.value(FieldKey::recordingGroupID) == groupId) {
            recorded = group.value(StationKey::recordedBytes, -1).toDouble();
            bytesPerDay = group.value(StationKey::bytesPerDay, -1).toDouble();
        } else {
            byOthers += group.value(FieldKey::reserveSpace).toDouble() * megabyte;
        }
    }
    const bool isListed = volume.contains(StationKey::groups); // else only the plug-in knows the volume
    return {{QStringLiteral("byOthers"), isListed ? byOthers : -1},
            {QStringLiteral("left"), isListed && size >= 0 ? std::max(size - byOthers, 0.0) : -1},
            {QStringLiteral("recorded"), isListed ? recorded : -1},
            {QStringLiteral("bytesPerDay"), isListed ? bytesPerDay : -1}};
}

bool StationStorage::hasLost(const QString &groupId) const
{
    bool isNamed = false;
    for (const QVariant &entry : m_volumes) {
        const QVariantMap volume = entry.toMap();
        if (partOf(volume, groupId).isEmpty())
            continue;
        const QVariant state = volume.value(StationKey::state);
        if (state != StationVolumeState::gone && state != StationVolumeState::notAnswering)
            return false;
        isNamed = true;
    }
    return isNamed;
}

QVariantMap StationStorage::recordedBy(const QString &groupId) const
{
    double bytesPerDay = 0;
    int recordedDays = -1;
    int volumes = 0;
    for (const QVariant &entry : m_volumes) {
        const QVariantMap part = partOf(entry.toMap(), groupId);
        if (part.isEmpty())
            continue;
        const double bytes = part.value(StationKey::bytesPerDay, -1).toDouble();
        bytesPerDay = bytes < 0 || bytesPerDay < 0 ? -1 : bytesPerDay + bytes;
        recordedDays = ++volumes == 1 ? part.value(StationKey::recordedDays, -1).toInt() : -1;
    }
    return {{StationKey::bytesPerDay, volumes > 0 ? bytesPerDay : -1}, {StationKey::recordedDays, recordedDays}};
}

QVariantList StationStorage::parts(const QVariantMap &volume, const QString &groupId) const
{
    return volumeParts(volume, groupId);
}
