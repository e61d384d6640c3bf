#pragma once

#include "RecordingGroup.h"

/// @p path as the station keeps it, so that the same folder is written in one way: a slash for every backslash, one
/// slash where several follow each other, none at the end. The two slashes that a path on the network begins with stay,
/// "smb:" before them goes.
QString keptPath(const QString &path);

/// "0" when @p path, as keptPath() writes it, is written as paths of @p kind are; else a word of StationReturnCode.
/// Local paths begin with one slash, those on the network with //host/share. No name in them is "." or "..".
QString checkPathText(const QString &path, PathKind kind);
