#pragma once

#include "UsageSample.h"
#include "usage/UsageFigures.h"

#include <QList>

/// The samples of one moment: the station, each recording group and the backup area, each of @p mounted and each share
/// that a group has a path on. What belongs to no group counts on a volume that is there, and on such a share. Half of
/// a sum is no figure: what needs a figure that is not known is not known.
/// @param entries the usageEntries() of @p places
QList<UsageSample> samplesOf(const QList<UsagePlace> &places, const QVariantList &entries,
                             const QList<Volume> &mounted);
