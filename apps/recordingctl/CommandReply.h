#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

struct CommandLine;

/// Codes of failures that no station told.
namespace ToolErrorCode {
extern const QString WrongUse; ///< the command line is wrong
extern const QString PluginNotLoaded;
extern const QString PluginRefused; ///< the plug-in said no and sent nothing
extern const QString NotFound; ///< there is no recording group or NAS server of that name
extern const QString NotAVolume; ///< a path of a NAS server could not become a volume
extern const QString NotAllDone; ///< some of the stations have not done what was asked of all
extern const QString NotKnownYet; ///< nothing failed, and something is not known: in place of success
} // namespace ToolErrorCode

/// What --json prints of a command: one object of the same shape for all of them, see docs/recordingctl-json.md.
class CommandReply
{
public:
    explicit CommandReply(const QString &command)
        : m_command(command)
    {
    }

    /// The result. It may stand beside an error: what was done, or is known, of something that failed in part.
    void setData(const QJsonValue &data)
    {
        m_data = data;
        m_hasData = true;
    }
    /// The first @p code counts; messages add up.
    void addError(const QString &code, const QString &message);
    /// What was refused of an edit.
    void addElement(const QJsonObject &element) { m_elements.append(element); }
    /// What is asked for and not known yet.
    void addUnknown(const QJsonObject &unknown) { m_unknown.append(unknown); }

    bool hasError() const { return !m_code.isEmpty(); }
    /// "returnCode" is "0" only where nothing failed and everything is known.
    QJsonObject toJson() const;

private:
    QString m_command;
    QJsonValue m_data;
    bool m_hasData = false;
    QString m_code;
    QStringList m_messages;
    QJsonArray m_elements;
    QJsonArray m_unknown;
};

/// Writes @p reply to standard output: indented, or on one line for a command that prints lines.
void printReply(const CommandReply &reply, const CommandLine &line);

/// Tells a failure before the command began: a line on standard error, and with --json the object on standard output.
void printFailure(const CommandLine &line, const QString &code, const QString &message);
