#pragma once

#include "DetachedStart.h"
#include "StationSettings.h"
#include "broker/BrokerSettings.h"
#include "service/ServiceSettings.h"

#include <chrono>
#include <functional>
#include <optional>

/// How one run of the program goes.
struct ServiceOptions
{
    std::function<StationSettings()> stationSettings; ///< made anew for each station; dataFolder has to be set
    ServiceSettings service;
    std::optional<BrokerSettings> broker; ///< none: it serves this machine alone
    std::optional<std::chrono::milliseconds> linger; ///< how long it stays when no client is left; none: for ever
    /// Asked for other settings on SIGHUP; none: they stay.
    std::function<std::optional<ServiceSettings>()> readAgain;
};

/// Serves the data folder until a signal ends it, or until it has been without a client for long enough. Needs the
/// application object. One that lingers leaves the folder to a station that serves it already, any other one fails
/// then.
/// @param reportStart called once, when clients are taken, or with what keeps the station from it
/// @return the exit code: 0, or 1 when the station could not start
int runService(const ServiceOptions &options, const ReportStart &reportStart);
