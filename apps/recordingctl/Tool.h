#pragma once

#include "ClientSession.h"

/// The whole tool: reads the command line, starts a session with @p options and carries the command out. Returns the
/// exit code of the process, and does not return at all when the station hangs.
///
/// Needs no display.
int runTool(int argc, char **argv, ClientSession::Options options = {});
