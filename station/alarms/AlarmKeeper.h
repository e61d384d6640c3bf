#pragma once

#include "AlarmStore.h"
#include "service/RecordSettings.h"

#include <QElapsedTimer>
#include <QMap>

class DatabaseError;
class StationData;

/// Brings what the alarms do into the station's database, and what stood before the station was started out of it.
/// Where the database cannot be written, it remembers what is to be kept, and tries again. Used on the station's
/// thread.
class AlarmKeeper
{
public:
    /// @param data must outlive this object
    AlarmKeeper(StationData &data, const RecordSettings &settings);

    /// Takes up @p now, all that troubles the station, and gives those that were known before the time since when.
    /// @param isSettled whether everybody has looked: an alarm of an earlier run that is not among them ended then
    void follow(QList<StationTrouble> &now, bool isSettled);
    /// Writes what waits for the database. Throws DatabaseError.
    void flush();
    /// Takes up that @p trouble, one of those that stand, is acknowledged, or is not any more; follow() gives it from
    /// then on. The caller has written it.
    void setAcknowledgement(const StationTrouble &trouble, const std::optional<Acknowledgement> &acknowledgement);
    /// What ended, the newest first, but for what could not be kept. Throws DatabaseError.
    QList<PastAlarm> past(int limit);

private:
    /// That an alarm began, or, with @p until, that it ended.
    struct Change
    {
        StationTrouble trouble;
        QDateTime until;
    };

    using Alarms = QMap<StationTrouble::Key, StationTrouble>;

    void load(QList<StationTrouble> &now);
    void keep();
    void note(const StationTrouble &trouble, const QDateTime &until);
    bool mayTry() const;
    void putOff(const DatabaseError &error);

    StationData &m_data;
    RecordSettings m_settings;
    Alarms m_standing; // of this run, as they were told last
    Alarms m_earlier; // of runs before, and not met in this one
    bool m_isLoaded = false;
    QList<Change> m_changes; // to be kept
    QElapsedTimer m_failed;
};
