#include "ValueText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaObject>
#include <QStringList>
#include <QUuid>

namespace {

QString enumeratorName(const QMetaEnum &enumeration, const QVariant &value)
{
    const int number = value.toInt();
    const char *name = enumeration.valueToKey(number);
    return name ? QString::fromLatin1(name) : QString::number(number);
}

} // namespace

QMetaEnum enumerationOf(QMetaType type)
{
    const QMetaObject *scope = type.flags().testFlag(QMetaType::IsEnumeration) ? type.metaObject() : nullptr;
    if (!scope)
        return {};
    const QByteArray name = QByteArray(type.name()).split(':').last();
    return scope->enumerator(scope->indexOfEnumerator(name.constData()));
}

/// As the plug-in has it, within a text for a reader.
static QJsonValue valueJson(const QVariant &value)
{
    const QMetaEnum enumeration = enumerationOf(value.metaType());
    if (enumeration.isValid())
        return enumeratorName(enumeration, value);
    switch (value.typeId()) {
    case QMetaType::QVariantList: {
        QJsonArray array;
        const QVariantList list = value.toList();
        for (const QVariant &element : list)
            array.append(valueJson(element));
        return array;
    }
    case QMetaType::QVariantMap: {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
            object.insert(entry.key(), valueJson(entry.value()));
        return object;
    }
    case QMetaType::QUuid:
        return value.toString();
    default:
        return QJsonValue::fromVariant(value);
    }
}

QString valueText(const QVariant &value)
{
    const QMetaEnum enumeration = enumerationOf(value.metaType());
    if (enumeration.isValid())
        return enumeratorName(enumeration, value);
    switch (value.typeId()) {
    case QMetaType::QStringList:
        return value.toStringList().join(QStringLiteral(", "));
    case QMetaType::QVariantList:
        return QString::fromUtf8(QJsonDocument(valueJson(value).toArray()).toJson(QJsonDocument::Compact));
    case QMetaType::QVariantMap:
        return QString::fromUtf8(QJsonDocument(valueJson(value).toObject()).toJson(QJsonDocument::Compact));
    default:
        return value.toString();
    }
}
