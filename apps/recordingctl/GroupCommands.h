#pragma once

#include "ExitCode.h"

class CommandRun;

/// What the tool does with recording groups; each prints what came of it. "groups", "group-add" and so on.
ExitCode showTree(CommandRun &run);
ExitCode showGroups(CommandRun &run);
ExitCode showMembers(CommandRun &run);
ExitCode addGroup(CommandRun &run);
ExitCode updateGroup(CommandRun &run);
ExitCode removeGroups(CommandRun &run);
ExitCode addGroupPaths(CommandRun &run);
ExitCode setGroupPaths(CommandRun &run);
ExitCode removeGroupPaths(CommandRun &run);
