#pragma once

#include "CommandLine.h"
#include "ExitCode.h"

class ClientSession;

/// Prints the events and the signals of @p session as they come, until line.count lines were printed, line.timeout
/// passed, or the process is interrupted (SIGINT, SIGTERM). ExitCode::NoAnswer when the time passed before the count
/// was reached.
ExitCode watch(ClientSession &session, const CommandLine &line);
