#pragma once

#include "CommandSender.h"

#include <QObject>
#include <QVariant>

#include <chrono>
#include <functional>

/// Sends a station what no plug-in sends: the station's own commands, such as those for cameras, and gives the answer
/// to whoever asked. Shares the link with the framework. Lives on the UI thread.
class StationCalls : public QObject
{
    Q_OBJECT
public:
    /// Takes every part of an answer on the UI thread; StationReply::finish is set on the last. The return code is the
    /// station's ("0" for success) or, where no station answered, one of HostReturnCode, as for a plug-in's command.
    using OnPart = std::function<void(const StationReply &part)>;

    /// @param link not owned; must outlive this object
    explicit StationCalls(StationLink &link, QObject *parent = nullptr);
    ~StationCalls() override;

    /// As HostFramework::setReplyTimeout().
    void setReplyTimeout(std::chrono::milliseconds timeout);
    /// As CommandSender::setDescribe().
    void setDescribe(const CommandSender::Describe &describe);

    /// Sends @p command; never answers from within this call.
    /// @param context not owned; when it ends, @p onPart is not called any more. Must not be null
    /// @param relayPath of the station; empty: the directly connected one
    /// @return false, with nothing sent and nothing to come, after close()
    bool send(const QString &command, const QVariant &data, QObject *context, const OnPart &onPart,
              const QString &relayPath = {});

    /// Answers everything outstanding with HostReturnCode::Closing and sends nothing more; the destructor does the
    /// same.
    void close();

signals:
    /// As CommandSender::lateOutcomeCame().
    void lateOutcomeCame(const LateOutcome &outcome);

private:
    CommandSender m_sender;
    bool m_closed = false;
};
