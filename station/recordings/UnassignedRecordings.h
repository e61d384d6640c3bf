#pragma once

#include "DeletionStore.h"
#include "usage/UnassignedPlace.h"

#include <QStringList>
#include <QVariantMap>

#include <optional>

/// @p place as "station.listUnassignedRecordings" tells it, see docs/station-protocol.md.
/// @param cameras names of the folders in it that the index has recordings of
/// @param deletion the last one that was begun there
/// @param isRunning this station carries it out at the moment
QVariantMap unassignedMap(const UnassignedPlace &place, const QStringList &cameras,
                          const std::optional<KeptDeletion> &deletion, bool isRunning);
