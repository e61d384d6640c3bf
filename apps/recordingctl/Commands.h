#pragma once

#include "CommandLine.h"
#include "ExitCode.h"

class ClientSession;

/// Carries out what @p line asks for with @p session, which was started just now; results go to standard output, errors
/// to standard error.
ExitCode runCommand(ClientSession &session, const CommandLine &line);

/// The names that runCommand() knows, in the order of the help.
QStringList runnableCommands();

/// How long a station may take when --timeout does not say.
constexpr std::chrono::seconds defaultTimeout{30};
