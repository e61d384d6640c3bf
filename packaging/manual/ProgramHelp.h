#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// An option as a program's help shows it.
struct HelpOption
{
    QStringList names; ///< with their dashes: "-h", "--help"
    QString value; ///< what stands behind it, FILE for instance; empty for a flag
    QString text;
};

/// A command with all options that it takes.
struct HelpCommand
{
    QString name;
    QString arguments; ///< as the usage shows them
    QString text;
    QList<HelpOption> options;
    bool isEditOfGroups = false; ///< may stand behind "forecast"
};

/// What a program can be told on its command line.
struct ProgramHelp
{
    QString name;
    QList<HelpOption> options; ///< without a command
    QList<HelpCommand> commands;
};

/// That of recordingctl, from its table of commands.
ProgramHelp helpOfRecordingctl();

/// That of the program @p name without commands, from @p text as QCommandLineParser makes it for --help. No options
/// where the text has another form.
ProgramHelp helpFromText(const QString &name, const QString &text);
