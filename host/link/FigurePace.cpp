#include "FigurePace.h"

#include <QPointer>

#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto timePerTurn = 8ms;
}

FigurePace::FigurePace(std::chrono::milliseconds pause, Deliver deliver)
    : m_pause(pause)
    , m_deliver(std::move(deliver))
{
    m_nextTurn.setSingleShot(true);
    m_nextTurn.callOnTimeout(this, &FigurePace::deliverDue);
}

void FigurePace::add(const QString &relayPath, const MqttMessage &message)
{
    if (m_pause == 0ms)
        return m_deliver(relayPath, message);
    if (const auto waiting = m_waiting.find(relayPath); waiting != m_waiting.end()) {
        *waiting = message;
        return;
    }
    m_waiting.insert(relayPath, std::nullopt);
    m_turns.push_back({relayPath, QDeadlineTimer(m_pause)});
    if (!m_nextTurn.isActive())
        m_nextTurn.start(m_pause);
    m_deliver(relayPath, message);
}

void FigurePace::deliverNow(const QString &relayPath)
{
    const auto waiting = m_waiting.find(relayPath);
    if (waiting == m_waiting.end() || !*waiting)
        return;
    const MqttMessage message = *std::exchange(*waiting, std::nullopt);
    m_deliver(relayPath, message);
}

void FigurePace::deliverDue()
{
    const QPointer<FigurePace> alive(this);
    const QDeadlineTimer turn(timePerTurn);
    while (!m_turns.empty() && m_turns.front().due.hasExpired() && !turn.hasExpired()) {
        const QString relayPath = m_turns.front().relayPath;
        m_turns.pop_front();
        const std::optional<MqttMessage> message = m_waiting.take(relayPath);
        if (message)
            add(relayPath, *message);
        if (!alive)
            return;
    }
    if (!m_turns.empty())
        m_nextTurn.start(static_cast<int>(m_turns.front().due.remainingTime()));
}
