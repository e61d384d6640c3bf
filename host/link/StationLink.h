#pragma once

#include "StationMessage.h"

#include <QObject>

/// A way to one or more stations. It carries commands there and brings replies and events back, all in the order in
/// which each station gave them, on the thread that the link object lives on.
///
/// A station may answer a later command before an earlier one that takes it long.
///
/// A link promises no answer: a station may be slow, silent or gone. Whoever sends keeps the time.
class StationLink : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Whether commands can be carried at the moment.
    virtual bool isUp() const = 0;

    /// Carries @p command to the station behind @p relayPath (empty: the directly connected one). Never blocks.
    ///
    /// @param correlation the sender's number for the command; every part of the reply carries it
    virtual void send(quint64 correlation, const QString &relayPath, const StationCommand &command) = 0;

signals:
    // None of them is emitted from within send().

    /// A station answered the command @p correlation, or a part of it.
    void replyReceived(quint64 correlation, const StationReply &reply);
    /// The station behind @p relayPath said something unasked.
    void eventReceived(const QString &relayPath, const StationEvent &event);
    /// The link went up or down. A command whose reply had not come when it went down gets none.
    void upChanged(bool up);
};
