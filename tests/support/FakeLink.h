#pragma once

#include "link/StationLink.h"

#include <QList>

#include <utility>

/// A link on which the test plays the station; up at first. While it is down, it tries once more for each command, and
/// fails unless it went up meanwhile.
class FakeLink : public StationLink
{
public:
    struct Sent
    {
        quint64 correlation;
        QString relayPath;
        StationCommand command;
    };

    void start() override { }
    StationState state(const QString &) const override { return m_state; }

    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override
    {
        const bool isDown = m_state.kind == StationState::Kind::Down;
        (isDown ? m_waiting : sent).append({correlation, relayPath, command});
        if (isDown)
            QMetaObject::invokeMethod(this, &FakeLink::failAgain, Qt::QueuedConnection);
    }

    void setUp(bool up) { setState({up ? StationState::Kind::Up : StationState::Kind::Down}); }

    void setState(const StationState &state)
    {
        m_state = state;
        if (state.kind == StationState::Kind::Up)
            sent += std::exchange(m_waiting, {});
        emit stateChanged({}, state);
    }

    void answer(int index, const QString &returnCode, const QVariant &data = {}, bool finish = true)
    {
        emit replyReceived(sent.at(index).correlation, {returnCode, data, finish});
    }

    void answerPart(int index, const QVariant &data) { answer(index, QStringLiteral("0"), data, false); }

    QList<Sent> sent;

private:
    void failAgain()
    {
        if (m_state.kind != StationState::Kind::Down)
            return;
        m_waiting.clear();
        emit stateChanged({}, m_state);
    }

    QList<Sent> m_waiting;
    StationState m_state{StationState::Kind::Up};
};
