#pragma once

#include "ClockWatch.h"
#include "CommandTable.h"
#include "NasRecordings.h"
#include "NasVolumes.h"
#include "ReadingMark.h"
#include "RecordingIndex.h"
#include "RecordingPlaces.h"
#include "ShortGroups.h"
#include "UnassignedPlace.h"
#include "UsageSettings.h"
#include "store/DatabaseError.h"

#include <QElapsedTimer>
#include <QObject>
#include <QThread>
#include <QTimer>

#include <memory>
#include <optional>

class IndexWorker;
class StationData;

/// The station's usage figures: the command "reloadStorageUsageInfo" and the events "VolumeChanged" and
/// "StorageScanProgress", see docs/station-protocol.md. Lives on the station's thread; the folders are read on another
/// one, which this object starts and ends.
class StorageUsage : public QObject
{
    Q_OBJECT
public:
    /// @param volumes, @param data, @param accounts, @param work must outlive this object; nothing happens before the
    /// thread's event loop turns
    /// @param work asks NAS servers
    StorageUsage(const VolumeSource &volumes, StationData &data, NasAccounts &accounts, TimedWork &work,
                 UsageSettings settings, QObject *parent = nullptr);
    ~StorageUsage() override;

    /// The entry refers to this object.
    void enterInto(CommandTable &table);

    /// To be called after every edit of the recording groups; followed when the event loop turns.
    void groupsChanged();
    /// Does not touch the database any more: it is damaged, or was replaced.
    void leaveDatabase(const DatabaseError &reason);

    /// The bytes of the recordings in the folder @p folder of @p path; none unless they are counted. The count of a
    /// local path follows every change, or is none; that of a NAS path is of the last reading.
    std::optional<qint64> countedBytes(const QString &path, const QString &folder) const;

    /// Takes up the groups as they are now where they were edited since; throws DatabaseError.
    void useLatestGroups();
    /// Every place of recordings as it was looked at last: the paths of the groups in the order of the groups, what
    /// belongs to no group, and the backup area.
    QList<UsagePlace> places() const;
    /// The places that no group names and that hold recordings, or of which nobody knows yet whether they do.
    QList<UnassignedPlace> unassignedPlaces() const;
    /// Reads the folders @p roots of places through: the station itself has changed what is in them. Until then they do
    /// not count as counted.
    void readAgain(const QStringList &roots);
    /// The day that is not over; invalid where the clock cannot be believed.
    QDate currentDay() const;
    /// Whether the machine's clock can be believed; looks at it.
    bool isClockTrusted();

    /// Whether troubles() knows of everything: the groups were read, all places looked at, the folders read to their
    /// end, the NAS servers have answered, and clients were told the figures.
    bool isSettled() const;
    /// What keeps recordings from being stored, counted, or kept for as long as they shall be.
    QList<StationTrouble> troubles() const;

signals:
    void eventRaised(const StationEvent &event);
    void troublesChanged(); ///< before the event that has the figures to it

private:
    void reload(const QVariant &data, const Answer &answer);
    void followGroups();
    void readGroups();
    void useGroups();
    void takeFailure(const DatabaseError &error);
    void takeSums(const PlaceSums &sums);
    QDate today() const;
    void startWorker();
    void readThrough();
    void look();
    void giveToWorker();
    void giveListing(const RemoteListing &listing);
    QList<NasPlace> nasPlaces() const;
    void answerReload();
    void tell();
    void tellNow();
    PlaceState stateOf(const RecordingPlace &place) const;
    UsagePlace usageOf(const RecordingPlace &place) const;
    bool isFollowed(const RecordingPlace &place) const;
    bool isReadable(const RecordingPlace &place) const;
    void noteCounted();
    QVariantList entries() const;
    QList<StationTrouble> readingTroubles() const;

    const VolumeSource &m_volumes;
    StationData &m_data;
    UsageSettings m_settings;

    QList<RecordingGroup> m_groups;
    RecordingPlaces m_places;
    NasVolumes m_nasVolumes;
    NasRecordings m_nasRecordings;
    QHash<qint64, PlaceState> m_states;
    PlaceSums m_sums;
    bool m_areSumsTold = false; // at least once
    QDate m_newestDay; // of them, but for days of the future
    int m_futureDays = 0;
    ClockWatch m_clock;
    std::shared_ptr<ReadingMark> m_mark;
    std::optional<DatabaseError> m_groupsFailure;
    std::optional<DatabaseError> m_indexFailure;
    QStringList m_unreadable; // folders of recordings
    std::chrono::milliseconds m_pause; // before the groups are read again, after a failure
    quint64 m_ticket = 0; // of the last reconcile
    bool m_isReading = false; // all folders, for a client that waits
    bool m_arePlacesNew = false; // the worker was not told of them yet
    quint64 m_givenPlaces = 0; // times that the worker was told of places, or to read some
    bool m_isLookedAt = false; // every place, since the groups were read first
    bool m_isUpToDate = false; // the index has everything that the places that are there have
    QDateTime m_readingSince;
    bool m_areGroupsRead = false; // at least once
    QHash<qint64, QDateTime> m_countedAt; // by place
    bool m_isAwaited = false; // by a client: the event that answers it
    bool m_isOwed = false; // that event, now, whether figures changed or not

    QVariantList m_told;
    ShortGroups m_shortGroups; // of what was told
    QElapsedTimer m_toldAt;
    QTimer m_groupsTimer;
    QTimer m_tellTimer;
    QTimer m_volumeTimer;
    QThread m_thread;
    std::unique_ptr<IndexWorker> m_worker; // lives on m_thread
};
