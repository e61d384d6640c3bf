#include "NasAccounts.h"

#include "LogonPauses.h"
#include "PasswordVault.h"
#include "StationData.h"
#include "StationLog.h"

#include <algorithm>
#include <utility>

namespace {
bool isOn(const SmbPath &place, const NasServer &server)
{
    const std::optional<SmbPath> host = SmbPath::parseHost(server.host);
    return host && host->isOnHostOf(place);
}

bool isOf(NasAccounts::Account account, const NasServer &server)
{
    const bool isServersOwn =
        server.logonDomain.isEmpty() || server.logonDomain.compare(QStringLiteral("Host"), Qt::CaseInsensitive) == 0;
    return account == NasAccounts::Account::Any || isServersOwn == (account == NasAccounts::Account::OfHost);
}

void refusePlaceholder(const SmbLogon &logon)
{
    if (logon.password == PasswordVault::placeholder()) {
        throw VaultError(QStringLiteral("The password was asked for while its key could not be read; ask for the NAS"
                                        " servers again"));
    }
}
} // namespace

NasAccounts::NasAccounts(StationData &data, KeyFile keyFile)
    : m_data(data)
    , m_keyFile(std::move(keyFile))
    , m_pauses(std::make_unique<LogonPauses>())
{
}

NasAccounts::~NasAccounts() = default;

Database &NasAccounts::database()
{
    return m_data.database();
}

NasStore NasAccounts::store()
{
    return NasStore(database());
}

const PasswordVault &NasAccounts::vault()
{
    const bool isNeeded = !store().servers().isEmpty();
    m_vault = std::make_unique<PasswordVault>(
        m_keyFile, isNeeded ? PasswordVault::WhenMissing::Fail : PasswordVault::WhenMissing::Create);
    return *m_vault;
}

void NasAccounts::checkKey(const QString &id)
{
    const PasswordVault &key = vault();
    const QList<NasServer> servers = store().servers();
    for (const NasServer &server : servers) {
        if (server.id != id)
            key.decrypted(server.sealedPassword);
    }
}

QString NasAccounts::token(const QString &id)
{
    try {
        return vault().token(id);
    } catch (const VaultError &error) {
        qCWarning(stationLog, "%s", error.what());
        return PasswordVault::placeholder();
    }
}

SmbLogon NasAccounts::resolved(const SmbLogon &logon, const SmbPath &place)
{
    if (logon.userName.isEmpty())
        return registered(place).value_or(logon);
    refusePlaceholder(logon);
    const QList<NasServer> servers = store().servers();
    for (const NasServer &server : servers) {
        if (isOn(place, server) && PasswordVault::looksLikeToken(logon.password)
            && vault().isToken(logon.password, server.id))
            return resolved(logon, server);
    }
    return logon;
}

SmbLogon NasAccounts::resolved(const SmbLogon &logon, const NasServer &server)
{
    refusePlaceholder(logon);
    if (!PasswordVault::looksLikeToken(logon.password) || !vault().isToken(logon.password, server.id))
        return logon;
    return {logon.domain, logon.userName, vault().decrypted(server.sealedPassword)};
}

std::optional<SmbLogon> NasAccounts::registered(const SmbPath &place, Account preferred)
{
    QList<NasServer> servers = store().servers();
    servers.removeIf([&place](const NasServer &server) { return !isOn(place, server); });
    if (servers.isEmpty())
        return {};
    const auto found = std::find_if(servers.cbegin(), servers.cend(),
                                    [preferred](const NasServer &server) { return isOf(preferred, server); });
    const NasServer &server = found == servers.cend() ? servers.first() : *found;
    return SmbLogon{server.logonDomain, server.userName, vault().decrypted(server.sealedPassword)};
}
