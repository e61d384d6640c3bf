#pragma once

#include "CommandLine.h"
#include "ExitCode.h"
#include "PluginCaller.h"

#include <QJsonObject>
#include <QString>
#include <QVariant>

#include <concepts>
#include <functional>

class ClientSession;

/// What the commands of the tool do alike: ask the plug-in or the station, wait, print.
class CommandRun
{
public:
    /// @param session started just now, and not told of a connection yet; not owned, as is @p line
    CommandRun(ClientSession &session, const CommandLine &line);

    ClientSession &session() const { return m_session; }
    const CommandLine &line() const { return m_line; }

    /// Calls the invokable @p name of the plug-in and waits for its answer; what a query reads is fetched first.
    /// @param arguments convertible to the types of the parameters of a form with that many
    CallOutcome call(const QString &name, const QVariantList &arguments = {});

    /// Sends a command of the station's own, which the plug-in does not know, and waits for its answer: in the outcome
    /// it is among the parts.
    CallOutcome callStation(const QString &command, const QVariant &data = {});

    /// Calls the query @p name of the plug-in, over what was fetched already.
    template<typename Result, std::same_as<QString>... Texts>
    Result read(const char *name, const Texts &...arguments) const
    {
        Result result{};
        [[maybe_unused]] const bool isCalled =
            QMetaObject::invokeMethod(&plugin(), name, Qt::DirectConnection,
                                      QGenericReturnArgument(QMetaType::fromType<Result>().name(), &result),
                                      QGenericArgument("QString", &arguments)...);
        Q_ASSERT(isCalled);
        return result;
    }

    /// Prints what came of @p name: with --json @p outcome as "call" prints it, else by @p printResult when it is done.
    /// Errors go to standard error.
    /// A station that could not use its database is asked why; one whose database is damaged did not answer well.
    ExitCode end(const QString &name, const CallOutcome &outcome, const std::function<void()> &printResult = {});
    /// The same, with an object in place of the outcome's.
    ExitCode end(const CallOutcome &outcome, const QJsonObject &json, const std::function<void()> &printResult);

private:
    QVariantList stationAlarms();
    QObject &plugin() const;
    std::chrono::milliseconds timeout() const;

    ClientSession &m_session;
    const CommandLine &m_line;
    PluginCaller m_caller;
};

/// Whether @p alarm, a map as in the answer of "station.listAlarms", says that something is broken.
bool isStationError(const QVariant &alarm);
/// What those of @p alarms say that do, and what to do about it, one line each on standard error.
void printStationErrors(const QVariantList &alarms);
/// One line on standard error; ends the command as refused.
ExitCode refused(const QString &error);
/// One line on standard error; ends the command as wrong use.
ExitCode wrongUse(const QString &error);
