#pragma once

#include "CommandTable.h"
#include "PlaceDeletion.h"
#include "disk/DiskWork.h"
#include "service/RecordSettings.h"
#include "usage/UnassignedPlace.h"
#include "usage/UsageSettings.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class StationData;
class StorageUsage;
struct DayMoveResult;

/// What can be done with recordings that belong to no recording group: "station.listUnassignedRecordings",
/// "station.assignRecordings", "station.deleteRecordings", "station.cancelDeletion" and the event
/// "station.DeletionProgress", see docs/station-protocol.md. Lives on the station's thread; disks are touched on
/// others.
class RecordingCommands : public QObject
{
    Q_OBJECT
public:
    /// @param data, @param usage must outlive this object
    RecordingCommands(StationData &data, StorageUsage &usage, const UsageSettings &settings, RecordSettings records,
                      QObject *parent = nullptr);
    /// A deletion that goes on stops at its next file, and is told as cut off at the next start.
    ~RecordingCommands() override;

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

signals:
    void eventRaised(const StationEvent &event);

private:
    struct Deletion;

    void listUnassigned(const QVariant &data, const Answer &answer);
    void assign(const std::shared_ptr<Edit> &edit);
    void remove(const std::shared_ptr<Edit> &edit);
    void cancel(const QVariant &data, const Answer &answer);

    void startWork(const std::function<void()> &start);
    std::optional<UnassignedPlace> find(const QString &name, QString *returnCode) const;
    void moved(const std::shared_ptr<Edit> &edit, const UnassignedPlace &place, const QString &groupId,
               const DayMoveResult &result);
    void begin(const std::shared_ptr<Edit> &edit, const UnassignedPlace &place);
    void end(const DeletionResult &result);
    void keepEnd(const DeletionResult &result);
    void tellProgress(const std::optional<DeletionResult> &result);

    StationData &m_data;
    StorageUsage &m_usage;
    QString m_backupFolder;
    RecordSettings m_records;
    DiskWork m_checks; // and moves
    DiskWork m_deletions;
    QString m_busy; // the place that is worked on; empty: none is
    std::unique_ptr<Deletion> m_deletion; // that goes on
    QTimer m_progressTimer;
};
