#include "ModelPrinter.h"

#include "JsonFields.h"
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

/// Roles of @p getter's model that say nothing: filled with zeros and empty lists, or made up anew for each row.
QStringList silentRoles(const QString &getter)
{
    if (getter == QStringLiteral("getRecordingGroupModel"))
        return {QStringLiteral("recordedDaysRole"), QStringLiteral("remainDaysRole"), QStringLiteral("oneDayUsageRole"),
                QStringLiteral("reserveTimeRole")};
    if (getter == QStringLiteral("getStorageUsageModel"))
        return {QStringLiteral("pathListRole"), QStringLiteral("nodeIdListRole"), QStringLiteral("nasPathListRole")};
    if (getter == QStringLiteral("getVolumeModel") || getter == QStringLiteral("getGroupVolumeModel"))
        return {QStringLiteral("idRole")};
    return {};
}

QJsonArray rowsJson(const QAbstractItemModel &model, const Roles &roles, const QModelIndex &parent)
{
    QJsonArray rows;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QVariantMap fields;
        for (auto role = roles.cbegin(); role != roles.cend(); ++role) {
            const QString name = role->endsWith(QStringLiteral("Role")) ? role->chopped(4) : role.value();
            fields.insert(name, index.data(role.key()));
        }
        QJsonObject object = fieldsJson(fields);
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

QJsonArray modelJson(const QAbstractItemModel &model, const QString &getter)
{
    Roles roles = rolesOf(model);
    const QStringList silent = silentRoles(getter);
    roles.removeIf([&silent](const auto &role) { return silent.contains(role.value()); });
    return rowsJson(model, roles, {});
}

QString nameLines(const QAbstractItemModel &model)
{
    const int role = model.roleNames().key("nameRole");
    QString text;
    for (int row = 0; row < model.rowCount(); ++row)
        text += printable(model.index(row, 0).data(role).toString()) + u'\n';
    return text;
}

QJsonArray namesJson(const QAbstractItemModel &model)
{
    const int role = model.roleNames().key("nameRole");
    QJsonArray names;
    for (int row = 0; row < model.rowCount(); ++row)
        names.append(model.index(row, 0).data(role).toString());
    return names;
}
