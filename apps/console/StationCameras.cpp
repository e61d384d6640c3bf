#include "StationCameras.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <utility>

void StationCameras::refresh()
{
    if (m_isAsked) {
        m_isAskedAgain = true;
        return;
    }
    m_isAsked = true;
    emit changed();
    emit wanted();
}

void StationCameras::take(const QVariantList &cameras)
{
    m_failure.clear();
    m_isKnown = true;
    if (m_list != cameras) {
        m_list = cameras;
        emit listChanged();
    }
    answered();
}

void StationCameras::fail(const QString &sentence)
{
    m_failure = sentence;
    answered();
}

void StationCameras::answered()
{
    m_isAsked = false;
    emit changed();
    if (std::exchange(m_isAskedAgain, false))
        refresh();
}

bool StationCameras::add(const QString &name, int streams)
{
    if (isBusy())
        return false;
    m_command = StationCommandName::addCamera;
    m_added = name;
    emit busyChanged();
    emit editWanted(m_command, {{FieldKey::camName, name}, {StationKey::streams, streams}});
    return true;
}

bool StationCameras::remove(const QStringList &names)
{
    if (isBusy() || names.isEmpty())
        return false;
    m_command = StationCommandName::removeCamera;
    m_toRemove = names;
    removeNext();
    return true;
}

void StationCameras::removeNext()
{
    emit busyChanged();
    emit editWanted(m_command, {{FieldKey::camName, m_toRemove.constFirst()}});
}

void StationCameras::cancelRemoval()
{
    if (m_toRemove.size() < 2)
        return;
    m_toRemove.resize(1);
    emit busyChanged();
}

void StationCameras::forget()
{
    m_isAsked = m_isAskedAgain = m_isKnown = false;
    m_failure.clear();
    m_command.clear();
    m_added.clear();
    m_toRemove.clear();
    if (!std::exchange(m_list, {}).isEmpty())
        emit listChanged();
    emit busyChanged();
    emit changed();
}

void StationCameras::noteEdit(const QString &refusal)
{
    if (m_command == StationCommandName::addCamera) {
        endEdit();
        emit added(std::exchange(m_added, {}), refusal);
        return;
    }
    if (m_toRemove.isEmpty())
        return;
    const QString name = m_toRemove.takeFirst();
    emit removed(name, refusal);
    if (!m_toRemove.isEmpty()) {
        removeNext();
        return;
    }
    endEdit();
    emit removalEnded();
}

void StationCameras::endEdit()
{
    m_command.clear();
    emit busyChanged();
    refresh();
}
