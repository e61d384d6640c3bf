#pragma once

#include "StationConfig.h"

#include <QList>
#include <QString>

/// One thing that was looked at.
struct CheckResult
{
    bool isSound = false;
    QString text; ///< what was found, and what to do about it where it is not sound
};

/// Whether a station could run on @p dataFolder, as the user of this process: the folder (owner, mode, writable, lock),
/// the database and the key of the stored passwords. Changes nothing there, and works beside a running station. Blocks
/// for as long as the disk takes. Needs the application object.
QList<CheckResult> checkStation(const QString &dataFolder, const StationConfig &config);

/// Prints a line for each of @p results, "ok: ..." or "broken: ...", to standard output.
/// @return the exit code: 0 where all is sound, else 1
int printChecks(const QList<CheckResult> &results);
