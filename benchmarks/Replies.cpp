#include "Replies.h"

#include <algorithm>

namespace Replies {

namespace {

QString numbered(QLatin1String text, int number)
{
    return text + QString::number(number);
}

QString cameraName(int group, int member)
{
    return QStringLiteral("cam %1-%2").arg(group).arg(member);
}

} // namespace

QVariantList volumes(int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i) {
        list.append(QVariantMap{
            {"volumePath", numbered(QLatin1String("/mnt/video/"), i)},
            {"volumeName", numbered(QLatin1String("Video disk "), i)},
            {"volumeSize", qlonglong(4'000'000'000) + i},
            {"volumeAvailableSize", qlonglong(1'000'000'000) + i},
            {"volumeIsSystem", i % 8 == 0},
        });
    }
    return list;
}

QVariantList nasServers(int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i) {
        list.append(QVariantMap{
            {"id", numbered(QLatin1String("nas-"), i)},
            {"host", numbered(QLatin1String("storage.example/"), i)},
            {"logonDomain", QStringLiteral("Host")},
            {"userName", numbered(QLatin1String("recorder-"), i)},
            {"password", numbered(QLatin1String("secret-"), i)},
        });
    }
    return list;
}

QString relayPath()
{
    return QStringLiteral("st1");
}

QString groupId(int group)
{
    return QStringLiteral("{5d1c7a52-0000-4000-8000-%1}").arg(group, 12, 10, QLatin1Char('0'));
}

QString cameraId(int group, int member)
{
    return relayPath() + QLatin1Char('/') + cameraName(group, member);
}

QVariantList recordingGroups(int count, int members)
{
    QVariantList list;
    for (int i = 0; i < count; ++i) {
        QVariantList nodes;
        QVariantList memberList;
        for (int member = 0; member < members; ++member) {
            nodes.append(QStringLiteral("node-%1-%2").arg(i).arg(member));
            memberList.append(QVariantMap{
                {"camName", cameraName(i, member)},
                {"streamIndex", member % 3},
                {"enableTimeShift", member % 2 == 0},
                {"enableSeamless", false},
            });
        }
        const QString path = numbered(QLatin1String("/mnt/video/"), i);
        list.append(QVariantMap{
            {"recordingGroupID", groupId(i)},
            {"recordingGroupName", numbered(QLatin1String("Group "), i)},
            {"relayPath", relayPath()},
            {"recordingGroupPathList", QVariantList{path + QLatin1String("/a"), path + QLatin1String("/b")}},
            {"reserveSpace", QVariantList{qlonglong(2048), qlonglong(4096)}},
            {"recordingGroupNASPathList", QVariantList{numbered(QLatin1String("//nas/share/"), i)}},
            {"recordingGroupNodeIdList", nodes},
            {"recordingGroupRecoveryPathList", QVariantList()},
            {"recordingGroupReservedTime", 7 * 24 * 60},
            {"recordingGroupMemberList", memberList},
        });
    }
    return list;
}

QVariantList volumeEntries(int count, int perGroup, Order order)
{
    const int groups = std::max(1, count / perGroup);
    QVariantList list;
    for (int i = 0; i < count; ++i) {
        const int group = order == Order::Together ? i / perGroup : i % groups;
        list.append(QVariantMap{
            {"recordingGroupID", groupId(group)},
            {"recordingGroupName", numbered(QLatin1String("Group "), group)},
            {"recordingGroupReservedTime", 7 * 24 * 60},
            {"recordingPath", numbered(QLatin1String("/mnt/video/"), i)},
            {"volumeName", numbered(QLatin1String("Video disk "), i)},
            {"volumeSize", qlonglong(4'000'000'000) + i},
            {"volumeAvailableSize", qlonglong(1'000'000'000) + i},
            {"volumeRecordedDays", qlonglong(i % 30)},
            {"volumeOneDayUsage", qlonglong(2'000'000) + i},
            {"volumeIsSystem", i % 8 == 0},
            {"volumeIsNAS", i % 4 == 0},
        });
    }
    return list;
}

} // namespace Replies
