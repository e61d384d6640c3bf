#include "CommandLine.h"

#include "PluginInterface.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <limits>

namespace {

struct CommandForm
{
    const char *name;
    qsizetype fewest; // arguments
    qsizetype most;
    const char *usage;
    const char *options; // besides --json, separated by spaces
    const char *what;
};

constexpr qsizetype any = std::numeric_limits<qsizetype>::max();

constexpr CommandForm forms[] = {
    {"list", 0, 0, "list", "", "every invokable, signal and enumeration of the plug-in"},
    {"call", 1, any, "call NAME [ARGUMENT...]", "timeout", "call an invokable and wait for its answer"},
    {"watch", 0, 0, "watch", "timeout count", "print events and signals as they come"},
    {"volumes", 0, 0, "volumes", "timeout", "this station's volumes"},
    {"folders", 0, 1, "folders [PATH]", "timeout", "the folders in PATH; the roots of the volumes without it"},
    {"mkdir", 1, 1, "mkdir PATH", "timeout", "make the folder PATH, parents included"},
};

QString helpText()
{
    QString text = QStringLiteral("Usage: recordingctl [OPTION...] COMMAND [ARGUMENT...]\n"
                                  "The recording-management plug-in and a station on this machine, by hand and in "
                                  "scripts.\n\nCommands:\n");
    for (const CommandForm &form : forms)
        text += QStringLiteral("  %1  %2\n").arg(QLatin1String(form.usage), -23).arg(QLatin1String(form.what));
    text += QStringLiteral(
        "\nOptions:\n"
        "  --json             results as JSON; one line for each with watch\n"
        "  --timeout SECONDS  how long the station may take (default 30), how long watch lasts (default for ever)\n"
        "  --count N          watch: end after N lines\n"
        "  --help, --version\n"
        "  --                 what follows is no option, also when it begins with a dash\n"
        "\n"
        "Arguments of call go by the types that list shows: texts as they are; true or false; numbers; enumerators by\n"
        "name or number; lists and maps as JSON. A list of texts may be one plain text. A password is - (standard\n"
        "input) or @FILE.\n"
        "\n"
        "Exit codes: 0 done, 1 the station or the plug-in said no, 2 wrong use, 3 no answer in time.\n");
    return text;
}

const CommandForm *formOf(const QString &command)
{
    for (const CommandForm &form : forms) {
        if (command == QLatin1String(form.name))
            return &form;
    }
    return nullptr;
}

QString unknownCommand(const QString &command)
{
    QStringList names;
    for (const CommandForm &form : forms)
        names.append(QLatin1String(form.name));
    if (command.isEmpty())
        return QStringLiteral("no command; one of %1 was expected (--help says more)")
            .arg(names.join(QStringLiteral(", ")));
    const QString closest = closestName(command, names);
    return closest.isEmpty()
        ? QStringLiteral("there is no command \"%1\"; there are %2").arg(command, names.join(QStringLiteral(", ")))
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

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    const QCommandLineOption json(QStringLiteral("json"));
    const QCommandLineOption timeout(QStringLiteral("timeout"), {}, QStringLiteral("SECONDS"));
    const QCommandLineOption count(QStringLiteral("count"), {}, QStringLiteral("N"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    QCommandLineParser parser;
    parser.addOptions({json, timeout, count, help, version});

    CommandLine line;
    const auto wrong = [&line](const QString &error) {
        line.error = error;
        return line;
    };
    if (!parser.parse(arguments)) {
        const QString number = numberTakenForAnOption(arguments);
        if (!number.isEmpty())
            return wrong(QStringLiteral("\"%1\" looks like an option; put -- before arguments that begin with a dash")
                             .arg(number));
        QString error = parser.errorText().section(u'\n', 0, 0);
        while (error.endsWith(u'.'))
            error.chop(1);
        return wrong(QStringLiteral("%1; put -- before arguments that begin with a dash").arg(error));
    }
    if (parser.isSet(help)) {
        line.text = helpText();
        return line;
    }
    if (parser.isSet(version)) {
        line.text = QStringLiteral("recordingctl %1\n").arg(QCoreApplication::applicationVersion());
        return line;
    }

    line.arguments = parser.positionalArguments();
    line.command = line.arguments.isEmpty() ? QString() : line.arguments.takeFirst();
    line.json = parser.isSet(json);
    const CommandForm *form = formOf(line.command);
    if (!form)
        return wrong(unknownCommand(line.command));
    if (line.arguments.size() < form->fewest || line.arguments.size() > form->most)
        return wrong(QStringLiteral("usage: recordingctl %1").arg(QLatin1String(form->usage)));

    const QStringList options = QString::fromLatin1(form->options).split(u' ');
    for (const QCommandLineOption &option : {timeout, count}) {
        const QString name = option.names().first();
        if (parser.isSet(option) && !options.contains(name))
            return wrong(QStringLiteral("%1 takes no option --%2").arg(line.command, name));
    }
    if (parser.isSet(timeout)) {
        constexpr double longest = 86400; // a day
        bool ok = false;
        const double seconds = parser.value(timeout).toDouble(&ok);
        if (!ok || !(seconds >= 0.001 && seconds <= longest))
            return wrong(QStringLiteral("--timeout must be a number of seconds from 0.001 to %1, not \"%2\"")
                             .arg(longest)
                             .arg(parser.value(timeout)));
        line.timeout = std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
    }
    if (parser.isSet(count)) {
        bool ok = false;
        line.count = parser.value(count).toInt(&ok);
        if (!ok || *line.count < 1)
            return wrong(QStringLiteral("--count must be a whole number from 1, not \"%1\"").arg(parser.value(count)));
    }
    return line;
}
