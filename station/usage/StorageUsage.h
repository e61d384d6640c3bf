#pragma once

#include "ClockWatch.h"
#include "CommandTable.h"
#include "NasVolumes.h"
#include "ReadingMark.h"
#include "RecordingIndex.h"
#include "RecordingPlaces.h"
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

    /// The bytes of the recordings in the folder @p folder of @p path; none unless they are counted, and the count
    /// follows every change.
    std::optional<qint64> countedBytes(const QString &path, const QString &folder) const;

    /// What keeps recordings from being stored or counted.
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
    void answerReload();
    void tell();
    void tellNow();
    QList<UsagePlace> usagePlaces() const;
    QVariantList entries() const;
    QStringList groupsAt(const QString &path) const;
    QList<StationTrouble> placeTroubles() const;
    QList<StationTrouble> readingTroubles() const;

    const VolumeSource &m_volumes;
    StationData &m_data;
    UsageSettings m_settings;

    QList<RecordingGroup> m_groups;
    RecordingPlaces m_places;
    NasVolumes m_nasVolumes;
    QHash<qint64, PlaceState> m_states;
    PlaceSums m_sums;
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
    quint64 m_givenPlaces = 0; // times that the worker was told of places
    bool m_isUpToDate = false; // the index has everything that the places that are there have
    QDateTime m_readingSince;
    bool m_isAwaited = false; // by a client: the event that answers it
    bool m_isOwed = false; // that event, now, whether figures changed or not

    QVariantList m_told;
    QElapsedTimer m_toldAt;
    QTimer m_groupsTimer;
    QTimer m_tellTimer;
    QTimer m_volumeTimer;
    QThread m_thread;
    std::unique_ptr<IndexWorker> m_worker; // lives on m_thread
};
