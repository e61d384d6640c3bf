#pragma once

#include "ClientSession.h"

/// The whole tool: reads the command line, starts a session with @p options and carries the command out. Returns the
/// exit code of the process, and does not return at all when a station or a disk hangs: the process ends then.
///
/// Needs no display.
int runTool(int argc, char **argv, ClientSession::Options options = {});
