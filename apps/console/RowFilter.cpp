#include "RowFilter.h"

#include "NaturalOrder.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace {
bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

QString textOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(u'\n');
    return value.toString();
}

QString withoutBlanks(QString text)
{
    return text.remove(u' ');
}

int compareNumbers(double left, double right)
{
    return left < right ? -1 : left > right ? 1 : 0;
}
} // namespace

RowFilter::RowFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_collator(naturalOrder())
{
    connect(this, &RowFilter::filteringChanged, this, &RowFilter::arrangedChanged);
    connect(this, &RowFilter::rolesChanged, this, &RowFilter::arrangedChanged);
    countAfterChangesOf(this);
}

void RowFilter::setSourceModel(QAbstractItemModel *model)
{
    for (const QMetaObject::Connection &connection : std::as_const(m_connections))
        disconnect(connection);
    m_connections.clear();
    m_changing = 0;
    if (model) { // before the proxy's own, which sort
        const auto forget = [this] { forgetKeys(); };
        const auto find = [this] {
            forgetKeys();
            findRoles();
        };
        m_connections = {connect(model, &QAbstractItemModel::modelReset, this, find),
                         connect(model, &QAbstractItemModel::layoutChanged, this, forget),
                         connect(model, &QAbstractItemModel::dataChanged, this, forget),
                         connect(model, &QAbstractItemModel::rowsInserted, this, forget),
                         connect(model, &QAbstractItemModel::rowsRemoved, this, forget),
                         connect(model, &QAbstractItemModel::rowsMoved, this, forget)};
        QSortFilterProxyModel::setSourceModel(model);
        m_connections += countAfterChangesOf(model);
    } else {
        QSortFilterProxyModel::setSourceModel(model);
    }
    forgetKeys();
    findRoles();
    arrange();
    emit counted();
}

void RowFilter::findRoles()
{
    const QHash<int, QByteArray> names = sourceModel() ? sourceModel()->roleNames() : QHash<int, QByteArray>();
    const auto number = [&names](const QString &role) { return role.isEmpty() ? -1 : names.key(role.toUtf8(), -1); };
    for (NamedRole *const named : {&m_name, &m_order, &m_lead, &m_keep})
        named->number = number(named->role);
    m_searchNumbers.clear();
    for (const QString &role : std::as_const(m_searchRoles))
        m_searchNumbers.append(number(role));
}

void RowFilter::forgetKeys()
{
    m_keys.clear();
}

/// Views are told first: one that is laid out before, as the page around it counts the rows, would make its own from
/// the wrong places. A slot that is connected when a change begins is called last when it ends.
QList<QMetaObject::Connection> RowFilter::countAfterChangesOf(QAbstractItemModel *model)
{
    const auto after = [this, model](auto ends) {
        return [this, model, ends] {
            ++m_changing;
            const auto count = [this] {
                if (m_changing == 0 || --m_changing == 0)
                    emit counted();
            };
            connect(model, ends, this, count, Qt::SingleShotConnection);
        };
    };
    using Model = QAbstractItemModel;
    return {connect(model, &Model::rowsAboutToBeInserted, this, after(&Model::rowsInserted)),
            connect(model, &Model::rowsAboutToBeRemoved, this, after(&Model::rowsRemoved)),
            connect(model, &Model::modelAboutToBeReset, this, after(&Model::modelReset))};
}

void RowFilter::arrange()
{
    sort(-1); // else the same column again would change nothing
    if (!m_order.role.isEmpty() || !m_lead.role.isEmpty())
        sort(0);
}

bool RowFilter::assign(NamedRole &named, const QString &role)
{
    if (named.role == role)
        return false;
    named.role = role;
    findRoles();
    return true;
}

void RowFilter::filterAnew(bool wasFiltering)
{
    invalidateFilter();
    emit counted();
    if (wasFiltering != isFiltering())
        emit filteringChanged();
}

void RowFilter::setText(const QString &text)
{
    if (m_text == text)
        return;
    const bool wasFiltering = isFiltering();
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    m_text = text;
    const QStringList words = text.split(blanks, Qt::SkipEmptyParts);
    const bool isOther = words != m_words;
    m_words = words;
    emit textChanged();
    if (isOther)
        filterAnew(wasFiltering);
}

void RowFilter::clear()
{
    setText({});
}

void RowFilter::setNameRole(const QString &role)
{
    if (!assign(m_name, role))
        return;
    arrange();
    emit rolesChanged();
}

void RowFilter::setSearchRoles(const QStringList &roles)
{
    if (m_searchRoles == roles)
        return;
    m_searchRoles = roles;
    findRoles();
    invalidateFilter();
    emit rolesChanged();
}

void RowFilter::setOrderBy(const QString &role)
{
    if (!assign(m_order, role))
        return;
    arrange();
    emit rolesChanged();
}

void RowFilter::setDescending(bool descending)
{
    if (m_isDescending == descending)
        return;
    m_isDescending = descending;
    arrange();
    emit rolesChanged();
}

void RowFilter::setLeadBy(const QString &role)
{
    if (!assign(m_lead, role))
        return;
    arrange();
    emit rolesChanged();
}

void RowFilter::setKeepBy(const QString &role)
{
    const bool wasFiltering = isFiltering();
    if (!assign(m_keep, role))
        return;
    filterAnew(wasFiltering);
    emit rolesChanged();
}

void RowFilter::setBranched(bool branched)
{
    if (m_isBranched == branched)
        return;
    m_isBranched = branched;
    invalidate();
    emit rolesChanged();
    emit counted();
}

template<typename Model>
int RowFilter::rowsOf(const Model &model) const
{
    if (!m_isBranched)
        return model.rowCount();
    int rows = 0;
    for (int branch = 0; branch < model.rowCount(); ++branch)
        rows += model.rowCount(model.index(branch, 0));
    return rows;
}

int RowFilter::count() const
{
    if (!isArranged())
        return total();
    return sourceModel() ? rowsOf(*this) : 0;
}

int RowFilter::total() const
{
    return sourceModel() ? rowsOf(*sourceModel()) : 0;
}

int RowFilter::rowOf(int row) const
{
    return sourceModel() ? mapFromSource(sourceModel()->index(row, 0)).row() : -1;
}

int RowFilter::sourceRow(int row) const
{
    return mapToSource(index(row, 0)).row();
}

int RowFilter::reveal(int row)
{
    if (row >= 0 && rowOf(row) < 0) {
        clear();
        setKeepBy({});
    }
    return rowOf(row);
}

void RowFilter::hold(int row)
{
    m_held = !isArranged() && sourceModel() ? sourceModel()->index(row, 0) : mapToSource(index(row, 0));
}

int RowFilter::held() const
{
    return isArranged() ? mapFromSource(m_held).row() : m_held.row();
}

QString RowFilter::nameOf(int row) const
{
    return index(row, 0).data(m_name.number).toString();
}

QStringList RowFilter::names() const
{
    QStringList names;
    for (int row = 0; row < rowCount(); ++row)
        names.append(index(row, 0).data(m_name.number).toString());
    return names;
}

int RowFilter::rowBeginningWith(const QString &text, int from) const
{
    const QModelIndex parent = m_isBranched ? index(0, 0) : QModelIndex();
    const int rows = m_isBranched && !parent.isValid() ? 0 : rowCount(parent);
    const QString begin = withoutBlanks(text);
    for (int step = 0; step < rows; ++step) {
        const int row = (std::max(from, 0) + step) % rows;
        if (withoutBlanks(index(row, 0, parent).data(m_name.number).toString()).startsWith(begin, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

bool RowFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    if (!isFiltering() || (m_isBranched && !parent.isValid()))
        return true;
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    if (!m_keep.role.isEmpty() && !index.data(m_keep.number).toBool())
        return false;
    if (m_words.isEmpty())
        return true;
    QString texts = index.data(m_name.number).toString();
    for (const int role : m_searchNumbers)
        texts += u'\n' + textOf(index.data(role));
    return std::all_of(m_words.cbegin(), m_words.cend(),
                       [&texts](const QString &word) { return texts.contains(word, Qt::CaseInsensitive); });
}

QCollatorSortKey RowFilter::key(const QModelIndex &index, int role) const
{
    const std::pair<QModelIndex, int> place(index, role);
    auto found = m_keys.constFind(place);
    if (found == m_keys.constEnd())
        found = m_keys.insert(place, m_collator.sortKey(textOf(index.data(role))));
    return *found;
}

int RowFilter::compareBy(int role, const QModelIndex &left, const QModelIndex &right) const
{
    if (role < 0)
        return 0;
    const int direction = m_isDescending && role == m_order.number ? -1 : 1;
    if (m_keys.contains({left, role}) || !isNumber(left.data(role)))
        return direction * key(left, role).compare(key(right, role));
    const double leftNumber = left.data(role).toDouble();
    const double rightNumber = right.data(role).toDouble();
    if ((leftNumber < 0) != (rightNumber < 0))
        return leftNumber < 0 ? 1 : -1;
    return leftNumber < 0 ? 0 : direction * compareNumbers(leftNumber, rightNumber);
}

bool RowFilter::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    if (m_isBranched && !left.parent().isValid())
        return left.row() < right.row();
    if (m_lead.number >= 0) {
        const bool isLeftFirst = left.data(m_lead.number).toBool();
        if (isLeftFirst != right.data(m_lead.number).toBool())
            return isLeftFirst;
    }
    if (!m_order.role.isEmpty()) {
        int order = compareBy(m_order.number, left, right);
        if (order == 0 && m_order.number != m_name.number)
            order = compareBy(m_name.number, left, right);
        if (order != 0)
            return order < 0;
    }
    return left.row() < right.row();
}
