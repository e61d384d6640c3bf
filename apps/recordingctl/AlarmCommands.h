#pragma once

#include "ExitCode.h"
#include "TextTable.h"

#include <QVariantList>

class CommandRun;

/// Alarms that ended; @p alarms as "station.listPastAlarms" answers.
TextTable pastAlarmTable(const QVariantList &alarms);

ExitCode showPastAlarms(CommandRun &run);
/// Acknowledges an alarm of the station, or withdraws that.
ExitCode acknowledgeAlarm(CommandRun &run);
