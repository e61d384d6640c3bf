#pragma once

#include "CommandTable.h"
#include "smb/SmbClient.h"

class NasAccounts;
class RequestMap;
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
    void addNasServer(const std::shared_ptr<Edit> &edit);
    void updateNasServer(const std::shared_ptr<Edit> &edit);
    void removeNasServer(const std::shared_ptr<Edit> &edit);

    using Store = std::function<StationReply()>;
    bool isAddressed(const RequestMap &request, Edit &edit) const;
    void storeAfterLogon(const std::shared_ptr<Edit> &edit, const NasServer &server, const SmbLogon &logon,
                         const Store &store);
    StationReply storeNow(Edit &edit, const NasServer &server, const Store &store);
    StationReply removeNow(Edit &edit, const QString &id);

    NasAccounts &m_accounts;
    TimedWork &m_work;
    QString m_relayPath;
};
