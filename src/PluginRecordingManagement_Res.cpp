#include "PluginRecordingManagement.h"

#include "ItemRoles.h"
#include "NoThrow.h"
#include "RecordingGroupTreeModel.h"
#include "ReplyFields.h"
#include "RequestContexts.h"
#include "RowItems.h"
#include "ServerVocabulary.h"
#include "StatusMonitor.h"
#include "VolumeReport.h"
#include "trace/TraceLog.h"

#include <QStandardItemModel>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace {

// Takes a context over from the framework; a missing one counts as empty.
template<typename Context>
std::unique_ptr<Context> takeContext(void *context)
{
    return std::unique_ptr<Context>(static_cast<Context *>(context));
}

QModelIndex findRow(const QStandardItemModel *model, const QString &id)
{
    if (!model || model->rowCount() == 0)
        return {};
    return model->match(model->index(0, 0), NasServerRole::Id, id, 1, Qt::MatchExactly).value(0);
}

bool isStation(const QStandardItem &item)
{
    return item.data(TreeRole::Type).toString() != NodeType::RecordingGroup;
}

// The first station below @p parent, depth first, that has this relay path.
QStandardItem *findStation(QStandardItem *parent, const QVariant &relayPath)
{
    for (int row = 0; row < parent->rowCount(); ++row) {
        QStandardItem *const item = parent->child(row);
        if (!item)
            continue;
        if (item->data(TreeRole::RelayPath) == relayPath && isStation(*item))
            return item;
        if (QStandardItem *const below = findStation(item, relayPath))
            return below;
    }
    return nullptr;
}

// The groups of a reply that belong to one station.
struct Branch
{
    QVariant relayPath;
    RowBatch groups;
};

// A branch for each station below @p parent, depth first.
void collectBranches(const QStandardItem *parent, std::vector<Branch> &branches)
{
    for (int row = 0; row < parent->rowCount(); ++row) {
        const QStandardItem *const item = parent->child(row);
        if (!item)
            continue;
        if (isStation(*item))
            branches.push_back({item->data(TreeRole::RelayPath), RowBatch()});
        collectBranches(item, branches);
    }
}

// Empties @p model before it is filled; false when its rows could not be removed. What a slot throws ends here.
bool cleared(const char *function, QStandardItemModel *model)
{
    return noThrow(function, [model] { clearRows(model); }) || model->rowCount() == 0;
}

// Appends @p rows to @p parent, a model or what names an item; how many were lost. What a slot throws ends here.
template<typename Parent>
int append(const char *function, RowBatch &rows, const Parent &parent)
{
    int lost = 0;
    noThrow(function, [&] { lost = rows.append(parent); });
    return lost;
}

// Lists @p folders in @p model, up to the first for which there is no memory; false when there is one.
bool listFolders(const char *function, QStandardItemModel *model, const QStringList &folders)
{
    if (!cleared(function, model))
        return false;
    RowMaker maker = directoryRows();
    RowBatch rows;
    const bool made = std::all_of(folders.begin(), folders.end(), [&](const QString &folder) {
        return rows.add([&] { return maker.row(folder, folder); });
    });
    return append(function, rows, model) == 0 && made;
}

} // namespace

// Volumes and folders. ----------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleRetrieveVolume(const QVariant &data, const QString &returnCode)
{
    constexpr auto function = "PluginRecordingManagement::handleRetrieveVolume";
    const bool isEmpty = cleared(function, m_volumeModel);
    if (returnCode != ReturnCode::Success || !isEmpty) {
        emit getVolumeResponded(false);
        return;
    }
    const bool complete = noThrow(function, [&] {
        enum Field { Path, Name, Size, AvailableSize, IsSystem };
        RecordReader volume({&FieldKey::volumePath, &FieldKey::volumeName, &FieldKey::volumeSize,
                             &FieldKey::volumeAvailableSize, &FieldKey::volumeIsSystem});
        RowMaker maker = volumeRows();
        RowBatch rows;
        int lost = 0;
        const QVariantList volumes = data.toList();
        for (const QVariant &element : volumes) {
            const bool made = rows.add([&] {
                volume.read(element);
                return maker.row(m_rowIds.nextText(), asText(volume[Path]), asText(volume[Name]),
                                 asNumber(volume[Size]), asNumber(volume[AvailableSize]),
                                 trueOrNothing(volume[IsSystem]));
            });
            lost += made ? 0 : 1;
        }
        for (lost += append(function, rows, m_volumeModel); lost > 0; --lost)
            TRACE_ERROR("%s, new VolumeItem failed", function);
    });
    emit getVolumeResponded(complete);
}

void PluginRecordingManagement::handleGetServerDir(const QVariant &data, const QString &)
{
    constexpr auto function = "PluginRecordingManagement::handleGetServerDir";
    QString basePath;
    const bool listed = noThrow(function, false, [&] {
        const QVariantMap reply = data.toMap();
        basePath = reply.value(FieldKey::basePath).toString();
        return listFolders(function, m_serverDirModel, reply.value(FieldKey::dirFolderList).toStringList());
    });
    if (!listed)
        TRACE_ERROR("%s, Create ServerDir item error", function);
    emit getServerDirResponded(listed ? basePath : "");
}

// Recording groups. -------------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleGetRecordingGroup(const QVariant &data, const QString &returnCode, void *context)
{
    constexpr auto function = "PluginRecordingManagement::handleGetRecordingGroup";
    if (returnCode != ReturnCode::Success) {
        TRACE_ERROR("%s, Get recording group failed, returnCode = %s", function, returnCode.toLocal8Bit().constData());
        return; // the context stays allocated: docs/decisions/0002-kept-contexts.md
    }
    const auto requestId = takeContext<RequestIdContext>(context);
    const auto fill = [&] {
        enum Field { Id, Name, Paths, NodeIds, NasPaths };
        RecordReader group({&FieldKey::recordingGroupID, &FieldKey::recordingGroupName,
                            &FieldKey::recordingGroupPathList, &FieldKey::recordingGroupNodeIdList,
                            &FieldKey::recordingGroupNASPathList});
        RowMaker maker = recordingGroupRows();
        RowBatch rows;
        int lost = 0;
        const QVariantList groups = data.toList();
        for (const QVariant &element : groups) {
            const bool made = rows.add([&] {
                group.read(element);
                return maker.row(asText(group[Id]), asText(group[Name]), asTextList(group[Paths]),
                                 asTextList(group[NodeIds]), asTextList(group[NasPaths]));
            });
            lost += made ? 0 : 1;
        }
        for (lost += append(function, rows, m_recordingGroupModel); lost > 0; --lost)
            TRACE_ERROR("%s, new RecordingGroupItem failed", function);
    };
    if (!cleared(function, m_recordingGroupModel) || !noThrow(function, fill))
        return; // as after a refusal: the model does not hold the reply
    noThrow(function, [this] { setRecordingGroupRetrieved(true); });
    emit getRecordingGroupResponded(requestId ? *requestId : QString());
}

void PluginRecordingManagement::saveRecordingGroupData(const QVariant &data)
{
    constexpr auto function = "PluginRecordingManagement::saveRecordingGroupData";
    m_groupIndex.reset();
    const QVariantList groups = data.toList();
    for (const QVariant &element : groups) {
        const bool saved = noThrow(function, false, [&] {
            const QVariantMap group = element.toMap();
            m_recordingGroups.push_back({
                group.value(FieldKey::recordingGroupID).toString(),
                group.value(FieldKey::relayPath).toString(),
                group.value(FieldKey::recordingGroupPathList).toList(),
                group.value(FieldKey::reserveSpace).toList(),
                group.value(FieldKey::recordingGroupNASPathList).toList(),
                group.value(FieldKey::recordingGroupNodeIdList).toList(),
                group.value(FieldKey::recordingGroupRecoveryPathList).toList(),
                group.value(FieldKey::recordingGroupReservedTime).toInt(),
                group.value(FieldKey::recordingGroupMemberList).toList(),
            });
            return true;
        });
        if (!saved)
            TRACE_ERROR("%s, new RecordingGroupData failed", function); // the next group may need less memory
    }
}

void PluginRecordingManagement::clearRecordingGroupDataList()
{
    m_groupIndex.reset();
    m_recordingGroups.clear();
}

std::vector<RecordingGroupData>::const_iterator
PluginRecordingManagement::findItemFromRecordingGroupList(const QString &recordingGroupID,
                                                          const QString &relayPath) const
{
    const std::size_t number = groupIndex().find(m_recordingGroups, recordingGroupID, relayPath);
    return m_recordingGroups.begin() + static_cast<std::ptrdiff_t>(number);
}

const RecordingGroupIndex &PluginRecordingManagement::groupIndex() const
{
    if (!m_groupIndex)
        m_groupIndex.emplace(m_recordingGroups);
    return *m_groupIndex;
}

void PluginRecordingManagement::handleAddRecordingGroup(const QString &returnCode, bool finish)
{
    if (finish)
        emit addRecordingGroupResponded(returnCode == ReturnCode::Success);
}

void PluginRecordingManagement::handleAddRecordingGroupWithCompleteInfo(const QVariant &data, const QString &returnCode)
{
    const QVariantMap reply = data.toMap();
    const bool success = returnCode == ReturnCode::Success;
    const QVariantList errors = success ? QVariantList() : reply.value(FieldKey::errorAction).toList();
    emit addRecordingGroupWithCompleteInfoResp(success, reply.value(FieldKey::recordingGroupID).toString(), errors);
}

void PluginRecordingManagement::handleUpdateRecordingGroup(const QVariant &data, const QString &returnCode)
{
    emit updateRecordingGroupResp(returnCode == ReturnCode::Success, data.toList());
}

// Station tree. -----------------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleRetrieveRecordingGroupTreeModel(const QVariant &data, const QString &result)
{
    constexpr auto function = "PluginRecordingManagement::handleRetrieveRecordingGroupTreeModel";
    if (result != ReturnCode::Success) {
        TRACE_ERROR("%s, Get recording group failed, returnCode = %s", function, result.toLocal8Bit().constData());
        return;
    }
    noThrow(function, [&] { appendRecordingGroupToTreeModel(data); });
    noThrow(function, [&] { saveRecordingGroupData(data); });
    emit retrieveRecordingGroupTreeModelFinish();
}

void PluginRecordingManagement::appendRecordingGroupToTreeModel(const QVariant &data)
{
    constexpr auto function = "PluginRecordingManagement::appendRecordingGroupToTreeModel";
    enum Field { Name, RelayPath, Id };
    RecordReader group({&FieldKey::recordingGroupName, &FieldKey::relayPath, &FieldKey::recordingGroupID});
    RowMaker maker = treeGroupRows();
    std::vector<Branch> branches;
    const bool isReady = noThrow(function, false, [&] {
        if (m_treeModel)
            collectBranches(m_treeModel->invisibleRootItem(), branches);
        return true;
    });
    int lost = 0;
    const QVariantList groups = data.toList();
    for (const QVariant &element : groups) {
        const bool made = isReady && noThrow(function, false, [&] {
                              group.read(element);
                              RowBatch unlisted; // groups of a station that is not in the tree
                              const auto branch =
                                  std::find_if(branches.begin(), branches.end(), [&](const Branch &candidate) {
                                      return candidate.relayPath == group[RelayPath];
                                  });
                              return (branch == branches.end() ? unlisted : branch->groups).add([&] {
                                  return maker.row(m_rowIds.next(), group[Name], group[RelayPath], group[Id]);
                              });
                          });
        lost += made ? 0 : 1;
    }
    for (Branch &branch : branches) {
        const auto station = [&] {
            return m_treeModel ? findStation(m_treeModel->invisibleRootItem(), branch.relayPath) : nullptr;
        };
        if (station()) // a slot may have removed it since
            lost += append(function, branch.groups, station);
    }
    for (; lost > 0; --lost)
        TRACE_ERROR("%s, new RecordingGroupTreeModelItem failed", function);
}

// Storage usage. ----------------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleVolumeChanged(const QVariant &data, const QString &source)
{
    constexpr auto function = "PluginRecordingManagement::handleVolumeChanged";
    const std::shared_ptr<VolumeReport> report = calculateGroupUsage(data);
    noThrow(function, [&] { updateRecordingGroupVolumeModel(source, report); });
    noThrow(function, [&] { updateRecordingGroupUsageModel(source, *report); });
    noThrow(function, [&] { monitorVolumnStatus(source, *report); });
    noThrow(function, [&] { monitorGroupStatus(source); });
}

std::shared_ptr<VolumeReport> PluginRecordingManagement::calculateGroupUsage(const QVariant &data) const
{
    return std::make_shared<VolumeReport>(data);
}

void PluginRecordingManagement::updateRecordingGroupVolumeModel(const QString &source,
                                                                const std::shared_ptr<VolumeReport> &report)
{
    // The map no longer holds the old models when they are destroyed: QML may call again from there.
    std::exchange(m_volumeReports[source], nullptr);
    std::exchange(m_volumeReports[source], report);
}

void PluginRecordingManagement::updateRecordingGroupUsageModel(const QString &source, const VolumeReport &report)
{
    constexpr auto function = "PluginRecordingManagement::updateRecordingGroupUsageModel";
    // Held here: a slot of unsupportedStorages() may call again and release the plug-in's own reference.
    const QSharedPointer<QStandardItemModel> model = storageUsageModel(source);
    if (!cleared(function, model.data()))
        return;
    RowMaker maker = recordingGroupRows();
    RowBatch rows;
    report.forEachGroup([&](const QString &id, const GroupUsage &usage) {
        if (id.isEmpty()) {
            noThrow(function, [&] { emit unsupportedStorages(source); });
            return;
        }
        rows.add([&] {
            const qlonglong oneDay = usage.oneDayUsage.value_or(unknownFigure);
            return maker.row(id, id == FieldKey::backupID ? QStringLiteral("Backup") : usage.name, QVariant(),
                             QVariant(), QVariant(), lowBits(usage.recordedDays.value_or(unknownFigure)),
                             lowBits(remainingDays(usage.availableSize, oneDay)), oneDay, usage.reserveTime);
        });
    });
    append(function, rows, model.data());
}

void PluginRecordingManagement::monitorVolumnStatus(const QString &source, const VolumeReport &report)
{
    const StatusMonitor monitor(pluginObject(StatusMonitor::pluginId()));
    monitor.method(StatusMonitorMethod::removeVolumeError, 1).call(source);
    if (report.hasLostVolume())
        monitor.method(StatusMonitorMethod::monitorVolumeStatus, 1).call(source);
}

void PluginRecordingManagement::monitorGroupStatus(const QString &source)
{
    constexpr auto function = "PluginRecordingManagement::monitorGroupStatus";
    const QSharedPointer<QStandardItemModel> model = m_storageUsageModels.value(source);
    const StatusMonitor monitor(pluginObject(StatusMonitor::pluginId()));
    const auto sufficient = monitor.method(StatusMonitorMethod::monitorSufficientRecordingGroup, 2);
    const auto insufficient = monitor.method(StatusMonitorMethod::monitorInsufficientRecordingDays, 3);
    for (int row = 0; model && row < model->rowCount(); ++row) {
        const QModelIndex group = model->index(row, 0);
        const QString id = group.data(RecordingGroupRole::Id).toString();
        const QString name = group.data(RecordingGroupRole::Name).toString();
        const qlonglong remaining = group.data(RecordingGroupRole::RemainDays).toLongLong();
        const qlonglong recorded = group.data(RecordingGroupRole::RecordedDays).toLongLong();
        const int reserve = group.data(RecordingGroupRole::ReserveTime).toInt();
        if (remaining < 0 || recorded < 0 || reserve < 0)
            continue; // an unknown figure is never judged
        noThrow(function, [&] {
            if (coverReserve(recorded, remaining, reserve))
                sufficient.call(source, id);
            else
                insufficient.call(source, name, id);
        });
    }
}

// NAS servers. ------------------------------------------------------------------------------------------------------

PluginRecordingManagement::NASServerErrorCode
PluginRecordingManagement::TransferNASServerErrorCode(const QString &result) const
{
    static const std::pair<const QString &, NASServerErrorCode> codes[] = {
        {ReturnCode::Success, NonError},
        {NasReturnCode::LogonNASServerFaled, LogonFailed},
        {NasReturnCode::NASServerExist, ServerExist},
        {NasReturnCode::GetNasDirFailed, GetDirFailed},
        {NasReturnCode::GetNasCapacityFailed, GetCapacityFailed},
    };
    const auto code = std::find_if(std::begin(codes), std::end(codes),
                                   [&result](const auto &entry) { return entry.first == result; });
    return code == std::end(codes) ? Unknown : code->second;
}

bool PluginRecordingManagement::isContextOutOfDate(const AddNASServerContext &context) const
{
    return context.requestId != m_addRequestId && !m_addsBeingSent.contains(context.requestId);
}

void PluginRecordingManagement::handleGetNASServers(const QString &result, const QVariant &data)
{
    constexpr auto function = "PluginRecordingManagement::handleGetNASServers";
    if (result != ReturnCode::Success) {
        emit getNASServersResponded(false);
        return;
    }
    const bool complete = noThrow(function, false, [&] {
        enum Field { Id, Host, LogonDomain, UserName, Password };
        const QString idKey = QStringLiteral("id");
        RecordReader server(
            {&idKey, &FieldKey::host, &FieldKey::logonDomain, &FieldKey::userName, &FieldKey::password});
        RowMaker maker = nasServerRows();
        RowBatch rows;
        const QVariantList servers = data.toList();
        if (!cleared(function, m_nasServerModel))
            return false;
        const bool made = std::all_of(servers.begin(), servers.end(), [&](const QVariant &element) {
            return rows.add([&]() -> RowItem {
                server.read(element);
                const QVariant id = asText(server[Id]);
                const QVariant host = asText(server[Host]);
                if (id.toString().isEmpty() || host.toString().isEmpty())
                    return nullptr;
                return maker.row(id, host, asText(server[LogonDomain]), asText(server[UserName]),
                                 asText(server[Password]));
            });
        });
        return append(function, rows, m_nasServerModel) == 0 && made;
    });
    if (!complete)
        TRACE_ERROR("%s, Create NASServer item error", function);
    emit getNASServersResponded(complete);
}

void PluginRecordingManagement::handleAddNASServer(const QString &result, const QVariant &data, void *context)
{
    constexpr auto function = "PluginRecordingManagement::handleAddNASServer";
    const auto request = takeContext<AddNASServerContext>(context);
    if (!request || isContextOutOfDate(*request))
        return;
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code != NonError) {
        emit addNASServerResponded(code, "");
        return;
    }
    QString id;
    const bool appended = noThrow(function, false, [&] {
        id = data.toString();
        RowBatch rows;
        const bool made = rows.add([&] {
            return nasServerRows().row(id, request->host, request->logonDomain, request->userName, request->password);
        });
        return append(function, rows, m_nasServerModel) == 0 && made;
    });
    if (!appended) {
        TRACE_ERROR("%s, replace model item list failed", function);
        emit addNASServerResponded(Unknown, "");
        return;
    }
    emit addNASServerResponded(NonError, id);
}

void PluginRecordingManagement::handleUpdateNASServer(const QString &result, void *context)
{
    constexpr auto function = "PluginRecordingManagement::handleUpdateNASServer";
    const auto request = takeContext<NASServerRequestContext>(context);
    const QVariantMap server = request ? *request : QVariantMap();
    const QString id = server.value(QStringLiteral("id")).toString();
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code == NonError) {
        const std::pair<const QString &, int> fields[] = {
            {FieldKey::host, NasServerRole::Host},
            {FieldKey::logonDomain, NasServerRole::LogonDomain},
            {FieldKey::userName, NasServerRole::UserName},
            {FieldKey::password, NasServerRole::Password},
        };
        // A slot that hears of the first change may remove the row.
        const QPersistentModelIndex row = findRow(m_nasServerModel, id);
        for (const auto &[key, role] : fields) {
            const QString value = server.value(key).toString();
            if (row.isValid())
                noThrow(function, [&, role = role] { m_nasServerModel->setData(row, value, role); });
        }
    }
    emit updateNASServerResponsed(code, id);
}

void PluginRecordingManagement::handleRemoveNASServer(const QString &result, void *context)
{
    const auto request = takeContext<NASServerRequestContext>(context);
    const bool success = result == ReturnCode::Success;
    if (success) {
        noThrow("PluginRecordingManagement::handleRemoveNASServer", [&] {
            const QString id = request ? request->value(QStringLiteral("id")).toString() : QString();
            const QModelIndex row = findRow(m_nasServerModel, id);
            if (row.isValid())
                m_nasServerModel->removeRow(row.row());
        });
    }
    emit removeNASServerResponsed(success);
}

void PluginRecordingManagement::handleGetNASServerDir(const QString &result, const QVariant &data, void *context)
{
    constexpr auto function = "PluginRecordingManagement::handleGetNASServerDir";
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code != NonError) {
        emit getNASServerDirResponded(code, "");
        return;
    }
    const auto filter = reinterpret_cast<qintptr>(context); // the request put the filter itself there
    QString basePath;
    const bool listed = noThrow(function, false, [&] {
        const QVariantMap reply = data.toMap();
        basePath = reply.value(FieldKey::basePath).toString();
        QStringList folders = reply.value(FieldKey::dirFolderList).toStringList();
        folders.removeIf([filter](const QString &folder) {
            return ((filter & NoDot) && folder == u".") || ((filter & NoDotDot) && folder == u"..");
        });
        return listFolders(function, m_nasDirModel, folders);
    });
    if (!listed)
        TRACE_ERROR("%s, Create NASServerDir item error", function);
    emit getNASServerDirResponded(listed ? NonError : Unknown, listed ? basePath : "");
}

void PluginRecordingManagement::handleGetNASServerCapacity(const QString &result, const QVariant &data, void *context)
{
    constexpr auto function = "PluginRecordingManagement::handleGetNASServerCapacity";
    const auto path = takeContext<NASPathContext>(context);
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code != NonError) {
        emit getNASServerCapacityResponded(code, 0, 0);
        return;
    }
    const QVariantMap capacity = data.toMap();
    const qlonglong used = capacity.value(QStringLiteral("used")).toLongLong();
    const qlonglong total = capacity.value(QStringLiteral("total")).toLongLong();
    noThrow(function, [&] { emit getNASServerCapacityResponded(NonError, total, used); });
    if (!path)
        return;
    RowBatch rows;
    const bool made = rows.add([&] {
        return volumeRows().row(m_rowIds.nextText(), *path, *path, total, wrappingDifference(total, used), false, true);
    });
    if (append(function, rows, m_volumeModel) > 0 || !made)
        TRACE_ERROR("%s, new VolumeItem failed", function);
}

void PluginRecordingManagement::handleAddNASPathsToVolume(const QString &result, const QVariant &data)
{
    constexpr auto function = "PluginRecordingManagement::handleAddNASPathsToVolume";
    if (result != ReturnCode::Success) {
        TRACE_ERROR("%s, Add path to volume failed, returnCode = %s", function, result.toLocal8Bit().constData());
        emit addNASPathsToVolumeResp(false);
        return;
    }
    const bool complete = noThrow(function, [&] {
        RowMaker maker = volumeRows();
        RowBatch rows;
        int lost = 0;
        const QVariantList disks = data.toList();
        for (const QVariant &element : disks) {
            const bool made = rows.add([&] {
                const QVariantMap disk = element.toMap();
                const QString name = disk.value(FieldKey::diskName).toString();
                const qlonglong total = disk.value(FieldKey::diskTotal).toLongLong();
                const qlonglong used = disk.value(FieldKey::diskUsed).toLongLong();
                return maker.row(m_rowIds.nextText(), name, name, total, wrappingDifference(total, used), false, true);
            });
            lost += made ? 0 : 1;
        }
        for (lost += append(function, rows, m_volumeModel); lost > 0; --lost)
            TRACE_ERROR("%s, new VolumeItem failed", function);
    });
    emit addNASPathsToVolumeResp(complete);
}
