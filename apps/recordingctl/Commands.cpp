#include "Commands.h"

#include "ArgumentConversion.h"
#include "ClientSession.h"
#include "ModelPrinter.h"
#include "Output.h"
#include "PluginCaller.h"
#include "PluginInterface.h"
#include "ValueText.h"
#include "VolumeTable.h"
#include "Watch.h"

#include <functional>

namespace {

using PrintModel = std::function<void(const QAbstractItemModel &model)>;

ExitCode wrongUse(const QString &error)
{
    printError(error);
    return ExitCode::WrongUse;
}

QJsonObject emissionJson(const CallOutcome::Emission &emission)
{
    QJsonObject arguments;
    const QList<QByteArray> names = emission.signal.parameterNames();
    for (qsizetype index = 0; index < names.size(); ++index)
        arguments.insert(QString::fromLatin1(names[index]), valueJson(emission.arguments[index]));
    return {{QStringLiteral("signal"), QString::fromLatin1(emission.signal.name())},
            {QStringLiteral("arguments"), arguments}};
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

QJsonObject outcomeJson(const QString &name, const CallOutcome &outcome)
{
    QJsonArray answers;
    for (const CallOutcome::Emission &emission : outcome.answers)
        answers.append(emissionJson(emission));
    QJsonObject object{{QStringLiteral("call"), name}, {QStringLiteral("answers"), answers}};
    if (!outcome.returnCode.isEmpty())
        object.insert(QStringLiteral("returnCode"), outcome.returnCode);
    if (outcome.result.typeId() != QMetaType::QObjectStar)
        object.insert(QStringLiteral("result"), valueJson(outcome.result));
    if (outcome.model)
        object.insert(QStringLiteral("model"), modelJson(*outcome.model));
    return object;
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

/// Calls @p name, converted arguments and all. With @p printModel only the model is printed, in its way, unless JSON is
/// asked for.
ExitCode callByName(ClientSession &session, const CommandLine &line, const QString &name, const QStringList &texts,
                    const PrintModel &printModel = {})
{
    QString error;
    const QMetaMethod method = PluginInterface(*session.plugin()->metaObject()).find(name, texts.size(), &error);
    if (!method.isValid())
        return wrongUse(error);
    const QVariantList arguments = convertArguments(texts, method, &error);
    if (!error.isEmpty())
        return wrongUse(error);

    PluginCaller caller(*session.plugin(), *session.framework(), line.timeout.value_or(defaultTimeout));
    const CallOutcome outcome = caller.call(method, arguments);
    if (line.json)
        printLine(indentedJson(outcomeJson(name, outcome)));
    else if (!printModel)
        printOutcome(outcome);
    else if (outcome.model)
        printModel(*outcome.model);
    if (!outcome.error.isEmpty())
        printError(outcome.error);
    return outcome.exitCode;
}

ExitCode list(ClientSession &session, const CommandLine &line)
{
    const PluginInterface interface(*session.plugin()->metaObject());
    if (line.json)
        printLine(indentedJson(interface.toJson()));
    else
        printText(interface.toText());
    return ExitCode::Done;
}

ExitCode call(ClientSession &session, const CommandLine &line)
{
    return callByName(session, line, line.arguments.first(), line.arguments.mid(1));
}

ExitCode volumes(ClientSession &session, const CommandLine &line)
{
    return callByName(session, line, QStringLiteral("getVolume"), {},
                      [](const QAbstractItemModel &model) { printText(volumeTable(model).toString()); });
}

ExitCode folders(ClientSession &session, const CommandLine &line)
{
    return callByName(session, line, QStringLiteral("getServerDir"), {line.arguments.value(0)},
                      [](const QAbstractItemModel &model) {
                          const int nameRole = model.roleNames().key("nameRole");
                          for (int row = 0; row < model.rowCount(); ++row)
                              printLine(printable(model.index(row, 0).data(nameRole).toString()));
                      });
}

ExitCode mkdir(ClientSession &session, const CommandLine &line)
{
    const auto printNothing = [](const QAbstractItemModel &) {};
    return callByName(session, line, QStringLiteral("createDirectory"), line.arguments, printNothing);
}

} // namespace

ExitCode runCommand(ClientSession &session, const CommandLine &line)
{
    struct Row
    {
        const char *name;
        ExitCode (*run)(ClientSession &, const CommandLine &);
    };
    constexpr Row rows[] = {{"list", list},       {"call", call},       {"watch", watch},
                            {"volumes", volumes}, {"folders", folders}, {"mkdir", mkdir}};
    for (const Row &row : rows) {
        if (line.command == QLatin1String(row.name))
            return row.run(session, line);
    }
    return wrongUse(QStringLiteral("there is no command \"%1\"").arg(line.command));
}
