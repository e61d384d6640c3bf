#include "NasPaths.h"

#include "LogonPauses.h"
#include "NasAccounts.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "TimedWork.h"

namespace {
PathFacts refused(const QString &returnCode, const QString &reason = {})
{
    PathFacts facts;
    facts.returnCode = returnCode;
    facts.reason = reason;
    return facts;
}

PathFacts spaceAt(SmbClient &client, const SmbPath &place)
{
    const SmbSpace space = client.space(place);
    if (space.returnCode == NasReturnCode::GetNasCapacityFailed)
        return refused(StationReturnCode::DirectoryNotFound);
    SmbPath share = place;
    share.folders.clear();
    return {space.returnCode,    {}, place.shareKey(), space.bytesTotal, place.text().toCaseFolded(), share.text(),
            space.bytesAvailable};
}

PathFacts writableSpaceAt(SmbClient &client, const SmbPath &place)
{
    const QString code = client.writeProbe(place);
    for (const QString &reason : {StationReturnCode::PermissionDenied, StationReturnCode::VolumeReadOnly,
                                  StationReturnCode::VolumeFull, StationReturnCode::CannotCreate}) {
        if (code == reason)
            return refused(StationReturnCode::PathNotWritable, reason);
    }
    return code == ReturnCode::Success ? spaceAt(client, place) : refused(code);
}
} // namespace

NasPaths::NasPaths(PathKind kind, NasAccounts &accounts, TimedWork &work)
    : m_kind(kind)
    , m_accounts(accounts)
    , m_work(work)
{
}

PathFacts NasPaths::look(const QString &path) const
{
    return asked(path, writableSpaceAt);
}

PathFacts NasPaths::volumeOf(const QString &path) const
{
    return asked(path, spaceAt);
}

QString NasPaths::sharedSpace(const QString &path) const
{
    const std::optional<SmbPath> place = SmbPath::parse(path);
    return place ? place->shareKey() : path;
}

PathFacts NasPaths::asked(const QString &path, const Ask &ask) const
{
    constexpr std::chrono::seconds silence(15); // many paths of one edit cost one try
    const std::optional<SmbPath> place = SmbPath::parse(path);
    if (!place || place->share.isEmpty())
        return refused(StationReturnCode::PathTypeRefused);
    const std::optional<SmbLogon> logon = m_accounts.registered(
        *place, m_kind == PathKind::NetHost ? NasAccounts::Account::OfHost : NasAccounts::Account::OfDomain);
    if (!logon)
        return refused(StationReturnCode::NasServerNotFound);
    const QString host = place->hostKey();
    if (!m_silentHosts.value(host, QDeadlineTimer(0)).hasExpired())
        return refused(StationReturnCode::NasServerNotResponding);
    if (m_accounts.pauses().wasRefused(*place, *logon, silence))
        return refused(NasReturnCode::LogonNASServerFaled);
    const auto work = [place = *place, logon = *logon, ask, limit = m_work.limit()] {
        SmbClient client(logon, limit);
        return ask(client, place);
    };
    const PathFacts facts = m_work.await<PathFacts>(host, work, refused(StationReturnCode::NasServerNotResponding));
    m_accounts.pauses().note(*place, *logon, facts.returnCode);
    if (facts.returnCode == StationReturnCode::NasServerNotResponding)
        m_silentHosts.insert(host, QDeadlineTimer(silence));
    return facts;
}
