#pragma once

#include "PluginRecordingManagement.h"

#include <QByteArray>
#include <QList>
#include <QMetaMethod>
#include <QVariant>

/// A call of one of the plug-in's invokables.
struct Call
{
    const char *name;
    QVariantList arguments; ///< of its longest form
    QVariant refused; ///< what it answers when it is refused
    /// Qt Gui, where items are made, is built without exceptions: without memory its lists end the process, and a
    /// constructor that is broken off leaves blocks behind. There operator new alone fails, and blocks are not counted.
    bool makesItem = false;
};

inline const QVariantMap pathInfo{
    {"path", "D:/Rec"}, {"pathType", 0}, {"reserveSpace", 2048}, {"isRecoveryMode", false}};
inline const QVariantMap groupInfo{
    {"recordingGroupName", 7}, {"recordingGroupReservedTimeEnabled", true}, {"recordingGroupReservedTime", "60"}};
inline const QVariant noObject = QVariant::fromValue<QObject *>(nullptr);
inline const QVariant localPath = QVariant::fromValue(PluginRecordingManagement::Local);
inline const QVariant noDots = QVariant::fromValue(PluginRecordingManagement::NoDotAndDotDot);

/// At least one call of each.
inline const QList<Call> calls{
    {"getVolumeModel", {}, noObject},
    {"getRecordingGroupModel", {}, noObject},
    {"getNASServerModel", {}, noObject},
    {"getNASServerDirModel", {}, noObject},
    {"getServerDirModel", {}, noObject},
    {"getRecordingGroupTreeModel", {}, noObject},
    {"getStorageUsageModel", {"st1"}, noObject, true},
    {"getStorageUsageModel", {""}, noObject, true},
    {"getGroupVolumeModel", {"", "{1}"}, noObject, true},
    {"getVolume", {"st1"}, false},
    {"getRecordingGroup", {}, ""},
    {"createDirectory", {"D:/Rec"}, false},
    {"addRecordingGroup", {"North", "D:/Rec", localPath, Q_INT64_C(2048)}, false},
    {"removeRecordingGroup", {QStringList{"{1}"}}, false},
    {"addPathToRecordingGroup", {"{1}", "D:/Rec", localPath, Q_INT64_C(2048)}, false},
    {"removePathFromRecordingGroup", {QStringList{"{1}"}, QStringList{"D:/Rec"}}, false},
    {"addNASPathsToVolume", {QStringList{"//nas/share"}}, false},
    {"addNASPathsToVolume", {QStringList{}}, false},
    {"updateRecordingGroup",
     {"{1}", QVariantList{"a"}, QVariantList{"b"}, QVariantList{"c"}, QVariantList{"d"}, QVariantList{"e"},
      QVariantMap{{"recordingGroupName", "South"}}},
     false},
    {"addRecordingGroupWithCompleteInfo",
     {groupInfo, QVariantList{pathInfo, QVariantHash(pathInfo.begin(), pathInfo.end())}, QVariantList{"a"}},
     false},
    {"retrieveRecordingGroupTreeModel", {}, false, true},
    {"clearRecordingGroupDataList", {}, {}},
    {"getRecordingGroupPathList", {"{1}", "st1"}, QVariantList{}},
    {"getRecordingGroupReservedSpaceList", {"{1}", "st1"}, QVariantList{}},
    {"getRecordingGroupNasPathList", {"{1}", "st1"}, QVariantList{}},
    {"getRecordingGroupRecoveryPathList", {"{1}", "st1"}, QVariantList{}},
    {"getRecordingGroupReservedTime", {"{1}", "st1"}, 0},
    {"getRecordingGroupMemberList", {"{1}", "st1"}, QVariantList{}},
    {"getVolumeInfo", {"D:\\Rec\\1", ""}, QVariantMap{}},
    {"streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups", {"Gate", "{2}", "st1"}, -1},
    {"getRecordingGroupIDList", {"st1/Gate"}, QVariantList{}},
    {"getServerDir", {"D:/", "st1"}, false},
    {"getNASServers", {"st1"}, false},
    {"addNASServer", {"nas", "Host", "anna", "secret", "st1"}, false},
    {"updateNASServer", {"1", "nas", "Host", "anna", "secret", "st1"}, false},
    {"removeNASServer", {"1", "st1"}, false},
    {"ignoreAddNASServerResponse", {}, {}},
    {"getNASServerDir", {"//nas/share", "Host", "anna", "secret", "st1", noDots}, false},
    {"getNASServerCapacity", {"//nas/share", "Host", "anna", "secret", "st1"}, false},
    {"addNASPathToVolume", {"//nas/share", "Host", "anna", "secret", "st1"}, false},
    {"reloadStorageUsageInfo", {"st1"}, false},
    {"getRecordingGroupInfoList", {}, QVariantList{}},
};

/// The invokable of that name, and its clones with fewer arguments, by their numbers.
inline QList<int> formsOf(const Call &call)
{
    const QMetaObject &meta = PluginRecordingManagement::staticMetaObject;
    QList<int> forms;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).name() == call.name)
            forms.append(i);
    }
    return forms;
}
