#pragma once

#include <QString>

/// The URL of the station that a program was asked to connect to: @p connect as it stands, else @p dataFolder as
/// "local:DIR", else $RECORDING_CONNECT, else this user's own station, "local:".
QString stationUrl(const QString &connect, const QString &dataFolder);
