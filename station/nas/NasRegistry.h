#pragma once

#include "CommandTable.h"
#include "smb/SmbClient.h"

class NasAccounts;
class TimedWork;
struct NasServer;

/// The commands about the registered NAS servers: GetNasServers, AddNasServer, UpdateNASServer, RemoveNASServer.
///
/// Adding and updating log on to the server before anything is stored, which is answered later.
class NasRegistry
{
public:
    /// @param accounts and @p work must outlive this object
    /// @param relayPath the station's own
    NasRegistry(NasAccounts &accounts, TimedWork &work, const QString &relayPath);

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    void getNasServers(const QVariant &data, const Answer &answer);
    void addNasServer(const QVariant &data, const Answer &answer);
    void updateNasServer(const QVariant &data, const Answer &answer);
    void removeNasServer(const QVariant &data, const Answer &answer);

    using Store = std::function<StationReply()>;
    void storeAfterLogon(const QString &command, const NasServer &server, const SmbLogon &logon, const Answer &answer,
                         const Store &store);

    NasAccounts &m_accounts;
    TimedWork &m_work;
    QString m_relayPath;
};
