#pragma once

#include <QVariant>

/// The parts of a volume's size, for a bar and its legend: maps with
///
/// | Key | Type | Meaning |
/// |---|---|---|
/// | "kind" | string | "group", "moreGroups", "backup", "withoutGroup", "other", "unknown", "root" or "free" |
/// | "id", "name" | string | of the recording group; else empty |
/// | "count" | int | the recording groups in "moreGroups"; else 0 |
/// | "bytes" | double | what it takes of the size, never negative; all parts together are the volume's size |
/// | "told" | double | what the station tells: more than "bytes" for recordings that take less space than their size |
///
/// The groups stand first, @p groupId at their beginning and the others by size; beyond a few they are one part. Parts
/// of nothing are left out. The list is empty where the size is not known.
/// @param volume as the command "station.listStorage" tells it
QVariantList volumeParts(const QVariantMap &volume, const QString &groupId = {});
