#pragma once

#include "ExitCode.h"

class CommandRun;

/// Prints the events and the signals of the session as they come, and what they change in the storage usage and in the
/// alarms, until line().count lines were printed, line().timeout passed, or the process is interrupted (SIGINT,
/// SIGTERM). ExitCode::NoAnswer when the time passed before the count was reached.
ExitCode watch(CommandRun &run);
