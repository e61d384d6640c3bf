#include "OutcomeText.h"

#include "CommandReply.h"
#include "JsonFields.h"
#include "ModelPrinter.h"
#include "Output.h"
#include "PluginCaller.h"
#include "StationVocabulary.h"
#include "ValueText.h"
#include "framework/HostReturnCode.h"

namespace {

QJsonObject emissionJson(const CallOutcome::Emission &emission)
{
    QVariantMap arguments;
    const QString signal = QString::fromLatin1(emission.signal.name());
    const QList<QByteArray> names = emission.signal.parameterNames();
    for (qsizetype index = 0; index < names.size(); ++index)
        arguments.insert(QString::fromLatin1(names[index]), emission.arguments[index]);
    return {{QStringLiteral("signal"), signal}, {QStringLiteral("arguments"), fieldsJson(arguments, signal)}};
}

QString emissionText(const CallOutcome::Emission &emission)
{
    QStringList arguments;
    const QList<QByteArray> names = emission.signal.parameterNames();
    for (qsizetype index = 0; index < names.size(); ++index)
        arguments.append(
            QStringLiteral("%1: %2").arg(QString::fromLatin1(names[index]), valueText(emission.arguments[index])));
    const QString name = QString::fromLatin1(emission.signal.name());
    return printable(arguments.isEmpty() ? name : name + u' ' + arguments.join(QStringLiteral(", ")));
}

/// What the station said against single elements of the request: maps with "element", "value" and "returnCode".
QVariantList refusedElements(const CallOutcome &outcome)
{
    QVariantList elements;
    for (const StationReply &part : outcome.parts) {
        if (part.returnCode == QStringLiteral("0"))
            continue;
        const QVariantMap map = part.data.toMap();
        const QString path = map.value(QStringLiteral("path")).toString();
        if (part.data.typeId() == QMetaType::QVariantList)
            elements += part.data.toList();
        else if (map.contains(QStringLiteral("errorAction")))
            elements += map.value(QStringLiteral("errorAction")).toList();
        else if (map.contains(QStringLiteral("recordingGroupID"))) // a part for each entry of the request
            elements.append(QVariantMap{
                {QStringLiteral("element"),
                 path.isEmpty() ? QStringLiteral("recordingGroupID") : QStringLiteral("path")},
                {QStringLiteral("value"), path.isEmpty() ? map.value(QStringLiteral("recordingGroupID")) : path},
                {QStringLiteral("returnCode"), part.returnCode}});
    }
    return elements;
}

} // namespace

QJsonObject outcomeJson(const QString &name, const CallOutcome &outcome)
{
    QJsonArray answers;
    for (const CallOutcome::Emission &emission : outcome.answers)
        answers.append(emissionJson(emission));
    return {{QStringLiteral("name"), name},
            {QStringLiteral("result"), fieldsJson({{name, outcome.result}}, name).begin().value()},
            {QStringLiteral("answers"), answers},
            {QStringLiteral("rows"),
             outcome.model ? QJsonValue(modelJson(*outcome.model, outcome.modelGetter)) : QJsonValue()}};
}

QString errorCodeOf(const CallOutcome &outcome)
{
    switch (outcome.exitCode) {
    case ExitCode::Done:
        return {};
    case ExitCode::WrongUse:
        return ToolErrorCode::WrongUse;
    case ExitCode::NoAnswer:
        return outcome.returnCode.isEmpty() ? HostReturnCode::NoAnswer : outcome.returnCode;
    case ExitCode::Refused:
        break;
    }
    return outcome.returnCode.isEmpty() ? ToolErrorCode::PluginRefused : outcome.returnCode;
}

void printOutcome(const CallOutcome &outcome)
{
    const bool isQuery = outcome.returnCode.isEmpty() && outcome.answers.isEmpty();
    for (const CallOutcome::Emission &emission : outcome.answers)
        printLine(emissionText(emission));
    if (outcome.model)
        printText(modelTable(*outcome.model).toString());
    else if (isQuery && outcome.exitCode == ExitCode::Done && outcome.result.isValid()
             && outcome.result.typeId() != QMetaType::QObjectStar)
        printLine(printable(valueText(outcome.result)));
}

QStringList refusalLines(const CallOutcome &outcome)
{
    QStringList lines;
    const QVariantList elements = refusedElements(outcome);
    for (const QVariant &element : elements) {
        const QVariantMap map = element.toMap();
        const QString reason = map.value(QStringLiteral("reason")).toString();
        QString line =
            QStringLiteral("%1 \"%2\": %3")
                .arg(map.value(QStringLiteral("element")).toString(), map.value(QStringLiteral("value")).toString(),
                     map.value(QStringLiteral("returnCode")).toString());
        if (!reason.isEmpty())
            line += QStringLiteral(" (%1)").arg(reason);
        lines.append(line);
    }
    return lines;
}

QJsonArray refusedElementsJson(const CallOutcome &outcome)
{
    QJsonArray array;
    const QVariantList elements = refusedElements(outcome);
    for (const QVariant &element : elements) {
        const QVariantMap map = element.toMap();
        QVariantMap fields;
        for (const QString &key :
             {StationKey::element, StationKey::index, StationKey::value, StationKey::returnCode, StationKey::reason})
            fields.insert(key, map.value(key));
        array.append(fieldsJson(fields));
    }
    return array;
}
