#include "NasRegistry.h"

#include "LogonPauses.h"
#include "NasAccounts.h"
#include "PasswordVault.h"
#include "RequestMap.h"
#include "StationProtocol.h"
#include "TimedWork.h"
#include "store/Database.h"

#include <QUuid>

namespace {
SmbLogon logonOf(const RequestMap &request)
{
    return {request.string(StationKey::logonDomain), request.string(StationKey::userName),
            request.string(StationKey::password)};
}

/// Whether @p host is another one than that of @p stored; false where it is none at all.
bool isMoved(const NasServer &stored, const QString &host)
{
    const std::optional<SmbPath> before = SmbPath::parseHost(stored.host);
    const std::optional<SmbPath> now = SmbPath::parseHost(host);
    return now && !(before && before->isOnHostOf(*now));
}
} // namespace

NasRegistry::NasRegistry(NasAccounts &accounts, TimedWork &work, const QString &relayPath)
    : m_accounts(accounts)
    , m_work(work)
    , m_relayPath(relayPath)
{
}

void NasRegistry::enterInto(CommandTable &table)
{
    const auto enter = [this, &table](const QString &name, auto member) {
        table.insert(name,
                     [this, member](const QVariant &data, const Answer &answer) { (this->*member)(data, answer); });
    };
    enter(StationCommandName::GetNasServers, &NasRegistry::getNasServers);
    enter(StationCommandName::AddNasServer, &NasRegistry::addNasServer);
    enter(StationCommandName::UpdateNASServer, &NasRegistry::updateNasServer);
    enter(StationCommandName::RemoveNASServer, &NasRegistry::removeNasServer);
}

void NasRegistry::getNasServers(const QVariant &data, const Answer &answer)
{
    if (data.metaType() != QMetaType::fromType<QString>())
        throw BadRequest(QStringLiteral("a relay path was expected"));
    if (!isMeant(data.toString(), m_relayPath, answer))
        return;
    QVariantList list;
    const QList<NasServer> servers = m_accounts.store().servers();
    for (const NasServer &server : servers) {
        list.append(QVariantMap{
            {StationKey::id, server.id},
            {StationKey::host, server.host},
            {StationKey::logonDomain, server.logonDomain},
            {StationKey::userName, server.userName},
            {StationKey::password, m_accounts.token(server.id)},
        });
    }
    answer(lastPart(StationReturnCode::Success, list));
}

void NasRegistry::addNasServer(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const SmbLogon logon = logonOf(request);
    const NasServer server{
        QUuid::createUuid().toString(), request.string(StationKey::host), logon.domain, logon.userName, {}};
    if (!isMeant(request.string(StationKey::relayPath), m_relayPath, answer))
        return;
    storeAfterLogon(StationCommandName::AddNasServer, server, logon, answer, [this, server, logon] {
        NasServer added = server;
        m_accounts.checkKey();
        added.sealedPassword = m_accounts.vault().encrypted(logon.password);
        m_accounts.store().insert(added);
        return lastPart(StationReturnCode::Success, added.id);
    });
}

void NasRegistry::updateNasServer(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const SmbLogon given = logonOf(request);
    const NasServer server{
        request.string(StationKey::id), request.string(StationKey::host), given.domain, given.userName, {}};
    if (!isMeant(request.string(StationKey::relayPath), m_relayPath, answer))
        return;
    const std::optional<NasServer> stored = m_accounts.store().server(server.id);
    if (!stored)
        return answer(lastPart(StationReturnCode::NasServerNotFound));
    if (isMoved(*stored, server.host) && PasswordVault::looksLikeToken(given.password))
        return answer(lastPart(StationReturnCode::NasPasswordNeeded));
    const SmbLogon logon = m_accounts.resolved(given, *stored);
    storeAfterLogon(StationCommandName::UpdateNASServer, server, logon, answer, [this, server, logon] {
        NasServer updated = server;
        if (!m_accounts.store().server(updated.id)) // removed while the server was asked
            return lastPart(StationReturnCode::NasServerNotFound);
        m_accounts.checkKey(updated.id);
        updated.sealedPassword = m_accounts.vault().encrypted(logon.password);
        m_accounts.store().replace(updated);
        return lastPart(StationReturnCode::Success);
    });
}

void NasRegistry::removeNasServer(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const QString id = request.string(StationKey::id);
    if (!isMeant(request.string(StationKey::relayPath), m_relayPath, answer))
        return;
    answer(lastPart(m_accounts.store().remove(id) ? StationReturnCode::Success : StationReturnCode::NasServerNotFound));
}

/// Logs on as @p logon to the host of @p server, and then answers what @p store does in a transaction. Refuses before
/// the server is bothered when @p server could not be stored anyway.
void NasRegistry::storeAfterLogon(const QString &command, const NasServer &server, const SmbLogon &logon,
                                  const Answer &answer, const Store &store)
{
    const std::optional<SmbPath> host = SmbPath::parseHost(server.host);
    if (!host)
        return answer(lastPart(StationReturnCode::NasHostRefused));
    if (m_accounts.store().isTaken(server.host, server.userName, server.id))
        return answer(lastPart(StationReturnCode::NASServerExist));
    m_accounts.checkKey(server.id);
    const auto logOn = [host = *host, logon, limit = m_work.limit()] { return SmbClient(logon, limit).logOn(host); };
    const auto done = [this, command, server, host = *host, logon, answer, store](const QString &returnCode) {
        answerFailures(command, answer, [&] {
            m_accounts.pauses().note(host, logon, returnCode);
            if (returnCode != StationReturnCode::Success)
                return answer(lastPart(returnCode));
            Transaction transaction(m_accounts.database());
            if (m_accounts.store().isTaken(server.host, server.userName, server.id)) // stored in the meantime
                return answer(lastPart(StationReturnCode::NASServerExist));
            const StationReply reply = store();
            transaction.commit();
            answer(reply);
        });
    };
    m_work.run<QString>(host->hostKey(), logOn, StationReturnCode::NasServerNotResponding, done);
}
