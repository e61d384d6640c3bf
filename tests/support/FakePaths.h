#pragma once

#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "groups/PathCheck.h"

#include <QHash>
#include <QSet>

/// Places as a test wants them; those it does not name do not exist.
class FakePaths : public PathCheck
{
public:
    /// A folder that can be written, on a volume of @p megabytes.
    void add(const QString &path, const QString &volume, qint64 megabytes, const QString &folder = {})
    {
        const PathFacts facts{ReturnCode::Success, {}, volume, megabytes * 1024 * 1024, folder};
        m_looks.insert(path, facts);
        m_volumes.insert(path, facts);
    }

    /// What look() and volumeOf() tell of @p path from now on.
    void refuse(const QString &path, const QString &returnCode, const QString &reason = {})
    {
        m_looks.insert(path, {returnCode, reason, {}, 0, {}});
        m_volumes.insert(path, {returnCode, reason, {}, 0, {}});
    }

    PathFacts look(const QString &path) const override
    {
        m_looked.append(path);
        return m_looks.value(path, missing());
    }
    PathFacts volumeOf(const QString &path) const override
    {
        m_volumesAsked.insert(path);
        return m_volumes.value(path, missing());
    }
    /// That of a path on the network is its share.
    QString sharedSpace(const QString &path) const override
    {
        return path.startsWith(QStringLiteral("//")) ? path.section(u'/', 0, 3) : QString();
    }

    /// The paths that were looked at, in order.
    const QStringList &looked() const { return m_looked; }
    /// The paths whose volume was asked for.
    const QSet<QString> &volumesAsked() const { return m_volumesAsked; }

private:
    static PathFacts missing() { return {StationReturnCode::DirectoryNotFound, {}, {}, 0, {}}; }

    QHash<QString, PathFacts> m_looks;
    QHash<QString, PathFacts> m_volumes;
    mutable QStringList m_looked;
    mutable QSet<QString> m_volumesAsked;
};
