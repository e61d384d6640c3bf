#include "PathCheck.h"

#include "StationVocabulary.h"

QString PathCheck::sharedSpace(const QString &) const
{
    return {};
}

qint64 PathCheck::bytesBelow(const QString &) const
{
    return 0;
}

PathFacts PathChecks::look(PathKind kind, const QString &path) const
{
    const PathCheck *check = of(kind);
    return check ? check->look(path) : PathFacts{StationReturnCode::NasServerNotFound, {}, {}, 0, {}};
}

PathFacts PathChecks::volumeOf(PathKind kind, const QString &path) const
{
    const PathCheck *check = of(kind);
    return check ? check->volumeOf(path) : PathFacts{StationReturnCode::NasServerNotFound, {}, {}, 0, {}};
}

QString PathChecks::sharedSpace(PathKind kind, const QString &path) const
{
    const PathCheck *check = of(kind);
    return check ? check->sharedSpace(path) : QString();
}

qint64 PathChecks::bytesBelow(PathKind kind, const QString &folder) const
{
    const PathCheck *check = of(kind);
    return check ? check->bytesBelow(folder) : 0;
}

const PathCheck *PathChecks::of(PathKind kind) const
{
    switch (kind) {
    case PathKind::Local:
        return local;
    case PathKind::NetHost:
        return netHost;
    case PathKind::NetDomain:
        return netDomain;
    }
    return nullptr;
}
