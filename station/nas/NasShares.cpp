#include "NasShares.h"

#include "LogonPauses.h"
#include "NasAccounts.h"
#include "NasSpaces.h"
#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationLog.h"
#include "StationVocabulary.h"
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
        if (space.returnCode == ReturnCode::Success) {
            disks.append(QVariantMap{{FieldKey::diskName, collection.paths.at(i)},
                                     {FieldKey::diskTotal, totalKilobytes(space)},
                                     {FieldKey::diskUsed, usedKilobytes(space)}});
            continue;
        }
        qCWarning(stationLog, "%s: %s is left out: %s", qPrintable(ServerCommand::addNASPathsToVolume),
                  qPrintable(collection.paths.at(i)), qPrintable(space.returnCode));
        if (firstRefusal.isEmpty())
            firstRefusal = space.returnCode;
    }
    if (disks.isEmpty() && !firstRefusal.isEmpty())
        return lastPart(firstRefusal);
    return lastPart(ReturnCode::Success, disks);
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
    enter(ServerCommand::GetNasDir, &NasShares::getNasDir);
    enter(ServerCommand::GetNasCapacity, &NasShares::getNasCapacity);
    enter(ServerCommand::addNASPathsToVolume, &NasShares::addPathsToVolume);
}

void NasShares::getNasDir(const QVariant &data, const Answer &answer)
{
    const std::optional<Target> target = targetOf(data, NasReturnCode::GetNasDirFailed, answer);
    if (!target)
        return;
    const QString basePath = RequestMap(data).string(FieldKey::basePath);
    const auto list = [target = *target, limit = m_work.limit()] {
        return SmbClient(target.logon, limit).folders(target.place);
    };
    const auto done = [this, target = *target, basePath, answer](const SmbFolders &folders) {
        answerFailures(ServerCommand::GetNasDir, answer, [&] {
            m_accounts.pauses().note(target.place, target.logon, folders.returnCode);
            if (folders.returnCode != ReturnCode::Success)
                return answer(lastPart(folders.returnCode));
            answer(lastPart(ReturnCode::Success,
                            QVariantMap{{FieldKey::basePath, basePath}, {FieldKey::dirFolderList, folders.names}}));
        });
    };
    m_work.run<SmbFolders>(target->place.hostKey(), list, {StationReturnCode::NasServerNotResponding, {}}, done);
}

void NasShares::getNasCapacity(const QVariant &data, const Answer &answer)
{
    const std::optional<Target> target = targetOf(data, NasReturnCode::GetNasCapacityFailed, answer);
    if (!target)
        return;
    const auto done = [answer](qsizetype, const QList<SmbSpace> &spaces) {
        answerFailures(ServerCommand::GetNasCapacity, answer, [&] {
            const SmbSpace &space = spaces.constFirst();
            if (space.returnCode != ReturnCode::Success)
                return answer(lastPart(space.returnCode));
            answer(lastPart(
                ReturnCode::Success,
                QVariantMap{{StationKey::total, totalKilobytes(space)}, {StationKey::used, usedKilobytes(space)}}));
        });
    };
    askSpaces(m_work, m_accounts.pauses(), {{target->logon, {target->place}}}, done);
}

void NasShares::addPathsToVolume(const QVariant &data, const Answer &answer)
{
    const auto collection = std::make_shared<DiskCollection>();
    collection->paths = RequestMap(data).strings(FieldKey::pathList);
    QList<SpaceQuestion> questions;
    QList<qsizetype> asked; // the paths behind the questions
    for (const QString &path : std::as_const(collection->paths)) {
        const std::optional<SmbPath> place = SmbPath::parse(path);
        const std::optional<SmbLogon> logon = place ? m_accounts.registered(*place) : std::nullopt;
        if (logon) {
            questions.append({*logon, {*place}});
            asked.append(collection->spaces.size());
        }
        const QString &refusal = place ? StationReturnCode::NasServerNotFound : NasReturnCode::GetNasCapacityFailed;
        collection->spaces.append({refusal});
    }
    collection->missing = questions.size();
    if (questions.isEmpty())
        return answer(replyOf(*collection));
    const auto done = [collection, asked, answer](qsizetype index, const QList<SmbSpace> &spaces) {
        answerFailures(ServerCommand::addNASPathsToVolume, answer, [&] {
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
    const QString basePath = request.string(FieldKey::basePath);
    const SmbLogon logon{request.string(FieldKey::logonDomain), request.string(FieldKey::userName),
                         request.string(FieldKey::password)};
    if (!isMeant(request.string(FieldKey::relayPath), m_relayPath, answer))
        return {};
    const std::optional<SmbPath> place = SmbPath::parse(basePath);
    if (!place) {
        answer(lastPart(refusal));
        return {};
    }
    return Target{*place, m_accounts.resolved(logon, *place)};
}
