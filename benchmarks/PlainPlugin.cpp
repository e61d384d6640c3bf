#include "PlainPlugin.h"

#include "ItemRoles.h"
#include "Replies.h"
#include "ServerVocabulary.h"

#include <QUuid>

namespace {

QHash<int, QByteArray> volumeRoles()
{
    return {
        {257, "idRole"},       {258, "rootPathRole"}, {259, "nameRole"}, {260, "sizeRole"}, {261, "availableSizeRole"},
        {262, "isSystemRole"}, {263, "isNASRole"},
    };
}

QHash<int, QByteArray> groupRoles()
{
    return {
        {257, "idRole"},         {258, "nameRole"},        {259, "pathListRole"},
        {260, "nodeIdListRole"}, {261, "nasPathListRole"}, {262, "recordedDaysRole"},
        {263, "remainDaysRole"}, {264, "oneDayUsageRole"}, {265, "reserveTimeRole"},
    };
}

QStandardItem *volumeItem(const QString &id, const QString &path, const QString &name, qlonglong size,
                          qlonglong availableSize, bool isSystem, bool isNas)
{
    auto *const item = new QStandardItem;
    item->setData(id, VolumeRole::Id);
    item->setData(path, VolumeRole::RootPath);
    item->setData(name, VolumeRole::Name);
    item->setData(size, VolumeRole::Size);
    item->setData(availableSize, VolumeRole::AvailableSize);
    item->setData(isSystem, VolumeRole::IsSystem);
    item->setData(isNas, VolumeRole::IsNas);
    return item;
}

QStandardItem *recordingGroupItem(const QString &id, const QString &name, const QStringList &pathList,
                                  const QStringList &nodeIdList, const QStringList &nasPathList, int recordedDays,
                                  int remainDays, qint64 oneDayUsage, int reserveTime)
{
    auto *const item = new QStandardItem;
    item->setData(id, RecordingGroupRole::Id);
    item->setData(name, RecordingGroupRole::Name);
    item->setData(pathList, RecordingGroupRole::PathList);
    item->setData(nodeIdList, RecordingGroupRole::NodeIdList);
    item->setData(nasPathList, RecordingGroupRole::NasPathList);
    item->setData(recordedDays, RecordingGroupRole::RecordedDays);
    item->setData(remainDays, RecordingGroupRole::RemainDays);
    item->setData(oneDayUsage, RecordingGroupRole::OneDayUsage);
    item->setData(reserveTime, RecordingGroupRole::ReserveTime);
    return item;
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

} // namespace

PlainRules::PlainRules(const PlainModels &models)
    : m_models(models)
{
}

void PlainRules::handleRetrieveVolume(const QVariant &data)
{
    m_models.volumes.clear();
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        const QString id = QUuid::createUuid().toString();
        const QString path = map[FieldKey::volumePath].toString();
        const QString name = map[FieldKey::volumeName].toString();
        const qlonglong size = map[FieldKey::volumeSize].toLongLong();
        const qlonglong available = map[FieldKey::volumeAvailableSize].toLongLong();
        const bool isSystem = map[FieldKey::volumeIsSystem].toBool();
        m_models.volumes.appendRow(volumeItem(id, path, name, size, available, isSystem, false));
    }
}

void PlainRules::handleGetNASServers(const QVariant &data)
{
    m_models.nasServers.clear();
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        const QString id = map[QStringLiteral("id")].toString();
        const QString host = map[FieldKey::host].toString();
        const QString logonDomain = map[FieldKey::logonDomain].toString();
        const QString userName = map[FieldKey::userName].toString();
        const QString password = map[FieldKey::password].toString();
        if (id.isEmpty() || host.isEmpty())
            continue;
        auto *const item = new QStandardItem;
        item->setData(id, NasServerRole::Id);
        item->setData(host, NasServerRole::Host);
        item->setData(logonDomain, NasServerRole::LogonDomain);
        item->setData(userName, NasServerRole::UserName);
        item->setData(password, NasServerRole::Password);
        m_models.nasServers.appendRow(item);
    }
}

void PlainRules::handleGetRecordingGroup(const QVariant &data)
{
    m_models.recordingGroups.clear();
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        const QStringList nasPaths = map[FieldKey::recordingGroupNASPathList].toStringList();
        const QStringList nodeIds = map[FieldKey::recordingGroupNodeIdList].toStringList();
        const QStringList paths = map[FieldKey::recordingGroupPathList].toStringList();
        const QString name = map[FieldKey::recordingGroupName].toString();
        const QString id = map[FieldKey::recordingGroupID].toString();
        m_models.recordingGroups.appendRow(recordingGroupItem(id, name, paths, nodeIds, nasPaths, 0, 0, 0, 0));
    }
}

void PlainRules::appendRecordingGroupToTreeModel(const QVariant &data)
{
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        auto *item = new QStandardItem;
        item->setData(QUuid::createUuid(), TreeRole::Id);
        item->setData(map[FieldKey::recordingGroupName], TreeRole::Name);
        item->setData(map[FieldKey::relayPath], TreeRole::RelayPath);
        item->setData(QStringLiteral("RecordingGroup"), TreeRole::Type);
        item->setData(map[FieldKey::recordingGroupID], TreeRole::RecordingGroupId);
        const QModelIndexList parents =
            m_models.tree.match(m_models.tree.index(0, 0), TreeRole::RelayPath, map[FieldKey::relayPath], -1,
                                Qt::MatchExactly | Qt::MatchRecursive);
        for (const QModelIndex &parent : parents) {
            if (item && parent.data(TreeRole::Type).toString() != QLatin1String("RecordingGroup")) {
                m_models.tree.itemFromIndex(parent)->appendRow(item);
                item = nullptr;
            }
        }
        delete item;
    }
}

void PlainRules::saveRecordingGroupData(const QVariant &data)
{
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        RecordingGroupData group;
        group.recordingGroupID = map[FieldKey::recordingGroupID].toString();
        group.relayPath = map[FieldKey::relayPath].toString();
        group.recordingGroupPathList = map[FieldKey::recordingGroupPathList].toList();
        group.reserveSpace = map[FieldKey::reserveSpace].toList();
        group.recordingGroupNASPathList = map[FieldKey::recordingGroupNASPathList].toList();
        group.recordingGroupNodeIdList = map[FieldKey::recordingGroupNodeIdList].toList();
        group.recordingGroupRecoveryPathList = map[FieldKey::recordingGroupRecoveryPathList].toList();
        group.recordingGroupReservedTime = map[FieldKey::recordingGroupReservedTime].toInt();
        group.recordingGroupMemberList = map[FieldKey::recordingGroupMemberList].toList();
        m_models.cache.push_back(group);
    }
}

QMap<QString, QVariant> PlainRules::calculateGroupUsage(const QVariant &data) const
{
    QMap<QString, QVariant> result;
    for (const QVariant &element : data.toList()) {
        QVariantMap e = element.toMap();
        const qlonglong available = e[FieldKey::volumeAvailableSize].toLongLong();
        const qlonglong oneDay = e[FieldKey::volumeOneDayUsage].toLongLong();
        const qlonglong recorded = e[FieldKey::volumeRecordedDays].toLongLong();
        const QString id = e[FieldKey::recordingGroupID].toString();
        const QString name = e[FieldKey::recordingGroupName].toString();
        const int reserve = e[FieldKey::recordingGroupReservedTime].toInt();
        QVariantMap g = result[id].toMap();
        g[QStringLiteral("reserveTime")] = reserve;
        g[QStringLiteral("groupName")] = name;
        g[QStringLiteral("availableSize")] = g[QStringLiteral("availableSize")].toLongLong() + available;
        if (recorded >= 0)
            g[QStringLiteral("recordedDays")] = recorded + g[QStringLiteral("recordedDays")].toLongLong();
        if (oneDay >= 0)
            g[QStringLiteral("oneDayUsage")] = oneDay + g[QStringLiteral("oneDayUsage")].toLongLong();
        result[id] = g;
    }
    return result;
}

void PlainRules::updateRecordingGroupVolumeModel(const QString &source, const QVariant &data)
{
    m_models.groupVolumeModels[source].clear();
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        const QString id = QUuid::createUuid().toString();
        const QString groupId = map[FieldKey::recordingGroupID].toString();
        const QString path = map[FieldKey::recordingPath].toString();
        const QString name = map[FieldKey::volumeName].toString();
        const qlonglong size = map[FieldKey::volumeSize].toLongLong();
        const qlonglong available = map[FieldKey::volumeAvailableSize].toLongLong();
        const bool isSystem = map[FieldKey::volumeIsSystem].toBool();
        const bool isNas = map[FieldKey::volumeIsNAS].toBool();
        if (!m_models.groupVolumeModels[source].contains(groupId)) {
            QSharedPointer<QStandardItemModel> model(new QStandardItemModel(&m_models.parent));
            model->setItemRoleNames(volumeRoles());
            m_models.groupVolumeModels[source][groupId] = model;
        }
        m_models.groupVolumeModels[source][groupId]->appendRow(
            volumeItem(id, path, name, size, available, isSystem, isNas));
    }
}

void PlainRules::updateRecordingGroupUsageModel(const QString &source, const QMap<QString, QVariant> &usage)
{
    if (!m_models.usageModels.contains(source)) {
        QSharedPointer<QStandardItemModel> created(new QStandardItemModel(&m_models.parent));
        created->setItemRoleNames(groupRoles());
        m_models.usageModels[source] = created;
    }
    QStandardItemModel *const model = m_models.usageModels[source].data();
    model->clear();
    for (const QString &id : usage.keys()) {
        QVariantMap g = usage[id].toMap();
        const qlonglong recorded =
            g.contains(QStringLiteral("recordedDays")) ? g[QStringLiteral("recordedDays")].toLongLong() : -1;
        const qlonglong oneDay =
            g.contains(QStringLiteral("oneDayUsage")) ? g[QStringLiteral("oneDayUsage")].toLongLong() : -1;
        const qlonglong available = g[QStringLiteral("availableSize")].toLongLong();
        const double days = static_cast<double>(available) / static_cast<double>(oneDay / 1024);
        const qlonglong remaining = oneDay > 0 ? static_cast<qlonglong>(days) : -1;
        const int reserve = g[QStringLiteral("reserveTime")].toInt();
        const QString name = g[QStringLiteral("groupName")].toString();
        if (!id.isEmpty())
            model->appendRow(recordingGroupItem(id, name, {}, {}, {}, static_cast<int>(recorded),
                                                static_cast<int>(remaining), oneDay, reserve));
    }
}

void PlainRules::handleVolumeChanged(const QString &source, const QVariant &data, QObject *statusMonitor)
{
    const QMap<QString, QVariant> usage = calculateGroupUsage(data);
    updateRecordingGroupVolumeModel(source, data);
    updateRecordingGroupUsageModel(source, usage);

    QMetaObject::invokeMethod(statusMonitor, "removeVolumeError", Qt::AutoConnection, Q_ARG(QString, source));
    for (const QVariant &element : data.toList()) {
        QVariantMap map = element.toMap();
        if (map[FieldKey::volumeAvailableSize].toLongLong() == 0 && map[FieldKey::volumeSize].toLongLong() == 0) {
            QMetaObject::invokeMethod(statusMonitor, "monitorVolumeStatus", Qt::AutoConnection, Q_ARG(QString, source));
            break;
        }
    }
    const QStandardItemModel &model = *m_models.usageModels[source];
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
            QMetaObject::invokeMethod(statusMonitor, "monitorSufficientRecordingGroup", Qt::AutoConnection,
                                      Q_ARG(QString, source), Q_ARG(QString, id));
        else
            QMetaObject::invokeMethod(statusMonitor, "monitorInsufficientRecordingDays", Qt::AutoConnection,
                                      Q_ARG(QString, source), Q_ARG(QString, name), Q_ARG(QString, id));
    }
}

QVariantList PlainRules::getRecordingGroupIDList(const QString &cameraId) const
{
    QVariantList ids;
    for (const RecordingGroupData &group : m_models.cache) {
        for (const QVariant &element : group.recordingGroupMemberList) {
            QVariantMap member = element.toMap();
            QString name = member[FieldKey::camName].toString();
            if (!group.relayPath.isEmpty())
                name = group.relayPath + "/" + name;
            if (name == cameraId) {
                ids.append(group.recordingGroupID);
                break;
            }
        }
    }
    return ids;
}

QVariantList PlainRules::getRecordingGroupPathList(const QString &id, const QString &relayPath) const
{
    for (const RecordingGroupData &group : m_models.cache) {
        if (group.recordingGroupID == id && group.relayPath == relayPath)
            return group.recordingGroupPathList;
    }
    return {};
}

QVariantList PlainRules::getRecordingGroupInfoList() const
{
    QVariantList result;
    const QStandardItemModel &usage = *m_models.usageModels[QString()];
    for (int row = 0; row < usage.rowCount(); ++row) {
        const QModelIndex group = usage.index(row, 0);
        const QString id = group.data(RecordingGroupRole::Id).toString();
        const QString name = group.data(RecordingGroupRole::Name).toString();
        const int remaining = group.data(RecordingGroupRole::RemainDays).toInt();
        const int recorded = group.data(RecordingGroupRole::RecordedDays).toInt();
        QVariantList volumeList;
        const QSharedPointer<QStandardItemModel> paths = m_models.groupVolumeModels[QString()][id];
        for (int pathRow = 0; pathRow < paths->rowCount(); ++pathRow) {
            const QModelIndex path = paths->index(pathRow, 0);
            QVariantMap volume;
            volume[FieldKey::recordingPath] = path.data(VolumeRole::RootPath).toString();
            volume[QStringLiteral("totalSpace")] = capacityText(path.data(VolumeRole::Size).toLongLong());
            volume[QStringLiteral("remainingSpace")] = capacityText(path.data(VolumeRole::AvailableSize).toLongLong());
            volume[QStringLiteral("isNAS")] = path.data(VolumeRole::IsNas).toBool();
            volumeList.append(volume);
        }
        QVariantMap map;
        map[QStringLiteral("recordingGroup")] = id;
        map[QStringLiteral("groupName")] = name;
        map[QStringLiteral("recordedDays")] = recorded;
        map[QStringLiteral("remainingDays")] = remaining;
        map[QStringLiteral("volumeList")] = volumeList;
        result.append(map);
    }
    return result;
}

PlainPlugin::PlainPlugin()
    : PlainRules({volumes, nasServers, recordingGroups, tree, usageModels, groupVolumeModels, m_cache, *this})
{
    auto *const station = new QStandardItem;
    station->setData(Replies::relayPath(), TreeRole::RelayPath);
    station->setData(QStringLiteral("Station"), TreeRole::Type);
    tree.appendRow(station);
}
