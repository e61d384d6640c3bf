#pragma once

#include "RecordingPlaces.h"
#include "alarms/StationTrouble.h"
#include "nas/NasSpaces.h"

#include <QMap>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <optional>
#include <utility>

class NasAccounts;
class TimedWork;

/// The shares behind the NAS paths of recording groups, as volumes. NAS servers may be slow or silent: they are asked
/// in the background, nothing here waits for them, and what they said is kept until they are asked again. Each share is
/// asked once for each account, however many paths lie on it. Lives on one thread with an event loop.
class NasVolumes : public QObject
{
    Q_OBJECT
public:
    /// @param accounts, @param work must outlive this object; the limit of the work is that of each question
    /// @param interval after which the servers are asked again; an account that was refused is left alone for longer
    NasVolumes(NasAccounts &accounts, TimedWork &work, std::chrono::milliseconds interval, QObject *parent = nullptr);

    /// Keeps the volumes of the NAS paths of @p groups, and asks for those that are new.
    void setGroups(const QList<RecordingGroup> &groups);
    /// Asks for all of them, on behalf of somebody who waits: refused accounts are tried again. A question that is
    /// outstanding is not asked twice.
    void askAll();
    /// Whether an answer is outstanding.
    bool isAsking() const { return m_asked > 0; }

    /// Unknown until the first answer; Gone where the last one was a refusal, or did not come in time, or where no NAS
    /// server is registered for the path. The path of the volume is the same for all paths on one share.
    PlaceState state(const GroupPath &path) const;

    /// Whether the answer that concerns @p path is outstanding.
    bool isAsking(const GroupPath &path) const;

    /// "ShareNotAnswering", "ShareRefused" and "ShareMissing" of the last answers, "NasKeyUnusable" and
    /// "DatabaseFailed" where the servers could not be asked, and "SharePending" where nothing is known before an
    /// answer comes: the first one, or that to askAll().
    QList<StationTrouble> troubles() const;

signals:
    /// There was an answer, whether figures changed or not.
    void answered();
    void troublesChanged();

private:
    using Key = std::pair<PathKind, QString>;
    struct Known
    {
        PlaceState state;
        std::optional<StationTrouble> trouble; // of the last answer
        QDateTime askedAt; // the question that is outstanding; null: none is
        bool isAnswered = false;
        bool isOwed = false; // to askAll()
    };
    enum class Asker { Timer, Operator };
    class Questions;

    void ask(const QList<Key> &keys, Asker asker);
    QList<Key> inOrder(const QList<Key> &keys);
    void take(const QList<Key> &keys, const SpaceQuestion &question, const QList<SmbSpace> &spaces);
    void set(const Key &key, const PlaceState &state, std::optional<StationTrouble> found);
    StationTrouble refused(const QString &share, const SmbPath &place, const SmbLogon &logon) const;
    void tellTroubles();

    NasAccounts &m_accounts;
    TimedWork &m_work;
    QTimer m_timer;
    QMap<Key, Known> m_volumes;
    QList<StationTrouble> m_told;
    int m_asked = 0; // questions
    qsizetype m_rounds = 0;
};
