#pragma once

#include "alarms/StationTrouble.h"

#include <QList>
#include <QMap>
#include <QVariantList>

/// The recording groups that will not reach their reserved time, by the figures that clients were told last: an alarm
/// for each, with the same rule as the clients'. A figure that is not known changes nothing.
class ShortGroups
{
public:
    /// @param entries the data of "VolumeChanged"; groups that are not in it any more are forgotten
    void judge(const QVariantList &entries);

    QList<StationTrouble> troubles() const { return m_troubles.values(); }

private:
    QMap<QString, StationTrouble> m_troubles; // by the group's id
};
