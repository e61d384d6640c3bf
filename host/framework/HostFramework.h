#pragma once

#include "framework/EventQueue.h"
#include "framework/FrameworkWrapperBase.h"
#include "framework/PluginBase.h"
#include "link/CommandSender.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QPointer>

#include <chrono>

/// The framework as a client gives it to its plug-ins: hands their commands to a station link, and every reply and
/// event to their processors, on the plug-ins' thread and in the order in which the stations gave them.
///
/// Every accepted command is answered exactly once, that is with exactly one last part: when the link is down, when the
/// station does not answer in time and when the client closes, with a code of HostReturnCode. Whatever arrives after
/// that is dropped, but for what came of an edit: see lateOutcomeCame(). An answer never comes from within
/// SendCommand(). Lives on the UI thread.
///
/// Events of the directly connected station have no source and are handed on at once, those of other stations carry
/// their relay path and wait for a turn that has time: see EventQueue. A plug-in forgets the figures of all stations
/// when it hears of a connection; so those that were told last are handed to it again after it, the directly connected
/// station's without a source and within the same call where another one took that place.
class HostFramework : public QObject, public FrameworkWrapperBase
{
    Q_OBJECT
public:
    /// @param link not owned; must outlive the framework
    explicit HostFramework(StationLink &link, QObject *parent = nullptr);
    ~HostFramework() override;

    /// How long a station may take for a command, or for the next part of an answer in several; 30 s at first. Holds
    /// for what is sent from then on; at least 1 ms.
    void setReplyTimeout(std::chrono::milliseconds timeout);
    /// As CommandSender::setDescribe().
    void setDescribe(const CommandSender::Describe &describe);

    /// Hands the plug-in its framework (InitialPluginBase) and from then on its replies, events and connections; when
    /// the link is up already, the plug-in is told at once. False when the plug-in could not initialise, and when a
    /// living plug-in is attached under that identifier already or close() was called.
    /// @param plugin not owned; may end before the framework does. What it sent stays unanswered then
    bool attach(PluginBase *plugin, const QString &pluginId, QQmlContext *context = nullptr);

    /// Whether plug-ins hear of the events of other stations than the directly connected one; they do at first.
    void setFollowsOthers(bool follows);

    /// Makes @p object the answer to GetPluginObject(@p pluginId). Not owned. Attached plug-ins are found without this.
    void addPluginObject(const QString &pluginId, QObject *object);

    /// Answers everything outstanding with HostReturnCode::Closing and accepts nothing more; the destructor does the
    /// same. Plug-ins hear of no reply, event or connection after it.
    void close();

    /// Takes a command of an attached plug-in over; refuses those of others, and all after close(). The handle and the
    /// flag tell nothing here.
    bool SendCommand(void *handle, const QString &pluginId, const QString &command, const QVariant &data, void *context,
                     bool flag, const QString &relayPath) override;
    QObject *GetPluginObject(void *handle, const QString &pluginId) override;

signals:
    /// A part of an answer is about to be handed to its plug-in: the words behind the plug-in's yes or no.
    void commandAnswered(const QString &command, const QString &returnCode, const QVariant &data, bool finish);
    /// An event is about to be handed to the plug-ins, and then the plug-ins have it. Also for figures that are handed
    /// to them once more, of which eventDelivered() does not tell.
    void eventArriving(const QString &source);
    void eventHandedOn(); ///< the second half of eventArriving()
    /// An event was handed to the plug-ins; @p source is the relay path of its station, empty for the directly
    /// connected one.
    void eventDelivered(const QString &event, const QVariant &data, const QString &source);
    /// As CommandSender::lateOutcomeCame(). The plug-in, which was told that there is no answer, hears nothing of it.
    void lateOutcomeCame(const LateOutcome &outcome);

private:
    struct Command
    {
        QPointer<PluginBase> plugin;
        QString name;
        void *context; // the plug-in's, again with the last part of the answer
        QString relayPath;
    };

    QList<QPointer<PluginBase>> plugins() const;
    void followState(const QString &relayPath, const StationState &state);
    void followDirectStation(const QString &relayPath);
    void tellOfConnection();
    void repeatFigures();
    void handOn(const QString &source, const StationEvent &event, bool isRepeated);
    void deliverEvent(const QString &relayPath, const StationEvent &event);
    void deliverPart(const Command &command, quint64 correlation, const StationReply &part);

    StationLink &m_link;
    CommandSender m_sender;
    QMap<QString, QPointer<PluginBase>> m_plugins; // by plug-in identifier
    QHash<QString, QPointer<QObject>> m_pluginObjects; // likewise
    QHash<QString, QVariant> m_lastFigures; // of "VolumeChanged", by relay path
    QString m_toldOf; // the station that took the direct one's place just now, and whose connection was told
    bool m_followsOthers = true;
    bool m_closed = false;
    EventQueue m_others;
};
