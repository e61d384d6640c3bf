#pragma once

#include "StationLink.h"

#include <QDateTime>

/// What a link knows of one station.
struct StationPresence
{
    QString relayPath; ///< under which it is reached; empty where a link has one station alone, and that has none
    QString name; ///< as it calls itself; empty: not told yet
    QString address; ///< the name of the machine that it runs on; empty: not told
    QString version; ///< of its program; empty: not told
    StationState state; ///< how it can be reached
    QDateTime since = {}; ///< in UTC; since when it has been in that state; invalid: unknown
    QDateTime figuresAt = {}; ///< in UTC; when it told its last "VolumeChanged"; invalid: not heard, or now

    bool operator==(const StationPresence &) const = default; ///< member by member
};
