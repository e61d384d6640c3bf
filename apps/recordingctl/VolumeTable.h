#pragma once

#include "TextTable.h"

class QAbstractItemModel;

/// The volume model for an operator: sizes with their units, the used share in percent, marks for system and NAS.
TextTable volumeTable(const QAbstractItemModel &volumes);

/// A size of @p kilobytes with two decimals in the largest unit up to TB that leaves at least 1, as in "1.50 GB".
QString sizeText(qlonglong kilobytes);
