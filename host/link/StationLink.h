#pragma once

#include "StationMessage.h"

#include <QDateTime>
#include <QMetaType>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

/// How a station can be reached at the moment.
struct StationState
{
    /// What it comes to.
    enum class Kind {
        Unknown, ///< nobody asked for it yet
        Connecting, ///< commands wait until it is up or down
        Up, ///< commands reach it
        Down, ///< it cannot be reached
    };

    Kind kind = Kind::Unknown; ///< what it comes to
    /// What is wrong and what to do about it, in English sentences. Of Down, and of Connecting after something failed.
    QString reason = {};
    /// When the link tries again, in UTC; invalid: it does so now, or nobody can say.
    QDateTime retryAt = {};
    /// Of a station that is not up: commands that were sent to it are not lost. The link sends them again when it is
    /// back.
    bool keepsCommands = false;
    /// Of Down: nothing was heard of the station any more, and nobody said that it is gone. It may be there, and hang.
    bool isSilent = false;

    bool operator==(const StationState &) const = default; ///< member by member
};

Q_DECLARE_METATYPE(StationState)

struct StationPresence;

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
    /// What a link needs to know of its client.
    struct Client
    {
        QString program; ///< as it calls itself
        QString version; ///< of that program
        QString relayPath; ///< under which an embedded station also answers, besides the empty one
        /// Which station is the directly connected one to begin with; empty: the one that the URL names. A link that
        /// knows one station alone passes it over.
        QString station = {};
        bool followsOthers = true; ///< the client wants to hear of the other stations, too
        /// The "VolumeChanged" of each other station is told once in so long at most, the newest one; 0: each is told.
        std::chrono::milliseconds figuresPause{0};
    };

    /// A kind of link, chosen by the scheme of its URL.
    struct Kind
    {
        QString scheme; ///< of the URL, without the colon
        QString form; ///< of the URL, to be named where it is wrong: "local:DIR"
        /// Makes the link to @p place, what follows the scheme and its colon. Null with a sentence in @p error where
        /// that is wrong or missing.
        std::function<std::unique_ptr<StationLink>(const QString &place, const Client &client, QString *error)> open;
    };

    using QObject::QObject;

    /// The link that @p url names, not started; null with a line in @p error that says what was expected.
    /// @param kinds those that are taken; a client that only connects knows LocalLink::kind() alone
    static std::unique_ptr<StationLink> open(const QString &url, const QList<Kind> &kinds, const Client &client,
                                             QString *error);

    /// Begins to connect; a second start does nothing.
    virtual void start() = 0;

    /// @param relayPath of the station; empty: the directly connected one
    virtual StationState state(const QString &relayPath = {}) const = 0;
    /// Whether commands reach the station behind @p relayPath.
    bool isUp(const QString &relayPath = {}) const { return state(relayPath).kind == StationState::Kind::Up; }

    /// Every station that the link has heard of, in no order. One that went away stays, with its state. Here: the
    /// directly connected one alone.
    virtual QList<StationPresence> stations() const;
    /// Of the station behind @p relayPath (empty: the directly connected one), as stations() has it; an empty one where
    /// the link has not heard of it.
    virtual StationPresence presence(const QString &relayPath = {}) const;
    /// There may be more stations than those that were heard of. Here: false.
    virtual bool reachesMany() const { return false; }
    /// Why stations() need not be all that there are, an English sentence; empty where they are. Here: empty.
    virtual QString whyIncomplete() const { return {}; }
    /// The relay path of the directly connected station; empty where the link knows none.
    virtual QString directStation() const { return {}; }
    /// Makes the station behind @p relayPath the directly connected one, which empty relay paths mean from then on, and
    /// whose state stateChanged() tells with an empty relay path. Commands that were sent before are still answered.
    /// False, and nothing changed, where the link has no such station. Here: always false.
    virtual bool setDirectStation(const QString &relayPath);

    /// Carries @p command to the station behind @p relayPath (empty: the directly connected one). Never blocks. A
    /// command to a station that is connecting waits; one to a station that is down has the link try once more. Dropped
    /// before start().
    ///
    /// @param correlation the sender's number for the command; every part of the reply carries it
    virtual void send(quint64 correlation, const QString &relayPath, const StationCommand &command) = 0;

signals:
    // None of them is emitted from within send().

    /// A station answered the command @p correlation, or a part of it.
    void replyReceived(quint64 correlation, const StationReply &reply);
    /// The station behind @p relayPath said something unasked. The path may be empty for the directly
    /// connected one.
    void eventReceived(const QString &relayPath, const StationEvent &event);
    /// The station behind @p relayPath can be reached in another way than before. A command whose reply had not come
    /// when it ceased to be up gets none, unless StationState::keepsCommands says otherwise. What happens to the
    /// directly connected station is told with the empty relay path, too; by a link that knows one station alone, with
    /// that only.
    void stateChanged(const QString &relayPath, const StationState &state);
    /// Something that stations() tells of the station behind @p relayPath is new.
    void presenceChanged(const QString &relayPath);
    /// whyIncomplete() is another.
    void completenessChanged();
    /// Another station is the directly connected one.
    void directStationChanged(const QString &relayPath);
};
