#pragma once

#include <QByteArray>
#include <QString>

#include <deque>
#include <optional>

/// What waits to be sent to one client. Bounded: an event that states how things are replaces an older one of its name
/// that still waits, and all the others count.
class SendQueue
{
public:
    /// @param limit in bytes
    explicit SendQueue(qint64 limit)
        : m_limit(limit)
    {
    }

    /// @param replaces the name of the event that the frame holds; empty: it replaces nothing and nothing replaces it
    /// @return false where the queue would hold more than its limit; the frame was not taken then. An empty queue takes
    /// any
    bool append(const QByteArray &frame, const QString &replaces = {});

    /// The next frame; none when nothing waits.
    std::optional<QByteArray> takeNext();

    bool isEmpty() const { return m_entries.empty(); }
    qint64 bytes() const { return m_bytes; }

private:
    struct Entry
    {
        QByteArray frame;
        QString replaces;
    };

    std::deque<Entry> m_entries;
    qint64 m_bytes = 0;
    qint64 m_limit;
};
