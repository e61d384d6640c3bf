#include "PluginRecordingManagement.h"

#include "GroupMap.h"
#include "ItemRoles.h"
#include "RecordingGroupTreeModel.h"
#include "ReplyFields.h"
#include "RequestContexts.h"
#include "RowItems.h"
#include "RowLayout.h"
#include "ServerVocabulary.h"
#include "StatusMonitor.h"
#include "UsageFigures.h"
#include "trace/TraceLog.h"

#include <QStandardItemModel>

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace {

// Takes a context over from the framework; a missing one counts as empty.
template<typename Context>
std::unique_ptr<Context> takeContext(void *context)
{
    return std::unique_ptr<Context>(static_cast<Context *>(context));
}

bool lacksText(const QVariant &record, const QString &key)
{
    QVariantMap convertedRecord;
    QString convertedText;
    return textIn(fieldIn(mapIn(record, convertedRecord), key), convertedText).isEmpty();
}

QModelIndex findRow(const QStandardItemModel *model, const QString &id)
{
    if (!model || model->rowCount() == 0)
        return {};
    return model->match(model->index(0, 0), NasServerRole::Id, id, 1, Qt::MatchExactly).value(0);
}

// The items at and below @p parent that are not recording groups, depth first.
void collectStations(QStandardItem *parent, std::vector<QStandardItem *> &stations)
{
    for (int row = 0; row < parent->rowCount(); ++row) {
        QStandardItem *const item = parent->child(row);
        if (!item)
            continue;
        if (item->data(TreeRole::Type).toString() != NodeType::RecordingGroup)
            stations.push_back(item);
        collectStations(item, stations);
    }
}

} // namespace

// Volumes and folders. ----------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleRetrieveVolume(const QVariant &data, const QString &returnCode)
{
    clearRows(m_volumeModel);
    if (returnCode != ReturnCode::Success) {
        emit getVolumeResponded(false);
        return;
    }
    RowBatch rows(m_volumeModel);
    RowMaker maker(volumeRow());
    const QVariantList volumes = data.toList();
    for (const QVariant &volume : volumes) {
        if (!rows.add(maker.row(volume)))
            TRACE_ERROR("%s, new VolumeItem failed", "PluginRecordingManagement::handleRetrieveVolume");
    }
    rows.append();
    emit getVolumeResponded(true);
}

void PluginRecordingManagement::handleGetServerDir(const QVariant &data, const QString &)
{
    const QVariantMap reply = data.toMap();
    const QString basePath = reply.value(FieldKey::basePath).toString();
    const QStringList folders = reply.value(FieldKey::dirFolderList).toStringList();
    clearRows(m_serverDirModel);
    RowBatch rows(m_serverDirModel);
    bool complete = true;
    for (const QString &folder : folders) {
        complete = rows.add(DirectoryItem(folder));
        if (!complete)
            break;
    }
    if (!rows.append() || !complete) {
        TRACE_ERROR("%s, Create ServerDir item error", "PluginRecordingManagement::handleGetServerDir");
        emit getServerDirResponded("");
        return;
    }
    emit getServerDirResponded(basePath);
}

// Recording groups. -------------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleGetRecordingGroup(const QVariant &data, const QString &returnCode, void *context)
{
    constexpr auto function = "PluginRecordingManagement::handleGetRecordingGroup";
    if (returnCode != ReturnCode::Success) {
        TRACE_ERROR("%s, Get recording group failed, returnCode = %s", function, returnCode.toLocal8Bit().constData());
        return; // the context stays allocated: a refused request has always kept its id
    }
    const auto requestId = takeContext<RequestIdContext>(context);
    clearRows(m_recordingGroupModel);
    RowBatch rows(m_recordingGroupModel);
    RowMaker maker(recordingGroupRow());
    const QVariantList groups = data.toList();
    for (const QVariant &group : groups) {
        if (!rows.add(maker.row(group)))
            TRACE_ERROR("%s, new RecordingGroupItem failed", function);
    }
    rows.append();
    setRecordingGroupRetrieved(true);
    emit getRecordingGroupResponded(requestId ? *requestId : QString());
}

void PluginRecordingManagement::saveRecordingGroupData(const QVariant &data)
{
    m_groupIndex.reset();
    const QVariantList groups = data.toList();
    for (const QVariant &element : groups) {
        const QVariantMap group = element.toMap();
        try {
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
        } catch (const std::bad_alloc &) {
            continue; // no memory for this group; the next may be smaller
        }
    }
}

void PluginRecordingManagement::clearRecordingGroupDataList()
{
    m_groupIndex.reset();
    m_recordingGroups.clear();
}

std::vector<RecordingGroupData>::const_iterator PluginRecordingManagement::findItemFromRecordingGroupList(
    const std::vector<RecordingGroupData> &list, const QString &recordingGroupID, const QString &relayPath) const
{
    return list.begin() + static_cast<std::ptrdiff_t>(groupIndex().find(list, recordingGroupID, relayPath));
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
    if (result != ReturnCode::Success) {
        TRACE_ERROR("%s, Get recording group failed, returnCode = %s",
                    "PluginRecordingManagement::handleRetrieveRecordingGroupTreeModel",
                    result.toLocal8Bit().constData());
        return;
    }
    appendRecordingGroupToTreeModel(data);
    saveRecordingGroupData(data);
    emit retrieveRecordingGroupTreeModelFinish();
}

void PluginRecordingManagement::appendRecordingGroupToTreeModel(const QVariant &data)
{
    struct Station
    {
        QVariant relayPath;
        RowBatch groups;
    };
    std::vector<Station> stations;
    if (m_treeModel) {
        std::vector<QStandardItem *> items;
        collectStations(m_treeModel->invisibleRootItem(), items);
        for (QStandardItem *item : items)
            stations.push_back({item->data(TreeRole::RelayPath), RowBatch(item)});
    }

    RowMaker maker(treeGroupRow());
    const std::size_t relayPathPosition = maker.record().add(FieldKey::relayPath);
    const QVariantList groups = data.toList();
    for (const QVariant &group : groups) {
        maker.record().read(group);
        RowItem item = maker.row();
        if (!item) {
            TRACE_ERROR("%s, new RecordingGroupTreeModelItem failed",
                        "PluginRecordingManagement::appendRecordingGroupToTreeModel");
            continue;
        }
        const QVariant &relayPath = maker.record()[relayPathPosition];
        const auto station = std::find_if(stations.begin(), stations.end(), [&relayPath](const Station &candidate) {
            return candidate.relayPath == relayPath;
        });
        if (station != stations.end())
            station->groups.add(std::move(item));
    }
    for (Station &station : stations)
        station.groups.append();
}

// Storage usage. ----------------------------------------------------------------------------------------------------

void PluginRecordingManagement::handleVolumeChanged(QVariant data, const QString &source)
{
    QMap<QString, QVariant> usage = calculateGroupUsage(data);
    updateRecordingGroupVolumeModel(source, data, usage.keys());
    updateRecordingGroupUsageModel(source, usage);
    monitorVolumnStatus(source, data);
    monitorGroupStatus(source);
}

QMap<QString, QVariant> PluginRecordingManagement::calculateGroupUsage(QVariant &data)
{
    enum Field { Id, Name, ReserveTime, AvailableSize, RecordedDays, OneDayUsage };
    RecordReader entry({&FieldKey::recordingGroupID, &FieldKey::recordingGroupName,
                        &FieldKey::recordingGroupReservedTime, &FieldKey::volumeAvailableSize,
                        &FieldKey::volumeRecordedDays, &FieldKey::volumeOneDayUsage});
    GroupMap<GroupUsage> sums;
    QString convertedId;
    QString convertedName;
    const QVariantList entries = data.toList();
    for (const QVariant &element : entries) {
        entry.read(element);
        const QString &id = textIn(entry[Id], convertedId);
        GroupUsage &sum = sums[id];
        sum.reserveTime = entry[ReserveTime].toInt();
        sum.name = textIn(entry[Name], convertedName);
        sum.availableSize = wrappingSum(sum.availableSize, entry[AvailableSize].toLongLong());
        GroupUsage::addKnown(sum.recordedDays, entry[RecordedDays].toLongLong());
        GroupUsage::addKnown(sum.oneDayUsage, entry[OneDayUsage].toLongLong());
    }
    QMap<QString, QVariant> usage;
    sums.forEach([&usage](const QString &id, const GroupUsage &sum) { usage.insert(usage.cend(), id, sum.toMap()); });
    return usage;
}

void PluginRecordingManagement::updateRecordingGroupVolumeModel(const QString &source, QVariant &data,
                                                                const QStringList &groupIds)
{
    struct GroupRows
    {
        QSharedPointer<QStandardItemModel> model; // held until it is filled
        std::optional<RowBatch> rows; // of the model
    };
    GroupMap<GroupRows> groups;
    // While the old models are there: a view that asks again would take a new one at an old one's address for the same.
    for (const QString &id : groupIds)
        groups[id].model.reset(newListModel(volumeRoleNames(), this));
    std::exchange(m_groupVolumeModels[source], {}); // the map is empty when a model's end brings QML back in here
    RowMaker maker(groupVolumeRow());
    const std::size_t groupId = maker.record().add(FieldKey::recordingGroupID);
    QString convertedId;
    const QVariantList entries = data.toList();
    for (const QVariant &entry : entries) {
        maker.record().read(entry);
        const QString &id = textIn(maker.record()[groupId], convertedId);
        GroupRows &group = groups[id];
        if (!group.model)
            continue; // there was no memory for it
        if (!group.rows) {
            m_groupVolumeModels[source].insert(id, group.model);
            group.rows.emplace(group.model.data());
        }
        group.rows->add(maker.row());
    }
    groups.forEach([](const QString &, GroupRows &group) {
        if (group.rows)
            group.rows->append();
    });
}

void PluginRecordingManagement::updateRecordingGroupUsageModel(const QString &source, QMap<QString, QVariant> &usage)
{
    // Held here: whoever hears of unsupported storage may come back and drop the plug-in's own reference.
    const QSharedPointer<QStandardItemModel> model = storageUsageModel(source);
    clearRows(model.data());
    RowBatch rows(model.data());
    for (auto entry = usage.cbegin(); entry != usage.cend(); ++entry) {
        const QString &id = entry.key();
        if (id.isEmpty()) {
            emit unsupportedStorages(source);
            continue;
        }
        const QVariantMap group = entry->toMap();
        const qlonglong recorded = group.value(QStringLiteral("recordedDays"), unknownFigure).toLongLong();
        const qlonglong oneDay = group.value(QStringLiteral("oneDayUsage"), unknownFigure).toLongLong();
        const qlonglong remaining = remainingDays(group.value(QStringLiteral("availableSize")).toLongLong(), oneDay);
        const QString name =
            id == FieldKey::backupID ? QStringLiteral("Backup") : group.value(QStringLiteral("groupName")).toString();
        rows.add(RecordingGroupItem(id, name, {}, {}, {}, lowBits(recorded), lowBits(remaining), oneDay,
                                    group.value(QStringLiteral("reserveTime")).toInt()));
    }
    rows.append();
}

void PluginRecordingManagement::monitorVolumnStatus(const QString &source, QVariant &data)
{
    const StatusMonitor monitor(pluginObject(StatusMonitor::pluginId()));
    monitor.method(StatusMonitorMethod::removeVolumeError, 1).call(source);
    const QVariantList entries = data.toList();
    RecordReader sizes({&FieldKey::volumeAvailableSize, &FieldKey::volumeSize});
    const bool dead = std::any_of(entries.begin(), entries.end(), [&sizes](const QVariant &volume) {
        sizes.read(volume);
        return sizes[0].toLongLong() == 0 && sizes[1].toLongLong() == 0;
    });
    if (dead)
        monitor.method(StatusMonitorMethod::monitorVolumeStatus, 1).call(source);
}

void PluginRecordingManagement::monitorGroupStatus(const QString &source)
{
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
        if (coverReserve(recorded, remaining, reserve))
            sufficient.call(source, id);
        else
            insufficient.call(source, name, id);
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
    return context.requestId != m_addRequestId;
}

void PluginRecordingManagement::handleGetNASServers(const QString &result, const QVariant &data)
{
    if (result != ReturnCode::Success) {
        emit getNASServersResponded(false);
        return;
    }
    const QVariantList servers = data.toList();
    clearRows(m_nasServerModel);
    RowBatch rows(m_nasServerModel);
    RowMaker maker(nasServerRow());
    bool complete = true;
    for (const QVariant &server : servers) {
        if (lacksText(server, QStringLiteral("id")) || lacksText(server, FieldKey::host))
            continue;
        complete = rows.add(maker.row(server));
        if (!complete)
            break;
    }
    complete = rows.append() && complete;
    if (!complete)
        TRACE_ERROR("%s, Create NASServer item error", "PluginRecordingManagement::handleGetNASServers");
    emit getNASServersResponded(complete);
}

void PluginRecordingManagement::handleAddNASServer(const QString &result, const QVariant &data, void *context)
{
    const auto request = takeContext<AddNASServerContext>(context);
    if (!request || isContextOutOfDate(*request))
        return;
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code != NonError) {
        emit addNASServerResponded(code, "");
        return;
    }
    const QString id = data.toString();
    RowBatch rows(m_nasServerModel);
    if (!rows.add(NasServerItem(id, request->host, request->logonDomain, request->userName, request->password))
        || !rows.append()) {
        TRACE_ERROR("%s, replace model item list failed", "PluginRecordingManagement::handleAddNASServer");
        emit addNASServerResponded(Unknown, "");
        return;
    }
    emit addNASServerResponded(NonError, id);
}

void PluginRecordingManagement::handleUpdateNASServer(const QString &result, void *context)
{
    const auto request = takeContext<NASServerRequestContext>(context);
    const QVariantMap server = request ? *request : QVariantMap();
    const QString id = server.value(QStringLiteral("id")).toString();
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code == NonError) {
        // Whoever hears of the first change may bring the row to an end.
        const QPersistentModelIndex row = findRow(m_nasServerModel, id);
        const std::pair<const QString &, int> fields[] = {
            {FieldKey::host, NasServerRole::Host},
            {FieldKey::logonDomain, NasServerRole::LogonDomain},
            {FieldKey::userName, NasServerRole::UserName},
            {FieldKey::password, NasServerRole::Password},
        };
        for (const auto &[key, role] : fields) {
            if (row.isValid())
                m_nasServerModel->setData(row, server.value(key).toString(), role);
        }
    }
    emit updateNASServerResponsed(code, id);
}

void PluginRecordingManagement::handleRemoveNASServer(const QString &result, void *context)
{
    const auto request = takeContext<NASServerRequestContext>(context);
    const bool success = result == ReturnCode::Success;
    if (success) {
        const QString id = request ? request->value(QStringLiteral("id")).toString() : QString();
        const QModelIndex row = findRow(m_nasServerModel, id);
        if (row.isValid())
            m_nasServerModel->removeRow(row.row());
    }
    emit removeNASServerResponsed(success);
}

void PluginRecordingManagement::handleGetNASServerDir(const QString &result, const QVariant &data, void *context)
{
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code != NonError) {
        emit getNASServerDirResponded(code, "");
        return;
    }
    const auto filter = reinterpret_cast<qintptr>(context); // the request put the filter itself there
    const auto hidden = [filter](const QString &folder) {
        return ((filter & NoDot) && folder == u".") || ((filter & NoDotDot) && folder == u"..");
    };
    const QVariantMap reply = data.toMap();
    const QStringList folders = reply.value(FieldKey::dirFolderList).toStringList();
    clearRows(m_nasDirModel);
    RowBatch rows(m_nasDirModel);
    bool complete = true;
    for (const QString &folder : folders) {
        if (hidden(folder))
            continue;
        complete = rows.add(DirectoryItem(folder));
        if (!complete)
            break;
    }
    if (!rows.append() || !complete) {
        TRACE_ERROR("%s, Create NASServerDir item error", "PluginRecordingManagement::handleGetNASServerDir");
        emit getNASServerDirResponded(Unknown, "");
        return;
    }
    emit getNASServerDirResponded(NonError, reply.value(FieldKey::basePath).toString());
}

void PluginRecordingManagement::handleGetNASServerCapacity(const QString &result, const QVariant &data, void *context)
{
    const auto path = takeContext<NASPathContext>(context);
    const NASServerErrorCode code = TransferNASServerErrorCode(result);
    if (code != NonError) {
        emit getNASServerCapacityResponded(code, 0, 0);
        return;
    }
    const QVariantMap capacity = data.toMap();
    const qlonglong used = capacity.value(QStringLiteral("used")).toLongLong();
    const qlonglong total = capacity.value(QStringLiteral("total")).toLongLong();
    emit getNASServerCapacityResponded(NonError, total, used);
    if (!path)
        return;
    RowBatch rows(m_volumeModel);
    if (!rows.add(VolumeItem(*path, *path, total, wrappingDifference(total, used), false, true)) || !rows.append())
        TRACE_ERROR("%s, new VolumeItem failed", "PluginRecordingManagement::handleGetNASServerCapacity");
}

void PluginRecordingManagement::handleAddNASPathsToVolume(const QString &result, const QVariant &data)
{
    constexpr auto function = "PluginRecordingManagement::handleAddNASPathsToVolume";
    if (result != ReturnCode::Success) {
        TRACE_ERROR("%s, Add path to volume failed, returnCode = %s", function, result.toLocal8Bit().constData());
        emit addNASPathsToVolumeResp(false);
        return;
    }
    RowBatch rows(m_volumeModel);
    const QVariantList disks = data.toList();
    for (const QVariant &element : disks) {
        const QVariantMap disk = element.toMap();
        const QString name = disk.value(FieldKey::diskName).toString();
        const qlonglong total = disk.value(FieldKey::diskTotal).toLongLong();
        const qlonglong used = disk.value(FieldKey::diskUsed).toLongLong();
        if (!rows.add(VolumeItem(name, name, total, wrappingDifference(total, used), false, true)))
            TRACE_ERROR("%s, new VolumeItem failed", function);
    }
    rows.append();
    emit addNASPathsToVolumeResp(true);
}
