#include "GroupUsageModel.h"

#include <QMetaObject>

#include <algorithm>
#include <array>
#include <iterator>
#include <tuple>

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

/// The values of one role, by its name.
class Column
{
public:
    Column(const QAbstractItemModel &model, const char *role)
        : m_model(model)
        , m_role(model.roleNames().key(role, -1))
    {
    }

    QVariant operator[](int row) const { return m_model.index(row, 0).data(m_role); }

private:
    const QAbstractItemModel &m_model;
    int m_role;
};

QVariantList volumeList(const QAbstractItemModel *model)
{
    if (!model)
        return {};
    const std::array<std::pair<QString, Column>, 6> columns{{
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

bool GroupUsageModel::isWorse(const Group &left, const Group &right)
{
    if (std::tie(left.state, right.missingDays) != std::tie(right.state, left.missingDays))
        return std::tie(left.state, right.missingDays) < std::tie(right.state, left.missingDays);
    const int names = QString::localeAwareCompare(left.name.toCaseFolded(), right.name.toCaseFolded());
    return names != 0 ? names < 0 : left.id < right.id;
}

QList<GroupUsageModel::Group> GroupUsageModel::groupsOf(QObject &recording, const QString &relayPath)
{
    QList<Group> groups;
    if (const QAbstractItemModel *usage = askedModel(recording, "getStorageUsageModel", relayPath)) {
        const Column id(*usage, "idRole");
        const Column name(*usage, "nameRole");
        const Column recordedDays(*usage, "recordedDaysRole");
        const Column remainingDays(*usage, "remainDaysRole");
        const Column oneDayUsage(*usage, "oneDayUsageRole");
        const Column reservedTime(*usage, "reserveTimeRole");
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
    for (Group &group : groups)
        group.volumes = volumeList(askedModel(recording, "getGroupVolumeModel", relayPath, group.id));
    // What belongs to no group has volumes alone.
    Group unassigned;
    unassigned.state = Unassigned;
    unassigned.volumes = volumeList(askedModel(recording, "getGroupVolumeModel", relayPath, unassigned.id));
    if (!unassigned.volumes.isEmpty())
        groups.append(unassigned);
    std::sort(groups.begin(), groups.end(), &GroupUsageModel::isWorse);
    return groups;
}

void GroupUsageModel::update(QObject *recording, const QString &relayPath)
{
    show(recording ? groupsOf(*recording, relayPath) : QList<Group>());
}

void GroupUsageModel::show(const QList<Group> &groups)
{
    for (int row = int(m_groups.size()) - 1; row >= 0; --row) {
        const auto isThisRow = [this, row](const Group &group) { return group.id == m_groups[row].id; };
        if (std::any_of(groups.begin(), groups.end(), isThisRow))
            continue;
        beginRemoveRows({}, row, row);
        m_groups.removeAt(row);
        endRemoveRows();
    }
    for (int row = 0; row < groups.size(); ++row) {
        const Group &group = groups[row];
        const int oldRow = rowOf(group.id);
        if (oldRow < 0) {
            beginInsertRows({}, row, row);
            m_groups.insert(row, group);
            endInsertRows();
            continue;
        }
        if (oldRow != row) {
            beginMoveRows({}, oldRow, oldRow, {}, row);
            m_groups.move(oldRow, row);
            endMoveRows();
        }
        if (m_groups[row] != group) {
            m_groups[row] = group;
            emit dataChanged(index(row), index(row));
        }
    }
    emit changed();
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
        return group.volumes;
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
