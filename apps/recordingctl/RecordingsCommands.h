#pragma once

#include "ExitCode.h"
#include "TextTable.h"

#include <QVariantList>

class CommandRun;

// Recordings that belong to no recording group.

/// Each place with what it holds; @p places as "station.listUnassignedRecordings" answers.
TextTable unassignedTable(const QVariantList &places);

ExitCode showUnassigned(CommandRun &run);
ExitCode assignRecordings(CommandRun &run);
/// Asks for the name of the folder where it was not given, and waits for the end of the deletion; interrupted, it has
/// the station stop it.
ExitCode deleteRecordings(CommandRun &run);
