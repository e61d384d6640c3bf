#include "ModelText.h"

#include <QVariant>

QString valueText(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("invalid");
    if (value.metaType() == QMetaType::fromType<QString>())
        return value.toString();
    const QString type = QString::fromLatin1(value.typeName());
    if (value.metaType() == QMetaType::fromType<QStringList>())
        return QStringLiteral("%1:[%2]").arg(type, value.toStringList().join(QStringLiteral(", ")));
    return QStringLiteral("%1:%2").arg(type, value.toString());
}

QStringList modelText(const QAbstractItemModel &model, const QList<int> &roles, const QModelIndex &parent)
{
    QStringList lines;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QStringList values;
        for (const int role : roles)
            values.append(valueText(index.data(role)));
        lines.append(values.join(QStringLiteral(" | ")));
        const QStringList children = modelText(model, roles, index);
        for (const QString &child : children)
            lines.append(QStringLiteral("  ") + child);
    }
    return lines;
}
