#pragma once

#include "CommandTable.h"
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
    /// @param volumes, @param data must outlive this object; nothing happens before the thread's event loop turns
    StorageUsage(const VolumeSource &volumes, StationData &data, UsageSettings settings, QObject *parent = nullptr);
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
    void tell();
    void tellNow();
    QList<UsagePlace> usagePlaces() const;
    QVariantList entries() const;

    const VolumeSource &m_volumes;
    StationData &m_data;
    UsageSettings m_settings;

    QList<RecordingGroup> m_groups;
    std::optional<RecordingPlaces> m_places;
    QHash<qint64, PlaceState> m_states;
    PlaceSums m_sums;
    quint64 m_ticket = 0; // of the last reconcile
    bool m_isOwed = false; // an event, whether figures changed or not

    QVariantList m_told;
    QElapsedTimer m_toldAt;
    QTimer m_groupsTimer;
    QTimer m_tellTimer;
    QTimer m_volumeTimer;
    QThread m_thread;
    std::unique_ptr<IndexWorker> m_worker; // lives on m_thread
};
