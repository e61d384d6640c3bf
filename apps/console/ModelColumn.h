#pragma once

#include <QAbstractItemModel>

/// The values of one role of a list, by the role's name; invalid ones where the list has no such role. The list has to
/// outlive it.
class ModelColumn
{
public:
    ModelColumn(const QAbstractItemModel &model, const QByteArray &role)
        : m_model(model)
        , m_role(model.roleNames().key(role, -1))
    {
    }

    QVariant operator[](int row) const { return m_model.index(row, 0).data(m_role); }

private:
    const QAbstractItemModel &m_model;
    int m_role;
};
