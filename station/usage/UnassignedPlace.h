#pragma once

#include "RecordingPlaces.h"

/// A place that no recording group names, and what is known of the recordings in it.
struct UnassignedPlace
{
    RecordingPlace place;
    PlaceState state; ///< as it was looked at last; nothing is known of one on a NAS server
    std::optional<DaySums> days; ///< none: they are not known
    bool isCounted = false; ///< the days are as the folders are, and follow their changes
    QDateTime countedAt; ///< as in UsagePlace
};
