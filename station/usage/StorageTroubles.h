#pragma once

#include "RecordingPlaces.h"
#include "alarms/StationTrouble.h"
#include "groups/RecordingGroup.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QStringList>

/// What the station says of storage that is in trouble, in words for operators.

/// One for each volume, or folder, on which groups and the backup area cannot record; names the groups on it.
/// @param states of the places that were looked at, by their number
QList<StationTrouble> placeTroubles(const QList<RecordingPlace> &places, const QHash<qint64, PlaceState> &states,
                                    const QList<RecordingGroup> &groups);
/// One for each group that has cameras and nowhere to record them.
QList<StationTrouble> groupTroubles(const QList<RecordingGroup> &groups);
/// One for each of the folders, of which recordings cannot be read.
QList<StationTrouble> unreadableTroubles(const QStringList &folders);
/// The disk of the recordings in @p path has not answered @p since then.
StationTrouble hangingTrouble(const QString &path, const QDateTime &since);
/// Recordings are being counted.
/// @param path those in it at the moment; empty: nobody knows
StationTrouble countingTrouble(const QString &path, const QDateTime &since);
/// There are recordings of @p days that are still to come; at least one.
StationTrouble futureTrouble(int days);
