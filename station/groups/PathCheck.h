#pragma once

#include "RecordingGroup.h"

/// What there is to know of a place where recordings shall go.
struct PathFacts
{
    QString returnCode; ///< "0": exists and can be written; else a word of StationReturnCode
    QString reason; ///< why it cannot be written, a word of StationReturnCode; empty otherwise
    QString volume; ///< the same for all paths that share their space
    qint64 bytesTotal = 0; ///< what that volume holds
    QString folder; ///< the same for all paths that lead to the same folder, by a link for instance; may be empty
    QString volumeName = {}; ///< what an operator knows the volume by
    qint64 bytesAvailable = 0; ///< what may still be written to that volume
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
    /// The same for all paths that may share their space; told at once, nobody is asked. Different ones never share it.
    virtual QString sharedSpace(const QString &path) const;
    /// The bytes of the files below @p folder, links not followed; 0 where it is missing or they cannot be counted.
    virtual qint64 bytesBelow(const QString &folder) const;
};

/// Who looks at paths of which kind. Without anybody for it, a path is refused with NasServerNotFound. Not owned.
struct PathChecks
{
    const PathCheck *local = nullptr;
    const PathCheck *netHost = nullptr;
    const PathCheck *netDomain = nullptr;

    PathFacts look(PathKind kind, const QString &path) const;
    PathFacts volumeOf(PathKind kind, const QString &path) const;
    QString sharedSpace(PathKind kind, const QString &path) const;
    qint64 bytesBelow(PathKind kind, const QString &folder) const;

private:
    const PathCheck *of(PathKind kind) const;
};
