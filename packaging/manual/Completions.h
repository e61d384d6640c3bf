#pragma once

#include <QString>

struct ProgramHelp;

/// Completions of @p help for a shell: commands, the options of each command, and files behind options and commands
/// that take one. What only the station knows is not completed.
QString bashCompletion(const ProgramHelp &help);
QString zshCompletion(const ProgramHelp &help);
QString fishCompletion(const ProgramHelp &help);
