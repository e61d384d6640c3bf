#pragma once

#include "ExitCode.h"
#include "TextTable.h"

#include <QString>
#include <QVariantMap>

class CommandRun;

/// What the volumes of the station hold. Refused where one is gone or does not answer; NoAnswer where something is not
/// known.
ExitCode showStorage(CommandRun &run);

/// The line above a volume's table: its name, path, kind, and how it stands since when. @p volume as in the answer of
/// "station.listStorage".
QString volumeHeading(const QVariantMap &volume);
/// Its parts, which add up to its size, in the last row.
TextTable volumeParts(const QVariantMap &volume);
