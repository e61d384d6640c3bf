#pragma once

#include "CommandRun.h"
#include "TextTable.h"

class QAbstractItemModel;

/// What the tool says of storage usage and of the alarms that come of it.
ExitCode showUsage(CommandRun &run);
ExitCode showAlarms(CommandRun &run);

/// Has the station look at its storage and waits until it knows its figures, or says nothing more for long.
/// @param pending becomes what it does not know then, as in the answer of "station.listAlarms"
CallOutcome awaitFigures(CommandRun &run, QVariantList *pending);
/// Tells of each of @p pending, in that form, that it is not known and since when it was asked.
void reportPending(CommandRun &run, const QVariantList &pending);

/// The rows of the model by their groups' names, as people order them: "Cam 9" before "Cam 10".
QList<int> usageRows(const QAbstractItemModel &usage);
/// Of usageTable(), and the cells below them for a row of the model.
QStringList usageHeaders();
QStringList usageCells(const QAbstractItemModel &usage, int row);
/// The storage-usage model for an operator: days and usage, what is not known as "unknown".
TextTable usageTable(const QAbstractItemModel &usage);
/// The status monitor's alarms for an operator.
TextTable alarmTable(const QAbstractItemModel &alarms);
