#pragma once

#include "CommandTable.h"
#include "StationData.h"
#include "StationSettings.h"
#include "TimedWork.h"
#include "VolumeCommands.h"
#include "alarms/StationAlarms.h"
#include "groups/CameraCommands.h"
#include "groups/GroupCommands.h"
#include "groups/LocalPaths.h"
#include "history/UsageHistory.h"
#include "nas/NasAccounts.h"
#include "nas/NasPaths.h"
#include "nas/NasRegistry.h"
#include "nas/NasShares.h"
#include "recordings/RecordingCommands.h"
#include "samplesite/SampleSite.h"
#include "service/ActivityLog.h"
#include "service/Edits.h"
#include "service/RecordPruning.h"
#include "usage/StorageCommands.h"
#include "usage/StorageUsage.h"

#include <QObject>
#include <QSet>

#include <memory>

/// A recording server: does what commands ask for on the machine that it runs on. Lives on one thread of its own with
/// an event loop and may block there.
class Station : public QObject
{
    Q_OBJECT
public:
    explicit Station(StationSettings settings = {}, QObject *parent = nullptr);
    ~Station() override;

    /// Carries @p command out and gives every part of the reply to @p answer, on this thread, the last with
    /// StationReply::finish set. That may be after the return, and is never after the station's end. A command that the
    /// station does not know is answered with a failure.
    void handle(const StationCommand &command, const Answer &answer);

    /// The commands that it carries out as edits: each once, however often it is delivered.
    QSet<QString> editCommands() const;

    /// To be called when recording groups were edited by others than this station's commands.
    void recordingGroupsChanged();

signals:
    void eventRaised(const StationEvent &event);

private:
    void carryOut(const CommandHandler &handler, const QVariant &data, const Answer &part);
    void takeFailure(const DatabaseError &error);
    void takeActivity(const Activity &activity);

    std::unique_ptr<VolumeSource> m_volumes;
    StationData m_data;
    ActivityLog m_activity;
    Edits m_edits; // outlives whatever edits
    RecordPruning m_pruning;
    LocalPaths m_localPaths;
    VolumeCommands m_volumeCommands;
    NasAccounts m_nasAccounts;
    TimedWork m_nasWork;
    NasPaths m_hostPaths;
    NasPaths m_domainPaths;
    StorageUsage m_usage;
    UsageHistory m_history;
    GroupCommands m_groupCommands;
    CameraCommands m_cameraCommands;
    NasRegistry m_nasRegistry;
    NasShares m_nasShares;
    SampleSite m_sampleSite;
    StationAlarms m_alarms;
    StorageCommands m_storageCommands;
    RecordingCommands m_recordingCommands;
    CommandTable m_commands;
};
