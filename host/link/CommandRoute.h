#pragma once

#include "StationMessage.h"

/// The relay path of the station that @p command is for: @p relayPath where it is not empty, else the one that the data
/// carries. The commands for NAS servers and the one for the tree name their station so. Empty: the directly connected
/// one.
QString stationOf(const QString &relayPath, const StationCommand &command);
