#include "Figures.h"

#include "ServerVocabulary.h"

#include <QVariantMap>

namespace {
constexpr qlonglong volumeSize = 4'000'000'000; // KB
constexpr qlonglong availableSize = 1'000'000'000;
constexpr qlonglong writtenSize = 5'000'000; // from one event to the next
constexpr qlonglong oneDayUsage = 2'000'000;
constexpr int reservedTime = 7 * 24 * 60; // minutes
constexpr qlonglong reservedSpace = 204'800; // MB

QString groupId(int group)
{
    return QStringLiteral("{5d1c7a52-0000-4000-8000-%1}").arg(group, 12, 10, QLatin1Char('0'));
}

QString groupName(int group)
{
    return QStringLiteral("Group %1").arg(group);
}

QString volumePath(int path)
{
    return QStringLiteral("/srv/video/%1").arg(path);
}

QString volumeName(int path)
{
    return QStringLiteral("Video disk %1").arg(path);
}
} // namespace

namespace Figures {

QVariantList volumeEntries(int variant)
{
    QVariantList entries;
    for (int group = 0; group < groupCount; ++group) {
        for (int path = 0; path < pathCount; ++path) {
            entries.append(QVariantMap{
                {FieldKey::recordingGroupID, groupId(group)},
                {FieldKey::recordingGroupName, groupName(group)},
                {FieldKey::recordingGroupReservedTime, reservedTime},
                {FieldKey::recordingPath, volumePath(path)},
                {FieldKey::volumeName, volumeName(path)},
                {FieldKey::volumeSize, volumeSize},
                {FieldKey::volumeAvailableSize, availableSize - group - variant * writtenSize},
                {FieldKey::volumeRecordedDays, qlonglong(14 + group)},
                {FieldKey::volumeOneDayUsage, oneDayUsage},
                {FieldKey::volumeIsSystem, false},
                {FieldKey::volumeIsNAS, false},
            });
        }
    }
    return entries;
}

QVariantList volumes()
{
    QVariantList list;
    for (int path = 0; path < pathCount; ++path) {
        list.append(QVariantMap{
            {FieldKey::volumePath, volumePath(path)},
            {FieldKey::volumeName, volumeName(path)},
            {FieldKey::volumeSize, volumeSize},
            {FieldKey::volumeAvailableSize, availableSize},
            {FieldKey::volumeIsSystem, false},
        });
    }
    return list;
}

QVariantList recordingGroups(const QString &relayPath)
{
    QVariantList list;
    for (int group = 0; group < groupCount; ++group) {
        list.append(QVariantMap{
            {FieldKey::recordingGroupID, groupId(group)},
            {FieldKey::recordingGroupName, groupName(group)},
            {FieldKey::relayPath, relayPath},
            {FieldKey::recordingGroupPathList, QVariantList{volumePath(0), volumePath(1)}},
            {FieldKey::reserveSpace, QVariantList{reservedSpace, reservedSpace}},
            {FieldKey::recordingGroupNASPathList, QVariantList()},
            {FieldKey::recordingGroupNodeIdList, QVariantList()},
            {FieldKey::recordingGroupRecoveryPathList, QVariantList()},
            {FieldKey::recordingGroupReservedTime, reservedTime},
            {FieldKey::recordingGroupMemberList, QVariantList()},
        });
    }
    return list;
}

} // namespace Figures
