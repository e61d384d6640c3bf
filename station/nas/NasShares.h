#pragma once

#include "CommandTable.h"
#include "smb/SmbClient.h"

class NasAccounts;
class TimedWork;

/// The commands about what NAS servers hold: GetNasDir, GetNasCapacity, addNASPathsToVolume. All are answered later.
class NasShares
{
public:
    /// @param accounts and @p work must outlive this object
    /// @param relayPath the station's own
    NasShares(NasAccounts &accounts, TimedWork &work, const QString &relayPath);

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    /// A place, and how to log on there.
    struct Target
    {
        SmbPath place;
        SmbLogon logon;
    };

    void getNasDir(const QVariant &data, const Answer &answer);
    void getNasCapacity(const QVariant &data, const Answer &answer);
    void addPathsToVolume(const QVariant &data, const Answer &answer);
    std::optional<Target> targetOf(const QVariant &data, const QString &refusal, const Answer &answer);

    NasAccounts &m_accounts;
    TimedWork &m_work;
    QString m_relayPath;
};
