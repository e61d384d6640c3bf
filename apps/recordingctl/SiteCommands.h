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

/// The stations of a site.
struct SiteList
{
    QList<ListedStation> stations; ///< by id in natural order
    QString whyIncomplete; ///< why there may be more, a sentence; empty where these are all
};

/// Waits until the client has heard of the site's stations, and then until nothing is new for a moment. Not for a
/// broker that cannot be reached.
/// @param withFigures wait for what they tell of themselves, too
SiteList awaitStations(CommandRun &run, bool withFigures);

/// In a word, as "up"; why it is not, in @p since and the reason.
QString stateWord(const StationState &state);

/// Of when the figures of a station are that is not up; invalid: they are as of now, or nobody knows.
QDateTime figuresTime(const StationDirectory::Record &record);

TextTable stationTable(const QList<ListedStation> &stations);
QJsonObject stationJson(const ListedStation &station);

// "stations" and "usage --all".
ExitCode showStations(CommandRun &run);
ExitCode showUsageOfAll(CommandRun &run);
