#include "ArgumentConversion.h"

#include "PasswordArgument.h"
#include "ValueText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>
#include <utility>

namespace {

struct Wanted
{
    QString parameter;
    QString what; // the parameter takes
    QString typed;

    ConvertedArgument refused(const QString &why = {}) const
    {
        constexpr qsizetype longest = 60;
        const QString shown = typed.size() > longest ? typed.left(longest) + u'…' : typed;
        const QString reason = why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why);
        return {{}, QStringLiteral("%1 must be %2, not \"%3\"%4").arg(parameter, what, shown, reason)};
    }
};

QString wordList(const QStringList &words)
{
    if (words.size() < 2)
        return words.join(QString());
    return words.mid(0, words.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" or ") + words.last();
}

ConvertedArgument toBool(const QString &text, const QString &parameter)
{
    const QString word = text.toLower();
    for (const auto *yes : {"true", "yes", "1"}) {
        if (word == QLatin1String(yes))
            return {true, {}};
    }
    for (const auto *no : {"false", "no", "0"}) {
        if (word == QLatin1String(no))
            return {false, {}};
    }
    return Wanted{parameter, QStringLiteral("true or false (or yes, no, 1, 0)"), text}.refused();
}

template<typename Number>
ConvertedArgument toNumber(const QString &text, const QString &parameter)
{
    bool ok = false;
    const qlonglong number = text.toLongLong(&ok);
    using Limits = std::numeric_limits<Number>;
    if (ok && number >= Limits::min() && number <= Limits::max())
        return {QVariant::fromValue(static_cast<Number>(number)), {}};
    const QString range = QStringLiteral("a whole number from %1 to %2").arg(Limits::min()).arg(Limits::max());
    return Wanted{parameter, range, text}.refused();
}

ConvertedArgument toEnumerator(const QString &text, const QString &parameter, QMetaType type,
                               const QMetaEnum &enumeration)
{
    QStringList names;
    QStringList numbers;
    for (int index = 0; index < enumeration.keyCount(); ++index) {
        names.append(QString::fromLatin1(enumeration.key(index)));
        numbers.append(QString::number(enumeration.value(index)));
        if (text == names.last() || text == numbers.last()) {
            QVariant value(enumeration.value(index));
            if (value.convert(type))
                return {value, {}};
        }
    }
    return Wanted{parameter, QStringLiteral("%1 (or %2)").arg(wordList(names), wordList(numbers)), text}.refused();
}

/// Parses @p text; on failure the document is null and the second says what is wrong.
std::pair<QJsonDocument, QString> parseJson(const QString &text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error == QJsonParseError::NoError)
        return {document, {}};
    return {{}, error.errorString()};
}

ConvertedArgument toStringList(const QString &text, const QString &parameter)
{
    if (!text.trimmed().startsWith(u'['))
        return {QStringList{text}, {}};
    const Wanted wanted{parameter, QStringLiteral("one text or a JSON array of texts such as [\"a\", \"b\"]"), text};
    const auto [document, error] = parseJson(text);
    if (document.isNull())
        return wanted.refused(error);
    QStringList list;
    const QJsonArray array = document.array();
    for (const QJsonValue &element : array) {
        if (!element.isString())
            return wanted.refused(QStringLiteral("element %1 is no text").arg(list.size() + 1));
        list.append(element.toString());
    }
    return {list, {}};
}

ConvertedArgument toVariantList(const QString &text, const QString &parameter)
{
    const auto [document, error] = parseJson(text);
    if (document.isArray())
        return {document.array().toVariantList(), {}};
    return Wanted{parameter, QStringLiteral("a JSON array such as [\"a\", 1]"), text}.refused(error);
}

ConvertedArgument toVariantMap(const QString &text, const QString &parameter)
{
    const auto [document, error] = parseJson(text);
    if (document.isObject())
        return {document.object().toVariantMap(), {}};
    return Wanted{parameter, QStringLiteral("a JSON object such as {\"key\": \"value\"}"), text}.refused(error);
}

} // namespace

ConvertedArgument convertArgument(const QString &text, const QString &parameter, QMetaType type)
{
    const QMetaEnum enumeration = enumerationOf(type);
    if (enumeration.isValid())
        return toEnumerator(text, parameter, type, enumeration);
    switch (type.id()) {
    case QMetaType::QString:
        return {text, {}};
    case QMetaType::Bool:
        return toBool(text, parameter);
    case QMetaType::Int:
        return toNumber<int>(text, parameter);
    case QMetaType::LongLong:
        return toNumber<qlonglong>(text, parameter);
    case QMetaType::QStringList:
        return toStringList(text, parameter);
    case QMetaType::QVariantList:
        return toVariantList(text, parameter);
    case QMetaType::QVariantMap:
        return toVariantMap(text, parameter);
    default:
        return {{},
                QStringLiteral("%1 is of type %2, which cannot be typed on a command line")
                    .arg(parameter, QString::fromLatin1(type.name()))};
    }
}

QVariantList convertArguments(const QStringList &texts, const QMetaMethod &method, QString *error)
{
    QVariantList values;
    const QList<QByteArray> names = method.parameterNames();
    for (int index = 0; index < method.parameterCount(); ++index) {
        const QString parameter = QString::fromLatin1(names.at(index));
        const QString &text = texts.at(index);
        const ConvertedArgument converted = parameter == QStringLiteral("password")
            ? passwordArgument(text, parameter)
            : convertArgument(text, parameter, method.parameterMetaType(index));
        if (!converted.error.isEmpty()) {
            *error = converted.error;
            return {};
        }
        values.append(converted.value);
    }
    return values;
}
