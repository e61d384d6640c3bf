#pragma once

#include <QString>
#include <QStringList>

/// How an invokable that sends a command is answered. Names are those of the plug-in and of its commands.
struct AnswerRow
{
    const char *invokable;
    const char *command; ///< that it sends
    const char *signal; ///< that tells the outcome
    const char *model; ///< the getter of the model that the answer fills; null when it fills none
    bool carriesRequestId = false; ///< the invokable returns an id, and the signal's first argument repeats it
};

/// The row of @p invokable; null when it sends no command: then what it returns is its result.
const AnswerRow *answerOf(const QString &invokable);

/// The invokables whose answers fill what the query @p invokable reads, in the order to call them; each takes nothing
/// or the relay path. Empty when the query reads nothing that a request without further arguments fetches.
QStringList requestsBefore(const QString &invokable);

/// The commands that the plug-in sends by itself when the connection comes up.
QStringList commandsOnConnect();
