#pragma once

#include "ExitCode.h"
#include "TextTable.h"

#include <QVariantList>

class CommandRun;

/// @p entries, maps as in the answer of "station.listActivity".
TextTable activityTable(const QVariantList &entries);

/// Who edited what, the newest first.
ExitCode showActivity(CommandRun &run);
