#pragma once

#include "ExitCode.h"

class CommandRun;

/// What the tool does with the station's own commands: its cameras, and a site to look at.
ExitCode showCameras(CommandRun &run);
ExitCode addCamera(CommandRun &run);
ExitCode removeCamera(CommandRun &run);
ExitCode makeSampleSite(CommandRun &run);
