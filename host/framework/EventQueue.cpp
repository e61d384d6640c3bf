#include "EventQueue.h"

#include "ServerVocabulary.h"

#include <QElapsedTimer>
#include <QPointer>

#include <utility>

EventQueue::EventQueue(Deliver deliver)
    : m_deliver(std::move(deliver))
{
    m_nextTurn.setSingleShot(true);
    m_nextTurn.callOnTimeout(this, &EventQueue::deliverSome);
}

void EventQueue::setTimePerTurn(std::chrono::microseconds time)
{
    m_timePerTurn = time;
}

void EventQueue::add(const QString &relayPath, const StationEvent &event)
{
    if (m_waiting.empty() && m_spent < m_timePerTurn) {
        m_nextTurn.start(0); // which has time again
        deliver({relayPath, event, false});
    } else {
        append({relayPath, event, false});
    }
}

void EventQueue::repeat(const QString &relayPath, const StationEvent &figures)
{
    if (!m_figures.contains(relayPath))
        append({relayPath, figures, true});
}

void EventQueue::append(const Waiting &waiting)
{
    const bool isFigures = waiting.event.name == ServerEvent::VolumeChanged;
    if (isFigures) {
        if (const auto older = m_figures.constFind(waiting.relayPath); older != m_figures.cend())
            m_waiting.erase(*older);
    }
    m_waiting.push_back(waiting);
    if (isFigures)
        m_figures.insert(waiting.relayPath, std::prev(m_waiting.end()));
    if (!m_nextTurn.isActive())
        m_nextTurn.start(0);
}

EventQueue::Waiting EventQueue::take(Place place)
{
    Waiting taken = *place;
    if (m_figures.value(taken.relayPath, m_waiting.end()) == place)
        m_figures.remove(taken.relayPath);
    m_waiting.erase(place);
    return taken;
}

void EventQueue::deliver(const Waiting &waiting)
{
    const QPointer<EventQueue> alive(this);
    QElapsedTimer clock;
    clock.start();
    m_deliver(waiting.relayPath, waiting.event, waiting.isRepeated);
    if (alive)
        m_spent += std::chrono::microseconds(clock.nsecsElapsed() / 1000);
}

void EventQueue::deliverSome()
{
    m_spent = {};
    const QPointer<EventQueue> alive(this);
    while (!m_waiting.empty()) {
        deliver(take(m_waiting.begin()));
        if (!alive)
            return;
        if (m_spent >= m_timePerTurn)
            break;
    }
    if (!m_waiting.empty() || m_spent.count() > 0)
        m_nextTurn.start(0);
}

void EventQueue::deliverNow(const QString &relayPath)
{
    QList<Waiting> ofStation;
    for (auto place = m_waiting.begin(); place != m_waiting.end();) {
        const auto next = std::next(place);
        if (place->relayPath == relayPath)
            ofStation.append(take(place));
        place = next;
    }
    const QPointer<EventQueue> alive(this);
    for (const Waiting &waiting : std::as_const(ofStation)) {
        if (alive)
            deliver(waiting);
    }
}

void EventQueue::clear()
{
    m_figures.clear();
    m_waiting.clear();
}
