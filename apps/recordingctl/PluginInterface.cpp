#include "PluginInterface.h"

#include "TextTable.h"

#include <QJsonArray>
#include <QMetaEnum>
#include <QObject>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

QString parameterName(const QMetaMethod &method, qsizetype index)
{
    return QString::fromLatin1(method.parameterNames().at(index));
}

QString typeName(const QMetaMethod &method, int index)
{
    return QString::fromLatin1(method.parameterTypeName(index));
}

/// "QString path, [bool deep]": what can be left out stands in brackets.
QString parametersText(const QMetaMethod &method, qsizetype required, bool withTypes)
{
    QStringList parameters;
    for (int index = 0; index < method.parameterCount(); ++index) {
        QString text = parameterName(method, index);
        if (withTypes)
            text = (typeName(method, index) + u' ' + text).trimmed();
        parameters.append(index < required ? text : u'[' + text + u']');
    }
    return parameters.join(QStringLiteral(", "));
}

QString signatureText(const QMetaMethod &method, qsizetype required)
{
    return QStringLiteral("%1(%2)").arg(QString::fromLatin1(method.name()), parametersText(method, required, true));
}

/// "1", "1 or 2", "1 to 5": how many arguments @p invokable takes.
QString countText(const Invokable &invokable)
{
    if (invokable.required() == invokable.most())
        return QString::number(invokable.most());
    const QString between =
        invokable.most() - invokable.required() == 1 ? QStringLiteral("%1 or %2") : QStringLiteral("%1 to %2");
    return between.arg(invokable.required()).arg(invokable.most());
}

QJsonObject methodJson(const QMetaMethod &method, qsizetype required)
{
    QJsonArray parameters;
    for (int index = 0; index < method.parameterCount(); ++index)
        parameters.append(QJsonObject{{QStringLiteral("name"), parameterName(method, index)},
                                      {QStringLiteral("type"), typeName(method, index)},
                                      {QStringLiteral("optional"), index >= required}});
    return {{QStringLiteral("name"), QString::fromLatin1(method.name())}, {QStringLiteral("parameters"), parameters}};
}

QList<QMetaEnum> enumerations(const QMetaObject &metaObject)
{
    QList<QMetaEnum> result;
    for (int index = QObject::staticMetaObject.enumeratorCount(); index < metaObject.enumeratorCount(); ++index)
        result.append(metaObject.enumerator(index));
    return result;
}

/// How many letters must be put in, taken out or changed to make @p to of @p from.
qsizetype editDistance(const QString &from, const QString &to)
{
    std::vector<qsizetype> row(static_cast<std::size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 0; i < from.size(); ++i) {
        qsizetype diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const bool same = from[i] == to[static_cast<qsizetype>(j) - 1];
            const qsizetype distance = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = row[j];
            row[j] = distance;
        }
    }
    return row.back();
}

} // namespace

QString Invokable::name() const
{
    return QString::fromLatin1(full().name());
}

QString closestName(const QString &name, const QStringList &names)
{
    QString closest;
    qsizetype least = 1 + std::max<qsizetype>(2, name.size() / 3); // farther away it is another word
    for (const QString &candidate : names) {
        const qsizetype distance = editDistance(name.toLower(), candidate.toLower());
        if (distance < least) {
            least = distance;
            closest = candidate;
        }
    }
    return closest;
}

PluginInterface::PluginInterface(const QMetaObject &metaObject)
    : m_metaObject(metaObject)
{
    for (int index = QObject::staticMetaObject.methodCount(); index < metaObject.methodCount(); ++index) {
        const QMetaMethod method = metaObject.method(index);
        const bool isClone = method.attributes() & QMetaMethod::Cloned;
        if (method.methodType() == QMetaMethod::Signal) {
            if (!isClone)
                m_signals.append(method);
        } else if (method.access() == QMetaMethod::Public) {
            if (isClone)
                m_invokables.last().forms.append(method);
            else
                m_invokables.append({{method}});
        }
    }
}

QString PluginInterface::unknownName(const QString &name) const
{
    QStringList names;
    for (const Invokable &invokable : m_invokables)
        names.append(invokable.name());
    for (const QMetaMethod &signal : m_signals) {
        if (name == QLatin1String(signal.name()))
            return QStringLiteral("%1 is a signal and cannot be called; \"recordingctl watch\" prints signals")
                .arg(name);
    }
    const QString closest = closestName(name, names);
    const QString hint = closest.isEmpty() ? QString() : QStringLiteral("did you mean \"%1\"? ").arg(closest);
    return QStringLiteral("there is no invokable \"%1\"; %2\"recordingctl list\" shows them all").arg(name, hint);
}

QMetaMethod PluginInterface::find(const QString &name, qsizetype count, QString *error) const
{
    QStringList possible;
    for (const Invokable &invokable : m_invokables) {
        if (invokable.name() != name)
            continue;
        if (count >= invokable.required() && count <= invokable.most())
            return invokable.forms.at(invokable.most() - count);
        const QString counts = countText(invokable);
        const QString noun = invokable.most() == 1 ? QStringLiteral("argument") : QStringLiteral("arguments");
        possible.append(invokable.most() == 0
                            ? QStringLiteral("no arguments")
                            : QStringLiteral("%1 %2 (%3)")
                                  .arg(counts, noun, parametersText(invokable.full(), invokable.required(), false)));
    }
    *error = possible.isEmpty()
        ? unknownName(name)
        : QStringLiteral("%1 takes %2, not %3").arg(name, possible.join(QStringLiteral(" or "))).arg(count);
    return {};
}

QMetaMethod PluginInterface::find(const QString &name, qsizetype count) const
{
    QString ignored;
    return find(name, count, &ignored);
}

QString PluginInterface::toText() const
{
    qsizetype width = 0;
    for (const Invokable &invokable : m_invokables)
        width = std::max(width, qsizetype(qstrlen(invokable.full().typeName())));

    QString text = QStringLiteral("Invokables ([…] can be left out):\n");
    for (const Invokable &invokable : m_invokables)
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString::fromLatin1(invokable.full().typeName()).leftJustified(width),
                         signatureText(invokable.full(), invokable.required()));
    text += QStringLiteral("\nSignals:\n");
    for (const QMetaMethod &signal : m_signals)
        text += QStringLiteral("  %1\n").arg(signatureText(signal, signal.parameterCount()));
    text += QStringLiteral("\nEnumerations:\n");
    const auto all = enumerations(m_metaObject);
    for (const QMetaEnum &enumeration : all) {
        QStringList values;
        for (int index = 0; index < enumeration.keyCount(); ++index)
            values.append(QStringLiteral("%1 = %2")
                              .arg(QString::fromLatin1(enumeration.key(index)))
                              .arg(enumeration.value(index)));
        text += QStringLiteral("  %1: %2\n")
                    .arg(QString::fromLatin1(enumeration.name()), values.join(QStringLiteral(", ")));
    }
    return text;
}

QJsonObject PluginInterface::toJson() const
{
    QJsonArray invokables;
    for (const Invokable &invokable : m_invokables) {
        QJsonObject object = methodJson(invokable.full(), invokable.required());
        object.insert(QStringLiteral("returnType"), QString::fromLatin1(invokable.full().typeName()));
        invokables.append(object);
    }
    QJsonArray signalList;
    for (const QMetaMethod &signal : m_signals)
        signalList.append(methodJson(signal, signal.parameterCount()));
    QJsonArray enumerationList;
    const auto all = enumerations(m_metaObject);
    for (const QMetaEnum &enumeration : all) {
        QJsonObject values;
        for (int index = 0; index < enumeration.keyCount(); ++index)
            values.insert(QString::fromLatin1(enumeration.key(index)), enumeration.value(index));
        enumerationList.append(QJsonObject{{QStringLiteral("name"), QString::fromLatin1(enumeration.name())},
                                           {QStringLiteral("values"), values}});
    }
    return {{QStringLiteral("invokables"), invokables},
            {QStringLiteral("signals"), signalList},
            {QStringLiteral("enumerations"), enumerationList}};
}
