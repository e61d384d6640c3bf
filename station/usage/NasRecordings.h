#pragma once

#include "NasFolderReader.h"
#include "TimedWork.h"
#include "alarms/StationTrouble.h"
#include "groups/RecordingGroup.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <optional>

class NasAccounts;
class NasVolumes;
struct UsageSettings;

/// A recording place on a NAS server.
struct NasPlace
{
    qint64 number = 0; ///< see RecordingPlaces.h
    GroupPath path;
    QString folder; ///< of the group below the path
    QDateTime readAt; ///< when all of it was read last, in UTC; null: never
};

/// Counts the recordings on NAS servers: reads their folders in the background, one at a time for each host, and hands
/// on what it found for the index. Nothing here waits for a server. Lives on one thread with an event loop.
///
/// A share is read only after it answered the question for its space (see NasVolumes), and never while that is
/// outstanding: so a wrong password is tried once. A reading goes on in parts, each with the time limit of one command;
/// a server that takes longer ends the reading, and is tried again at the next round, or when its share comes back.
class NasRecordings : public QObject
{
    Q_OBJECT
public:
    /// @param accounts, @param volumes must outlive this object
    /// @param limit for one part of a reading
    NasRecordings(NasAccounts &accounts, const NasVolumes &volumes, std::chrono::milliseconds limit,
                  const UsageSettings &settings, QObject *parent = nullptr);

    /// Takes @p places in the place of the ones before, and reads those that have come.
    void setPlaces(const QList<NasPlace> &places);
    /// Reads all places, on behalf of somebody who waits. A reading that goes on is followed by another one.
    void readAll();
    /// Whether what readAll() asked for is outstanding. Not where a share is not there, nor where its server is silent.
    bool isAwaited() const;

    /// When all of @p place was read last, in UTC; null: never, or the place is not one of setPlaces().
    QDateTime readAt(qint64 place) const { return m_places.value(place).place.readAt; }
    /// Whether the last reading of @p place came to its end: all days were read since the start, and the newest ones
    /// since the share was away last.
    bool isCurrent(qint64 place) const { return m_places.value(place).isCurrent; }

    /// To be called when the shares answered.
    void look();
    /// To be called after each listed(): whether the index has it now.
    void taken(qint64 place, bool isKept);

    /// Places that take too long to be read, folders that cannot be, and what is being read for readAll().
    QList<StationTrouble> troubles() const;
    /// @p troubles, those of NasVolumes, with the time of the last figures of the recordings there.
    QList<StationTrouble> withTimes(QList<StationTrouble> troubles) const;

signals:
    void listed(const RemoteListing &listing);
    void changed(); ///< troubles(), or isAwaited()

private:
    enum class Due { Nothing, Newest, Everything };
    struct Known
    {
        NasPlace place;
        std::optional<SmbPath> address;
        Due due = Due::Everything;
        bool isHeld = false; // until the next round: it failed
        bool isOwed = false; // to readAll()
        bool wasThere = false;
        bool wasReadFully = false; // by this object, to the end
        bool isCurrent = false;
        QElapsedTimer sinceFull;
        KnownDays days;
        std::optional<StationTrouble> trouble;
    };
    struct Reading
    {
        quint64 number = 0; // tells it from others of the same host
        NasReadJob job;
        QDateTime since;
        bool isTaking = false; // a part waits for taken()
        RemoteListing listing; // that part
        QStringList unreadable;
        qint64 files = 0;
    };

    void round();
    void start();
    bool begin(Known &known);
    void readPart(const QString &host);
    void takePart(const QString &host, quint64 number, const NasReadPart &part);
    void finish(const QString &host);
    void fail(const QString &host, const QString &code);
    void hold(Known &known);
    bool isBeingRead(qint64 place) const;
    bool isFullDue(const Known &known) const;

    NasAccounts &m_accounts;
    const NasVolumes &m_volumes;
    std::chrono::milliseconds m_limit;
    std::chrono::milliseconds m_fullInterval;
    TimedWork m_work;
    QTimer m_timer;
    QMap<qint64, Known> m_places;
    QMap<QString, Reading> m_readings; // by host
    quint64 m_lastReading = 0;
};
