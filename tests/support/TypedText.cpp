#include "TypedText.h"

#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

QString typedText(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("invalid");
    const QString type = QString::fromLatin1(value.typeName());
    QStringList parts;
    if (value.metaType() == QMetaType::fromType<QVariantMap>()) {
        const QVariantMap map = value.toMap();
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
            parts.append(entry.key() + QStringLiteral(": ") + typedText(entry.value()));
        return u'{' + parts.join(QStringLiteral(", ")) + u'}';
    }
    if (value.metaType() == QMetaType::fromType<QStringList>()) {
        const QStringList strings = value.toStringList();
        for (const QString &string : strings)
            parts.append(u'"' + string + u'"');
        return QStringLiteral("%1 [%2]").arg(type, parts.join(QStringLiteral(", ")));
    }
    if (value.metaType() == QMetaType::fromType<QVariantList>()) {
        const QVariantList list = value.toList();
        for (const QVariant &element : list)
            parts.append(typedText(element));
        return QStringLiteral("%1 [%2]").arg(type, parts.join(QStringLiteral(", ")));
    }
    if (value.metaType() == QMetaType::fromType<QString>())
        return QStringLiteral("%1 \"%2\"").arg(type, value.toString());
    return QStringLiteral("%1 %2").arg(type, value.toString());
}
