#pragma once

#include "CommandLine.h"
#include "CommandReply.h"
#include "ExitCode.h"
#include "PluginCaller.h"

#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <concepts>
#include <functional>

class ClientSession;

/// How a command's result is shown. One of the two is called, and only when there is a result; an empty one shows
/// nothing, which is null in JSON.
struct ResultView
{
    std::function<QJsonValue()> json;
    std::function<void()> print;
};

/// What the commands of the tool do alike: ask the plug-in or the station, wait, print. With --json nothing of a result
/// is printed before the command's end: reply() gathers it.
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

    /// Waits until the station is connected. Why it cannot be reached; empty when it is.
    QString waitForStation() const;

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

    /// What --json prints at the end.
    const CommandReply &reply() const { return m_reply; }

    /// Shows a result; end() does it for a command that is done.
    void show(const ResultView &view);
    /// Ends the command with @p outcome, and shows its result when it is done. Errors go to standard error.
    /// A station that could not use its database is asked why; one whose database is damaged did not answer well.
    ExitCode end(const CallOutcome &outcome, const ResultView &view = {});

    /// One line on standard error; ends the command as refused. @p code is one of ToolErrorCode or of the station.
    ExitCode refused(const QString &code, const QString &error);
    /// The same; ends the command as wrong use.
    ExitCode wrongUse(const QString &error);
    /// The same; ends the command as not answered in time.
    ExitCode noAnswer(const QString &error);
    /// What was refused of an edit, for --json alone: an object as of refusedElementsJson().
    void addRefusedElement(const QJsonObject &element) { m_reply.addElement(element); }

    /// Tells those of @p alarms, maps as in the answer of "station.listAlarms", that say that something is broken, and
    /// what to do about it, one line each. Whether there are any.
    bool reportBroken(const QVariantList &alarms);
    /// Tells with @p line that @p pending, a map of the same form, is not known yet.
    void reportUnknown(const QVariant &pending, const QString &line);

private:
    void fail(const QString &code, const QString &error);
    void fail(const CallOutcome &outcome);
    QVariantList stationAlarms();
    QObject &plugin() const;
    std::chrono::milliseconds timeout() const;

    ClientSession &m_session;
    const CommandLine &m_line;
    PluginCaller m_caller;
    CommandReply m_reply;
};

/// Whether @p alarm, a map as in the answer of "station.listAlarms", says that something is broken.
bool isStationError(const QVariant &alarm);
/// What @p alarm says, and what to do about it, on one line.
QString alarmLine(const QVariant &alarm);
