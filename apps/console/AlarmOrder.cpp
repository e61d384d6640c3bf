#include "AlarmOrder.h"

#include <QDateTime>

AlarmOrder::AlarmOrder(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &AlarmOrder::changed);
    const auto tellLater = [this] { m_later.start(0); };
    connect(this, &QAbstractItemModel::modelReset, this, tellLater);
    connect(this, &QAbstractItemModel::rowsInserted, this, tellLater);
    connect(this, &QAbstractItemModel::rowsRemoved, this, tellLater);
    connect(this, &QAbstractItemModel::layoutChanged, this, tellLater);
    connect(this, &QAbstractItemModel::dataChanged, this, tellLater);
    sort(0);
}

void AlarmOrder::setModel(QAbstractItemModel *model)
{
    if (sourceModel() == model)
        return;
    if (sourceModel())
        sourceModel()->disconnect(this);
    if (model) { // before the proxy's own, which sort
        connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, [this] { // it may have had no roles yet
            if (m_kind < 0)
                findRoles();
        });
    }
    setSourceModel(model);
    if (model)
        connect(model, &QAbstractItemModel::modelReset, this, &AlarmOrder::findRoles);
    findRoles();
    invalidate();
    m_later.start(0);
    emit modelChanged();
}

void AlarmOrder::findRoles()
{
    const QHash<int, QByteArray> names = sourceModel() ? sourceModel()->roleNames() : QHash<int, QByteArray>();
    m_kind = names.key("kindRole", -1);
    m_since = names.key("sinceRole", -1);
    m_acknowledgedAt = names.key("acknowledgedAtRole", -1);
    m_acknowledgedBy = names.key("acknowledgedByRole", -1);
}

QVariantList AlarmOrder::ranks() const
{
    return {m_ranks.cbegin(), m_ranks.cend()};
}

void AlarmOrder::setRanks(const QVariantList &ranks)
{
    QList<int> kinds;
    for (const QVariant &kind : ranks)
        kinds.append(kind.toInt());
    if (m_ranks == kinds)
        return;
    m_ranks = kinds;
    invalidate();
    emit ranksChanged();
}

QVariantMap AlarmOrder::at(int row) const
{
    const QModelIndex place = index(row, 0);
    if (!place.isValid())
        return {};
    QVariantMap values;
    const QHash<int, QByteArray> names = sourceModel()->roleNames();
    for (auto role = names.cbegin(); role != names.cend(); ++role) {
        if (!role->endsWith("Role"))
            continue;
        const QVariant value = place.data(role.key());
        const bool isEnumeration = value.metaType().flags().testFlag(QMetaType::IsEnumeration);
        values.insert(QString::fromLatin1(role->chopped(4)), isEnumeration ? QVariant(value.toInt()) : value);
    }
    return values;
}

bool AlarmOrder::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const auto rank = [this](const QModelIndex &alarm) { return m_ranks.indexOf(alarm.data(m_kind).toInt()); };
    if (const qsizetype leftRank = rank(left), rightRank = rank(right); leftRank != rightRank)
        return leftRank < rightRank;
    const auto isAcknowledged = [this](const QModelIndex &alarm) {
        return alarm.data(m_acknowledgedAt).toDateTime().isValid()
            || !alarm.data(m_acknowledgedBy).toString().isEmpty();
    };
    if (const bool seen = isAcknowledged(left); seen != isAcknowledged(right))
        return !seen;
    return left.data(m_since).toDateTime() < right.data(m_since).toDateTime();
}
