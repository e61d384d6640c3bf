#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

struct QMetaObject;

/// How an invokable that sends a command is answered. Names are those of the plug-in and of its commands.
struct AnswerRow
{
    QByteArray command; ///< that it sends
    QByteArray signal; ///< that tells the outcome
    const char *model = nullptr; ///< the getter of the model that the answer fills; null when it fills none
    bool carriesRequestId = false; ///< the invokable returns an id, and the signal's first argument repeats it
};

/// How @p invokable of @p plugin is answered; none when it sends no command: then what it returns is its result. One
/// that is in no table, and has a signal of its name with "Responded" behind it, sends the command of its name.
std::optional<AnswerRow> answerOf(const QString &invokable, const QMetaObject &plugin);

/// The invokables whose answers fill what the query @p invokable reads, in the order to call them; each takes nothing
/// or the relay path. Empty when the query reads nothing that a request without further arguments fetches.
QStringList requestsBefore(const QString &invokable);

/// The commands that the plug-in sends by itself when the connection comes up.
QStringList commandsOnConnect();
