#include "ConsoleSession.h"

#include "RefusalText.h"

ConsoleSession::ConsoleSession(QObject *parent)
    : QObject(parent)
{
}

bool ConsoleSession::isConnected() const
{
    return m_connected;
}

void ConsoleSession::setConnected(bool connected)
{
    if (m_connected == connected)
        return;
    m_connected = connected;
    emit connectedChanged();
}

void ConsoleSession::noteAnswer(const QString &command, const QString &returnCode)
{
    m_returnCodes.insert(command, returnCode);
}

QString ConsoleSession::refusal(const QString &command) const
{
    const auto returnCode = m_returnCodes.constFind(command);
    return returnCode == m_returnCodes.constEnd() ? QString() : refusalText(*returnCode);
}

QString ConsoleSession::returnCode(const QString &command) const
{
    return m_returnCodes.value(command);
}
