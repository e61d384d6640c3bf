#include "StorageTables.h"

#include "CommandRun.h"
#include "Output.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "StorageJson.h"
#include "Units.h"
#include "UsageCommands.h"

#include <QDateTime>

#include <utility>

namespace {
QString stateText(const QVariantMap &volume)
{
    const QString state = volume.value(StationKey::state).toString();
    if (state == StationVolumeState::readOnly)
        return QStringLiteral("read-only");
    return state == StationVolumeState::notAnswering ? QStringLiteral("not answering") : state;
}

/// "2026-11-22T04:10:00", where the station is; empty where it is not known.
QString localTime(const QVariant &time)
{
    const QDateTime utc = QDateTime::fromString(time.toString(), Qt::ISODateWithMs);
    return utc.isValid() ? utc.toLocalTime().toString(Qt::ISODate) : QString();
}

QString bytesText(const QVariant &bytes)
{
    const qlonglong number = bytes.toLongLong();
    return sizeText(number < 0 ? number : number / 1024);
}

bool isLost(const QVariantMap &volume)
{
    const QString state = volume.value(StationKey::state).toString();
    return state == StationVolumeState::gone || state == StationVolumeState::notAnswering;
}

/// The kind of alarm that tells of @p volume, which is lost.
QString lossCode(const QVariantMap &volume)
{
    return volume.value(StationKey::state).toString() == StationVolumeState::gone
        ? StationAlarmKind::VolumeGone
        : StationAlarmKind::VolumeNotAnswering;
}

bool isUnknown(const QVariantMap &volume)
{
    return volume.value(StationKey::state).toString() == StationVolumeState::unknown
        || !volume.value(StationKey::counted).toBool() || volume.value(StationKey::otherBytes).toLongLong() < 0;
}

QString nameOf(const QVariantMap &volume)
{
    const QString name = volume.value(FieldKey::volumeName).toString();
    const QString path = volume.value(FieldKey::volumePath).toString();
    return name.isEmpty() || name == path ? path : QStringLiteral("%1 (%2)").arg(name, path);
}

/// @p volume, whose recordings are not counted, as a map in "pending" of "station.listAlarms"; "since" is when they
/// were last.
QVariantMap notCounted(const QVariantMap &volume, const QString &text)
{
    return {{StationKey::kind, StationAlarmKind::RecordingsNotCounted},
            {StationKey::subject, volume.value(FieldKey::volumePath)},
            {StationKey::text, text},
            {StationKey::since, volume.value(StationKey::countedAt)}};
}

/// Tells which volumes are lost, and what is not known of the others.
ExitCode judge(CommandRun &run, const QVariantList &volumes, const QVariantList &pending)
{
    ExitCode exitCode = pending.isEmpty() ? ExitCode::Done : ExitCode::NoAnswer;
    for (const QVariant &value : volumes) {
        const QVariantMap volume = value.toMap();
        if (isLost(volume)) {
            const QString since = localTime(volume.value(StationKey::since));
            run.refused(lossCode(volume),
                        QStringLiteral("the volume %1 is %2%3")
                            .arg(nameOf(volume), stateText(volume),
                                 since.isEmpty() ? QString() : QStringLiteral(" since ") + since));
            exitCode = ExitCode::Refused;
        } else if (isUnknown(volume)) {
            const QString counted = localTime(volume.value(StationKey::countedAt));
            const QString text =
                QStringLiteral("the recordings on %1 have not been counted%2")
                    .arg(nameOf(volume), counted.isEmpty() ? QString() : QStringLiteral(" since ") + counted);
            run.reportUnknown(notCounted(volume, text), QStringLiteral("unknown: ") + text);
            if (exitCode == ExitCode::Done)
                exitCode = ExitCode::NoAnswer;
        }
    }
    reportPending(run, pending);
    return exitCode;
}

void printVolumes(const QVariantList &volumes)
{
    bool isFirst = true;
    for (const QVariant &value : volumes) {
        const QVariantMap volume = value.toMap();
        if (!std::exchange(isFirst, false))
            printLine({});
        printLine(volumeHeading(volume));
        printText(volumeParts(volume).toString());
    }
}
} // namespace

QString volumeHeading(const QVariantMap &volume)
{
    const QString since = localTime(volume.value(StationKey::since));
    const QString kind = volume.value(StationKey::kind).toString();
    return printable(
        nameOf(volume)
        + QStringLiteral(": %1, %2%3")
              .arg(kind, stateText(volume), since.isEmpty() ? QString() : QStringLiteral(" since ") + since));
}

TextTable volumeParts(const QVariantMap &volume)
{
    TextTable table({QStringLiteral("Part"), QStringLiteral("Bytes"), QStringLiteral("Recorded"),
                     QStringLiteral("Per day"), QStringLiteral("Reserved"), QStringLiteral("Paths")});
    for (const int column : {1, 2, 3, 4})
        table.setRightAligned(column);
    const QVariantList groups = volume.value(StationKey::groups).toList();
    for (const QVariant &value : groups) {
        const QVariantMap group = value.toMap();
        table.addRow({group.value(FieldKey::recordingGroupName).toString(),
                      bytesText(group.value(StationKey::recordedBytes)),
                      daysText(group.value(StationKey::recordedDays).toLongLong()),
                      bytesText(group.value(StationKey::bytesPerDay)),
                      sizeText(group.value(FieldKey::reserveSpace).toLongLong() * 1024),
                      group.value(StationKey::paths).toStringList().join(QStringLiteral(", "))});
    }
    const auto add = [&table](const QString &name, const QString &size) { table.addRow({name, size, {}, {}, {}, {}}); };
    const auto addPart = [&volume, &add](const QString &key, const QString &name) {
        if (volume.value(key).toLongLong() != 0)
            add(name, bytesText(volume.value(key)));
    };
    addPart(StationKey::backupBytes, QStringLiteral("(backup area)"));
    addPart(StationKey::withoutGroupBytes, QStringLiteral("(recordings of no group)"));
    add(QStringLiteral("(other files)"), bytesText(volume.value(StationKey::otherBytes)));
    if (volume.value(StationKey::unknownBytes).toLongLong() > 0)
        add(QStringLiteral("(recordings not counted, or other files)"),
            bytesText(volume.value(StationKey::unknownBytes)));
    if (volume.value(StationKey::reservedForRoot).toLongLong() > 0)
        add(QStringLiteral("(reserved for root)"), bytesText(volume.value(StationKey::reservedForRoot)));
    add(QStringLiteral("(free)"), bytesText(volume.value(StationKey::free)));
    if (volume.value(StationKey::excessBytes).toLongLong() > 0)
        add(QStringLiteral("(recordings that take no space)"), u'-' + bytesText(volume.value(StationKey::excessBytes)));
    add(QStringLiteral("(size)"), bytesText(volume.value(StationKey::size)));
    return table;
}

ExitCode showStorage(CommandRun &run)
{
    QVariantList pending;
    const CallOutcome looked = awaitFigures(run, &pending);
    if (looked.exitCode != ExitCode::Done)
        return run.end(looked);
    const CallOutcome outcome = run.callStation(StationCommandName::listStorage);
    const QVariantList volumes = outcome.parts.isEmpty() ? QVariantList() : outcome.parts.constLast().data.toList();
    const ExitCode exitCode =
        run.end(outcome, {[&volumes] { return storageJson(volumes); }, [&volumes] { printVolumes(volumes); }});
    return exitCode == ExitCode::Done ? judge(run, volumes, pending) : exitCode;
}
