#include "EditRequestData.h"

#include "ServerVocabulary.h"

QVariant editRequestData(const QString &invokable, const QVariantList &arguments)
{
    if (invokable == ServerCommand::addRecordingGroupWithCompleteInfo) {
        QVariantMap group = arguments.at(0).toMap();
        group.insert(FieldKey::pathInfoList, arguments.at(1));
        group.insert(FieldKey::deviceInfos, arguments.at(2));
        return group;
    }
    if (invokable == ServerCommand::updateRecordingGroup) {
        return QVariantMap{
            {FieldKey::recordingGroupID, arguments.at(0)},        {FieldKey::updateAddCameraList, arguments.at(1)},
            {FieldKey::updateRmCameraList, arguments.at(2)},      {FieldKey::updateAddPathList, arguments.at(3)},
            {FieldKey::updateRmPathList, arguments.at(4)},        {FieldKey::updateSetPathList, arguments.at(5)},
            {FieldKey::updateSetRecordingGroup, arguments.at(6)},
        };
    }
    QVariantMap entries{{FieldKey::recordingGroupIDList, arguments.at(0)}};
    if (invokable == ServerCommand::removePathFromRecordingGroup)
        entries.insert(FieldKey::recordingGroupPathList, arguments.at(1));
    return entries;
}
