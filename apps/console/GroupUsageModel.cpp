#include "GroupUsageModel.h"

#include "ModelColumn.h"
#include "RowOrder.h"

#include <QCollator>
#include <QMetaObject>

#include <algorithm>
#include <array>
#include <iterator>
#include <tuple>
#include <utility>

namespace {
constexpr int minutesPerDay = 24 * 60;

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

QVariantList volumeList(const QAbstractItemModel *model)
{
    if (!model)
        return {};
    const std::array<std::pair<QString, ModelColumn>, 6> columns{{
        {QStringLiteral("name"), {*model, "nameRole"}},
        {QStringLiteral("path"), {*model, "rootPathRole"}},
        {QStringLiteral("size"), {*model, "sizeRole"}},
        {QStringLiteral("availableSize"), {*model, "availableSizeRole"}},
        {QStringLiteral("isSystem"), {*model, "isSystemRole"}},
        {QStringLiteral("isNas"), {*model, "isNASRole"}},
    }};
    QVariantList volumes;
    for (int row = 0; row < model->rowCount(); ++row) {
        QVariantMap volume;
        for (const auto &[key, column] : columns)
            volume.insert(key, column[row]);
        volumes.append(volume);
    }
    return volumes;
}
} // namespace

void GroupUsageModel::judge(Group &group)
{
    if (group.recordedDays < 0 || group.remainingDays < 0 || group.reservedTime < 0) {
        group.state = Unknown;
        return;
    }
    const qlonglong needed = group.reservedTime / minutesPerDay;
    const qlonglong covered = qlonglong(group.recordedDays) + group.remainingDays;
    group.missingDays = std::max(needed - covered, qlonglong(0));
    group.state = group.missingDays > 0 ? Short : Sufficient;
}

void GroupUsageModel::sortWorstFirst(QList<Group> &groups)
{
    struct Entry
    {
        Group group;
        QCollatorSortKey name; // made once: comparing by a locale costs more than all else here
    };
    const QCollator collator;
    QList<Entry> entries;
    entries.reserve(groups.size());
    for (const Group &group : std::as_const(groups))
        entries.push_back({group, collator.sortKey(group.name.toCaseFolded())});
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
    return m_recording ? volumeList(askedModel(*m_recording, "getGroupVolumeModel", m_relayPath, groupId))
                       : QVariantList();
}

int GroupUsageModel::rowOf(const QString &groupId) const
{
    const auto found =
        std::find_if(m_groups.begin(), m_groups.end(), [&groupId](const Group &group) { return group.id == groupId; });
    return found == m_groups.end() ? -1 : int(std::distance(m_groups.begin(), found));
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
