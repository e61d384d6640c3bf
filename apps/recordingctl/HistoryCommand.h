#pragma once

#include "ExitCode.h"
#include "TextTable.h"

#include <QVariantList>

class CommandRun;

/// What the usage figures of a recording group or volume were.
ExitCode showHistory(CommandRun &run);

/// @p samples, of a group or of a volume, for an operator: what is not known as "unknown".
TextTable groupHistoryTable(const QVariantList &samples);
TextTable volumeHistoryTable(const QVariantList &samples);
