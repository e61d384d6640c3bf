#pragma once

#include "ExitCode.h"
#include "PluginErrors.h"
#include "SignalTap.h"
#include "StationMessage.h"

#include <QAbstractItemModel>
#include <QDeadlineTimer>
#include <QMetaMethod>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <chrono>
#include <functional>

class HostFramework;
struct AnswerRow;

/// What a call of an invokable came to.
struct CallOutcome
{
    struct Emission
    {
        QMetaMethod signal;
        QVariantList arguments;
    };

    ExitCode exitCode = ExitCode::Done;
    QString error = {}; ///< one line; empty when done
    QVariant result = {}; ///< what the invokable returned; invalid for void
    /// The station's: "0", or that of the first part that it refused; empty when nothing was sent.
    QString returnCode = {};
    QList<StationReply> parts = {}; ///< of the station's answer, also those that a signal tells nothing of
    QList<Emission> answers = {}; ///< the answering signal, once for each part of the answer
    /// That the answer filled, or that the invokable returned; owned by the plug-in.
    QPointer<QAbstractItemModel> model = {};
    QString modelGetter = {}; ///< the plug-in's method that gives this model; empty without one

    /// The argument @p parameter of the first answering signal; invalid without one.
    QVariant answered(const char *parameter) const;
};

/// Makes @p outcome, whose return code is none of success, a failure with an exit code and a line.
/// @param name what the line begins with
/// @param command that was sent: of an edit without an answer the line says that it may take effect
void setFailure(CallOutcome &outcome, const QString &name, const QString &command, std::chrono::milliseconds timeout);

/// Calls invokables of the plug-in and waits for what answers them, one at a time.
class PluginCaller : public QObject
{
    Q_OBJECT
public:
    /// @param plugin attached to @p framework, and not told of a connection yet; neither is owned, both outlive this
    /// @param timeout how long the station may take for each part of an answer
    PluginCaller(QObject &plugin, HostFramework &framework, std::chrono::milliseconds timeout);

    /// Calls @p method. A command is waited for until its last part was answered; what a query reads is fetched first.
    /// @param arguments of exactly the types of the parameters
    CallOutcome call(const QMetaMethod &method, const QVariantList &arguments);

private:
    /// Waits until the plug-in's own requests, sent when the connection came up, are out of the way: their answers
    /// could be taken for those to a call. False when they did not come in time.
    bool waitUntilReady();
    bool waitUntil(const std::function<bool()> &done);
    CallOutcome invoke(const QMetaMethod &method, const QVariantList &arguments);
    CallOutcome send(const AnswerRow &answer, const QMetaMethod &method, const QVariantList &arguments);
    CallOutcome fetchFor(const QMetaMethod &query, const QVariantList &arguments);
    QAbstractItemModel *modelFrom(const char *getter) const;
    QString refusedByPlugin(const QMetaMethod &method) const;
    void restartClock();

    QObject &m_plugin;
    std::chrono::milliseconds m_timeout;
    QDeadlineTimer m_deadline;
    QStringList m_connectCommands; // not answered yet
    PluginErrors m_pluginErrors;
    SignalTap m_tap;
    std::function<void(const QString &command, const StationReply &part)> m_onAnswer;
    SignalTap::Receiver m_onSignal;
};
