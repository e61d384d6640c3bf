#include "CommandReply.h"

#include "CommandLine.h"
#include "Output.h"

const QString ToolErrorCode::WrongUse = QStringLiteral("WrongUse");
const QString ToolErrorCode::PluginNotLoaded = QStringLiteral("PluginNotLoaded");
const QString ToolErrorCode::PluginRefused = QStringLiteral("PluginRefused");
const QString ToolErrorCode::NotFound = QStringLiteral("NotFound");
const QString ToolErrorCode::NotAVolume = QStringLiteral("NotAVolume");
const QString ToolErrorCode::NotAllDone = QStringLiteral("NotAllDone");
const QString ToolErrorCode::NotKnownYet = QStringLiteral("NotKnownYet");

void CommandReply::addError(const QString &code, const QString &message)
{
    if (m_code.isEmpty())
        m_code = code;
    m_messages.append(message);
}

QJsonObject CommandReply::toJson() const
{
    QJsonObject object{{QStringLiteral("command"), m_command.isEmpty() ? QJsonValue() : QJsonValue(m_command)}};
    if (m_hasData || !hasError())
        object.insert(QStringLiteral("data"), m_data);
    if (!m_unknown.isEmpty())
        object.insert(QStringLiteral("unknown"), m_unknown);
    if (hasError())
        object.insert(QStringLiteral("error"),
                      QJsonObject{{QStringLiteral("code"), m_code},
                                  {QStringLiteral("message"), m_messages.join(u'\n')},
                                  {QStringLiteral("elements"), m_elements}});
    const QString success = m_unknown.isEmpty() ? QStringLiteral("0") : ToolErrorCode::NotKnownYet;
    object.insert(QStringLiteral("returnCode"), hasError() ? m_code : success);
    return object;
}

void printReply(const CommandReply &reply, const CommandLine &line)
{
    const bool isLine = line.command == QStringLiteral("watch");
    printLine(isLine ? compactJson(reply.toJson()) : indentedJson(reply.toJson()));
}

void printFailure(const CommandLine &line, const QString &code, const QString &message)
{
    printError(message);
    if (!line.json)
        return;
    CommandReply reply(line.command);
    reply.addError(code, message);
    printReply(reply, line);
}
