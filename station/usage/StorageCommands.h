#pragma once

#include "CommandTable.h"
#include "alarms/StationTrouble.h"
#include "groups/PathCheck.h"

#include <QList>

#include <functional>

class StationData;
class StorageUsage;
class VolumeSource;

/// The commands that look at storage and change nothing: "station.listStorage", what the volumes hold, and
/// "station.forecast", what an edit of recording groups would do.
class StorageCommands
{
public:
    /// All but @p troubles must outlive this object, and so must those in @p paths.
    /// @param troubles of the station at the moment
    StorageCommands(const VolumeSource &volumes, StationData &data, StorageUsage &usage, const PathChecks &paths,
                    std::function<QList<StationTrouble>()> troubles);

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    void listStorage(const QVariant &data, const Answer &answer);
    void forecast(const QVariant &data, const Answer &answer);

    const VolumeSource &m_volumes;
    StationData &m_data;
    StorageUsage &m_usage;
    PathChecks m_paths;
    std::function<QList<StationTrouble>()> m_troubles;
};
