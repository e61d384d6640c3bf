#include "StorageTroubles.h"

#include "StationVocabulary.h"

#include <QMap>

#include <cerrno>
#include <optional>
#include <utility>

namespace {
StationTrouble error(const QString &kind, const QString &subject, const QString &text, const QString &remedy)
{
    return {kind, StationTrouble::Severity::Error, subject, text, remedy, {}};
}

/// What is wrong with the storage of a place; none where recordings can be stored.
std::optional<StationTrouble> troubleAt(const RecordingPlace &place, const PlaceState &state)
{
    if (state.isSilent) {
        return error(StationAlarmKind::FolderNotAnswering, place.path,
                     QStringLiteral("The disk of the folder %1 does not answer").arg(place.path),
                     QStringLiteral("Check the disk, or the network to it."));
    }
    if (state.storage == UsagePlace::Storage::Gone && state.isVolumeThere) {
        return error(StationAlarmKind::VolumeGone, place.path,
                     QStringLiteral("The folder %1 is not there").arg(place.path),
                     QStringLiteral("Make the folder again, or take the path out of the recording group."));
    }
    if (state.storage == UsagePlace::Storage::Gone) {
        return error(StationAlarmKind::VolumeGone, state.volume.path,
                     QStringLiteral("The volume %1 (%2) is not there").arg(state.volume.name, state.volume.path),
                     QStringLiteral("Connect and mount the disk, or take its paths out of the recording groups."));
    }
    if (state.storage == UsagePlace::Storage::Present && state.writeError == EROFS) {
        return error(StationAlarmKind::PathNotWritable, state.volume.path,
                     QStringLiteral("The volume %1 (%2) can only be read").arg(state.volume.name, state.volume.path),
                     QStringLiteral("Mount it writable; the system's log says why it is not."));
    }
    if (state.storage == UsagePlace::Storage::Present && state.writeError != 0) {
        return error(
            StationAlarmKind::PathNotWritable, place.path,
            QStringLiteral("The station may not write into the folder %1 (%2)")
                .arg(place.path, qt_error_string(state.writeError)),
            QStringLiteral("Let the station's user write there, or take the path out of the recording group."));
    }
    return {};
}
} // namespace

QList<StationTrouble> placeTroubles(const QList<RecordingPlace> &places, const QHash<qint64, PlaceState> &states,
                                    const QList<RecordingGroup> &groups)
{
    QMap<QString, StationTrouble> troubles; // by what is in trouble
    QHash<QString, QString> subjects; // what is in trouble, by path
    QStringList ofBackup;
    for (const RecordingPlace &place : places) {
        const auto state = states.constFind(place.number);
        if (place.groupId.isEmpty() || state == states.cend())
            continue;
        if (const std::optional<StationTrouble> trouble = troubleAt(place, *state)) {
            troubles.insert(trouble->subject, *trouble);
            if (place.groupId == UsageGroup::backup)
                ofBackup.append(trouble->subject);
            else
                subjects.insert(place.path, trouble->subject);
        }
    }
    QHash<QString, QStringList> names; // of groups, by what is in trouble
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths) {
            const auto subject = subjects.constFind(path.path);
            if (subject != subjects.cend() && (names[*subject].isEmpty() || names[*subject].constLast() != group.name))
                names[*subject].append(group.name);
        }
    }
    for (const QString &subject : std::as_const(ofBackup))
        names[subject].append(QStringLiteral("(backup)"));
    for (auto trouble = troubles.begin(); trouble != troubles.end(); ++trouble)
        trouble->text +=
            QStringLiteral("; recording groups on it: %1.").arg(names[trouble.key()].join(QStringLiteral(", ")));
    return troubles.values();
}

QList<StationTrouble> groupTroubles(const QList<RecordingGroup> &groups)
{
    QList<StationTrouble> troubles;
    for (const RecordingGroup &group : groups) {
        if (!group.paths.isEmpty() || group.members.isEmpty())
            continue;
        StationTrouble trouble = error(
            StationAlarmKind::GroupWithoutPath, group.name,
            QStringLiteral("The recording group %1 has cameras and no path: nothing is recorded.").arg(group.name),
            QStringLiteral("Add a path to the recording group."));
        trouble.groupId = group.id;
        troubles.append(trouble);
    }
    return troubles;
}

QList<StationTrouble> unreadableTroubles(const QStringList &folders)
{
    QList<StationTrouble> troubles;
    for (const QString &folder : folders) {
        troubles.append(
            error(StationAlarmKind::FolderNotReadable, folder,
                  QStringLiteral("The recordings in %1 cannot be read; their figures are as they were.").arg(folder),
                  QStringLiteral(
                      "Let the station's user read the folder, and check the disk; the station's log says more.")));
    }
    return troubles;
}

StationTrouble hangingTrouble(const QString &path, const QDateTime &since)
{
    return {StationAlarmKind::FolderNotAnswering,
            StationTrouble::Severity::Pending,
            path,
            QStringLiteral("The disk of the recordings in %1 does not answer.").arg(path),
            QStringLiteral("Check the disk, or the network to it."),
            since};
}

StationTrouble countingTrouble(const QString &path, const QDateTime &since)
{
    return {StationAlarmKind::RecordingsNotCounted,
            StationTrouble::Severity::Pending,
            QStringLiteral("recordings"),
            path.isEmpty() ? QStringLiteral("The recordings are being counted.")
                           : QStringLiteral("The recordings are being counted, those in %1 at the moment.").arg(path),
            {},
            since};
}

StationTrouble futureTrouble(int days)
{
    return {
        StationAlarmKind::RecordingsOfTheFuture,
        StationTrouble::Severity::Warning,
        QStringLiteral("recordings"),
        QStringLiteral("There are recordings of %1 still to come; they are not counted.")
            .arg(days == 1 ? QStringLiteral("a day") : QStringLiteral("%1 days").arg(days)),
        QStringLiteral("Check the clocks of the cameras and of the station's machine, and move these folders away."),
        {}};
}
