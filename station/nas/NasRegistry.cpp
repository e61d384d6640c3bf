#include "NasRegistry.h"

#include "LogonPauses.h"
#include "NasAccounts.h"
#include "PasswordVault.h"
#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "TimedWork.h"
#include "service/Edit.h"
#include "store/Database.h"

#include <QUuid>

namespace {
SmbLogon logonOf(const RequestMap &request)
{
    return {request.string(FieldKey::logonDomain), request.string(FieldKey::userName),
            request.string(FieldKey::password)};
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
    table.insert(ServerCommand::GetNasServers,
                 [this](const QVariant &data, const Answer &answer) { getNasServers(data, answer); });
    const auto enter = [this, &table](const QString &name, auto member) {
        table.insert(name, [this, member](const std::shared_ptr<Edit> &edit) { (this->*member)(edit); });
    };
    enter(ServerCommand::AddNasServer, &NasRegistry::addNasServer);
    enter(ServerCommand::UpdateNASServer, &NasRegistry::updateNasServer);
    enter(ServerCommand::RemoveNASServer, &NasRegistry::removeNasServer);
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
            {FieldKey::host, server.host},
            {FieldKey::logonDomain, server.logonDomain},
            {FieldKey::userName, server.userName},
            {FieldKey::password, m_accounts.token(server.id)},
        });
    }
    answer(lastPart(ReturnCode::Success, list));
}

void NasRegistry::addNasServer(const std::shared_ptr<Edit> &edit)
{
    const RequestMap request(edit->data());
    const SmbLogon logon = logonOf(request);
    const NasServer server{
        QUuid::createUuid().toString(), request.string(FieldKey::host), logon.domain, logon.userName, {}};
    edit->setSubject({{}, {}, server.host});
    if (!isAddressed(request, *edit))
        return;
    storeAfterLogon(edit, server, logon, [this, server, logon] {
        NasServer added = server;
        m_accounts.checkKey();
        added.sealedPassword = m_accounts.vault().encrypted(logon.password);
        m_accounts.store().insert(added);
        return lastPart(ReturnCode::Success, added.id);
    });
}

void NasRegistry::updateNasServer(const std::shared_ptr<Edit> &edit)
{
    const RequestMap request(edit->data());
    const SmbLogon given = logonOf(request);
    const NasServer server{
        request.string(StationKey::id), request.string(FieldKey::host), given.domain, given.userName, {}};
    edit->setSubject({{}, {}, server.host});
    if (!isAddressed(request, *edit))
        return;
    const std::optional<NasServer> stored = m_accounts.store().server(server.id);
    if (!stored)
        return edit->answer(lastPart(StationReturnCode::NasServerNotFound));
    if (isMoved(*stored, server.host) && PasswordVault::looksLikeToken(given.password))
        return edit->answer(lastPart(StationReturnCode::NasPasswordNeeded));
    const SmbLogon logon = m_accounts.resolved(given, *stored);
    storeAfterLogon(edit, server, logon, [this, server, logon] {
        NasServer updated = server;
        if (!m_accounts.store().server(updated.id)) // removed while the server was asked
            return lastPart(StationReturnCode::NasServerNotFound);
        m_accounts.checkKey(updated.id);
        updated.sealedPassword = m_accounts.vault().encrypted(logon.password);
        m_accounts.store().replace(updated);
        return lastPart(ReturnCode::Success);
    });
}

void NasRegistry::removeNasServer(const std::shared_ptr<Edit> &edit)
{
    const RequestMap request(edit->data());
    const QString id = request.string(StationKey::id);
    if (!isAddressed(request, *edit))
        return;
    edit->answer(removeNow(*edit, id));
}

bool NasRegistry::isAddressed(const RequestMap &request, Edit &edit) const
{
    return isMeant(request.string(FieldKey::relayPath), m_relayPath,
                   [&edit](const StationReply &part) { edit.answer(part); });
}

/// Logs on as @p logon to the host of @p server, and then answers what @p store does in a transaction. Refuses before
/// the server is bothered when @p server could not be stored anyway.
void NasRegistry::storeAfterLogon(const std::shared_ptr<Edit> &edit, const NasServer &server, const SmbLogon &logon,
                                  const Store &store)
{
    const std::optional<SmbPath> host = SmbPath::parseHost(server.host);
    if (!host)
        return edit->answer(lastPart(StationReturnCode::NasHostRefused));
    if (m_accounts.store().isTaken(server.host, server.userName, server.id))
        return edit->answer(lastPart(NasReturnCode::NASServerExist));
    m_accounts.checkKey(server.id);
    const auto logOn = [host = *host, logon, limit = m_work.limit()] { return SmbClient(logon, limit).logOn(host); };
    const auto done = [this, edit, server, host = *host, logon, store](const QString &returnCode) {
        edit->attempt([&] {
            m_accounts.pauses().note(host, logon, returnCode);
            edit->answer(returnCode == ReturnCode::Success ? storeNow(*edit, server, store) : lastPart(returnCode));
        });
    };
    m_work.run<QString>(host->hostKey(), logOn, StationReturnCode::NasServerNotResponding, done);
}

/// What @p store answers; with "0" it is kept and given already.
StationReply NasRegistry::storeNow(Edit &edit, const NasServer &server, const Store &store)
{
    Transaction transaction(m_accounts.database());
    if (m_accounts.store().isTaken(server.host, server.userName, server.id)) // stored in the meantime
        return lastPart(NasReturnCode::NASServerExist);
    const StationReply reply = store();
    if (reply.returnCode == ReturnCode::Success)
        edit.commit(transaction, reply);
    return reply;
}

/// Likewise.
StationReply NasRegistry::removeNow(Edit &edit, const QString &id)
{
    Transaction transaction(m_accounts.database());
    const std::optional<NasServer> server = m_accounts.store().server(id);
    if (!server)
        return lastPart(StationReturnCode::NasServerNotFound);
    edit.setSubject({{}, {}, server->host});
    m_accounts.store().remove(id);
    edit.commit(transaction, lastPart(ReturnCode::Success));
    return lastPart(ReturnCode::Success);
}
