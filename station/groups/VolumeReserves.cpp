#include "VolumeReserves.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"

VolumeReserves::VolumeReserves(const PathChecks &paths)
    : m_paths(paths)
{
}

const PathFacts &VolumeReserves::volumeOf(const GroupPath &path)
{
    const QString key = QString::number(static_cast<int>(path.kind)) + path.path;
    auto facts = m_volumes.find(key);
    if (facts == m_volumes.end())
        facts = m_volumes.insert(key, m_paths.volumeOf(path.kind, path.path));
    return *facts;
}

QHash<QString, qint64> VolumeReserves::sums(const QList<RecordingGroup> &groups, const QSet<QString> &spaces)
{
    QHash<QString, qint64> sums;
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths) {
            if (!spaces.contains(m_paths.sharedSpace(path.kind, path.path)))
                continue;
            const PathFacts &facts = volumeOf(path);
            if (facts.returnCode == ReturnCode::Success)
                sums[facts.volume] = saturatedSum(sums.value(facts.volume), path.reservedMegabytes);
        }
    }
    return sums;
}
