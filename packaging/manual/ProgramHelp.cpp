#include "ProgramHelp.h"

#include "CommandForms.h"

#include <QRegularExpression>

namespace {
const QList<HelpOption> general{
    {{QStringLiteral("-h"), QStringLiteral("--help")}, {}, QStringLiteral("Show this help.")},
    {{QStringLiteral("-v"), QStringLiteral("--version")}, {}, QStringLiteral("Show the version.")},
};

HelpOption helpOption(const OptionForm &form)
{
    return {{QStringLiteral("--") + QLatin1String(form.name)}, QLatin1String(form.value), QLatin1String(form.what)};
}
} // namespace

ProgramHelp helpOfRecordingctl()
{
    ProgramHelp help{QStringLiteral("recordingctl"), general, {}};
    const QStringList names = commandNames();
    for (const QString &name : names) {
        const CommandForm &form = *commandForm(name);
        HelpCommand command{name, QLatin1String(form.arguments), QLatin1String(form.what), {}, mayBeForecast(form)};
        for (const OptionForm &option : optionForms()) {
            if (takesOption(form, option))
                command.options.append(helpOption(option));
        }
        command.options.append(general.constFirst());
        help.commands.append(command);
    }
    return help;
}

ProgramHelp helpFromText(const QString &name, const QString &text)
{
    // "  -h, --help       Show this help." and "  --data <DIR>  Folder that", continued on lines of their own.
    static const QRegularExpression first(QStringLiteral("^  ((?:-\\w, )?--[a-z-]+|-\\w)(?: <([^>]+)>)?(?:  +(.*))?$"));
    static const QRegularExpression further(QStringLiteral("^ {3,}(\\S.*)$"));
    ProgramHelp help{name, {}, {}};
    const QStringList lines = text.section(QStringLiteral("Options:\n"), 1).split(u'\n');
    for (const QString &line : lines) {
        const QRegularExpressionMatch option = first.match(line);
        const QRegularExpressionMatch continued = further.match(line);
        if (option.hasMatch())
            help.options.append(
                {option.captured(1).split(QStringLiteral(", ")), option.captured(2), option.captured(3)});
        else if (continued.hasMatch() && !help.options.isEmpty())
            help.options.last().text = (help.options.constLast().text + u' ' + continued.captured(1)).trimmed();
    }
    return help;
}
