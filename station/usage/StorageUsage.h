#pragma once

#include "CommandTable.h"
#include "NasVolumes.h"
#include "RecordingIndex.h"
#include "RecordingPlaces.h"
#include "UsageSettings.h"

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

signals:
    void eventRaised(const StationEvent &event);

private:
    void reload(const QVariant &data, const Answer &answer);
    void followGroups();
    void readGroups();
    void startWorker();
    void readThrough();
    void look();
    void giveToWorker();
    void answerReload();
    void tell();
    void tellNow();
    QList<UsagePlace> usagePlaces() const;
    QVariantList entries() const;

    const VolumeSource &m_volumes;
    StationData &m_data;
    UsageSettings m_settings;

    QList<RecordingGroup> m_groups;
    std::optional<RecordingPlaces> m_places;
    NasVolumes m_nasVolumes;
    QHash<qint64, PlaceState> m_states;
    PlaceSums m_sums;
    quint64 m_ticket = 0; // of the last reconcile
    bool m_isReading = false; // all folders, for a client that waits
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
