#pragma once

#include "KeyFile.h"
#include "NasStore.h"
#include "smb/SmbClient.h"

#include <memory>
#include <optional>

class Database;
class LogonPauses;
class PasswordVault;
class StationData;

/// The registered NAS servers together with their passwords, which leave this object only as tokens or for a log-on.
///
/// The key lies in a file of its own, and is read each time that it is needed, so that
/// one that is lost or replaced is noticed at once. It is made with the first server; while it is lost or another one,
/// and servers are registered, everything that needs a password throws VaultError, until the key is back or the servers
/// are removed.
class NasAccounts
{
public:
    /// @param data must outlive this object
    /// @param keyFile see KeyFile::of()
    NasAccounts(StationData &data, KeyFile keyFile);
    ~NasAccounts();

    Database &database();
    NasStore store();
    /// Which accounts were refused; everybody who logs on notes it there.
    LogonPauses &pauses() { return *m_pauses; }
    /// The key as it is now; until the next call. Throws VaultError.
    const PasswordVault &vault();
    /// Throws VaultError unless the key is there and opens all stored passwords, but for that of the server @p id,
    /// which is about to be replaced.
    void checkKey(const QString &id = {});
    /// What stands for the password of the server @p id; PasswordVault::placeholder(), with a line in the station's
    /// log, without the key: a server can then still be seen and removed.
    QString token(const QString &id);

    /// @p logon as it is used for @p place: without a user name it is the registered one, and a token of a server
    /// registered for its host becomes that server's password.
    SmbLogon resolved(const SmbLogon &logon, const SmbPath &place);
    /// @p logon as it is used for the server @p server: its token becomes its password, on whatever host.
    SmbLogon resolved(const SmbLogon &logon, const NasServer &server);

    enum class Account { Any, OfHost, OfDomain };
    /// How to log on to the host of @p place: as the first user registered for it, preferably one whose account is the
    /// server's own, or one of a domain.
    std::optional<SmbLogon> registered(const SmbPath &place, Account preferred = Account::Any);

private:
    StationData &m_data;
    KeyFile m_keyFile;
    std::unique_ptr<LogonPauses> m_pauses;
    std::unique_ptr<PasswordVault> m_vault;
};
