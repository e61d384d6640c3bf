#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// An option that commands take.
struct OptionForm
{
    const char *name;
    const char *value; ///< what stands behind it; null for a flag
    bool repeats; ///< may be given several times
    QString (*expected)(const QString &value); ///< what the value must be when it is not; null: any text will do
    const char *what;
};

/// A command with its arguments and the options of its own.
struct CommandForm
{
    const char *name;
    qsizetype fewest; ///< arguments
    qsizetype most;
    const char *arguments; ///< as the usage shows them
    const char *needs; ///< options that must be given, separated by spaces
    const char *takes; ///< options that may be given, likewise, besides those that every command takes
    const char *what;
};

/// All options, in the order of the help.
const QList<OptionForm> &optionForms();
/// Null when there is none of that name.
const CommandForm *commandForm(const QString &name);

/// Whether @p form takes @p option.
bool takesOption(const CommandForm &form, const OptionForm &option);
QStringList neededOptions(const CommandForm &form);

/// Whether @p form may stand behind "forecast": it edits recording groups.
bool mayBeForecast(const CommandForm &form);

QStringList commandNames();
/// "recordingctl group-add NAME --path PATH... [--kind KIND] ...", without what every command takes.
QString usageText(const CommandForm &form);
/// Of the tool, or of one command.
QString helpText(const CommandForm *form);
