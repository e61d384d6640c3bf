#pragma once

#include "ExitCode.h"
#include "TextTable.h"

class CommandRun;
class QAbstractItemModel;

/// What the tool says of storage usage and of the alarms that come of it.
ExitCode showUsage(CommandRun &run);
ExitCode showAlarms(CommandRun &run);

/// The storage-usage model for an operator: days and usage, what is not known as "unknown".
TextTable usageTable(const QAbstractItemModel &usage);
/// The status monitor's alarms for an operator.
TextTable alarmTable(const QAbstractItemModel &alarms);
