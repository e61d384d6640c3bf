#pragma once

#include "RecordingGroup.h"

/// What there is to know of a place where recordings shall go.
struct PathFacts
{
    QString returnCode; ///< "0": exists and can be written; else a word of StationReturnCode
    QString reason; ///< why it cannot be written, a word of StationReturnCode; empty otherwise
    QString volume; ///< the same for all paths that share their space
    qint64 bytesTotal = 0; ///< what that volume holds
};

/// Looks at places on storage of one kind. Asked on the station's thread; may block there, for a bounded time.
class PathCheck
{
public:
    virtual ~PathCheck() = default;

    /// Writes and removes a small file in @p path: permission bits tell too little.
    /// @param path of a kind that this object is for, as RecordingGroup's paths are written
    virtual PathFacts look(const QString &path) const = 0;
    /// Only the volume of @p path and its size, without touching it; returnCode "0" where they are known.
    virtual PathFacts volumeOf(const QString &path) const = 0;
};
