#pragma once

#include "RecordingPlaces.h"

#include <QMap>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <utility>

class NasAccounts;
class TimedWork;

/// The shares behind the NAS paths of recording groups, as volumes. NAS servers may be slow or silent: they are asked
/// in the background, nothing here waits for them, and what they said is kept until they are asked again. Lives on one
/// thread with an event loop.
class NasVolumes : public QObject
{
    Q_OBJECT
public:
    /// @param accounts, @param work must outlive this object; the limit of the work is that of each question
    /// @param interval after which the servers are asked again
    NasVolumes(NasAccounts &accounts, TimedWork &work, std::chrono::milliseconds interval, QObject *parent = nullptr);

    /// Keeps the volumes of the NAS paths of @p groups, and asks for those that are new.
    void setGroups(const QList<RecordingGroup> &groups);
    /// Asks for all of them; a question that is outstanding is not asked twice.
    void askAll();
    /// Whether an answer is outstanding.
    bool isAsking() const { return m_asked > 0; }

    /// Unknown until the first answer; Gone where the last one was a refusal, or did not come in time, or where no NAS
    /// server is registered for the path. The path of the volume is the same for all paths on one share.
    PlaceState state(const GroupPath &path) const;

signals:
    /// There was an answer, whether figures changed or not.
    void answered();

private:
    using Key = std::pair<PathKind, QString>;
    struct Known
    {
        PlaceState state;
        bool isAsked = false;
    };

    void ask(const Key &key);
    void take(const Key &key, const PlaceState &state);

    NasAccounts &m_accounts;
    TimedWork &m_work;
    QTimer m_timer;
    QMap<Key, Known> m_volumes;
    int m_asked = 0;
};
