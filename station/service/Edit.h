#pragma once

#include "Activity.h"
#include "CommandTable.h"
#include "RecordSettings.h"

#include <QElapsedTimer>
#include <QList>

#include <functional>
#include <memory>

class Database;
class DatabaseError;
class StationData;
class Transaction;

/// What the edits of a station share.
struct EditSite
{
    StationData &data;
    RecordSettings settings;
    std::function<void(const Activity &)> activityAdded; ///< after the answer
    std::function<void(const DatabaseError &)> databaseFailed; ///< while an edit was carried out
};

/// One edit that somebody asked for, while it is carried out: who asks, and what came of it. Whatever changes something
/// answers through it, by commit() where there is a transaction, so that effect, outcome and activity are kept together
/// or not at all. Used on the station's thread alone.
class Edit : public std::enable_shared_from_this<Edit>
{
public:
    /// The most bytes of a command's id, in UTF-8.
    static constexpr int mostIdBytes = 128;

    /// @param site must outlive this object
    /// @param finished called after the last part was given and kept
    Edit(const EditSite &site, StationCommand command, std::function<void()> finished = {});

    const StationCommand &command() const { return m_command; }
    const QVariant &data() const { return m_command.data; }
    /// What the next parts are about.
    const ActivitySubject &subject() const { return m_subject; }
    void setSubject(const ActivitySubject &subject) { m_subject = subject; }
    /// How many parts were given: an edit of several parts that was cut off goes on behind them.
    qsizetype partsGiven() const { return m_parts.size(); }

    /// Keeps @p part as what came of the edit, commits @p transaction, and then gives @p part. Throws what keeps it
    /// from that; nothing is done or given then.
    void commit(Transaction &transaction, const StationReply &part);
    /// Gives @p part where there is no transaction: a refusal, or what took effect elsewhere. It is kept in a short
    /// transaction of its own, a refusal afterwards; where that fails, the station's log has the activity. To be called
    /// while no transaction is open. What comes after the last part is left out.
    void answer(const StationReply &part);
    /// Does @p work, a part of carrying the edit out; what it throws becomes the last part. For what goes on later.
    void attempt(const std::function<void()> &work);

    /// Gives @p answer every part, those that were given before at once.
    void addListener(const Answer &answer);
    /// Whether @p other is a delivery of the same command.
    bool isSame(const Edit &other) const { return m_fingerprint == other.m_fingerprint; }
    /// Gives what the station's database has of an earlier delivery, or refuses an id that it has for another command;
    /// false where parts are outstanding then. Throws DatabaseError.
    bool giveKept();
    /// Answers with @p returnCode and writes @p expected to the station's log: the id is not this edit's, which is kept
    /// as activity alone.
    void refuseId(const QString &returnCode, const QString &expected);

private:
    struct Part
    {
        StationReply reply;
        Activity activity;
    };

    bool isFinished() const { return !m_parts.isEmpty() && m_parts.constLast().finish; }
    bool hasId() const { return m_isIdOwn && !m_command.id.isEmpty(); }
    QDateTime oldestRequest() const;
    Part made(const StationReply &reply) const;
    bool isKeptElsewhere();
    void keep(Database &database, QList<Part> &parts) const;
    void keepOutcome(Database &database, const QList<Part> &parts) const;
    QList<Part> keepRest();
    void give(const StationReply &part);
    void finish(const QList<Part> &parts);

    const EditSite &m_site;
    StationCommand m_command;
    QByteArray m_fingerprint;
    std::function<void()> m_finished;
    ActivitySubject m_subject;
    QList<Answer> m_listeners;
    QList<StationReply> m_parts; // given
    QList<Part> m_unkept; // the last ones of them
    qsizetype m_keptParts = 0; // the others
    bool m_isIdOwn = true;
    QElapsedTimer m_time;
};
