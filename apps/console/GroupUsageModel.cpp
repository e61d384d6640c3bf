#include "GroupUsageModel.h"

#include "MissingDays.h"
#include "ModelColumn.h"
#include "NaturalOrder.h"
#include "RowOrder.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeParts.h"

#include <QMetaObject>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace {
const QString &backupId()
{
    static const QString id = QStringLiteral("backupID");
    return id;
}

/// The model that a getter of the plug-in gives for @p keys; null when it has none.
template<typename... Keys>
QAbstractItemModel *askedModel(QObject &recording, const char *getter, const Keys &...keys)
{
    QObject *model = nullptr;
    QMetaObject::invokeMethod(&recording, getter, Qt::DirectConnection, Q_RETURN_ARG(QObject *, model),
                              Q_ARG(QString, keys)...);
    return qobject_cast<QAbstractItemModel *>(model);
}

constexpr double bytesOfAKilobyte = 1024;

/// One row of the plug-in's volumes of a group.
struct GroupVolume
{
    QString path;
    bool isNas = false;
    QVariantMap figures; ///< with the keys of "station.listStorage", as far as the plug-in has them
    double fillable = -1; ///< bytes

    bool isLost() const { return figures.value(StationKey::state) == StationVolumeState::gone; }
};

/// A volume that is gone has neither size nor space for the group.
QList<GroupVolume> volumesIn(const QAbstractItemModel *model)
{
    if (!model)
        return {};
    const ModelColumn name(*model, "nameRole");
    const ModelColumn path(*model, "rootPathRole");
    const ModelColumn size(*model, "sizeRole");
    const ModelColumn available(*model, "availableSizeRole");
    const ModelColumn isSystem(*model, "isSystemRole");
    const ModelColumn isNas(*model, "isNASRole");
    QList<GroupVolume> volumes;
    for (int row = 0; row < model->rowCount(); ++row) {
        const double bytes = size[row].toDouble() * bytesOfAKilobyte;
        const double fillable = available[row].toDouble() * bytesOfAKilobyte;
        const QString &state = bytes > 0  ? StationVolumeState::there
            : bytes == 0 && fillable == 0 ? StationVolumeState::gone
                                          : StationVolumeState::unknown;
        volumes.append({path[row].toString(),
                        isNas[row].toBool(),
                        {{FieldKey::volumePath, path[row]},
                         {FieldKey::volumeName, name[row]},
                         {FieldKey::volumeIsSystem, isSystem[row]},
                         {StationKey::kind, isNas[row].toBool() ? StationVolumeKind::NAS : StationVolumeKind::local},
                         {StationKey::state, state},
                         {StationKey::size, bytes > 0 ? bytes : -1},
                         {StationKey::free, -1}},
                        fillable});
    }
    return volumes;
}

bool areAllLost(const QList<GroupVolume> &volumes)
{
    return !volumes.isEmpty()
        && std::all_of(volumes.cbegin(), volumes.cend(), [](const GroupVolume &volume) { return volume.isLost(); });
}
} // namespace

void GroupUsageModel::judge(Group &group)
{
    const qint64 missing = missingDays(group.reservedTime, group.recordedDays, group.remainingDays);
    group.missingDays = std::max<qint64>(missing, 0);
    group.state = missing < 0 ? Unknown : missing > 0 ? Short : Sufficient;
}

void GroupUsageModel::sortWorstFirst(QList<Group> &groups)
{
    struct Entry
    {
        Group group;
        QCollatorSortKey name; // made once: comparing by a locale costs more than all else here
    };
    const QCollator collator = naturalOrder();
    QList<Entry> entries;
    entries.reserve(groups.size());
    for (const Group &group : std::as_const(groups))
        entries.push_back({group, collator.sortKey(group.name)});
    std::sort(entries.begin(), entries.end(), [](const Entry &left, const Entry &right) {
        const Group &a = left.group;
        const Group &b = right.group;
        if (std::tie(a.state, b.missingDays) != std::tie(b.state, a.missingDays))
            return std::tie(a.state, b.missingDays) < std::tie(b.state, a.missingDays);
        const int names = left.name.compare(right.name);
        return names != 0 ? names < 0 : a.id < b.id;
    });
    std::transform(entries.begin(), entries.end(), groups.begin(), [](const Entry &entry) { return entry.group; });
}

QList<GroupUsageModel::Group> GroupUsageModel::groupsOf(QObject &recording, const QString &relayPath)
{
    QList<Group> groups;
    if (const QAbstractItemModel *usage = askedModel(recording, "getStorageUsageModel", relayPath)) {
        const ModelColumn id(*usage, "idRole");
        const ModelColumn name(*usage, "nameRole");
        const ModelColumn recordedDays(*usage, "recordedDaysRole");
        const ModelColumn remainingDays(*usage, "remainDaysRole");
        const ModelColumn oneDayUsage(*usage, "oneDayUsageRole");
        const ModelColumn reservedTime(*usage, "reserveTimeRole");
        for (int row = 0; row < usage->rowCount(); ++row) {
            Group group;
            group.id = id[row].toString();
            group.name = name[row].toString();
            group.recordedDays = recordedDays[row].toInt();
            group.remainingDays = remainingDays[row].toInt();
            group.oneDayUsage = oneDayUsage[row].toLongLong();
            group.reservedTime = reservedTime[row].toInt();
            judge(group);
            if (group.remainingDays <= 0
                && areAllLost(volumesIn(askedModel(recording, "getGroupVolumeModel", relayPath, group.id))))
                group.state = Lost;
            groups.append(group);
        }
    }
    // What belongs to no group has volumes alone.
    const QAbstractItemModel *unassigned = askedModel(recording, "getGroupVolumeModel", relayPath, QString());
    if (unassigned && unassigned->rowCount() > 0) {
        Group group;
        group.state = Unassigned;
        groups.append(group);
    }
    sortWorstFirst(groups);
    return groups;
}

void GroupUsageModel::update(QObject *recording, const QString &relayPath)
{
    m_recording = recording;
    m_relayPath = relayPath;
    show(recording ? groupsOf(*recording, relayPath) : QList<Group>());
}

void GroupUsageModel::show(const QList<Group> &groups)
{
    QHash<QString, int> places;
    places.reserve(groups.size());
    for (int row = 0; row < groups.size(); ++row)
        places.insert(groups[row].id, row);
    removeAllBut(places);
    arrange(groups, places);
    m_groups = groups;
    if (!m_groups.isEmpty())
        emit dataChanged(index(0), index(int(m_groups.size()) - 1));
    emit changed();
}

void GroupUsageModel::removeAllBut(const QHash<QString, int> &places)
{
    const auto stays = [this, &places](int row) { return places.contains(m_groups[row].id); };
    for (int last = int(m_groups.size()) - 1; last >= 0; --last) {
        if (stays(last))
            continue;
        int first = last;
        while (first > 0 && !stays(first - 1))
            --first;
        beginRemoveRows({}, first, last);
        m_groups.remove(first, last - first + 1);
        endRemoveRows();
        last = first;
    }
}

void GroupUsageModel::arrange(const QList<Group> &groups, const QHash<QString, int> &places)
{
    QList<int> wanted;
    QList<bool> present(groups.size(), false);
    for (const Group &group : std::as_const(m_groups)) {
        wanted.push_back(places.value(group.id));
        present[wanted.back()] = true;
    }
    const QList<bool> stays = placesInOrder(wanted, groups.size());
    int row = 0; // behind what is in its place already; rows that move on later may stand before it
    for (int place = 0; place < groups.size();) {
        if (!present[place]) {
            const auto end = std::find(present.begin() + place, present.end(), true);
            const int count = int(end - present.begin()) - place;
            beginInsertRows({}, row, row + count - 1);
            m_groups.insert(row, count, Group());
            std::copy_n(groups.begin() + place, count, m_groups.begin() + row);
            endInsertRows();
            row += count;
            place += count;
            continue;
        }
        if (stays[place]) {
            while (m_groups[row].id != groups[place].id)
                ++row;
        } else {
            const int oldRow = rowOf(groups[place].id);
            const int newRow = oldRow < row ? row - 1 : row;
            if (oldRow != newRow) {
                beginMoveRows({}, oldRow, oldRow, {}, row);
                m_groups.move(oldRow, newRow);
                endMoveRows();
            }
            row = newRow;
        }
        ++row;
        ++place;
    }
}

QVariantList GroupUsageModel::volumesOf(const QString &groupId) const
{
    QVariantList list;
    if (!m_recording)
        return list;
    const QList<GroupVolume> volumes = volumesIn(askedModel(*m_recording, "getGroupVolumeModel", m_relayPath, groupId));
    for (const GroupVolume &volume : volumes) {
        const QVariantMap told = m_storage ? m_storage->holding(volume.path, volume.isNas) : QVariantMap();
        const QVariantMap &figures = told.isEmpty() ? volume.figures : told;
        list.append(QVariantMap{{QStringLiteral("path"), volume.path},
                                {QStringLiteral("fillable"), volume.fillable},
                                {QStringLiteral("volume"), figures},
                                {QStringLiteral("parts"), volumeParts(figures, groupId)}});
    }
    return list;
}

void GroupUsageModel::setStorage(StationStorage *storage)
{
    if (m_storage == storage)
        return;
    if (m_storage)
        m_storage->disconnect(this);
    m_storage = storage;
    const auto showVolumes = [this] {
        if (!m_groups.isEmpty())
            emit dataChanged(index(0), index(int(m_groups.size()) - 1), {Volumes});
    };
    if (m_storage)
        connect(m_storage, &StationStorage::changed, this, showVolumes);
    showVolumes();
    emit storageChanged();
}

int GroupUsageModel::rowOf(const QString &groupId) const
{
    const auto found =
        std::find_if(m_groups.begin(), m_groups.end(), [&groupId](const Group &group) { return group.id == groupId; });
    return found == m_groups.end() ? -1 : int(std::distance(m_groups.begin(), found));
}

QVariantMap GroupUsageModel::figuresOf(const QString &groupId) const
{
    QVariantMap figures;
    const int row = rowOf(groupId);
    if (row < 0)
        return figures;
    const QHash<int, QByteArray> roles = roleNames();
    for (auto role = roles.cbegin(); role != roles.cend(); ++role) {
        if (role.key() != Volumes)
            figures.insert(QString::fromLatin1(role.value()), data(index(row), role.key()));
    }
    return figures;
}

int GroupUsageModel::countOf(State state) const
{
    return int(
        std::count_if(m_groups.begin(), m_groups.end(), [state](const Group &group) { return group.state == state; }));
}

int GroupUsageModel::count() const
{
    return int(m_groups.size()) - countOf(Unassigned);
}

int GroupUsageModel::shortCount() const
{
    return countOf(Short);
}

int GroupUsageModel::lostCount() const
{
    return countOf(Lost);
}

int GroupUsageModel::unknownCount() const
{
    return countOf(Unknown);
}

int GroupUsageModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_groups.size());
}

QVariant GroupUsageModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Group &group = m_groups[index.row()];
    switch (role) {
    case GroupId:
        return group.id;
    case Name:
        return group.name;
    case Standing:
        return group.state;
    case IsBackup:
        return group.id == backupId();
    case RecordedDays:
        return group.recordedDays;
    case RemainingDays:
        return group.remainingDays;
    case MissingDays:
        return group.missingDays;
    case OneDayUsage:
        return group.oneDayUsage;
    case ReservedTime:
        return group.reservedTime;
    case Volumes:
        return volumesOf(group.id);
    default:
        return {};
    }
}

QHash<int, QByteArray> GroupUsageModel::roleNames() const
{
    return {
        {GroupId, "groupId"},           {Name, "name"},
        {Standing, "standing"},         {IsBackup, "isBackup"},
        {RecordedDays, "recordedDays"}, {RemainingDays, "remainingDays"},
        {MissingDays, "missingDays"},   {OneDayUsage, "oneDayUsage"},
        {ReservedTime, "reservedTime"}, {Volumes, "volumes"},
    };
}
