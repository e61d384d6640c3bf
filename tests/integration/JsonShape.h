#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QRegularExpression>
#include <QString>

/// What JSON must look like. A text names a type: "text" (not empty), "time", "number" (whole, not negative), "bool" or
/// "list"; "null?" behind a type's name is "or null", as in "number?". An array of one shape is a list of such values,
/// an object has exactly these keys.

/// What of @p value is not of the type @p type; empty when nothing is.
inline QString typeMismatch(const QJsonValue &value, QString type)
{
    static const QRegularExpression time(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z$"));
    const QString wanted = QStringLiteral("is no %1").arg(type);
    if (type.endsWith(u'?')) {
        if (value.isNull())
            return {};
        type.chop(1);
    }
    bool fits = false;
    if (type == QStringLiteral("text"))
        fits = value.isString() && !value.toString().isEmpty();
    else if (type == QStringLiteral("time"))
        fits = time.match(value.toString()).hasMatch();
    else if (type == QStringLiteral("number"))
        fits = value.isDouble() && value.toInteger(-1) >= 0;
    else if (type == QStringLiteral("bool"))
        fits = value.isBool();
    else if (type == QStringLiteral("list"))
        fits = value.isArray();
    return fits ? QString() : wanted;
}

/// What of @p value is not as @p shape says, with the place where; empty when nothing is.
inline QString shapeMismatch(const QJsonValue &value, const QJsonValue &shape, const QString &place = {})
{
    if (shape.isString() || shape.isNull()) {
        const QString mismatch = shape.isNull() ? (value.isNull() ? QString() : QStringLiteral("is not null"))
                                                : typeMismatch(value, shape.toString());
        return mismatch.isEmpty() ? QString() : place + u' ' + mismatch;
    }
    if (shape.isArray()) {
        if (!value.isArray())
            return place + QStringLiteral(" is no list");
        const QJsonArray array = value.toArray();
        for (qsizetype index = 0; index < array.size(); ++index) {
            const QString mismatch =
                shapeMismatch(array[index], shape.toArray().at(0), QStringLiteral("%1[%2]").arg(place).arg(index));
            if (!mismatch.isEmpty())
                return mismatch;
        }
        return {};
    }
    const QJsonObject object = value.toObject();
    const QJsonObject wanted = shape.toObject();
    if (object.keys() != wanted.keys())
        return QStringLiteral("%1 has the keys %2, not %3")
            .arg(place, object.keys().join(u' '), wanted.keys().join(u' '));
    for (const QString &key : wanted.keys()) {
        const QString mismatch = shapeMismatch(object[key], wanted[key], place + u'.' + key);
        if (!mismatch.isEmpty())
            return mismatch;
    }
    return {};
}

/// Where in @p value something stands for "unknown" that is not null: a negative number, or an empty text.
inline QString placeholder(const QJsonValue &value, const QString &place = {})
{
    if ((value.isDouble() && value.toDouble() < 0) || (value.isString() && value.toString().isEmpty()))
        return place;
    const QJsonArray array = value.toArray();
    for (qsizetype index = 0; index < array.size(); ++index) {
        const QString found = placeholder(array[index], QStringLiteral("%1[%2]").arg(place).arg(index));
        if (!found.isEmpty())
            return found;
    }
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const QString found = placeholder(entry.value(), place + u'.' + entry.key());
        if (!found.isEmpty())
            return found;
    }
    return {};
}
