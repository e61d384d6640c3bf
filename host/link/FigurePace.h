#pragma once

#include "mqtt/MqttMessage.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <deque>
#include <functional>
#include <optional>

/// Hands on the figures that a station tells: at once where it was silent for a pause, else when the pause is over. Of
/// those that come meanwhile the newest stands for all, and the others are never read. A turn of the event loop hands
/// on for some milliseconds, so that a thousand stations do not hold a window up.
class FigurePace : public QObject
{
    Q_OBJECT
public:
    /// Reads and tells a message. May add others, and may end the owner.
    using Deliver = std::function<void(const QString &relayPath, const MqttMessage &message)>;

    /// @param pause none: everything is handed on at once
    FigurePace(std::chrono::milliseconds pause, Deliver deliver);

    void add(const QString &relayPath, const MqttMessage &message); ///< hands it on now or when its time has come
    void deliverNow(const QString &relayPath); ///< what waits of a station, within this call

private:
    struct Turn
    {
        QString relayPath;
        QDeadlineTimer due;
    };

    void deliverDue();

    std::chrono::milliseconds m_pause;
    Deliver m_deliver;
    std::deque<Turn> m_turns; // one for each station that told something within the last pause, the next one first
    QHash<QString, std::optional<MqttMessage>> m_waiting; // by station that has a turn
    QTimer m_nextTurn;
};
