#include "RecordingsDeletion.h"

#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"

#include <QCoreApplication>

#include <algorithm>

namespace {
qint64 numberIn(const QVariantMap &map, const QString &key)
{
    return map.value(key, -1).toLongLong();
}

QString reasonText(const QString &reason)
{
    if (reason == StationLeftReason::NotARecording)
        return QCoreApplication::translate("RecordingsDeletion", "It is no recording.");
    if (reason == StationLeftReason::CannotDelete)
        return QCoreApplication::translate("RecordingsDeletion", "The disk refuses to delete it.");
    if (reason == StationReturnCode::PermissionDenied)
        return QCoreApplication::translate("RecordingsDeletion", "The station may not delete it.");
    return refusalText(reason);
}

QVariantMap placeNamed(const QVariantList &places, const QString &name)
{
    const auto place = std::find_if(places.cbegin(), places.cend(), [&name](const QVariant &entry) {
        return entry.toMap().value(StationKey::place) == name;
    });
    return place == places.cend() ? QVariantMap() : place->toMap();
}
} // namespace

RecordingsDeletion::Outcome RecordingsDeletion::outcome() const
{
    if (m_returnCode.isEmpty())
        return Open;
    if (m_returnCode == ReturnCode::Success)
        return Done;
    if (m_returnCode == StationReturnCode::RecordingsLeft)
        return Incomplete;
    if (m_returnCode == HostReturnCode::StationLost)
        return Unheard;
    return m_returnCode == StationReturnCode::DeletionCancelled ? Cancelled : Failed;
}

void RecordingsDeletion::leave()
{
    clear({});
    emit changed();
}

void RecordingsDeletion::clear(const QString &place)
{
    m_place = place;
    m_isRunning = !place.isEmpty();
    m_isCancelling = false;
    m_cancelFailure.clear();
    m_deletedFiles = m_files = m_deletedBytes = m_bytes = -1;
    m_leftFiles = m_leftBytes = m_leftEntries = -1;
    m_returnCode.clear();
    m_left.clear();
}

void RecordingsDeletion::begin(const QVariantMap &sums)
{
    clear(sums.value(StationKey::place).toString());
    m_deletedFiles = m_deletedBytes = 0;
    m_files = numberIn(sums, StationKey::recordedFiles);
    m_bytes = numberIn(sums, StationKey::recordedBytes);
    emit changed();
}

void RecordingsDeletion::takeProgress(const QVariantMap &progress)
{
    const QString place = progress.value(StationKey::place).toString();
    if (!m_isRunning || m_place != place)
        clear(place);
    m_deletedFiles = numberIn(progress, StationKey::done);
    m_files = numberIn(progress, StationKey::total);
    m_deletedBytes = numberIn(progress, StationKey::deletedBytes);
    if (m_bytes < m_deletedBytes)
        m_bytes = -1;
    if (!progress.value(StationKey::running).toBool()) {
        m_leftFiles = numberIn(progress, StationKey::leftFiles);
        m_leftBytes = numberIn(progress, StationKey::leftBytes);
        m_leftEntries = numberIn(progress, StationKey::leftEntries);
        const QVariantList entries = progress.value(StationKey::left).toList();
        for (const QVariant &entry : entries) {
            m_left.append(QCoreApplication::translate("RecordingsDeletion", "%1: %2")
                              .arg(entry.toMap().value(FieldKey::path).toString(),
                                   reasonText(entry.toMap().value(StationKey::reason).toString())));
        }
        end(progress.value(StationKey::returnCode).toString());
    }
    emit changed();
}

void RecordingsDeletion::compareWith(const QVariantList &places)
{
    for (const QVariant &entry : places) {
        const QVariantMap place = entry.toMap();
        if (!place.value(StationKey::deletion).toMap().value(StationKey::running).toBool())
            continue;
        if (!m_isRunning || m_place != place.value(StationKey::place))
            clear(place.value(StationKey::place).toString());
        m_bytes = numberIn(place, StationKey::recordedBytes); // the station counts again at the end
        emit changed();
        return;
    }
    if (!m_isRunning)
        return;
    const QVariantMap place = placeNamed(places, m_place);
    m_deletedFiles = m_deletedBytes = -1; // there may have been more
    const QVariantMap deletion = place.value(StationKey::deletion).toMap();
    end(place.isEmpty() ? HostReturnCode::StationLost // all is deleted, or a group has come to have the place
                        : deletion.value(StationKey::returnCode, StationReturnCode::StationStopping).toString());
    emit changed();
}

void RecordingsDeletion::end(const QString &returnCode)
{
    m_isRunning = m_isCancelling = false;
    m_cancelFailure.clear();
    m_returnCode = returnCode;
}

void RecordingsDeletion::beginCancel()
{
    m_isCancelling = true;
    m_cancelFailure.clear();
    emit changed();
}

void RecordingsDeletion::refuseCancel(const QString &sentence)
{
    if (!m_isRunning)
        return; // it ended meanwhile
    m_isCancelling = false;
    m_cancelFailure = sentence;
    emit changed();
}

void RecordingsDeletion::forget()
{
    if (m_isRunning || m_place.isEmpty())
        return;
    clear({});
    emit changed();
}
