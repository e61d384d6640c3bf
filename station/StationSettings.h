#pragma once

#include "VolumeSource.h"
#include "service/RecordSettings.h"
#include "usage/UsageSettings.h"

#include <QString>

#include <chrono>
#include <memory>

/// What tells one station from another.
struct StationSettings
{
    /// The folder of everything that the station must not forget, made when it is missing. Empty:
    /// defaultStationFolder().
    QString dataFolder;
    /// Under which relay path clients know the station; empty where it is connected directly.
    QString relayPath;
    /// Null: the storage volumes mounted on this machine.
    std::unique_ptr<VolumeSource> volumes;
    /// How long a NAS server may take for what one command needs of it.
    std::chrono::milliseconds nasTimeLimit = std::chrono::seconds(10);
    UsageSettings usage = {};
    /// Where the key of the stored passwords lies; empty: see KeyFile. Elsewhere than in the data folder, a copy of
    /// that gives no password away.
    QString keyFile = {};
    RecordSettings records = {};
};
