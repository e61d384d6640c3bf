#include "EditSequence.h"
#include "FakeVolumes.h"
#include "GroupRequests.h"
#include "Station.h"

#include <QCoreApplication>
#include <QHash>

#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace {

StationReply ask(Station &station, const QString &command, const QVariant &data)
{
    StationReply reply;
    station.handle({command, data}, [&reply](const StationReply &part) { reply = part; });
    return reply;
}

QVariantMap mapOf(const GroupPath &path)
{
    return pathMap(path.path, path.reservedMegabytes, path.isRecovery, static_cast<int>(path.kind));
}

QVariantMap mapOf(const GroupMember &member)
{
    return memberMap(member.camera, member.stream, member.timeShift, member.seamless);
}

template<typename Part>
QVariantList mapsOf(const QList<Part> &parts)
{
    QVariantList list;
    for (const Part &part : parts)
        list.append(mapOf(part));
    return list;
}

QVariantMap settingsMap(const RecordingGroup &group)
{
    return {{QStringLiteral("recordingGroupName"), group.name},
            {QStringLiteral("recordingGroupReservedTimeEnabled"), group.isReservedTimeEnabled},
            {QStringLiteral("recordingGroupReservedTime"), group.reservedMinutes},
            {QStringLiteral("recordingGroupNodeIdList"), group.nodeIds}};
}

StationReply add(Station &station, const RecordingGroup &group)
{
    QVariantMap request = settingsMap(group);
    request.insert(QStringLiteral("pathInfoList"), mapsOf(group.paths));
    request.insert(QStringLiteral("deviceInfos"), mapsOf(group.members));
    return ask(station, QStringLiteral("addRecordingGroupWithCompleteInfo"), request);
}

/// Every member and every path goes, and others come.
StationReply update(Station &station, const QString &id, const RecordingGroup &before, const RecordingGroup &after)
{
    QVariantList lost;
    for (int number = 0; number < EditSequence::cameras; ++number)
        lost.append(QVariantMap{{QStringLiteral("camName"), EditSequence::camera(number)}});
    QStringList lostPaths;
    for (const GroupPath &path : before.paths)
        lostPaths.append(path.path);
    return ask(station, QStringLiteral("updateRecordingGroup"),
               QVariantMap{{QStringLiteral("recordingGroupID"), id},
                           {QStringLiteral("updateRmCameraList"), lost},
                           {QStringLiteral("updateAddCameraList"), mapsOf(after.members)},
                           {QStringLiteral("updateRmPathList"), lostPaths},
                           {QStringLiteral("updateAddPathList"), mapsOf(after.paths)},
                           {QStringLiteral("updateSetRecordingGroup"), settingsMap(after)}});
}

StationReply carryOut(Station &station, int edit, const QString &volume, const QString &id)
{
    using namespace EditSequence;
    const RecordingGroup after = groupAfter(edit, volume);
    QVariantMap request{{QStringLiteral("recordingGroupID"), id}};
    switch (kindOf(edit)) {
    case Kind::Add:
        return add(station, after);
    case Kind::Update:
        return update(station, id, groupAfter(edit - 1, volume), after);
    case Kind::AddPath:
        request.insert(mapOf(after.paths.back()));
        return ask(station, QStringLiteral("addPathToRecordingGroup"), request);
    case Kind::RemoveOrRename:
        break;
    }
    if (isRemoval(edit)) {
        return ask(station, QStringLiteral("removeRecordingGroup"),
                   QVariantMap{{QStringLiteral("recordingGroupIDList"), QStringList{id}}});
    }
    request.insert(QStringLiteral("updateSetRecordingGroup"), settingsMap(after));
    return ask(station, QStringLiteral("updateRecordingGroup"), request);
}

/// The id of the group that @p edit changes: the one that was made last.
QString lastGroup(Station &station)
{
    const QVariantList groups = ask(station, QStringLiteral("getRecordingGroup"), {}).data.toList();
    return groups.isEmpty() ? QString() : groups.back().toMap().value(QStringLiteral("recordingGroupID")).toString();
}

/// A disk that is slow for a moment has an edit refused as a whole; whoever wants it asks again.
StationReply carryOutAtLast(Station &station, int edit, const QString &volume)
{
    constexpr int mostTries = 10;
    StationReply reply;
    for (int tried = 0; tried < mostTries; ++tried) {
        reply = carryOut(station, edit, volume, lastGroup(station));
        if (reply.returnCode != QStringLiteral("PathNotWritable"))
            break;
    }
    return reply;
}

} // namespace

/// A station that carries out the edits of EditSequence, and says the number of each once it was answered.
/// Arguments: data folder, folder of the volume, number of the first edit, and, where it shall kill itself instead of
/// acknowledging an edit, that one's number.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    // Everything lies on one large disk.
    constexpr qint64 size = Q_INT64_C(1) << 50;
    const Volume disk{arguments.value(2), QStringLiteral("Disk"), size, size, true, false};
    Station station(StationSettings{arguments.value(1), {}, std::make_unique<FakeVolumes>(QList{disk})});
    for (int number = 0; number < EditSequence::cameras; ++number) {
        ask(station, QStringLiteral("station.addCamera"),
            QVariantMap{{QStringLiteral("camName"), EditSequence::camera(number)},
                        {QStringLiteral("streams"), EditSequence::streams}});
    }
    for (int edit = arguments.value(3).toInt(); edit < EditSequence::length; ++edit) {
        const StationReply reply = carryOutAtLast(station, edit, arguments.value(2));
        if (reply.returnCode != QStringLiteral("0")) {
            std::fprintf(stderr, "edit %d: %s\n", edit, qPrintable(reply.returnCode));
            return 1;
        }
        if (arguments.size() > 4 && edit == arguments.at(4).toInt())
            raise(SIGKILL);
        const QByteArray line = QByteArray::number(edit) + '\n';
        if (write(STDOUT_FILENO, line.constData(), static_cast<size_t>(line.size())) != line.size())
            return 2;
    }
    return 0;
}
