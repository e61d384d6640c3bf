#include "NasSpaces.h"

#include "LogonPauses.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "TimedWork.h"

#include <algorithm>

namespace {
struct Round
{
    TimedWork &work;
    LogonPauses &pauses;
    QList<SpaceQuestion> questions;
    SpaceAnswer answered;
};
using Then = std::function<void(const QString &code)>;

bool isOfServer(const QString &code)
{
    return code == StationReturnCode::NasServerNotResponding || code == NasReturnCode::LogonNASServerFaled;
}

QList<SmbSpace> spacesAt(const SpaceQuestion &question, std::chrono::milliseconds limit)
{
    SmbClient client(question.logon, limit);
    QList<SmbSpace> spaces;
    for (const SmbPath &place : question.places) {
        const bool isOver = !spaces.isEmpty() && isOfServer(spaces.constLast().returnCode);
        spaces.append(isOver ? spaces.constLast() : client.space(place));
    }
    return spaces;
}

void ask(const std::shared_ptr<Round> &round, qsizetype index, const Then &then)
{
    const SpaceQuestion &question = round->questions.at(index);
    const QList<SmbSpace> late(question.places.size(), {StationReturnCode::NasServerNotResponding});
    const auto work = [question, limit = round->work.limit()] { return spacesAt(question, limit); };
    const auto done = [round, index, then](const QList<SmbSpace> &spaces) {
        const SpaceQuestion &asked = round->questions.at(index);
        const QString code = spaces.constLast().returnCode;
        round->pauses.note(asked.places.constFirst(), asked.logon, code);
        round->answered(index, spaces);
        if (then)
            then(code);
    };
    round->work.run<QList<SmbSpace>>(question.places.constFirst().hostKey(), work, late, done);
}

bool isSameAccount(const SpaceQuestion &one, const SpaceQuestion &other)
{
    return one.places.constFirst().hostKey() == other.places.constFirst().hostKey()
        && one.logon.domain == other.logon.domain && one.logon.userName == other.logon.userName
        && one.logon.password == other.logon.password;
}

void askOthers(const std::shared_ptr<Round> &round, const QList<qsizetype> &others, const QString &code)
{
    for (const qsizetype index : others) {
        if (isOfServer(code))
            round->answered(index, QList<SmbSpace>(round->questions.at(index).places.size(), {code}));
        else
            ask(round, index, {});
    }
}
} // namespace

void askSpaces(TimedWork &work, LogonPauses &pauses, const QList<SpaceQuestion> &questions, const SpaceAnswer &answered)
{
    const auto round = std::make_shared<Round>(Round{work, pauses, questions, answered});
    QList<QList<qsizetype>> accounts; // the questions of each
    for (qsizetype index = 0; index < questions.size(); ++index) {
        const auto account = std::find_if(accounts.begin(), accounts.end(), [&](const QList<qsizetype> &other) {
            return isSameAccount(questions.at(other.constFirst()), questions.at(index));
        });
        if (account == accounts.end())
            accounts.append(QList<qsizetype>{index});
        else
            account->append(index);
    }
    for (const QList<qsizetype> &account : std::as_const(accounts)) {
        ask(round, account.constFirst(),
            [round, others = account.mid(1)](const QString &code) { askOthers(round, others, code); });
    }
}
