#include "PlainPlugin.h"

#include "Client.h"
#include "ItemRoles.h"

#include <QUuid>

#include <memory>

namespace {

QStandardItem *newItem(std::initializer_list<std::pair<int, QVariant>> values)
{
    auto *const item = new QStandardItem;
    for (const auto &[role, value] : values)
        item->setData(value, role);
    return item;
}

QStandardItem *newVolume(QVariantMap &volume, const QString &pathKey, bool isNas)
{
    return newItem({
        {VolumeRole::Id, QUuid::createUuid().toString()},
        {VolumeRole::RootPath, volume[pathKey].toString()},
        {VolumeRole::Name, volume[FieldKey::volumeName].toString()},
        {VolumeRole::Size, volume[FieldKey::volumeSize].toLongLong()},
        {VolumeRole::AvailableSize, volume[FieldKey::volumeAvailableSize].toLongLong()},
        {VolumeRole::IsSystem, volume[FieldKey::volumeIsSystem].toBool()},
        {VolumeRole::IsNas, isNas},
    });
}

QString capacityText(qint64 capacity)
{
    auto value = static_cast<double>(capacity);
    int unit = 0;
    while (value >= 1024.0) {
        value *= 0.0009765625;
        ++unit;
    }
    const QStringList templates{"%1 KB", "%1 MB", "%1 GB", "%1 TB"};
    return templates.at(std::min(unit, 3)).arg(QString::number(value, 'f', 2));
}

QMap<QString, QVariant> sumUsage(const QVariant &data)
{
    QMap<QString, QVariant> result;
    for (const QVariant &element : data.toList()) {
        QVariantMap entry = element.toMap();
        const qlonglong oneDay = entry[FieldKey::volumeOneDayUsage].toLongLong();
        const qlonglong recorded = entry[FieldKey::volumeRecordedDays].toLongLong();
        const QString id = entry[FieldKey::recordingGroupID].toString();
        QVariantMap group = result[id].toMap();
        group[FieldKey::recordingGroupReservedTime] = entry[FieldKey::recordingGroupReservedTime].toInt();
        group[FieldKey::recordingGroupName] = entry[FieldKey::recordingGroupName].toString();
        group[FieldKey::volumeAvailableSize] =
            group[FieldKey::volumeAvailableSize].toLongLong() + entry[FieldKey::volumeAvailableSize].toLongLong();
        if (recorded >= 0)
            group[FieldKey::volumeRecordedDays] = recorded + group[FieldKey::volumeRecordedDays].toLongLong();
        if (oneDay >= 0)
            group[FieldKey::volumeOneDayUsage] = oneDay + group[FieldKey::volumeOneDayUsage].toLongLong();
        result[id] = group;
    }
    return result;
}

void appendGroups(QStandardItemModel &tree, const QVariant &data)
{
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        std::unique_ptr<QStandardItem> item(newItem({
            {TreeRole::Id, QUuid::createUuid()},
            {TreeRole::Name, map[FieldKey::recordingGroupName]},
            {TreeRole::RelayPath, map[FieldKey::relayPath]},
            {TreeRole::Type, NodeType::RecordingGroup},
            {TreeRole::RecordingGroupId, map[FieldKey::recordingGroupID]},
        }));
        const QModelIndexList parents = tree.match(tree.index(0, 0), TreeRole::RelayPath, map[FieldKey::relayPath], -1,
                                                   Qt::MatchExactly | Qt::MatchRecursive);
        for (const QModelIndex &parent : parents) {
            if (item && parent.data(TreeRole::Type).toString() != NodeType::RecordingGroup)
                tree.itemFromIndex(parent)->appendRow(item.release());
        }
    }
}

void fillUsage(QStandardItemModel &model, const QMap<QString, QVariant> &usage)
{
    model.clear();
    for (const QString &id : usage.keys()) {
        QVariantMap group = usage[id].toMap();
        const qlonglong recorded = group.value(FieldKey::volumeRecordedDays, -1).toLongLong();
        const qlonglong oneDay = group.value(FieldKey::volumeOneDayUsage, -1).toLongLong();
        const qlonglong available = group[FieldKey::volumeAvailableSize].toLongLong();
        const double days = static_cast<double>(available) / static_cast<double>(oneDay / 1024);
        const qlonglong remaining = oneDay > 0 ? static_cast<qlonglong>(days) : -1;
        if (id.isEmpty())
            continue;
        model.appendRow(newItem({
            {RecordingGroupRole::Id, id},
            {RecordingGroupRole::Name, group[FieldKey::recordingGroupName].toString()},
            {RecordingGroupRole::PathList, QStringList()},
            {RecordingGroupRole::NodeIdList, QStringList()},
            {RecordingGroupRole::NasPathList, QStringList()},
            {RecordingGroupRole::RecordedDays, static_cast<int>(recorded)},
            {RecordingGroupRole::RemainDays, static_cast<int>(remaining)},
            {RecordingGroupRole::OneDayUsage, oneDay},
            {RecordingGroupRole::ReserveTime, group[FieldKey::recordingGroupReservedTime].toInt()},
        }));
    }
}

void reportVolumes(QObject *monitor, const QString &source, const QVariant &data)
{
    QMetaObject::invokeMethod(monitor, "removeVolumeError", Q_ARG(QString, source));
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        if (map[FieldKey::volumeAvailableSize].toLongLong() == 0 && map[FieldKey::volumeSize].toLongLong() == 0) {
            QMetaObject::invokeMethod(monitor, "monitorVolumeStatus", Q_ARG(QString, source));
            break;
        }
    }
}

void reportGroups(QObject *monitor, const QString &source, const QStandardItemModel &model)
{
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, 0);
        const QString id = index.data(RecordingGroupRole::Id).toString();
        const QString name = index.data(RecordingGroupRole::Name).toString();
        const qlonglong remaining = index.data(RecordingGroupRole::RemainDays).toLongLong();
        const qlonglong recorded = index.data(RecordingGroupRole::RecordedDays).toLongLong();
        const int reserve = index.data(RecordingGroupRole::ReserveTime).toInt();
        if (remaining < 0 || recorded < 0 || reserve < 0)
            continue;
        if (recorded + remaining >= reserve / 1440)
            QMetaObject::invokeMethod(monitor, "monitorSufficientRecordingGroup", Q_ARG(QString, source),
                                      Q_ARG(QString, id));
        else
            QMetaObject::invokeMethod(monitor, "monitorInsufficientRecordingDays", Q_ARG(QString, source),
                                      Q_ARG(QString, name), Q_ARG(QString, id));
    }
}

} // namespace

bool PlainPlugin::InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework)
{
    m_statusMonitor = framework->GetPluginObject(handle, QuietFramework::statusMonitorId);
    return PluginRecordingManagement::InitialPluginBase(context, handle, framework);
}

void PlainPlugin::CommandProcessor(QString command, QVariant data, void *, QString, QString, bool, const QString &)
{
    if (command == ServerCommand::getVolume) {
        QStandardItemModel &model = rowsOf(getVolumeModel());
        model.clear();
        for (const QVariant &element : data.toList()) {
            QVariantMap map = element.toMap();
            model.appendRow(newVolume(map, FieldKey::volumePath, false));
        }
        emit getVolumeResponded(true);
    }
    if (command == ServerCommand::retrieveRecordingGroupTreeModel) {
        appendGroups(rowsOf(getRecordingGroupTreeModel()), data);
        m_cache.clear();
        for (const QVariant &element : data.toList())
            m_cache.push_back(element.toMap());
        emit retrieveRecordingGroupTreeModelFinish();
    }
}

void PlainPlugin::EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source)
{
    if (event != ServerEvent::VolumeChanged)
        return;
    const QMap<QString, QVariant> usage = sumUsage(data);
    keepEntries(source, data);
    fillUsage(rowsOf(getStorageUsageModel(source)), usage);
    reportVolumes(m_statusMonitor, source, data);
    reportGroups(m_statusMonitor, source, rowsOf(getStorageUsageModel(source)));
    emit volumeInfoChanged();
}

void PlainPlugin::keepEntries(const QString &source, const QVariant &data)
{
    m_keptEntries[source].clear();
    m_groupVolumeModels[source].clear();
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        const QString id = map[FieldKey::recordingGroupID].toString();
        if (!m_areVolumeModelsMade) {
            m_keptEntries[source][id].append(map);
            continue;
        }
        QSharedPointer<QStandardItemModel> &model = m_groupVolumeModels[source][id];
        if (!model) {
            model.reset(new QStandardItemModel(this));
            model->setItemRoleNames(volumeRoleNames());
        }
        model->appendRow(newVolume(map, FieldKey::recordingPath, map[FieldKey::volumeIsNAS].toBool()));
    }
}

QVariant PlainPlugin::cached(const QString &id, const QString &relayPath, const QString &key) const
{
    for (const QVariantMap &group : m_cache) {
        if (group[FieldKey::recordingGroupID] == id && group[FieldKey::relayPath] == relayPath)
            return group[key];
    }
    return {};
}

QVariantList PlainPlugin::getRecordingGroupIDList(const QString &cameraId) const
{
    QVariantList ids;
    for (const QVariantMap &group : m_cache) {
        const QString relayPath = group[FieldKey::relayPath].toString();
        for (const QVariant &element : group[FieldKey::recordingGroupMemberList].toList()) {
            QVariantMap member = element.toMap();
            QString name = member[FieldKey::camName].toString();
            if (!relayPath.isEmpty())
                name = relayPath + "/" + name;
            if (name == cameraId) {
                ids.append(group[FieldKey::recordingGroupID]);
                break;
            }
        }
    }
    return ids;
}

QVariantList PlainPlugin::getRecordingGroupInfoList()
{
    QVariantList result;
    const QStandardItemModel &usage = rowsOf(getStorageUsageModel({}));
    for (int row = 0; row < usage.rowCount(); ++row) {
        const QModelIndex group = usage.index(row, 0);
        const QString id = group.data(RecordingGroupRole::Id).toString();
        QVariantList volumes;
        const QStandardItemModel &paths = rowsOf(getGroupVolumeModel({}, id));
        for (int pathRow = 0; pathRow < paths.rowCount(); ++pathRow) {
            const QModelIndex path = paths.index(pathRow, 0);
            volumes.append(QVariantMap{
                {FieldKey::recordingPath, path.data(VolumeRole::RootPath).toString()},
                {QStringLiteral("totalSpace"), capacityText(path.data(VolumeRole::Size).toLongLong())},
                {QStringLiteral("remainingSpace"), capacityText(path.data(VolumeRole::AvailableSize).toLongLong())},
                {QStringLiteral("isNAS"), path.data(VolumeRole::IsNas).toBool()},
            });
        }
        result.append(QVariantMap{
            {QStringLiteral("recordingGroup"), id},
            {QStringLiteral("groupName"), group.data(RecordingGroupRole::Name).toString()},
            {QStringLiteral("recordedDays"), group.data(RecordingGroupRole::RecordedDays).toInt()},
            {QStringLiteral("remainingDays"), group.data(RecordingGroupRole::RemainDays).toInt()},
            {QStringLiteral("volumeList"), volumes},
        });
    }
    return result;
}
