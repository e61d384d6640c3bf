#pragma once

#include "smb/SmbClient.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>

#include <chrono>
#include <optional>

/// Which accounts NAS servers refused, and how long nobody shall try them unasked: servers lock an account after a few
/// wrong passwords. The pause grows with each refusal that follows one, and ends when the account is accepted; another
/// password is another account.
class LogonPauses
{
public:
    explicit LogonPauses(std::chrono::milliseconds first = std::chrono::minutes(1),
                         std::chrono::milliseconds longest = std::chrono::hours(1));

    /// What came of a log-on to the server of @p place; @p returnCode is one of SmbClient's.
    void note(const SmbPath &place, const SmbLogon &logon, const QString &returnCode);

    /// When the account may be tried again unasked; none: now.
    std::optional<QDateTime> end(const SmbPath &place, const SmbLogon &logon) const;
    /// Whether the account was refused within the last @p time.
    bool wasRefused(const SmbPath &place, const SmbLogon &logon, std::chrono::milliseconds time) const;

private:
    struct Refusal
    {
        std::chrono::milliseconds pause;
        QDeadlineTimer deadline; // of the pause
        QDateTime end; // the same for people
        QElapsedTimer age;
    };

    QByteArray keyOf(const SmbPath &place, const SmbLogon &logon) const;

    std::chrono::milliseconds m_first;
    std::chrono::milliseconds m_longest;
    QByteArray m_salt;
    QHash<QByteArray, Refusal> m_refusals;
};
