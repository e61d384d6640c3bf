#pragma once

#include "TextTable.h"

class QAbstractItemModel;

/// The volume model's rows for an operator: name, path, size, free, how much is used, system, NAS.
TextTable volumeTable(const QAbstractItemModel &volumes);

/// The same of a recording group's volumes. How much is used is not told: what is free there is the group's share of
/// it, and says nothing of the volume.
TextTable groupVolumeTable(const QAbstractItemModel &volumes);
