#pragma once

#include "PathCheck.h"

#include <QHash>
#include <QList>
#include <QSet>

/// What recording groups reserve on the volumes that their paths lie on, as of one moment: a path is asked about once.
class VolumeReserves
{
public:
    /// @param paths must outlive this object
    explicit VolumeReserves(const PathChecks &paths);

    /// Good until the next call.
    const PathFacts &volumeOf(const GroupPath &path);

    /// The MB that @p groups reserve together, by volume. Only the paths that share one of @p spaces
    /// (PathChecks::sharedSpace()) are asked about, for a server may be silent; one whose volume is gone does not
    /// count.
    QHash<QString, qint64> sums(const QList<RecordingGroup> &groups, const QSet<QString> &spaces);

private:
    const PathChecks &m_paths;
    QHash<QString, PathFacts> m_volumes; // by kind and path: many groups may share one
};
