#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "StatusMonitor.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// The words as the server knows them, written out once more: a word that changes in one place alone breaks the wire.
class VocabularyTest : public QObject
{
    Q_OBJECT

private slots:
    void everyWordReadsAsItsName_data();
    void everyWordReadsAsItsName();
    void everyWordHasItsRow_data();
    void everyWordHasItsRow();
};

#define WORD(group, name) QTest::newRow(#group "::" #name) << group::name << QString(#name)
#define STATION_WORD(group, name) QTest::newRow(#group "::" #name) << group::name << QString("station." #name)

void VocabularyTest::everyWordReadsAsItsName_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("text");

    WORD(ServerCommand, GetNasServers);
    WORD(ServerCommand, AddNasServer);
    WORD(ServerCommand, UpdateNASServer);
    WORD(ServerCommand, RemoveNASServer);
    WORD(ServerCommand, GetNasDir);
    WORD(ServerCommand, GetNasCapacity);
    WORD(ServerCommand, addNASPathsToVolume);
    WORD(ServerCommand, getVolume);
    WORD(ServerCommand, getServerDir);
    WORD(ServerCommand, createDirectory);
    WORD(ServerCommand, reloadStorageUsageInfo);
    WORD(ServerCommand, getRecordingGroup);
    WORD(ServerCommand, addRecordingGroup);
    WORD(ServerCommand, addPathToRecordingGroup);
    WORD(ServerCommand, removePathFromRecordingGroup);
    WORD(ServerCommand, removeRecordingGroup);
    WORD(ServerCommand, addRecordingGroupWithCompleteInfo);
    WORD(ServerCommand, updateRecordingGroup);
    WORD(ServerCommand, retrieveRecordingGroupTreeModel);

    WORD(ServerEvent, VolumeChanged);

    WORD(StatusMonitorMethod, monitorVolumeStatus);
    WORD(StatusMonitorMethod, removeVolumeError);
    WORD(StatusMonitorMethod, monitorInsufficientRecordingDays);
    WORD(StatusMonitorMethod, monitorSufficientRecordingGroup);

    WORD(NasReturnCode, LogonNASServerFaled);
    WORD(NasReturnCode, NASServerExist);
    WORD(NasReturnCode, GetNasDirFailed);
    WORD(NasReturnCode, GetNasCapacityFailed);

    WORD(FieldKey, host);
    WORD(FieldKey, logonDomain);
    WORD(FieldKey, userName);
    WORD(FieldKey, password);
    WORD(FieldKey, relayPath);
    WORD(FieldKey, basePath);
    WORD(FieldKey, dirFolderList);
    WORD(FieldKey, pathList);
    WORD(FieldKey, diskName);
    WORD(FieldKey, diskTotal);
    WORD(FieldKey, diskUsed);
    WORD(FieldKey, recordingGroupID);
    WORD(FieldKey, recordingGroupIDList);
    WORD(FieldKey, recordingGroupName);
    WORD(FieldKey, recordingGroupPathList);
    WORD(FieldKey, recordingGroupNASPathList);
    WORD(FieldKey, recordingGroupRecoveryPathList);
    WORD(FieldKey, recordingGroupNodeIdList);
    WORD(FieldKey, recordingGroupMemberList);
    WORD(FieldKey, recordingGroupReservedTime);
    WORD(FieldKey, recordingGroupReservedTimeEnabled);
    WORD(FieldKey, reserveSpace);
    WORD(FieldKey, path);
    WORD(FieldKey, pathType);
    WORD(FieldKey, pathInfoList);
    WORD(FieldKey, deviceInfos);
    WORD(FieldKey, isRecoveryMode);
    WORD(FieldKey, errorAction);
    WORD(FieldKey, updateAddCameraList);
    WORD(FieldKey, updateRmCameraList);
    WORD(FieldKey, updateAddPathList);
    WORD(FieldKey, updateRmPathList);
    WORD(FieldKey, updateSetPathList);
    WORD(FieldKey, updateSetRecordingGroup);
    WORD(FieldKey, streamIndex);
    WORD(FieldKey, enableTimeShift);
    WORD(FieldKey, enableSeamless);
    WORD(FieldKey, camName);
    WORD(FieldKey, volumeName);
    WORD(FieldKey, volumePath);
    WORD(FieldKey, volumeSize);
    WORD(FieldKey, volumeAvailableSize);
    WORD(FieldKey, volumeIsSystem);
    WORD(FieldKey, volumeIsNAS);
    WORD(FieldKey, volumeRecordedDays);
    WORD(FieldKey, volumeOneDayUsage);
    WORD(FieldKey, recordingPath);
    WORD(FieldKey, backupID);

    WORD(NodeType, RecordingGroup);

    WORD(Unused, ClientID);
    WORD(Unused, InnContext);
    WORD(Unused, cameraId);
    WORD(Unused, cameraName);
    WORD(Unused, deviceIdList);
    WORD(Unused, deviceNameList);
    WORD(Unused, preEvent);
    WORD(Unused, postEvent);
    WORD(Unused, recordingGroupRevision);
    WORD(Unused, setRecordingGroup);
    WORD(Unused, unsupportID);

    WORD(StationKey, streams);
    WORD(StationKey, keptBytes);
    WORD(StationKey, element);
    WORD(StationKey, index);
    WORD(StationKey, value);
    WORD(StationKey, returnCode);
    WORD(StationKey, reason);
    WORD(StationKey, id);
    WORD(StationKey, total);
    WORD(StationKey, used);
    WORD(StationKey, done);
    WORD(StationKey, running);
    WORD(StationKey, alarms);
    WORD(StationKey, pending);
    WORD(StationKey, kind);
    WORD(StationKey, severity);
    WORD(StationKey, subject);
    WORD(StationKey, text);
    WORD(StationKey, remedy);
    WORD(StationKey, since);
    WORD(StationKey, until);
    WORD(StationKey, acknowledgedAt);
    WORD(StationKey, acknowledgedBy);
    WORD(StationKey, note);
    WORD(StationKey, number);
    WORD(StationKey, time);
    WORD(StationKey, client);
    WORD(StationKey, user);
    WORD(StationKey, duration);
    WORD(StationKey, from);
    WORD(StationKey, limit);
    WORD(StationKey, before);
    WORD(StationKey, resolution);
    WORD(StationKey, samples);
    WORD(StationKey, gaps);
    WORD(StationKey, moreFrom);
    WORD(StationKey, recordedDays);
    WORD(StationKey, remainingDays);
    WORD(StationKey, oneDayUsage);
    WORD(StationKey, recordedBytes);
    WORD(StationKey, created);
    WORD(StationKey, state);
    WORD(StationKey, size);
    WORD(StationKey, free);
    WORD(StationKey, reservedForRoot);
    WORD(StationKey, groups);
    WORD(StationKey, paths);
    WORD(StationKey, bytesPerDay);
    WORD(StationKey, counted);
    WORD(StationKey, countedAt);
    WORD(StationKey, backupBytes);
    WORD(StationKey, withoutGroupBytes);
    WORD(StationKey, otherBytes);
    WORD(StationKey, unknownBytes);
    WORD(StationKey, excessBytes);
    WORD(StationKey, command);
    WORD(StationKey, data);
    WORD(StationKey, errors);
    WORD(StationKey, volumes);
    WORD(StationKey, now);
    WORD(StationKey, then);
    WORD(StationKey, place);
    WORD(StationKey, folder);
    WORD(StationKey, cameras);
    WORD(StationKey, recordedFiles);
    WORD(StationKey, oldestDay);
    WORD(StationKey, newestDay);
    WORD(StationKey, deletion);
    WORD(StationKey, begun);
    WORD(StationKey, ended);
    WORD(StationKey, confirmation);
    WORD(StationKey, movedDays);
    WORD(StationKey, deletedBytes);
    WORD(StationKey, leftFiles);
    WORD(StationKey, leftBytes);
    WORD(StationKey, leftEntries);
    WORD(StationKey, left);

    WORD(StationLeftReason, NotARecording);
    WORD(StationLeftReason, CannotDelete);

    WORD(StationVolumeKind, local);
    WORD(StationVolumeKind, NAS);

    WORD(StationVolumeState, there);
    WORD(StationVolumeState, readOnly);
    WORD(StationVolumeState, gone);
    WORD(StationVolumeState, notAnswering);
    WORD(StationVolumeState, unknown);

    WORD(StationHistoryKind, recordingGroup);
    WORD(StationHistoryKind, volume);
    WORD(StationResolution, hour);
    WORD(StationResolution, day);

    WORD(StationSeverity, error);
    WORD(StationSeverity, warning);

    WORD(StationAlarmKind, VolumeGone);
    WORD(StationAlarmKind, VolumeNotAnswering);
    WORD(StationAlarmKind, PathNotWritable);
    WORD(StationAlarmKind, GroupWithoutPath);
    WORD(StationAlarmKind, InsufficientRecordingDays);
    WORD(StationAlarmKind, FolderNotReadable);
    WORD(StationAlarmKind, FolderNotAnswering);
    WORD(StationAlarmKind, RecordingsNotCounted);
    WORD(StationAlarmKind, ShareNotAnswering);
    WORD(StationAlarmKind, ShareRefused);
    WORD(StationAlarmKind, ShareMissing);
    WORD(StationAlarmKind, SharePending);
    WORD(StationAlarmKind, NasKeyUnusable);
    WORD(StationAlarmKind, ClockBehind);
    WORD(StationAlarmKind, ClockAhead);
    WORD(StationAlarmKind, RecordingsOfTheFuture);

    WORD(StationReturnCode, UnknownCommand);
    WORD(StationReturnCode, BadRequest);
    WORD(StationReturnCode, DatabaseMissing);
    WORD(StationReturnCode, DatabaseDamaged);
    WORD(StationReturnCode, DatabaseNewer);
    WORD(StationReturnCode, DatabaseNotAllowed);
    WORD(StationReturnCode, DatabaseNotOwned);
    WORD(StationReturnCode, DatabaseFull);
    WORD(StationReturnCode, DatabaseReadOnly);
    WORD(StationReturnCode, DatabaseBusy);
    WORD(StationReturnCode, DatabaseReplaced);
    WORD(StationReturnCode, DatabaseFailed);
    WORD(StationReturnCode, StationStopping);
    WORD(StationReturnCode, RequestIdInUse);
    WORD(StationReturnCode, OperatorNeeded);
    WORD(StationReturnCode, UserRefused);
    WORD(StationReturnCode, TooManyCommands);
    WORD(StationReturnCode, ReplyTooLarge);
    WORD(StationReturnCode, InternalError);
    WORD(StationReturnCode, PathNotAbsolute);
    WORD(StationReturnCode, DirectoryNotFound);
    WORD(StationReturnCode, NotADirectory);
    WORD(StationReturnCode, DirectoryNotReadable);
    WORD(StationReturnCode, NameRefused);
    WORD(StationReturnCode, EmptyName);
    WORD(StationReturnCode, DirectoryExists);
    WORD(StationReturnCode, FileExists);
    WORD(StationReturnCode, OutsideVolumes);
    WORD(StationReturnCode, VolumeNotAnswering);
    WORD(StationReturnCode, VolumeReadOnly);
    WORD(StationReturnCode, VolumeFull);
    WORD(StationReturnCode, PermissionDenied);
    WORD(StationReturnCode, CannotCreate);
    WORD(StationReturnCode, RecordingGroupNotFound);
    WORD(StationReturnCode, EmptyRecordingGroupName);
    WORD(StationReturnCode, RecordingGroupNameInUse);
    WORD(StationReturnCode, PathNotWritable);
    WORD(StationReturnCode, PathTypeRefused);
    WORD(StationReturnCode, PathInGroup);
    WORD(StationReturnCode, PathNotInGroup);
    WORD(StationReturnCode, ReservedSpaceRefused);
    WORD(StationReturnCode, ReservedSpaceExceedsVolume);
    WORD(StationReturnCode, LastPathOfGroup);
    WORD(StationReturnCode, ReservedTimeRefused);
    WORD(StationReturnCode, CameraNotFound);
    WORD(StationReturnCode, StreamNotFound);
    WORD(StationReturnCode, CameraInGroup);
    WORD(StationReturnCode, CameraNotInGroup);
    WORD(StationReturnCode, UnknownStation);
    WORD(StationReturnCode, EmptyCameraName);
    WORD(StationReturnCode, CameraExists);
    WORD(StationReturnCode, CameraInUse);
    WORD(StationReturnCode, SiteNotEmpty);
    WORD(StationReturnCode, ForecastRefused);
    WORD(StationReturnCode, NoHistory);
    WORD(StationReturnCode, PlaceNotFound);
    WORD(StationReturnCode, PlaceInUse);
    WORD(StationReturnCode, PlaceOnNas);
    WORD(StationReturnCode, PlaceBusy);
    WORD(StationReturnCode, PlaceNotCounted);
    WORD(StationReturnCode, ConfirmationRefused);
    WORD(StationReturnCode, NoPathOnVolume);
    WORD(StationReturnCode, RecordingsExist);
    WORD(StationReturnCode, CannotMove);
    WORD(StationReturnCode, DeletionCancelled);
    WORD(StationReturnCode, RecordingsLeft);
    WORD(StationReturnCode, NoDeletion);
    WORD(StationReturnCode, AlarmNotFound);
    WORD(StationReturnCode, AlarmNotAcknowledged);
    WORD(StationReturnCode, NoteRefused);
    WORD(StationReturnCode, NasServerNotResponding);
    WORD(StationReturnCode, NasServerNotFound);
    WORD(StationReturnCode, NasHostRefused);
    WORD(StationReturnCode, NasPasswordNeeded);
    WORD(StationReturnCode, NasKeyUnusable);

    STATION_WORD(StationCommandName, listCameras);
    STATION_WORD(StationCommandName, addCamera);
    STATION_WORD(StationCommandName, removeCamera);
    STATION_WORD(StationCommandName, createSampleSite);
    STATION_WORD(StationCommandName, listAlarms);
    STATION_WORD(StationCommandName, listStorage);
    STATION_WORD(StationCommandName, forecast);
    STATION_WORD(StationCommandName, listPastAlarms);
    STATION_WORD(StationCommandName, listActivity);
    STATION_WORD(StationCommandName, readHistory);
    STATION_WORD(StationCommandName, listUnassignedRecordings);
    STATION_WORD(StationCommandName, assignRecordings);
    STATION_WORD(StationCommandName, deleteRecordings);
    STATION_WORD(StationCommandName, cancelDeletion);
    STATION_WORD(StationCommandName, acknowledgeAlarm);
    STATION_WORD(StationCommandName, withdrawAcknowledgement);
    STATION_WORD(StationEventName, AlarmsChanged);
    STATION_WORD(StationEventName, ActivityAdded);
    STATION_WORD(StationEventName, DeletionProgress);
    STATION_WORD(StationEventName, Heartbeat);
    WORD(StationEventName, StorageScanProgress);

    QTest::newRow("ReturnCode::Success") << ReturnCode::Success << QString("0");
    QTest::newRow("Unused::FrameworkInternalError")
        << Unused::FrameworkInternalError << QString("{2C85B19D-AE6F-45D9-B8FE-DC436FCBEABE}FrameworkInternalError");
}

void VocabularyTest::everyWordReadsAsItsName()
{
    QFETCH(QString, word);
    QFETCH(QString, text);
    QCOMPARE(word, text);
}

void VocabularyTest::everyWordHasItsRow_data()
{
    QTest::addColumn<QString>("header");
    QTest::newRow("server") << "protocol/ServerVocabulary.h";
    QTest::newRow("station") << "protocol/StationVocabulary.h";
}

void VocabularyTest::everyWordHasItsRow()
{
    QFETCH(QString, header);
    const auto text = [](const QString &file) {
        QFile source(QDir(SOURCE_DIR).filePath(file));
        return source.open(QIODevice::ReadOnly) ? QString::fromUtf8(source.readAll()) : QString();
    };
    const QString rows = text("tests/unit/tst_vocabulary.cpp");
    static const QRegularExpression declaration("^(?:namespace (\\w+) \\{|extern const QString (\\w+);)",
                                                QRegularExpression::MultilineOption);
    QString group;
    int words = 0;
    auto match = declaration.globalMatch(text(header));
    while (match.hasNext()) {
        const auto found = match.next();
        if (found.hasCaptured(1)) {
            group = found.captured(1);
            continue;
        }
        const QString word = found.captured(2);
        const bool hasRow = rows.contains(QString("WORD(%1, %2);").arg(group, word))
            || rows.contains(QString("newRow(\"%1::%2\")").arg(group, word));
        QVERIFY2(hasRow, qPrintable(word));
        ++words;
    }
    QVERIFY(words > 50);
}

QTEST_APPLESS_MAIN(VocabularyTest)
#include "tst_vocabulary.moc"
