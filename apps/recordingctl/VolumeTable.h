#pragma once

#include "TextTable.h"

class QAbstractItemModel;

/// The volume model's rows for an operator: name, path, size, free, how much is used, system, NAS.
TextTable volumeTable(const QAbstractItemModel &volumes);
