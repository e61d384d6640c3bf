#pragma once

#include "ServiceRun.h"
#include "StartOptions.h"
#include "StationConfig.h"

/// The configuration of a station that runs: that of its start, and what a changed file makes of it.
class ConfigReload
{
public:
    /// @param start what the command line says, the file's name among it
    /// @param config as read from the file at the start
    ConfigReload(StartOptions start, const StationConfig &config);

    /// Reads the file again and writes into the log what is taken and what waits for the next start. None, and a line
    /// in the log, where the file has an error: nothing changes then.
    std::optional<ServiceSettings> readAgain();

private:
    StartOptions m_start;
    StationConfig m_started;
    StationConfig m_current; // as of the last reading
};

/// Puts what the command line says in the place of what the configuration says.
void addChosen(StationConfig &config, const StartOptions &start);

/// How clients behind a broker are served with @p config; none where it names no broker. @p error is empty, or says
/// what is wrong.
std::optional<BrokerSettings> brokerSettings(const StationConfig &config, QString *error);

/// How clients are served with @p config.
ServiceSettings serviceSettings(const StationConfig &config);

/// What the station is made with. @p dataFolder as StationSettings::dataFolder.
StationSettings stationSettings(const StationConfig &config, const QString &dataFolder);
