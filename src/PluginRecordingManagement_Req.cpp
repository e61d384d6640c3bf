#include "PluginRecordingManagement.h"

#include "ItemRoles.h"
#include "NoThrow.h"
#include "RecordingGroupTreeModel.h"
#include "ReplyFields.h"
#include "RequestContexts.h"
#include "ServerVocabulary.h"
#include "VolumeReport.h"
#include "framework/FrameworkWrapperBase.h"
#include "trace/TraceLog.h"

#include <QMetaMethod>
#include <QStandardItemModel>
#include <QUuid>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <utility>

namespace {

constexpr int sendFailedLine = 55; // fixed, for filters of the trace library

// A copy of @p value that crosses the framework as a context; throws std::bad_alloc.
template<typename Context>
std::unique_ptr<Context> newContext(const Context &value)
{
    std::unique_ptr<Context> context(new (std::nothrow) Context(value));
    if (!context)
        throw std::bad_alloc();
    return context;
}

QVariantMap nasPathRequest(const QString &basePath, const QString &logonDomain, const QString &userName,
                           const QString &password, const QString &relayPath)
{
    return {
        {FieldKey::basePath, basePath}, {FieldKey::logonDomain, logonDomain}, {FieldKey::userName, userName},
        {FieldKey::password, password}, {FieldKey::relayPath, relayPath},
    };
}

// The station plug-in's description of its station; empty when the object or its method is missing.
QVariantMap stationTree(QObject *stationPlugin)
{
    if (!stationPlugin)
        return {};
    const QMetaObject *const meta = stationPlugin->metaObject();
    const QMetaMethod method = meta->method(meta->indexOfMethod("getStationTree()"));
    QVariant station;
    if (method.isValid() && method.returnMetaType() == QMetaType::fromType<QVariant>())
        method.invoke(stationPlugin, Qt::DirectConnection, Q_RETURN_ARG(QVariant, station));
    return station.toMap();
}

// Where the next text that may be the camera's name begins in @p cameraId, after the one at @p name; -1 when none does.
qsizetype nextName(const QString &cameraId, qsizetype name)
{
    const qsizetype slash = cameraId.indexOf(u'/', name);
    return slash < 0 ? -1 : slash + 1;
}

// Whether @p cameraId has @p relayPath and a slash before the name that begins at @p name.
bool isRelayPath(const QString &relayPath, const QString &cameraId, qsizetype name)
{
    return relayPath.isEmpty() ? name == 0 : relayPath.size() + 1 == name && cameraId.startsWith(relayPath);
}

} // namespace

bool PluginRecordingManagement::sendRequestToServer(const QString &command, const QVariant &data, void *context,
                                                    const QString &relayPath)
{
    constexpr auto function = "PluginRecordingManagement::sendRequestToServer";
    const bool accepted =
        m_framework && noThrow(function, false, [&] {
            return m_framework->SendCommand(m_handle, m_pluginId, command, data, context, false, relayPath);
        });
    if (!accepted)
        TRACE_ERROR_AT(sendFailedLine, "%s, Send command failed.", function);
    return accepted;
}

QObject *PluginRecordingManagement::pluginObject(const QString &pluginId) const
{
    return m_framework ? m_framework->GetPluginObject(m_handle, pluginId) : nullptr;
}

// Volumes and folders. ----------------------------------------------------------------------------------------------

bool PluginRecordingManagement::getVolume(const QString &relayPath)
{
    return sendRequestToServer(ServerCommand::getVolume, {}, nullptr, relayPath);
}

QVariantMap PluginRecordingManagement::getVolumeInfo(const QString &path, const QString &)
{
    return noThrow("PluginRecordingManagement::getVolumeInfo", QVariantMap(), [&] {
        const QString slashPath = toSlashPath(path);
        QModelIndex volume;
        for (int row = 0; m_volumeModel && row < m_volumeModel->rowCount(); ++row) {
            const QModelIndex index = m_volumeModel->index(row, 0);
            const QString volumePath = toSlashPath(index.data(VolumeRole::RootPath).toString());
            // D:/Rec lies under D:/Re too: a plain prefix, and the first one counts.
            if (volumePath.isEmpty() || slashPath.startsWith(volumePath)) {
                volume = index;
                break;
            }
        }
        return QVariantMap{
            {QStringLiteral("size"), volume.data(VolumeRole::Size).toLongLong()},
            {QStringLiteral("availableSize"), volume.data(VolumeRole::AvailableSize).toLongLong()},
            {QStringLiteral("isNAS"), volume.data(VolumeRole::IsNas).toBool()},
            {QStringLiteral("isSystem"), volume.data(VolumeRole::IsSystem).toBool()},
        };
    });
}

bool PluginRecordingManagement::getServerDir(const QString &basePath, const QString &relayPath)
{
    return sendRequestToServer(ServerCommand::getServerDir, basePath, nullptr, relayPath);
}

bool PluginRecordingManagement::createDirectory(const QString &path)
{
    return sendRequestToServer(ServerCommand::createDirectory, path, nullptr, "");
}

bool PluginRecordingManagement::reloadStorageUsageInfo(const QString &relayPath)
{
    return sendRequestToServer(ServerCommand::reloadStorageUsageInfo, {}, nullptr, relayPath);
}

// Recording groups. -------------------------------------------------------------------------------------------------

QString PluginRecordingManagement::getRecordingGroup()
{
    return noThrow("PluginRecordingManagement::getRecordingGroup", QString(), [this] {
        QString requestId = QUuid::createUuid().toString();
        auto context = newContext<RequestIdContext>(requestId);
        setRecordingGroupRetrieved(false);
        if (!sendRequestToServer(ServerCommand::getRecordingGroup, {}, context.get(), ""))
            return QString();
        context.release(); // handleGetRecordingGroup destroys it
        return requestId;
    });
}

void PluginRecordingManagement::setRecordingGroupRetrieved(bool retrieved)
{
    m_recordingGroupRetrieved = retrieved ? 1 : 0;
    emit recordingGroupRetrievedChanged();
}

bool PluginRecordingManagement::IsValidReservedSpace(qint64 reserveSpace) const
{
    return reserveSpace % 1024 == 0;
}

bool PluginRecordingManagement::sendGroupPath(const char *function, const QString &command, const QString &groupKey,
                                              const QString &group, const QString &path, RecPathType recPathType,
                                              qlonglong reserveSpace)
{
    if (!IsValidReservedSpace(reserveSpace)) {
        TRACE_ERROR("%s, Reserve space must be multiple of 1024", function);
        return false;
    }
    if (group.isEmpty() || path.isEmpty()) {
        TRACE_ERROR("%s, Call function with empty parameter", function);
        return false;
    }
    return noThrow(function, false, [&] {
        const QVariantMap request{
            {groupKey, group},
            {FieldKey::path, path},
            {FieldKey::pathType, static_cast<int>(recPathType)},
            {FieldKey::reserveSpace, reserveSpace},
        };
        return sendRequestToServer(command, request, nullptr, "");
    });
}

bool PluginRecordingManagement::addRecordingGroup(const QString &groupName, const QString &path,
                                                  RecPathType recPathType, qlonglong reserveSpace)
{
    return sendGroupPath("PluginRecordingManagement::addRecordingGroup", ServerCommand::addRecordingGroup,
                         FieldKey::recordingGroupName, groupName, path, recPathType, reserveSpace);
}

bool PluginRecordingManagement::addPathToRecordingGroup(const QString &groupID, const QString &path,
                                                        RecPathType recPathType, qlonglong reserveSpace)
{
    return sendGroupPath("PluginRecordingManagement::addPathToRecordingGroup", ServerCommand::addPathToRecordingGroup,
                         FieldKey::recordingGroupID, groupID, path, recPathType, reserveSpace);
}

bool PluginRecordingManagement::removeRecordingGroup(const QStringList &groupIDList)
{
    constexpr auto function = "PluginRecordingManagement::removeRecordingGroup";
    if (groupIDList.isEmpty()) {
        TRACE_ERROR("%s, Call function with empty parameter", function);
        return false;
    }
    return noThrow(function, false, [&] {
        const QVariantMap request{{FieldKey::recordingGroupIDList, groupIDList}};
        return sendRequestToServer(ServerCommand::removeRecordingGroup, request, nullptr, "");
    });
}

bool PluginRecordingManagement::removePathFromRecordingGroup(const QStringList &groupIDList,
                                                             const QStringList &pathList)
{
    constexpr auto function = "PluginRecordingManagement::removePathFromRecordingGroup";
    if (groupIDList.isEmpty() || pathList.isEmpty()) {
        TRACE_ERROR("%s, Call function with empty parameter", function);
        return false;
    }
    if (groupIDList.size() != pathList.size()) {
        TRACE_ERROR("%s, List length mismatch", function);
        return false;
    }
    return noThrow(function, false, [&] {
        const QVariantMap request{
            {FieldKey::recordingGroupIDList, groupIDList},
            {FieldKey::recordingGroupPathList, pathList},
        };
        return sendRequestToServer(ServerCommand::removePathFromRecordingGroup, request, nullptr, "");
    });
}

bool PluginRecordingManagement::updateRecordingGroup(const QString &groupID, const QVariantList &addCameraList,
                                                     const QVariantList &removeCameraList,
                                                     const QVariantList &addPathList,
                                                     const QVariantList &removePathList,
                                                     const QVariantList &updatePathList, const QVariantMap &setGrpInfo)
{
    return noThrow("PluginRecordingManagement::updateRecordingGroup", false, [&] {
        const QVariantMap request{
            {FieldKey::recordingGroupID, groupID},
            {FieldKey::updateAddCameraList, addCameraList},
            {FieldKey::updateRmCameraList, removeCameraList},
            {FieldKey::updateAddPathList, addPathList},
            {FieldKey::updateRmPathList, removePathList},
            {FieldKey::updateSetPathList, updatePathList},
            {FieldKey::updateSetRecordingGroup, setGrpInfo},
        };
        return sendRequestToServer(ServerCommand::updateRecordingGroup, request, nullptr, "");
    });
}

std::optional<QVariantMap> PluginRecordingManagement::completeGroup(const QVariantMap &groupInfo,
                                                                    const QVariantList &paths,
                                                                    const QVariantList &deviceInfos) const
{
    constexpr auto function = "PluginRecordingManagement::addRecordingGroupWithCompleteInfo";
    const auto lacks = [](const QVariantMap &map, std::initializer_list<QString> keys) {
        return std::any_of(keys.begin(), keys.end(), [&map](const QString &key) { return !map.contains(key); });
    };

    if (lacks(groupInfo,
              {FieldKey::recordingGroupName, FieldKey::recordingGroupReservedTimeEnabled,
               FieldKey::recordingGroupReservedTime})) {
        TRACE_ERROR("%s, Group info is not completed.", function);
        return {};
    }
    const QString name = groupInfo.value(FieldKey::recordingGroupName).toString();
    if (name.isEmpty()) {
        TRACE_ERROR("%s, Group name is empty.", function);
        return {};
    }
    const bool timeEnabled = groupInfo.value(FieldKey::recordingGroupReservedTimeEnabled).toBool();
    const int reservedTime = groupInfo.value(FieldKey::recordingGroupReservedTime).toInt();
    if (timeEnabled && reservedTime < 1) {
        TRACE_ERROR("%s, Reserved time's config is error.", function);
        return {};
    }
    if (paths.isEmpty()) {
        TRACE_ERROR("%s, No any path is given.", function);
        return {};
    }
    for (const QVariant &element : paths) {
        const QVariantMap pathInfo = element.toMap();
        if (lacks(pathInfo, {FieldKey::path, FieldKey::pathType, FieldKey::reserveSpace, FieldKey::isRecoveryMode})) {
            TRACE_ERROR("%s, Pathinfo's structure (passed from Qml) is error.", function);
            return {};
        }
        if (!IsValidReservedSpace(pathInfo.value(FieldKey::reserveSpace).toLongLong())) {
            TRACE_ERROR("%s, Reserve space must be multiple of 1024", function);
            return {};
        }
    }
    return QVariantMap{
        {FieldKey::recordingGroupName, name},
        {FieldKey::recordingGroupReservedTimeEnabled, timeEnabled},
        {FieldKey::recordingGroupReservedTime, reservedTime},
        {FieldKey::pathInfoList, paths},
        {FieldKey::deviceInfos, deviceInfos},
    };
}

bool PluginRecordingManagement::addRecordingGroupWithCompleteInfo(const QVariantMap &groupInfo,
                                                                  const QVariantList &paths,
                                                                  const QVariantList &deviceInfos)
{
    return noThrow("PluginRecordingManagement::addRecordingGroupWithCompleteInfo", false, [&] {
        const auto request = completeGroup(groupInfo, paths, deviceInfos);
        return request && sendRequestToServer(ServerCommand::addRecordingGroupWithCompleteInfo, *request, nullptr, "");
    });
}

// Station tree. -----------------------------------------------------------------------------------------------------

bool PluginRecordingManagement::retrieveRecordingGroupTreeModel()
{
    static const QString stationPluginId = QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD");
    constexpr auto function = "PluginRecordingManagement::retrieveRecordingGroupTreeModel";

    return noThrow(function, false, [this] {
        if (!m_treeModel || m_treeModel->rowCount() == 0) {
            const QVariantMap station = stationTree(pluginObject(stationPluginId));
            if (station.isEmpty()) {
                TRACE_ERROR("%s, GetStationTree failed", function);
                return false;
            }
            CreateStationTreeModel(station);
        } else if (QStandardItem *const station = m_treeModel->item(0, 0)) {
            station->removeRows(0, station->rowCount());
        }
        const QVariantMap request{
            {FieldKey::relayPath, m_treeModel ? m_treeModel->index(0, 0).data(TreeRole::RelayPath) : QVariant()},
        };
        sendRequestToServer(ServerCommand::retrieveRecordingGroupTreeModel, request, nullptr, "");
        clearRecordingGroupDataList();
        return true;
    });
}

// Queries over the cache. -------------------------------------------------------------------------------------------

template<typename Value>
Value PluginRecordingManagement::cachedField(const char *function, Value RecordingGroupData::*field,
                                             const QString &recordingGroupID, const QString &relayPath) const
{
    return noThrow(function, Value{}, [&] {
        const auto group = findItemFromRecordingGroupList(recordingGroupID, relayPath);
        return group == m_recordingGroups.end() ? Value{} : (*group).*field;
    });
}

QVariantList PluginRecordingManagement::getRecordingGroupPathList(const QString &recordingGroupID,
                                                                  const QString &relayPath)
{
    return cachedField("PluginRecordingManagement::getRecordingGroupPathList",
                       &RecordingGroupData::recordingGroupPathList, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupReservedSpaceList(const QString &recordingGroupID,
                                                                           const QString &relayPath)
{
    return cachedField("PluginRecordingManagement::getRecordingGroupReservedSpaceList",
                       &RecordingGroupData::reserveSpace, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupNasPathList(const QString &recordingGroupID,
                                                                     const QString &relayPath)
{
    return cachedField("PluginRecordingManagement::getRecordingGroupNasPathList",
                       &RecordingGroupData::recordingGroupNASPathList, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupRecoveryPathList(const QString &recordingGroupID,
                                                                          const QString &relayPath)
{
    return cachedField("PluginRecordingManagement::getRecordingGroupRecoveryPathList",
                       &RecordingGroupData::recordingGroupRecoveryPathList, recordingGroupID, relayPath);
}

int PluginRecordingManagement::getRecordingGroupReservedTime(const QString &recordingGroupID, const QString &relayPath)
{
    return cachedField("PluginRecordingManagement::getRecordingGroupReservedTime",
                       &RecordingGroupData::recordingGroupReservedTime, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupMemberList(const QString &recordingGroupID,
                                                                    const QString &relayPath)
{
    return cachedField("PluginRecordingManagement::getRecordingGroupMemberList",
                       &RecordingGroupData::recordingGroupMemberList, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupIDList(const QString &cameraID)
{
    return noThrow("PluginRecordingManagement::getRecordingGroupIDList", QVariantList(), [&] {
        std::set<std::size_t> groups;
        // The name of the member is all of the id, or what follows one of its slashes: names and paths may have some.
        for (qsizetype name = 0; name >= 0; name = nextName(cameraID, name)) {
            groupIndex().visitMembers(m_recordingGroups, QStringView(cameraID).mid(name),
                                      [&](std::size_t group, const QVariantMap &) {
                                          if (isRelayPath(m_recordingGroups[group].relayPath, cameraID, name))
                                              groups.insert(group);
                                          return false;
                                      });
        }
        QVariantList ids;
        for (const std::size_t group : groups)
            ids.append(m_recordingGroups[group].recordingGroupID);
        return ids;
    });
}

int PluginRecordingManagement::streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups(const QString &cameraId,
                                                                                    const QString &recordingGroupID,
                                                                                    const QString &relayPath)
{
    constexpr auto function = "PluginRecordingManagement::streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups";
    return noThrow(function, -1, [&] {
        int streamIndex = -1;
        std::optional<std::size_t> judged;
        groupIndex().visitMembers(m_recordingGroups, cameraId, [&](std::size_t number, const QVariantMap &member) {
            const RecordingGroupData &group = m_recordingGroups[number];
            if (judged == number || (group.relayPath == relayPath && group.recordingGroupID == recordingGroupID))
                return false;
            judged = number; // the first member of that name decides for its group
            const bool found = fieldIn(member, FieldKey::enableTimeShift).toBool()
                || fieldIn(member, FieldKey::enableSeamless).toBool();
            if (found)
                streamIndex = fieldIn(member, FieldKey::streamIndex).toInt();
            return found;
        });
        return streamIndex;
    });
}

QVariantList PluginRecordingManagement::getRecordingGroupInfoList()
{
    return noThrow("PluginRecordingManagement::getRecordingGroupInfoList", QVariantList(), [this] {
        const QString station; // the directly connected one
        const auto entry = m_storageUsageModels.constFind(station);
        QVariantList groups; // a list made of a braced one does not survive that memory runs out
        if (entry == m_storageUsageModels.constEnd()) {
            groups.append(QVariantMap());
            return groups;
        }

        const QSharedPointer<QStandardItemModel> &usage = *entry;
        const std::shared_ptr<VolumeReport> report = m_volumeReports.value(station);
        groups.reserve(usage->rowCount());
        for (int row = 0; row < usage->rowCount(); ++row) {
            const QModelIndex group = usage->index(row, 0);
            const QString id = group.data(RecordingGroupRole::Id).toString();
            QVariantList volumes;
            const auto appendVolume = [&](const VolumeReport::Volume &volume) {
                volumes.append(QVariantMap{
                    {FieldKey::recordingPath, volume.path},
                    {QStringLiteral("totalSpace"), convertVolumeCapacity(volume.size)},
                    {QStringLiteral("remainingSpace"), convertVolumeCapacity(volume.availableSize)},
                    {QStringLiteral("isNAS"), volume.isNas},
                });
            };
            if (report)
                report->forEachVolume(id, appendVolume);
            groups.append(QVariantMap{
                {QStringLiteral("recordingGroup"), id},
                {QStringLiteral("groupName"), group.data(RecordingGroupRole::Name).toString()},
                {QStringLiteral("recordedDays"), group.data(RecordingGroupRole::RecordedDays).toInt()},
                {QStringLiteral("remainingDays"), group.data(RecordingGroupRole::RemainDays).toInt()},
                {QStringLiteral("volumeList"), volumes},
            });
        }
        return groups;
    });
}

// NAS servers. ------------------------------------------------------------------------------------------------------

bool PluginRecordingManagement::getNASServers(const QString &relayPath)
{
    return sendRequestToServer(ServerCommand::GetNasServers, relayPath, nullptr, "");
}

bool PluginRecordingManagement::addNASServer(const QString &host, const QString &logonDomain, const QString &userName,
                                             const QString &password, const QString &relayPath)
{
    constexpr auto function = "PluginRecordingManagement::addNASServer";
    if (host.isEmpty()) {
        TRACE_ERROR("%s, host is empty", function);
        return false;
    }
    std::unique_ptr<AddNASServerContext> context;
    QVariantMap request;
    try {
        request = {
            {FieldKey::host, host},         {FieldKey::logonDomain, logonDomain}, {FieldKey::userName, userName},
            {FieldKey::password, password}, {FieldKey::relayPath, relayPath},
        };
        context =
            newContext(AddNASServerContext{host, logonDomain, userName, password, QUuid::createUuid().toString()});
        m_addsBeingSent.append(context->requestId);
    } catch (const std::bad_alloc &) {
        TRACE_ERROR("%s, new AddNASServerContext failed", function);
        return false;
    }
    const QString requestId = context->requestId;
    const bool accepted = sendRequestToServer(ServerCommand::AddNasServer, request, context.get(), "");
    const bool isNewest =
        m_addsBeingSent.removeOne(requestId); // unless it was abandoned, or a newer add came in between
    if (!accepted)
        return false;
    context.release(); // handleAddNASServer destroys it
    if (isNewest) {
        m_addRequestId = requestId;
        m_addsBeingSent.clear();
    }
    return true;
}

bool PluginRecordingManagement::updateNASServer(const QString &id, const QString &host, const QString &domain,
                                                const QString &user, const QString &password, const QString &relayPath)
{
    return noThrow("PluginRecordingManagement::updateNASServer", false, [&] {
        const QVariantMap request{
            {QStringLiteral("id"), id}, {FieldKey::host, host},         {FieldKey::logonDomain, domain},
            {FieldKey::userName, user}, {FieldKey::password, password}, {FieldKey::relayPath, relayPath},
        };
        auto context = newContext<NASServerRequestContext>(request);
        if (!sendRequestToServer(ServerCommand::UpdateNASServer, request, context.get(), ""))
            return false;
        context.release(); // handleUpdateNASServer destroys it
        return true;
    });
}

bool PluginRecordingManagement::removeNASServer(const QString &id, const QString &relayPath)
{
    return noThrow("PluginRecordingManagement::removeNASServer", false, [&] {
        const QVariantMap request{{QStringLiteral("id"), id}, {FieldKey::relayPath, relayPath}};
        auto context = newContext<NASServerRequestContext>(request);
        // Given away whether or not the send succeeds: docs/decisions/0002-kept-contexts.md.
        return sendRequestToServer(ServerCommand::RemoveNASServer, request, context.release(), "");
    });
}

void PluginRecordingManagement::ignoreAddNASServerResponse()
{
    m_addRequestId.clear();
    m_addsBeingSent.clear();
}

bool PluginRecordingManagement::getNASServerDir(const QString &basePath, const QString &logonDomain,
                                                const QString &userName, const QString &password,
                                                const QString &relayPath, NASDirFilter filter)
{
    constexpr auto function = "PluginRecordingManagement::getNASServerDir";
    if (basePath.isEmpty()) {
        TRACE_ERROR("%s, basePath is empty", function);
        return false;
    }
    return noThrow(function, false, [&] {
        const auto request = nasPathRequest(basePath, logonDomain, userName, password, relayPath);
        // The filter itself is the context: nothing is allocated.
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        auto *const context = reinterpret_cast<void *>(static_cast<qintptr>(filter));
        return sendRequestToServer(ServerCommand::GetNasDir, request, context, "");
    });
}

bool PluginRecordingManagement::getNASServerCapacity(const QString &basePath, const QString &logonDomain,
                                                     const QString &userName, const QString &password,
                                                     const QString &relayPath)
{
    constexpr auto function = "PluginRecordingManagement::getNASServerCapacity";
    if (basePath.isEmpty()) {
        TRACE_ERROR("%s, basePath is empty", function);
        return false;
    }
    return noThrow(function, false, [&] {
        const auto request = nasPathRequest(basePath, logonDomain, userName, password, relayPath);
        return sendRequestToServer(ServerCommand::GetNasCapacity, request, nullptr, "");
    });
}

bool PluginRecordingManagement::addNASPathToVolume(const QString &basePath, const QString &logonDomain,
                                                   const QString &userName, const QString &password,
                                                   const QString &relayPath)
{
    constexpr auto function = "PluginRecordingManagement::addNASPathToVolume";
    if (basePath.isEmpty()) {
        TRACE_ERROR("%s, basePath is empty", function);
        return false;
    }
    return noThrow(function, false, [&] {
        const auto request = nasPathRequest(basePath, logonDomain, userName, password, relayPath);
        auto context = newContext<NASPathContext>(basePath);
        if (!sendRequestToServer(ServerCommand::GetNasCapacity, request, context.get(), ""))
            return false;
        context.release(); // handleGetNASServerCapacity destroys it
        return true;
    });
}

bool PluginRecordingManagement::addNASPathsToVolume(const QStringList &pathList)
{
    return noThrow("PluginRecordingManagement::addNASPathsToVolume", false, [&] {
        if (pathList.isEmpty()) {
            emit addNASPathsToVolumeResp(true); // nothing to do counts as done, though nothing was sent
            return false;
        }
        const QVariantMap request{{FieldKey::pathList, pathList}};
        return sendRequestToServer(ServerCommand::addNASPathsToVolume, request, nullptr, "");
    });
}
