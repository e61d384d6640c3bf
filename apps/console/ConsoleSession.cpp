#include "ConsoleSession.h"

#include "RefusalText.h"
#include "StationProtocol.h"

ConsoleSession::ConsoleSession(QObject *parent)
    : QObject(parent)
{
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
    if (!connected)
        setCount(false, 0, -1); // its end would not be heard
    emit connectedChanged();
}

QVariantList ConsoleSession::cameras() const
{
    return m_cameras;
}

void ConsoleSession::setCameras(const QVariantList &cameras)
{
    if (m_cameras == cameras)
        return;
    m_cameras = cameras;
    emit camerasChanged();
}

void ConsoleSession::refreshCameras()
{
    emit camerasWanted();
}

void ConsoleSession::noteAnswer(const QString &command, const QString &returnCode)
{
    m_returnCodes.insert(command, returnCode);
    if (returnCode != StationReturnCode::Success)
        emit refused(command);
}

QString ConsoleSession::refusal(const QString &command) const
{
    const auto returnCode = m_returnCodes.constFind(command);
    return returnCode == m_returnCodes.constEnd() ? QString() : ::refusalText(*returnCode);
}

QString ConsoleSession::refusalText(const QString &returnCode) const
{
    return ::refusalText(returnCode);
}

QString ConsoleSession::returnCode(const QString &command) const
{
    return m_returnCodes.value(command);
}

void ConsoleSession::noteEvent(const QString &event, const QVariant &data)
{
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
