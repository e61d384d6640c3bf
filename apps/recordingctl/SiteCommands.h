#pragma once

#include "ExitCode.h"
#include "StationDirectory.h"
#include "TextTable.h"

#include <QJsonObject>
#include <QList>

class CommandRun;

/// A station and its relay path.
struct ListedStation
{
    QString id;
    StationDirectory::Record record;

    QString name() const { return record.presence.name; }
    QString shownId() const { return id.isEmpty() ? QStringLiteral("-") : id; } ///< one alone may have none
};

/// Waits until the client has heard of the site's stations: nothing new for a moment.
/// @param withFigures wait for what they tell of themselves, too
/// @return them, by id in natural order
QList<ListedStation> awaitStations(CommandRun &run, bool withFigures);

/// In a word, as "up"; why it is not, in @p since and the reason.
QString stateWord(const StationState &state);

/// Of when the figures of a station are that is not up; invalid: they are as of now, or nobody knows.
QDateTime figuresTime(const StationDirectory::Record &record);

TextTable stationTable(const QList<ListedStation> &stations);
QJsonObject stationJson(const ListedStation &station);

// "stations" and "usage --all".
ExitCode showStations(CommandRun &run);
ExitCode showUsageOfAll(CommandRun &run);
