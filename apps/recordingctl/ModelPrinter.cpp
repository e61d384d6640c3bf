#include "ModelPrinter.h"

#include "ValueText.h"

#include <QAbstractItemModel>
#include <QJsonObject>
#include <QMap>

namespace {

using Roles = QMap<int, QString>; // sorted: columns in the order of the roles

Roles rolesOf(const QAbstractItemModel &model)
{
    Roles roles;
    const QHash<int, QByteArray> names = model.roleNames();
    for (auto name = names.cbegin(); name != names.cend(); ++name)
        roles.insert(name.key(), QString::fromUtf8(name.value()));
    return roles;
}

QVariant shown(const QModelIndex &index, int role, const QString &roleName)
{
    const QVariant value = index.data(role);
    if (roleName.startsWith(QStringLiteral("password"), Qt::CaseInsensitive) && !value.toString().isEmpty())
        return QStringLiteral("********");
    return value;
}

bool isNumber(const QVariant &value)
{
    const int type = value.typeId();
    return type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::Double;
}

void addRows(TextTable &table, const QAbstractItemModel &model, const Roles &roles, const QModelIndex &parent,
             int depth)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QStringList cells;
        for (auto role = roles.cbegin(); role != roles.cend(); ++role)
            cells.append(valueText(shown(index, role.key(), role.value())));
        cells.first().prepend(QString(2 * depth, u' '));
        table.addRow(cells);
        addRows(table, model, roles, index, depth + 1);
    }
}

QJsonArray rowsJson(const QAbstractItemModel &model, const Roles &roles, const QModelIndex &parent)
{
    QJsonArray rows;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QJsonObject object;
        for (auto role = roles.cbegin(); role != roles.cend(); ++role)
            object.insert(role.value(), valueJson(shown(index, role.key(), role.value())));
        if (model.hasChildren(index))
            object.insert(QStringLiteral("children"), rowsJson(model, roles, index));
        rows.append(object);
    }
    return rows;
}

} // namespace

TextTable modelTable(const QAbstractItemModel &model)
{
    const Roles roles = rolesOf(model);
    TextTable table(roles.values());
    if (roles.isEmpty())
        return table;
    const QModelIndex first = model.index(0, 0);
    const QList<int> keys = roles.keys();
    for (int column = 0; column < keys.size(); ++column) {
        if (isNumber(first.data(keys[column])))
            table.setRightAligned(column);
    }
    addRows(table, model, roles, {}, 0);
    return table;
}

QJsonArray modelJson(const QAbstractItemModel &model)
{
    return rowsJson(model, rolesOf(model), {});
}

QString nameLines(const QAbstractItemModel &model)
{
    const int role = model.roleNames().key("nameRole");
    QString text;
    for (int row = 0; row < model.rowCount(); ++row)
        text += printable(model.index(row, 0).data(role).toString()) + u'\n';
    return text;
}
