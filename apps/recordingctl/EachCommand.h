#pragma once

#include "ExitCode.h"

class CommandRun;

/// "each PATTERN -- COMMAND...": the same command for all stations that fit, several at a time, each in a process of
/// its own. SIGINT and SIGTERM let those end that were begun, and begin no more.
ExitCode runForEach(CommandRun &run);
