#pragma once

#include "groups/PathCheck.h"
#include "smb/SmbClient.h"

#include <QDeadlineTimer>
#include <QHash>

class NasAccounts;
class TimedWork;

/// Folders on registered NAS servers, as places for recordings. The volume of a path is its share.
///
/// A path is refused with PathTypeRefused, NasServerNotFound, NasServerNotResponding, LogonNASServerFaled,
/// DirectoryNotFound, NotADirectory or PathNotWritable, in this order. The reason of the last is PermissionDenied,
/// VolumeReadOnly, VolumeFull or CannotCreate. Throws DatabaseError and VaultError.
///
/// A call takes no longer than the limit of the work. A server that did not respond, and an account that was refused,
/// are not asked again for a while, so that many paths on it do not take many times as long, nor lock the account.
class NasPaths : public PathCheck
{
public:
    /// @param kind NetHost prefers users with an account of the server, NetDomain those of a domain
    /// @param accounts and @p work must outlive this object
    NasPaths(PathKind kind, NasAccounts &accounts, TimedWork &work);

    PathFacts look(const QString &path) const override;
    PathFacts volumeOf(const QString &path) const override;
    QString sharedSpace(const QString &path) const override;

private:
    using Ask = std::function<PathFacts(SmbClient &client, const SmbPath &place)>;
    PathFacts asked(const QString &path, const Ask &ask) const;

    PathKind m_kind;
    NasAccounts &m_accounts;
    TimedWork &m_work;
    mutable QHash<QString, QDeadlineTimer> m_silentHosts;
};
