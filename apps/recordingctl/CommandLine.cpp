#include "CommandLine.h"

#include "CommandForms.h"
#include "PluginInterface.h"
#include "link/StationUrl.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

QString unknownCommand(const QString &command)
{
    if (command.isEmpty())
        return QStringLiteral("a command was expected; \"recordingctl --help\" lists them");
    const QString closest = closestName(command, commandNames());
    return closest.isEmpty()
        ? QStringLiteral("there is no command \"%1\"; \"recordingctl --help\" lists them").arg(command)
        : QStringLiteral("there is no command \"%1\"; did you mean \"%2\"?").arg(command, closest);
}

/// The first argument that is a dash and a digit; empty when there is none.
QString numberTakenForAnOption(const QStringList &arguments)
{
    for (const QString &argument : arguments) {
        if (argument.size() > 1 && argument.startsWith(u'-') && argument.at(1).isDigit())
            return argument;
    }
    return {};
}

QString parsingError(const QStringList &arguments, const QCommandLineParser &parser)
{
    const QString number = numberTakenForAnOption(arguments);
    if (!number.isEmpty())
        return QStringLiteral("\"%1\" looks like an option; put -- before arguments that begin with a dash")
            .arg(number);
    QString error = parser.errorText().section(u'\n', 0, 0);
    while (error.endsWith(u'.'))
        error.chop(1);
    return QStringLiteral("%1; put -- before arguments that begin with a dash").arg(error);
}

/// What is wrong with @p values of @p option; empty when nothing is.
QString optionError(const CommandForm &form, const OptionForm &option, const QStringList &values)
{
    const QString name = QLatin1String(option.name);
    if (!takesOption(form, option))
        return QStringLiteral("%1 takes no option --%2").arg(QLatin1String(form.name), name);
    if (values.size() > 1 && !option.repeats)
        return QStringLiteral("--%1 was given more than once").arg(name);
    for (const QString &value : values) {
        const QString expected = option.expected ? option.expected(value) : QString();
        if (!expected.isEmpty())
            return QStringLiteral("--%1 must be %2, not \"%3\"").arg(name, expected, value);
    }
    return {};
}

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    QCommandLineParser parser;
    parser.addOptions({help, version});
    for (const OptionForm &option : optionForms())
        parser.addOption(QCommandLineOption(QLatin1String(option.name), {}, QLatin1String(option.value)));

    CommandLine line;
    const auto wrong = [&line](const QString &reason) {
        line.error = reason;
        return line;
    };
    const bool isParsed = parser.parse(arguments);
    line.json = parser.isSet(QStringLiteral("json")); // also what is wrong is told as JSON
    line.arguments = parser.positionalArguments();
    line.command = line.arguments.isEmpty() ? QString() : line.arguments.takeFirst();
    if (!isParsed)
        return wrong(parsingError(arguments, parser));
    const CommandForm *form = commandForm(line.command);
    if (line.command == QStringLiteral("forecast") && !line.arguments.isEmpty()) {
        line.edit = line.arguments.takeFirst();
        form = commandForm(line.edit);
        if (!form || !mayBeForecast(*form))
            return wrong(
                QStringLiteral("forecast takes a command that edits recording groups, not \"%1\"").arg(line.edit));
    }
    if (parser.isSet(version)) {
        line.text = QStringLiteral("recordingctl %1\n").arg(QCoreApplication::applicationVersion());
        return line;
    }
    if (parser.isSet(help) && (form || line.command.isEmpty())) {
        line.text = helpText(form);
        return line;
    }
    if (!form)
        return wrong(unknownCommand(line.command));
    if (line.arguments.size() < form->fewest || line.arguments.size() > form->most)
        return wrong(QStringLiteral("usage: %1").arg(usageText(*form)));

    for (const OptionForm &option : optionForms()) {
        const QString name = QLatin1String(option.name);
        if (!parser.isSet(name))
            continue;
        const QStringList values = option.value ? parser.values(name) : QStringList{QString()};
        const QString error = optionError(*form, option, values);
        if (!error.isEmpty())
            return wrong(error);
        line.options.insert(name, values);
    }
    const QStringList needed = neededOptions(*form);
    for (const QString &name : needed) {
        if (!line.has(name))
            return wrong(QStringLiteral("--%1 is missing; usage: %2").arg(name, usageText(*form)));
    }
    if (line.has(QStringLiteral("connect")) && line.has(QStringLiteral("data")))
        return wrong(QStringLiteral("--connect and --data both name a station; give one of them"));
    line.url = stationUrl(line.value(QStringLiteral("connect")), line.value(QStringLiteral("data")));
    if (line.has(QStringLiteral("timeout")))
        line.timeout = std::chrono::round<std::chrono::milliseconds>(
            std::chrono::duration<double>(line.value(QStringLiteral("timeout")).toDouble()));
    if (line.has(QStringLiteral("count")))
        line.count = line.value(QStringLiteral("count")).toInt();
    return line;
}
