#pragma once

#include <QCollator>
#include <QHash>
#include <QModelIndex>
#include <QPersistentModelIndex>
#include <QSortFilterProxyModel>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <utility>

/// The rows of a list, or of a tree's branches, that hold what the operator typed, in an order that the view chooses.
/// Names are in natural order (see naturalOrder()). Roles are named, never numbered; a role that the model does not
/// have says nothing. Rows that are equal stay in the model's order. Lives on the UI thread.
class RowFilter : public QSortFilterProxyModel
{
    Q_OBJECT
    QML_ELEMENT
    /// What is looked for: the rows with every one of its words, capital and small letters alike. Empty: all rows.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// The role that names a row.
    Q_PROPERTY(QString nameRole READ nameRole WRITE setNameRole NOTIFY rolesChanged)
    /// Roles that are searched beside the name: texts, or lists of texts.
    Q_PROPERTY(QStringList searchRoles READ searchRoles WRITE setSearchRoles NOTIFY rolesChanged)
    /// The role that the rows are sorted by: a text, a number or a yes and no. Numbers below 0 are unknown and come
    /// last either way; equals are in the order of their names. Empty: the model's own order.
    Q_PROPERTY(QString orderBy READ orderBy WRITE setOrderBy NOTIFY rolesChanged)
    Q_PROPERTY(bool descending READ isDescending WRITE setDescending NOTIFY rolesChanged)
    /// A role that is true for rows that come before all others, whatever the order; empty: there are none.
    Q_PROPERTY(QString leadBy READ leadBy WRITE setLeadBy NOTIFY rolesChanged)
    /// A role that has to be true for a row to be kept; empty: all are kept.
    Q_PROPERTY(QString keepBy READ keepBy WRITE setKeepBy NOTIFY rolesChanged)
    /// The model's rows are branches, which are all kept; what is filtered, sorted and counted stands below them.
    Q_PROPERTY(bool branched READ isBranched WRITE setBranched NOTIFY rolesChanged)
    Q_PROPERTY(int count READ count NOTIFY counted) ///< rows that are kept
    Q_PROPERTY(int total READ total NOTIFY counted) ///< rows of the model
    Q_PROPERTY(bool filtering READ isFiltering NOTIFY filteringChanged) ///< by text or by keepBy
    /// Rows are left out, or stand in another order than the model's. Else a view may as well show the model itself,
    /// which tells it of rows that move.
    Q_PROPERTY(bool arranged READ isArranged NOTIFY arrangedChanged)

public:
    explicit RowFilter(QObject *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);
    QString nameRole() const { return m_name.role; }
    void setNameRole(const QString &role);
    QStringList searchRoles() const { return m_searchRoles; }
    void setSearchRoles(const QStringList &roles);
    QString orderBy() const { return m_order.role; }
    void setOrderBy(const QString &role);
    bool isDescending() const { return m_isDescending; }
    void setDescending(bool descending);
    QString leadBy() const { return m_lead.role; }
    void setLeadBy(const QString &role);
    QString keepBy() const { return m_keep.role; }
    void setKeepBy(const QString &role);
    bool isBranched() const { return m_isBranched; }
    void setBranched(bool branched);
    int count() const;
    int total() const;
    bool isFiltering() const { return !m_words.isEmpty() || !m_keep.role.isEmpty(); }
    bool isArranged() const { return isFiltering() || !m_order.role.isEmpty() || !m_lead.role.isEmpty(); }

    void setSourceModel(QAbstractItemModel *model) override;

    /// Shows all rows again.
    Q_INVOKABLE void clear();
    /// The row here of the model's @p row; -1 where it is not kept, or where there is none. Of a list.
    Q_INVOKABLE int rowOf(int row) const;
    /// The model's row of @p row here; -1 without one. Of a list.
    Q_INVOKABLE int sourceRow(int row) const;
    /// rowOf(), for a row that the operator is led to: where it is not kept, all rows are shown again.
    Q_INVOKABLE int reveal(int row);
    /// Remembers the model's row behind @p row, wherever it moves; held() is where it stands here, -1 where it is gone
    /// or not kept. Of a list.
    Q_INVOKABLE void hold(int row);
    Q_INVOKABLE int held() const;
    /// The name of a row here; empty without one. Of a list.
    Q_INVOKABLE QString nameOf(int row) const;
    /// The names of the rows that are kept, in their order. Of a list.
    Q_INVOKABLE QStringList names() const;
    /// The first row at or behind @p from whose name begins with @p text, capital and small letters alike and blanks
    /// aside, and then those before it; -1 without one. Of a tree: of the rows below its first branch.
    Q_INVOKABLE int rowBeginningWith(const QString &text, int from) const;

signals:
    void textChanged();
    void rolesChanged();
    void counted(); ///< after a change of the model: when its views, and those of the rows here, were told
    void filteringChanged();
    void arrangedChanged();

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    /// A role and its number in the model, -1 without one.
    struct NamedRole
    {
        QString role;
        int number = -1;
    };

    bool assign(NamedRole &named, const QString &role);
    void findRoles();
    void forgetKeys();
    QList<QMetaObject::Connection> countAfterChangesOf(QAbstractItemModel *model);
    void arrange();
    void filterAnew(bool wasFiltering);
    int compareBy(int role, const QModelIndex &left, const QModelIndex &right) const;
    QCollatorSortKey key(const QModelIndex &index, int role) const;
    template<typename Model>
    int rowsOf(const Model &model) const;

    QString m_text;
    QStringList m_words;
    NamedRole m_name;
    NamedRole m_order;
    NamedRole m_lead;
    NamedRole m_keep;
    QStringList m_searchRoles;
    QList<int> m_searchNumbers;
    bool m_isDescending = false;
    bool m_isBranched = false;
    int m_changing = 0; // changes of the model and of the rows here that have begun
    QPersistentModelIndex m_held; // of the model
    QCollator m_collator;
    mutable QHash<std::pair<QModelIndex, int>, QCollatorSortKey> m_keys; // comparing by a language costs far more
    QList<QMetaObject::Connection> m_connections;
};
