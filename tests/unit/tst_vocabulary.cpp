#include "ServerVocabulary.h"

#include <QTest>

/// The words as the server knows them, written out once more: a word that changes in one place alone breaks the wire.
class VocabularyTest : public QObject
{
    Q_OBJECT

private slots:
    void everyWordReadsAsItsName_data();
    void everyWordReadsAsItsName();
};

#define WORD(group, name) QTest::newRow(#group "::" #name) << group::name << QString(#name)

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

QTEST_APPLESS_MAIN(VocabularyTest)
#include "tst_vocabulary.moc"
