#pragma once

#include "smb/SmbClient.h"

#include <functional>

class LogonPauses;
class TimedWork;

/// How much places on one share hold for one account.
struct SpaceQuestion
{
    SmbLogon logon;
    QList<SmbPath> places; ///< never empty, all on one server
};

/// The answer to the question at the place @p index: one for each of its places.
using SpaceAnswer = std::function<void(qsizetype index, const QList<SmbSpace> &spaces)>;

/// Asks @p questions, and gives each answer to @p answered once, never from within this call. The first question of an
/// account goes ahead: when its log-on is refused, or its server is silent, that is the answer to the account's others.
/// So each account is tried once.
/// @param work and @p pauses must outlive the answers
void askSpaces(TimedWork &work, LogonPauses &pauses, const QList<SpaceQuestion> &questions,
               const SpaceAnswer &answered);
