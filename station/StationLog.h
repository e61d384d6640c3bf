#pragma once

#include <QLoggingCategory>

/// What the station has to say to those who run it: the category "recording.station". Never a password.
Q_DECLARE_LOGGING_CATEGORY(stationLog)

/// From now on each line of the station's log is written as printable() has it: names of files, cameras and servers are
/// others' texts, and none of them may write a line of its own or steer a terminal. For a program's main().
void keepStationLogPrintable();
