#pragma once

#include "ExitCode.h"
#include "TextTable.h"

#include <QString>
#include <QVariant>

class CommandRun;

/// Asks the station what @p invokable would do with @p arguments and prints it; changes nothing. Refused where the edit
/// would be.
ExitCode showForecast(CommandRun &run, const QString &invokable, const QVariantList &arguments);

/// The groups of @p forecast, the answer of "station.forecast": days now and then.
TextTable forecastGroupTable(const QVariantMap &forecast);
/// Its volumes: reserves now and then.
TextTable forecastVolumeTable(const QVariantMap &forecast);
