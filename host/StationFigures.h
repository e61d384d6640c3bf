#pragma once

#include <QVariant>

class QAbstractItemModel;

/// What the last "VolumeChanged" of a station comes to, for those who look at many stations. Negative: not known.
struct StationFigures
{
    int groups = -1; ///< recording groups; negative: the station has told no figures yet
    int shortGroups = 0; ///< those that will not reach their reserved time
    int missingDays = 0; ///< how many days the worst of them is short
    int unknownGroups = 0; ///< those with a reserved time of which nobody knows whether they will reach it
    double freeBytes = -1; ///< what recording groups can still fill on their volumes together

    bool isTold() const { return groups >= 0; } ///< the station has told figures
    bool operator==(const StationFigures &) const = default; ///< member by member

    /// @param usage the plug-in's model of the station's recording groups
    /// @param volumes the event's data, a list of maps
    static StationFigures of(const QAbstractItemModel &usage, const QVariant &volumes);
};
