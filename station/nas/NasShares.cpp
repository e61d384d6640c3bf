#include "NasShares.h"

#include "LogonPauses.h"
#include "NasAccounts.h"
#include "NasSpaces.h"
#include "RequestMap.h"
#include "StationLog.h"
#include "StationProtocol.h"
#include "TimedWork.h"

namespace {
constexpr qint64 bytesPerKilobyte = 1024;

/// What came of the paths of one command; the last one answers.
struct DiskCollection
{
    QStringList paths;
    QList<SmbSpace> spaces; // one for each path
    qsizetype missing = 0;
};

qint64 totalKilobytes(const SmbSpace &space)
{
    return space.bytesTotal / bytesPerKilobyte;
}

/// So that the rest is what may still be written.
qint64 usedKilobytes(const SmbSpace &space)
{
    return totalKilobytes(space) - space.bytesAvailable / bytesPerKilobyte;
}

StationReply replyOf(const DiskCollection &collection)
{
    QVariantList disks;
    QString firstRefusal;
    for (qsizetype i = 0; i < collection.paths.size(); ++i) {
        const SmbSpace &space = collection.spaces.at(i);
        if (space.returnCode == StationReturnCode::Success) {
            disks.append(QVariantMap{{StationKey::diskName, collection.paths.at(i)},
                                     {StationKey::diskTotal, totalKilobytes(space)},
                                     {StationKey::diskUsed, usedKilobytes(space)}});
            continue;
        }
        qCWarning(stationLog, "%s: %s is left out: %s", qPrintable(StationCommandName::addNASPathsToVolume),
                  qPrintable(collection.paths.at(i)), qPrintable(space.returnCode));
        if (firstRefusal.isEmpty())
            firstRefusal = space.returnCode;
    }
    if (disks.isEmpty() && !firstRefusal.isEmpty())
        return lastPart(firstRefusal);
    return lastPart(StationReturnCode::Success, disks);
}
} // namespace

NasShares::NasShares(NasAccounts &accounts, TimedWork &work, const QString &relayPath)
    : m_accounts(accounts)
    , m_work(work)
    , m_relayPath(relayPath)
{
}

void NasShares::enterInto(CommandTable &table)
{
    const auto enter = [this, &table](const QString &name, auto member) {
        table.insert(name,
                     [this, member](const QVariant &data, const Answer &answer) { (this->*member)(data, answer); });
    };
    enter(StationCommandName::GetNasDir, &NasShares::getNasDir);
    enter(StationCommandName::GetNasCapacity, &NasShares::getNasCapacity);
    enter(StationCommandName::addNASPathsToVolume, &NasShares::addPathsToVolume);
}

void NasShares::getNasDir(const QVariant &data, const Answer &answer)
{
    const std::optional<Target> target = targetOf(data, StationReturnCode::GetNasDirFailed, answer);
    if (!target)
        return;
    const QString basePath = RequestMap(data).string(StationKey::basePath);
    const auto list = [target = *target, limit = m_work.limit()] {
        return SmbClient(target.logon, limit).folders(target.place);
    };
    const auto done = [this, target = *target, basePath, answer](const SmbFolders &folders) {
        answerFailures(StationCommandName::GetNasDir, answer, [&] {
            m_accounts.pauses().note(target.place, target.logon, folders.returnCode);
            if (folders.returnCode != StationReturnCode::Success)
                return answer(lastPart(folders.returnCode));
            answer(lastPart(StationReturnCode::Success,
                            QVariantMap{{StationKey::basePath, basePath}, {StationKey::dirFolderList, folders.names}}));
        });
    };
    m_work.run<SmbFolders>(target->place.hostKey(), list, {StationReturnCode::NasServerNotResponding, {}}, done);
}

void NasShares::getNasCapacity(const QVariant &data, const Answer &answer)
{
    const std::optional<Target> target = targetOf(data, StationReturnCode::GetNasCapacityFailed, answer);
    if (!target)
        return;
    const auto done = [answer](qsizetype, const QList<SmbSpace> &spaces) {
        answerFailures(StationCommandName::GetNasCapacity, answer, [&] {
            const SmbSpace &space = spaces.constFirst();
            if (space.returnCode != StationReturnCode::Success)
                return answer(lastPart(space.returnCode));
            answer(lastPart(
                StationReturnCode::Success,
                QVariantMap{{StationKey::total, totalKilobytes(space)}, {StationKey::used, usedKilobytes(space)}}));
        });
    };
    askSpaces(m_work, m_accounts.pauses(), {{target->logon, {target->place}}}, done);
}

void NasShares::addPathsToVolume(const QVariant &data, const Answer &answer)
{
    const auto collection = std::make_shared<DiskCollection>();
    collection->paths = RequestMap(data).strings(StationKey::pathList);
    QList<SpaceQuestion> questions;
    QList<qsizetype> asked; // the paths behind the questions
    for (const QString &path : std::as_const(collection->paths)) {
        const std::optional<SmbPath> place = SmbPath::parse(path);
        const std::optional<SmbLogon> logon = place ? m_accounts.registered(*place) : std::nullopt;
        if (logon) {
            questions.append({*logon, {*place}});
            asked.append(collection->spaces.size());
        }
        const QString &refusal = place ? StationReturnCode::NasServerNotFound : StationReturnCode::GetNasCapacityFailed;
        collection->spaces.append({refusal});
    }
    collection->missing = questions.size();
    if (questions.isEmpty())
        return answer(replyOf(*collection));
    const auto done = [collection, asked, answer](qsizetype index, const QList<SmbSpace> &spaces) {
        answerFailures(StationCommandName::addNASPathsToVolume, answer, [&] {
            collection->spaces[asked.at(index)] = spaces.constFirst();
            if (--collection->missing == 0)
                answer(replyOf(*collection));
        });
    };
    askSpaces(m_work, m_accounts.pauses(), questions, done);
}

/// What a map with a path and a log-on asks for; answers and gives nothing when that cannot be.
std::optional<NasShares::Target> NasShares::targetOf(const QVariant &data, const QString &refusal, const Answer &answer)
{
    const RequestMap request(data);
    const QString basePath = request.string(StationKey::basePath);
    const SmbLogon logon{request.string(StationKey::logonDomain), request.string(StationKey::userName),
                         request.string(StationKey::password)};
    if (!isMeant(request.string(StationKey::relayPath), m_relayPath, answer))
        return {};
    const std::optional<SmbPath> place = SmbPath::parse(basePath);
    if (!place) {
        answer(lastPart(refusal));
        return {};
    }
    return Target{*place, m_accounts.resolved(logon, *place)};
}
