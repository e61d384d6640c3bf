#pragma once

#include "UsageFigures.h"

/// What the volumes of a station hold, for those who draw it: a map for each volume, as the command
/// "station.listStorage" answers; docs/station-protocol.md tells the keys and how the parts add up.
///
/// The volumes of the machine come first, in the order of @p mounted, then those that are not there and that a
/// recording group or the backup area names, then NAS shares.
/// @param places as StorageUsage::places() tells them
/// @param day that is not over; invalid: nobody knows which days count
/// @param troubles of the volumes and shares: since when they are gone or silent
QVariantList storageOverview(const QList<Volume> &mounted, const QList<UsagePlace> &places, const QDate &day,
                             const QList<StationTrouble> &troubles);
