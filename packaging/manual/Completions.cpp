#include "Completions.h"

#include "ProgramHelp.h"

#include <QMap>
#include <QRegularExpression>

namespace {
/// Whether @p value, as the help calls it, names a file or folder.
bool isFile(const QString &value)
{
    static const QRegularExpression file(QStringLiteral("\\b(FILE|DIR|PATH)\\b"));
    return file.match(value).hasMatch();
}

/// In single quotes, as all three shells take it.
QString quoted(QString text)
{
    return u'\'' + text.replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

/// fish knows the backslash within single quotes.
QString fishQuoted(QString text)
{
    return u'\'' + text.replace(u'\\', QStringLiteral("\\\\")).replace(u'\'', QStringLiteral("\\'")) + u'\'';
}

QStringList optionNames(const QList<HelpOption> &options)
{
    QStringList names;
    for (const HelpOption &option : options)
        names += option.names;
    return names;
}

/// The options of the program and of all commands, each once.
QList<HelpOption> allOptions(const ProgramHelp &help)
{
    QList<HelpOption> options = help.options;
    QStringList known = optionNames(options);
    for (const HelpCommand &command : help.commands) {
        for (const HelpOption &option : command.options) {
            if (known.contains(option.names.constLast()))
                continue;
            known.append(option.names.constLast());
            options.append(option);
        }
    }
    return options;
}

QStringList commandNames(const ProgramHelp &help, bool onlyEditsOfGroups = false)
{
    QStringList names;
    for (const HelpCommand &command : help.commands) {
        if (command.isEditOfGroups || !onlyEditsOfGroups)
            names.append(command.name);
    }
    return names;
}

QString functionName(const ProgramHelp &help)
{
    return u'_' + QString(help.name).replace(u'-', u'_');
}

QString zshOption(const HelpOption &option)
{
    static const QRegularExpression special(QStringLiteral("([\\[\\]:\\\\])"));
    QString text = option.text;
    text.replace(special, QStringLiteral("\\\\1"));
    QString value;
    if (!option.value.isEmpty())
        value = QStringLiteral(":%1:%2").arg(QString(option.value).replace(u':', u' '),
                                             isFile(option.value) ? QStringLiteral("_files") : QStringLiteral(" "));
    QStringList specs;
    for (const QString &name : option.names)
        specs.append(quoted(QStringLiteral("*%1[%2]%3").arg(name, text, value)));
    return specs.join(u' ');
}

QString zshOptions(const QList<HelpOption> &options)
{
    QStringList specs;
    for (const HelpOption &option : options)
        specs.append(zshOption(option));
    return specs.join(QStringLiteral(" \\\n            "));
}
} // namespace

QString bashCompletion(const ProgramHelp &help)
{
    QStringList withFile;
    QStringList withValue;
    const QList<HelpOption> options = allOptions(help);
    for (const HelpOption &option : options) {
        if (!option.value.isEmpty())
            (isFile(option.value) ? withFile : withValue) += option.names;
    }
    const auto alternatives = [](const QStringList &names) {
        return names.isEmpty() ? QStringLiteral("''") : names.join(u'|');
    };
    QString cases;
    for (const HelpCommand &command : help.commands) {
        cases += QStringLiteral("    %1)\n        words=%2\n")
                     .arg(command.name, quoted(optionNames(command.options).join(u' ')));
        if (command.name == QStringLiteral("forecast"))
            cases += QStringLiteral("        words+=%1\n").arg(quoted(u' ' + commandNames(help, true).join(u' ')));
        if (isFile(command.arguments))
            cases += QStringLiteral("        files=yes\n");
        cases += QStringLiteral("        ;;\n");
    }
    return QStringLiteral(R"(# bash completion of %1
%2() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command='' words files='' index
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; ++index)); do
        case ${COMP_WORDS[index]} in
        %3|%4) ((++index)) ;;
        -*) ;;
        *) [[ -n $command && $command != forecast ]] || command=${COMP_WORDS[index]} ;;
        esac
    done
    case $previous in
    %3)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    %4)
        return
        ;;
    esac
    case $command in
    '')
        words=%5
        ;;
%6    *)
        return
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    if [[ -n $files && $word != -* ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -F %2 %1
)")
        .arg(help.name, functionName(help), alternatives(withFile), alternatives(withValue),
             quoted((commandNames(help) + optionNames(help.options)).join(u' ')), cases);
}

QString zshCompletion(const ProgramHelp &help)
{
    if (help.commands.isEmpty())
        return QStringLiteral("#compdef %1\n\n_arguments \\\n            %2\n")
            .arg(help.name, zshOptions(help.options));
    QString described;
    QString cases;
    for (const HelpCommand &command : help.commands) {
        described += QStringLiteral("    %1\n").arg(quoted(command.name + u':' + command.text));
        QString rest;
        if (command.name == QStringLiteral("forecast"))
            rest = QStringLiteral(" \\\n            '1:command:(%1)'").arg(commandNames(help, true).join(u' '));
        else if (isFile(command.arguments))
            rest = QStringLiteral(" \\\n            '*:file:_files'");
        cases += QStringLiteral("    %1)\n        _arguments \\\n            %2%3\n        ;;\n")
                     .arg(command.name, zshOptions(command.options), rest);
    }
    return QStringLiteral(R"(#compdef %1

local -a subcommands
local context state state_descr line
typeset -A opt_args
subcommands=(
%2)

_arguments -C \
            %3 \
            '1:command:->command' '*::argument:->argument'

case $state in
command)
    _describe command subcommands
    ;;
argument)
    case $words[1] in
%4    esac
    ;;
esac
)")
        .arg(help.name, described, zshOptions(help.options), cases);
}

QString fishCompletion(const ProgramHelp &help)
{
    QString text = QStringLiteral("# fish completion of %1\ncomplete -c %1 -f\n").arg(help.name);
    const QString line = QStringLiteral("complete -c %1").arg(help.name);
    const QString noCommand =
        QStringLiteral("-n 'not __fish_seen_subcommand_from %1'").arg(commandNames(help).join(u' '));
    QStringList withFiles;
    for (const HelpCommand &command : help.commands) {
        text += QStringLiteral("%1 %2 -a %3 -d %4\n").arg(line, noCommand, command.name, fishQuoted(command.text));
        if (command.name != QStringLiteral("forecast") && isFile(command.arguments))
            withFiles.append(command.name);
    }
    if (!withFiles.isEmpty())
        text += QStringLiteral("%1 -n '__fish_seen_subcommand_from %2' -F\n").arg(line, withFiles.join(u' '));
    if (!help.commands.isEmpty())
        text += QStringLiteral("%1 -n '__fish_seen_subcommand_from forecast' -a '%2'\n")
                    .arg(line, commandNames(help, true).join(u' '));
    const QList<HelpOption> options = allOptions(help);
    for (const HelpOption &option : options) {
        QStringList takenBy;
        for (const HelpCommand &command : help.commands) {
            if (optionNames(command.options).contains(option.names.constLast()))
                takenBy.append(command.name);
        }
        const bool isGeneral = optionNames(help.options).contains(option.names.constLast());
        QString entry = line;
        if (!isGeneral)
            entry += QStringLiteral(" -n '__fish_seen_subcommand_from %1'").arg(takenBy.join(u' '));
        for (const QString &name : option.names)
            entry += name.startsWith(QStringLiteral("--")) ? QStringLiteral(" -l ") + name.mid(2)
                                                           : QStringLiteral(" -s ") + name.mid(1);
        if (!option.value.isEmpty())
            entry += isFile(option.value) ? QStringLiteral(" -r -F") : QStringLiteral(" -x");
        text += entry + QStringLiteral(" -d %1\n").arg(fishQuoted(option.text));
    }
    return text;
}
