#include "ConsoleSession.h"

#include "LateOutcomeText.h"
#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "link/LateOutcome.h"

#include <utility>

ConsoleSession::ConsoleSession(QObject *parent)
    : QObject(parent)
{
    connect(&m_cameraList, &StationCameras::listChanged, this, &ConsoleSession::camerasChanged);
}

void ConsoleSession::callStation(const QString &command, const QVariant &data, QObject *context,
                                 const OnAnswer &onAnswer)
{
    if (m_stationCall)
        m_stationCall(command, data, context, onAnswer);
}

void ConsoleSession::setStationCall(StationCall call)
{
    m_stationCall = std::move(call);
}

bool ConsoleSession::isConnected() const
{
    return m_connected;
}

void ConsoleSession::setConnected(bool connected)
{
    if (m_connected == connected)
        return;
    m_connected = connected;
    if (connected) {
        m_storage.refresh();
    } else {
        setCount(false, 0, -1); // its end would not be heard
        m_storage.forgetRequest();
    }
    m_unassigned.setConnected(connected);
    emit connectedChanged();
}

void ConsoleSession::refreshCameras()
{
    m_cameraList.refresh();
}

void ConsoleSession::noteAnswer(const QString &command, const QString &returnCode)
{
    m_returnCodes.insert(command, returnCode);
    if (returnCode != ReturnCode::Success)
        emit refused(command);
}

QString ConsoleSession::refusal(const QString &command) const
{
    const auto returnCode = m_returnCodes.constFind(command);
    if (returnCode == m_returnCodes.constEnd())
        return {};
    return ::refusalText(*returnCode) + outcomeHint(command, *returnCode);
}

bool ConsoleSession::isOutcomeOpen(const QString &command) const
{
    return !outcomeHint(command, m_returnCodes.value(command)).isEmpty();
}

QString ConsoleSession::refusalText(const QString &returnCode) const
{
    return ::refusalText(returnCode);
}

void ConsoleSession::acknowledgeAlarm(const QString &kind, const QString &subject, const QString &note,
                                      const QString &source)
{
    emit acknowledgementWanted(
        StationCommandName::acknowledgeAlarm,
        QVariantMap{{StationKey::kind, kind}, {StationKey::subject, subject}, {StationKey::note, note}}, source);
}

void ConsoleSession::withdrawAcknowledgement(const QString &kind, const QString &subject, const QString &source)
{
    emit acknowledgementWanted(StationCommandName::withdrawAcknowledgement,
                               QVariantMap{{StationKey::kind, kind}, {StationKey::subject, subject}}, source);
}

void ConsoleSession::noteAcknowledgement(const QString &returnCode)
{
    emit alarmAcknowledged(refusalText(returnCode));
}

QString ConsoleSession::unsentText() const
{
    return ::unsentText(m_pluginFact ? m_pluginFact() : QString());
}

void ConsoleSession::setPluginFact(std::function<QString()> lastFact)
{
    m_pluginFact = std::move(lastFact);
}

QString ConsoleSession::returnCode(const QString &command) const
{
    return m_returnCodes.value(command);
}

void ConsoleSession::noteOutcome(const QString &subject, const QString &refusal)
{
    m_lateOutcomes.append(refusal.isEmpty() ? tr("%1: done.").arg(subject) : tr("%1: %2").arg(subject, refusal));
    m_lateFailure = m_lateFailure || !refusal.isEmpty();
    emit lateOutcomesChanged();
}

void ConsoleSession::noteLateOutcome(const LateOutcome &outcome)
{
    m_lateOutcomes.append(lateOutcomeText(outcome));
    m_lateFailure = m_lateFailure || outcome.returnCode != ReturnCode::Success;
    emit lateOutcomesChanged();
}

QStringList ConsoleSession::lateOutcomes() const
{
    return m_lateOutcomes;
}

bool ConsoleSession::hasLateFailure() const
{
    return m_lateFailure;
}

void ConsoleSession::forgetLateOutcomes()
{
    m_lateOutcomes.clear();
    m_lateFailure = false;
    emit lateOutcomesChanged();
}

void ConsoleSession::leaveStation()
{
    m_cameraList.forget();
    m_storage.forget();
    m_unassigned.forget();
    m_returnCodes.clear();
    setCount(false, 0, -1);
    m_connected = false;
    m_unassigned.setConnected(false);
    m_isStationChanged = true;
    emit stationLeft();
    emit connectedChanged();
}

void ConsoleSession::enterStation(bool connected)
{
    setConnected(connected);
    emit stationEntered();
}

void ConsoleSession::noteArrival(const QString &source)
{
    m_storage.setElsewhere(!source.isEmpty());
}

void ConsoleSession::noteEvent(const QString &event, const QVariant &data, const QString &source)
{
    if (!source.isEmpty())
        return;
    if (event == ServerEvent::VolumeChanged || event == StationEventName::AlarmsChanged
        || event == StationEventName::ActivityAdded)
        m_storage.refresh();
    m_unassigned.noteEvent(event, data);
    if (event == StationEventName::ActivityAdded) {
        const QVariantMap activity = data.toMap();
        const QString groupId = activity.value(FieldKey::recordingGroupID).toString();
        const QString command = activity.value(StationKey::command).toString();
        if (command == StationCommandName::addCamera || command == StationCommandName::removeCamera)
            m_cameraList.refresh();
        if (activity.value(StationKey::returnCode) == ReturnCode::Success && !groupId.isEmpty()) {
            emit groupEdited(groupId);
            emit groupsEdited();
        }
        return;
    }
    if (event != StationEventName::StorageScanProgress)
        return;
    const QVariantMap progress = data.toMap();
    setCount(progress.value(QStringLiteral("running")).toBool(), progress.value(QStringLiteral("done")).toLongLong(),
             progress.value(QStringLiteral("total"), -1).toLongLong());
}

void ConsoleSession::setCount(bool counting, qlonglong done, qlonglong total)
{
    m_counting = counting;
    m_countedFiles = done;
    m_filesToCount = total;
    emit countingChanged();
}

bool ConsoleSession::isCounting() const
{
    return m_counting;
}

double ConsoleSession::countedFiles() const
{
    return static_cast<double>(m_countedFiles);
}

double ConsoleSession::filesToCount() const
{
    return static_cast<double>(m_filesToCount);
}

bool ConsoleSession::areAlarmsKnown() const
{
    return m_alarmsKnown;
}

void ConsoleSession::setAlarmsKnown(bool known)
{
    if (std::exchange(m_alarmsKnown, known) != known)
        emit alarmsKnownChanged();
}

QAbstractItemModel *ConsoleSession::alarms() const
{
    return m_alarms;
}

void ConsoleSession::setAlarms(QAbstractItemModel *alarms)
{
    if (m_alarms == alarms)
        return;
    m_alarms = alarms;
    emit alarmsChanged();
}
