#include "Replies.h"

namespace Replies {

namespace {

constexpr qlonglong volumeSize = 4'000'000'000; // KB
constexpr qlonglong availableSize = 1'000'000'000;
constexpr qlonglong oneDayUsage = 2'000'000;
constexpr int reservedTime = 7 * 24 * 60; // minutes

template<typename Make>
QVariantList listOf(int count, const Make &make)
{
    QVariantList list;
    for (int i = 0; i < count; ++i)
        list.append(make(i));
    return list;
}

QString numbered(const char *text, int number)
{
    return QLatin1String(text) + QString::number(number);
}

QString cameraName(int group, int member)
{
    return QStringLiteral("cam %1-%2").arg(group).arg(member);
}

int groupCount(int entries)
{
    return (entries + entriesPerGroup - 1) / entriesPerGroup;
}

} // namespace

QVariantList volumes(int count)
{
    return listOf(count, [](int i) {
        return QVariantMap{
            {"volumePath", numbered("/mnt/video/", i)},
            {"volumeName", numbered("Video disk ", i)},
            {"volumeSize", volumeSize + i},
            {"volumeAvailableSize", availableSize + i},
            {"volumeIsSystem", i % 8 == 0},
        };
    });
}

QVariantList nasServers(int count)
{
    return listOf(count, [](int i) {
        return QVariantMap{
            {"id", numbered("nas-", i)},
            {"host", numbered("storage.example/", i)},
            {"logonDomain", QStringLiteral("Host")},
            {"userName", numbered("recorder-", i)},
            {"password", numbered("secret-", i)},
        };
    });
}

QVariantList recordingGroups(int count, int members)
{
    return listOf(count, [members](int i) {
        const QString path = numbered("/mnt/video/", i);
        const auto node = [i](int number) { return QStringLiteral("node-%1-%2").arg(i).arg(number); };
        const auto member = [i](int number) {
            return QVariantMap{
                {"camName", cameraName(i, number)},
                {"streamIndex", number % 3},
                {"enableTimeShift", number % 2 == 0},
                {"enableSeamless", false},
            };
        };
        return QVariantMap{
            {"recordingGroupID", groupId(i)},
            {"recordingGroupName", numbered("Group ", i)},
            {"relayPath", relayPath()},
            {"recordingGroupPathList", QVariantList{path + "/a", path + "/b"}},
            {"reserveSpace", QVariantList{qlonglong(2048), qlonglong(4096)}},
            {"recordingGroupNASPathList", QVariantList{numbered("//nas/share/", i)}},
            {"recordingGroupNodeIdList", listOf(members, node)},
            {"recordingGroupRecoveryPathList", QVariantList()},
            {"recordingGroupReservedTime", reservedTime},
            {"recordingGroupMemberList", listOf(members, member)},
        };
    });
}

QVariantList volumeEntries(int count, Order order)
{
    return listOf(count, [count, order](int i) {
        const int group = order == Order::Together ? i / entriesPerGroup : i % groupCount(count);
        return QVariantMap{
            {"recordingGroupID", groupId(group)},
            {"recordingGroupName", numbered("Group ", group)},
            {"recordingGroupReservedTime", reservedTime},
            {"recordingPath", numbered("/mnt/video/", i)},
            {"volumeName", numbered("Video disk ", i)},
            {"volumeSize", volumeSize + i},
            {"volumeAvailableSize", availableSize + i},
            {"volumeRecordedDays", qlonglong(i % 30)},
            {"volumeOneDayUsage", oneDayUsage + i},
            {"volumeIsSystem", i % 8 == 0},
            {"volumeIsNAS", i % 4 == 0},
        };
    });
}

QString relayPath()
{
    return QStringLiteral("st1");
}

QString groupId(int group)
{
    return QStringLiteral("{5d1c7a52-0000-4000-8000-%1}").arg(group, 12, 10, QLatin1Char('0'));
}

QStringList groupIds(int entries)
{
    QStringList ids;
    for (int group = 0; group < groupCount(entries); ++group)
        ids.append(groupId(group));
    return ids;
}

QString cameraId(int group, int member)
{
    return relayPath() + QLatin1Char('/') + cameraName(group, member);
}

} // namespace Replies
