#include "PathProposals.h"

#include "EditRequestData.h"
#include "ServerVocabulary.h"
#include "StationStorage.h"
#include "StationVocabulary.h"

#include <QSet>
#include <QUuid>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {
constexpr qsizetype mostOnAVolume = 4;
constexpr qsizetype mostFolders = 32;

bool isSystem(const QVariantMap &volume)
{
    return volume.value(FieldKey::volumeIsSystem).toBool();
}

/// Those that can be written to, the emptiest first.
QList<QVariantMap> disks(const QVariantList &volumes)
{
    QList<QVariantMap> disks;
    for (const QVariant &value : volumes) {
        const QVariantMap volume = value.toMap();
        if (volume.value(StationKey::kind) == StationVolumeKind::local
            && volume.value(StationKey::state) == StationVolumeState::there)
            disks.append(volume);
    }
    std::stable_sort(disks.begin(), disks.end(), [](const QVariantMap &left, const QVariantMap &right) {
        const auto rank = [](const QVariantMap &volume) {
            return std::tuple(isSystem(volume), -volume.value(StationKey::free).toLongLong());
        };
        return rank(left) < rank(right);
    });
    return disks;
}

/// The volume itself, then what groups record to there.
QStringList foldersOn(const QVariantMap &disk)
{
    QStringList folders{disk.value(FieldKey::volumePath).toString()};
    for (const QVariant &group : disk.value(StationKey::groups).toList())
        folders += group.toMap().value(StationKey::paths).toStringList();
    folders.removeDuplicates();
    return folders.mid(0, mostOnAVolume);
}

/// All folders as proposals, accepted or not.
QVariantList candidates(const StationStorage &storage)
{
    QVariantList list;
    for (const QVariantMap &disk : disks(storage.volumes())) {
        const QVariantMap reserves = storage.reserves(disk, {});
        for (const QString &folder : foldersOn(disk)) {
            list.append(QVariantMap{{QStringLiteral("path"), folder},
                                    {QStringLiteral("volumeName"), disk.value(FieldKey::volumeName)},
                                    {QStringLiteral("isSystem"), isSystem(disk)},
                                    {QStringLiteral("free"), disk.value(StationKey::free).toDouble()},
                                    {QStringLiteral("left"), reserves.value(QStringLiteral("left"))}});
        }
    }
    return list.mid(0, mostFolders);
}

QString pathOf(const QVariant &proposal)
{
    return proposal.toMap().value(QStringLiteral("path")).toString();
}

/// A group that would have all @p paths; the station says which of them it would refuse.
QVariant trialOf(const QStringList &paths)
{
    QVariantList entries;
    for (const QString &path : paths)
        entries.append(QVariantMap{{FieldKey::path, path},
                                   {FieldKey::pathType, 0},
                                   {FieldKey::reserveSpace, 0},
                                   {FieldKey::isRecoveryMode, false}});
    const QVariantMap group{{FieldKey::recordingGroupName, QUuid::createUuid().toString(QUuid::WithoutBraces)},
                            {FieldKey::recordingGroupReservedTimeEnabled, false},
                            {FieldKey::recordingGroupReservedTime, 0}};
    const QString &command = ServerCommand::addRecordingGroupWithCompleteInfo;
    return QVariantMap{{StationKey::command, command},
                       {StationKey::data, editRequestData(command, {group, entries, QVariantList()})}};
}
} // namespace

void PathProposals::setSession(ConsoleSession *session)
{
    if (m_session == session)
        return;
    if (m_session)
        m_session->storage()->disconnect(this);
    m_session = session;
    if (session)
        connect(session->storage(), &StationStorage::changed, this, &PathProposals::follow);
    emit sessionChanged();
}

void PathProposals::refresh()
{
    m_isFollowing = true;
    m_isAccepted.clear();
    m_isAnswered = false;
    m_isAskedAgain = m_isUnderWay;
    follow();
}

void PathProposals::stop()
{
    m_isFollowing = false;
}

void PathProposals::follow()
{
    if (!m_isFollowing || !m_session)
        return;
    const QVariantList all = candidates(*m_session->storage());
    QVariantList accepted;
    QStringList unasked;
    for (const QVariant &proposal : all) {
        const auto verdict = m_isAccepted.constFind(pathOf(proposal));
        if (verdict == m_isAccepted.cend())
            unasked.append(pathOf(proposal));
        else if (*verdict)
            accepted.append(proposal);
    }
    m_proposals = accepted;
    if (unasked.isEmpty())
        m_isAnswered = m_isAnswered || !all.isEmpty();
    else if (!m_isUnderWay)
        ask(unasked);
    emit changed();
}

void PathProposals::ask(const QStringList &paths)
{
    m_isUnderWay = true;
    m_session->callStation(
        StationCommandName::forecast, trialOf(paths), this,
        [this, paths](const QString &returnCode, const QVariant &data) { take(paths, returnCode, data); });
}

void PathProposals::take(const QStringList &paths, const QString &returnCode, const QVariant &data)
{
    m_isUnderWay = false;
    if (std::exchange(m_isAskedAgain, false)) {
        follow();
        return;
    }
    const QVariantMap forecast = data.toMap();
    const bool isJudged = returnCode == ReturnCode::Success && forecast.contains(StationKey::errors);
    QSet<qlonglong> refused;
    for (const QVariant &value : forecast.value(StationKey::errors).toList()) {
        const QVariantMap error = value.toMap();
        if (error.value(StationKey::element) == FieldKey::pathInfoList)
            refused.insert(error.value(StationKey::index).toLongLong());
    }
    for (qsizetype place = 0; place < paths.size(); ++place)
        m_isAccepted.insert(paths.at(place), isJudged && !refused.contains(place));
    follow();
}
