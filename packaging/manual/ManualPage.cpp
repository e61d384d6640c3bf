#include "ManualPage.h"

#include "ProgramHelp.h"

namespace {
/// Plain text as troff takes it.
QString plain(QString text)
{
    text.replace(u'\\', QStringLiteral("\\e")).replace(u'-', QStringLiteral("\\-"));
    if (text.startsWith(u'.') || text.startsWith(u'\''))
        text.prepend(QStringLiteral("\\&"));
    return text;
}

QString optionEntry(const HelpOption &option)
{
    QStringList names;
    for (const QString &name : option.names)
        names.append(QStringLiteral("\\fB%1\\fR").arg(plain(name)));
    QString head = names.join(QStringLiteral(", "));
    if (!option.value.isEmpty())
        head += QStringLiteral(" \\fI%1\\fR").arg(plain(option.value));
    return QStringLiteral(".TP\n%1\n%2\n").arg(head, plain(option.text));
}

QString commandEntry(const HelpCommand &command)
{
    QString head = QStringLiteral("\\fB%1\\fR").arg(plain(command.name));
    if (!command.arguments.isEmpty())
        head += QStringLiteral(" \\fI%1\\fR").arg(plain(command.arguments));
    QStringList options;
    for (const HelpOption &option : command.options) {
        if (option.names.constLast() != QStringLiteral("--help"))
            options.append(QStringLiteral("\\fB%1\\fR").arg(plain(option.names.constLast())));
    }
    return QStringLiteral(".TP\n%1\n%2.\n.br\nOptions: %3\n")
        .arg(head, plain(command.text), options.join(QStringLiteral(", ")));
}

/// Every option of the program and its commands, each once.
QString optionEntries(const ProgramHelp &help)
{
    QString text;
    QStringList written;
    const auto write = [&](const HelpOption &option) {
        if (written.contains(option.names.constLast()))
            return;
        written.append(option.names.constLast());
        text += optionEntry(option);
    };
    for (const HelpCommand &command : help.commands) {
        for (const HelpOption &option : command.options)
            write(option);
    }
    for (const HelpOption &option : help.options)
        write(option);
    return text;
}
} // namespace

QString manualPage(const QString &page, const ProgramHelp &help, const QString &version)
{
    QString commands;
    for (const HelpCommand &command : help.commands)
        commands += commandEntry(command);
    QString text = page;
    text.replace(QStringLiteral("@VERSION@"), version);
    text.replace(QStringLiteral("@OPTIONS@\n"), optionEntries(help));
    text.replace(QStringLiteral("@COMMANDS@\n"), commands);
    return text;
}
