#include "PluginRecordingManagement.h"

#include "ItemRoles.h"
#include "RecordingGroupTreeModel.h"
#include "ReplyFields.h"
#include "RequestContexts.h"
#include "ServerVocabulary.h"
#include "framework/FrameworkWrapperBase.h"
#include "trace/TraceLog.h"

#include <QMetaMethod>
#include <QStandardItemModel>
#include <QUuid>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <utility>

namespace {

constexpr int sendFailedLine = 55; // under which the trace library's filters know a failed send

// What @p query answers; @p nothing when memory ran out. Sending stays outside: what the framework throws is its own.
template<typename Answer, typename Query>
Answer answerOr(const Answer &nothing, Query query)
{
    try {
        return query();
    } catch (const std::bad_alloc &) {
        return nothing;
    }
}

// The data of a command; none when memory ran out.
std::optional<QVariantMap> requestOf(std::initializer_list<std::pair<QString, QVariant>> fields)
{
    return answerOr(std::optional<QVariantMap>(), [&] { return std::optional(QVariantMap(fields)); });
}

// Empty when memory ran out.
QString newRequestId()
{
    return answerOr(QString(), [] { return QUuid::createUuid().toString(); });
}

// A copy of @p value that crosses the framework as a context; null when memory ran out.
template<typename Context>
std::unique_ptr<Context> newContext(const Context &value) noexcept
{
    try {
        return std::unique_ptr<Context>(new (std::nothrow) Context(value));
    } catch (const std::exception &) {
        return nullptr;
    }
}

std::optional<QVariantMap> nasPathRequest(const QString &basePath, const QString &logonDomain, const QString &userName,
                                          const QString &password, const QString &relayPath)
{
    return requestOf({
        {FieldKey::basePath, basePath},
        {FieldKey::logonDomain, logonDomain},
        {FieldKey::userName, userName},
        {FieldKey::password, password},
        {FieldKey::relayPath, relayPath},
    });
}

// What the station plug-in tells of its station; empty when the object or its method is missing, or memory ran out.
QVariantMap stationTree(QObject *stationPlugin)
{
    if (!stationPlugin)
        return {};
    return answerOr(QVariantMap(), [stationPlugin] {
        const QMetaObject *const meta = stationPlugin->metaObject();
        const QMetaMethod method = meta->method(meta->indexOfMethod("getStationTree()"));
        QVariant station;
        if (method.isValid() && method.returnMetaType() == QMetaType::fromType<QVariant>())
            method.invoke(stationPlugin, Qt::DirectConnection, Q_RETURN_ARG(QVariant, station));
        return station.toMap();
    });
}

// Leaves the station alone in @p tree; false when memory ran out.
bool removeGroups(const QStandardItemModel &tree)
{
    return answerOr(false, [&tree] {
        if (QStandardItem *const station = tree.item(0, 0))
            station->removeRows(0, station->rowCount());
        return true;
    });
}

// Where the next name that @p cameraId may end with begins, after the one at @p name; -1 when there is none.
qsizetype nextName(const QString &cameraId, qsizetype name)
{
    const qsizetype slash = cameraId.indexOf(u'/', name);
    return slash < 0 ? -1 : slash + 1;
}

// Whether what precedes @p name in @p cameraId is @p relayPath and the slash between them.
bool isRelayPath(const QString &relayPath, const QString &cameraId, qsizetype name)
{
    return relayPath.isEmpty() ? name == 0 : relayPath.size() + 1 == name && cameraId.startsWith(relayPath);
}

} // namespace

bool PluginRecordingManagement::sendRequestToServer(const QString &command, const QVariant &data, void *context,
                                                    const QString &relayPath)
{
    if (m_framework && m_framework->SendCommand(m_handle, m_pluginId, command, data, context, false, relayPath))
        return true;
    TRACE_ERROR_AT(sendFailedLine, "%s, Send command failed.", "PluginRecordingManagement::sendRequestToServer");
    return false;
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
    return answerOr(QVariantMap(), [&] {
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
    const QString requestId = newRequestId();
    auto context = newContext<RequestIdContext>(requestId);
    if (requestId.isEmpty() || !context)
        return {};
    setRecordingGroupRetrieved(false);
    if (!sendRequestToServer(ServerCommand::getRecordingGroup, {}, context.get(), ""))
        return {};
    context.release(); // handleGetRecordingGroup destroys it
    return requestId;
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
    const auto request = requestOf({
        {groupKey, group},
        {FieldKey::path, path},
        {FieldKey::pathType, static_cast<int>(recPathType)},
        {FieldKey::reserveSpace, reserveSpace},
    });
    return request && sendRequestToServer(command, *request, nullptr, "");
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
    const auto request = requestOf({{FieldKey::recordingGroupIDList, groupIDList}});
    return request && sendRequestToServer(ServerCommand::removeRecordingGroup, *request, nullptr, "");
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
    const auto request = requestOf({
        {FieldKey::recordingGroupIDList, groupIDList},
        {FieldKey::recordingGroupPathList, pathList},
    });
    return request && sendRequestToServer(ServerCommand::removePathFromRecordingGroup, *request, nullptr, "");
}

bool PluginRecordingManagement::updateRecordingGroup(const QString &groupID, const QVariantList &addCameraList,
                                                     const QVariantList &removeCameraList,
                                                     const QVariantList &addPathList,
                                                     const QVariantList &removePathList,
                                                     const QVariantList &updatePathList, const QVariantMap &setGrpInfo)
{
    const auto request = requestOf({
        {FieldKey::recordingGroupID, groupID},
        {FieldKey::updateAddCameraList, addCameraList},
        {FieldKey::updateRmCameraList, removeCameraList},
        {FieldKey::updateAddPathList, addPathList},
        {FieldKey::updateRmPathList, removePathList},
        {FieldKey::updateSetPathList, updatePathList},
        {FieldKey::updateSetRecordingGroup, setGrpInfo},
    });
    return request && sendRequestToServer(ServerCommand::updateRecordingGroup, *request, nullptr, "");
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
    return requestOf({
        {FieldKey::recordingGroupName, name},
        {FieldKey::recordingGroupReservedTimeEnabled, timeEnabled},
        {FieldKey::recordingGroupReservedTime, reservedTime},
        {FieldKey::pathInfoList, paths},
        {FieldKey::deviceInfos, deviceInfos},
    });
}

bool PluginRecordingManagement::addRecordingGroupWithCompleteInfo(const QVariantMap &groupInfo,
                                                                  const QVariantList &paths,
                                                                  const QVariantList &deviceInfos)
{
    const auto request =
        answerOr(std::optional<QVariantMap>(), [&] { return completeGroup(groupInfo, paths, deviceInfos); });
    return request && sendRequestToServer(ServerCommand::addRecordingGroupWithCompleteInfo, *request, nullptr, "");
}

// Station tree. -----------------------------------------------------------------------------------------------------

bool PluginRecordingManagement::retrieveRecordingGroupTreeModel()
{
    static const QString stationPluginId = QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD");

    if (!m_treeModel || m_treeModel->rowCount() == 0) {
        const QVariantMap station = stationTree(pluginObject(stationPluginId));
        if (station.isEmpty()) {
            TRACE_ERROR("%s, GetStationTree failed", "PluginRecordingManagement::retrieveRecordingGroupTreeModel");
            return false;
        }
        if (!answerOr(false, [&] { return CreateStationTreeModel(station); }))
            return false;
    } else if (!removeGroups(*m_treeModel)) {
        return false;
    }

    const auto request = requestOf({
        {FieldKey::relayPath, m_treeModel ? m_treeModel->index(0, 0).data(TreeRole::RelayPath) : QVariant()},
    });
    if (!request)
        return false;
    sendRequestToServer(ServerCommand::retrieveRecordingGroupTreeModel, *request, nullptr, "");
    clearRecordingGroupDataList();
    return true;
}

// Queries over the cache. -------------------------------------------------------------------------------------------

template<typename Value>
Value PluginRecordingManagement::cachedField(Value RecordingGroupData::*field, const QString &recordingGroupID,
                                             const QString &relayPath) const
{
    return answerOr(Value{}, [&] {
        const auto group = findItemFromRecordingGroupList(m_recordingGroups, recordingGroupID, relayPath);
        return group == m_recordingGroups.end() ? Value{} : (*group).*field;
    });
}

QVariantList PluginRecordingManagement::getRecordingGroupPathList(const QString &recordingGroupID,
                                                                  const QString &relayPath)
{
    return cachedField(&RecordingGroupData::recordingGroupPathList, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupReservedSpaceList(const QString &recordingGroupID,
                                                                           const QString &relayPath)
{
    return cachedField(&RecordingGroupData::reserveSpace, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupNasPathList(const QString &recordingGroupID,
                                                                     const QString &relayPath)
{
    return cachedField(&RecordingGroupData::recordingGroupNASPathList, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupRecoveryPathList(const QString &recordingGroupID,
                                                                          const QString &relayPath)
{
    return cachedField(&RecordingGroupData::recordingGroupRecoveryPathList, recordingGroupID, relayPath);
}

int PluginRecordingManagement::getRecordingGroupReservedTime(const QString &recordingGroupID, const QString &relayPath)
{
    return cachedField(&RecordingGroupData::recordingGroupReservedTime, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupMemberList(const QString &recordingGroupID,
                                                                    const QString &relayPath)
{
    return cachedField(&RecordingGroupData::recordingGroupMemberList, recordingGroupID, relayPath);
}

QVariantList PluginRecordingManagement::getRecordingGroupIDList(const QString &cameraID)
{
    return answerOr(QVariantList(), [&] {
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
    return answerOr(-1, [&] {
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
    return answerOr(QVariantList(), [&] {
        const QString station; // the directly connected one
        const auto entry = m_storageUsageModels.constFind(station);
        QVariantList groups;
        if (entry == m_storageUsageModels.constEnd()) {
            groups.append(QVariantMap());
            return groups;
        }

        const QSharedPointer<QStandardItemModel> usage = *entry;
        for (int row = 0; usage && row < usage->rowCount(); ++row) {
            const QModelIndex group = usage->index(row, 0);
            const QString id = group.data(RecordingGroupRole::Id).toString();
            const QSharedPointer<QStandardItemModel> paths = m_groupVolumeModels.value(station).value(id);
            QVariantList volumes;
            volumes.reserve(paths ? paths->rowCount() : 0);
            for (int pathRow = 0; paths && pathRow < paths->rowCount(); ++pathRow) {
                const QModelIndex path = paths->index(pathRow, 0);
                volumes.append(QVariantMap{
                    {FieldKey::recordingPath, path.data(VolumeRole::RootPath).toString()},
                    {QStringLiteral("totalSpace"), convertVolumeCapacity(path.data(VolumeRole::Size).toLongLong())},
                    {QStringLiteral("remainingSpace"),
                     convertVolumeCapacity(path.data(VolumeRole::AvailableSize).toLongLong())},
                    {QStringLiteral("isNAS"), path.data(VolumeRole::IsNas).toBool()},
                });
            }
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
    const QString requestId = newRequestId();
    const auto request = requestOf({
        {FieldKey::host, host},
        {FieldKey::logonDomain, logonDomain},
        {FieldKey::userName, userName},
        {FieldKey::password, password},
        {FieldKey::relayPath, relayPath},
    });
    auto context = newContext(AddNASServerContext{host, logonDomain, userName, password, requestId});
    if (requestId.isEmpty() || !request || !context) {
        TRACE_ERROR("%s, new AddNASServerContext failed", function);
        return false;
    }
    // Current before it is sent: the framework may answer from within the call.
    const QString previousRequestId = std::exchange(m_addRequestId, requestId);
    if (!sendRequestToServer(ServerCommand::AddNasServer, *request, context.get(), "")) {
        if (m_addRequestId == requestId)
            m_addRequestId = previousRequestId;
        return false;
    }
    context.release(); // handleAddNASServer destroys it
    return true;
}

bool PluginRecordingManagement::updateNASServer(const QString &id, const QString &host, const QString &domain,
                                                const QString &user, const QString &password, const QString &relayPath)
{
    const auto request = requestOf({
        {QStringLiteral("id"), id},
        {FieldKey::host, host},
        {FieldKey::logonDomain, domain},
        {FieldKey::userName, user},
        {FieldKey::password, password},
        {FieldKey::relayPath, relayPath},
    });
    auto context = request ? newContext<NASServerRequestContext>(*request) : nullptr;
    if (!context || !sendRequestToServer(ServerCommand::UpdateNASServer, *request, context.get(), ""))
        return false;
    context.release(); // handleUpdateNASServer destroys it
    return true;
}

bool PluginRecordingManagement::removeNASServer(const QString &id, const QString &relayPath)
{
    const auto request = requestOf({{QStringLiteral("id"), id}, {FieldKey::relayPath, relayPath}});
    auto context = request ? newContext<NASServerRequestContext>(*request) : nullptr;
    if (!context)
        return false;
    // Given away whether or not the send succeeds: a copy that could not be sent stays allocated, as clients know it.
    return sendRequestToServer(ServerCommand::RemoveNASServer, *request, context.release(), "");
}

void PluginRecordingManagement::ignoreAddNASServerResponse()
{
    m_addRequestId.clear();
}

bool PluginRecordingManagement::getNASServerDir(const QString &basePath, const QString &logonDomain,
                                                const QString &userName, const QString &password,
                                                const QString &relayPath, NASDirFilter filter)
{
    if (basePath.isEmpty()) {
        TRACE_ERROR("%s, basePath is empty", "PluginRecordingManagement::getNASServerDir");
        return false;
    }
    // The filter itself is the context: nothing is allocated.
    auto *const context = reinterpret_cast<void *>(static_cast<qintptr>(filter));
    const auto request = nasPathRequest(basePath, logonDomain, userName, password, relayPath);
    return request && sendRequestToServer(ServerCommand::GetNasDir, *request, context, "");
}

bool PluginRecordingManagement::getNASServerCapacity(const QString &basePath, const QString &logonDomain,
                                                     const QString &userName, const QString &password,
                                                     const QString &relayPath)
{
    if (basePath.isEmpty()) {
        TRACE_ERROR("%s, basePath is empty", "PluginRecordingManagement::getNASServerCapacity");
        return false;
    }
    const auto request = nasPathRequest(basePath, logonDomain, userName, password, relayPath);
    return request && sendRequestToServer(ServerCommand::GetNasCapacity, *request, nullptr, "");
}

bool PluginRecordingManagement::addNASPathToVolume(const QString &basePath, const QString &logonDomain,
                                                   const QString &userName, const QString &password,
                                                   const QString &relayPath)
{
    if (basePath.isEmpty()) {
        TRACE_ERROR("%s, basePath is empty", "PluginRecordingManagement::addNASPathToVolume");
        return false;
    }
    const auto request = nasPathRequest(basePath, logonDomain, userName, password, relayPath);
    auto context = newContext<NASPathContext>(basePath);
    if (!request || !context || !sendRequestToServer(ServerCommand::GetNasCapacity, *request, context.get(), ""))
        return false;
    context.release(); // handleGetNASServerCapacity destroys it
    return true;
}

bool PluginRecordingManagement::addNASPathsToVolume(const QStringList &pathList)
{
    if (pathList.isEmpty()) {
        emit addNASPathsToVolumeResp(true); // nothing to do counts as done, though nothing was sent
        return false;
    }
    const auto request = requestOf({{FieldKey::pathList, pathList}});
    return request && sendRequestToServer(ServerCommand::addNASPathsToVolume, *request, nullptr, "");
}
