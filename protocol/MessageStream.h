#pragma once

#include "MessageCodec.h"

#include <QByteArray>

#include <optional>

/// The bytes of one message as they go through a stream: its size (four bytes, the highest first) and the message.
/// Throws MessageError as encodeMessage(), and where it is larger than @p limits allow.
QByteArray framedMessage(const StationMessage &message, const MessageLimits &limits = {});

/// Puts messages together again from the bytes of a stream.
class MessageStream
{
public:
    /// Takes no message that is larger than @p limits allow.
    explicit MessageStream(const MessageLimits &limits = {})
        : m_limits(limits)
    {
    }

    /// Takes what the stream gave. Nothing is set aside for a message before its bytes are here.
    void append(QByteArrayView bytes) { m_bytes.append(bytes); }

    /// The next message that is here as a whole, or none. Throws MessageError for one that cannot be read; the stream
    /// is of no use then.
    std::optional<StationMessage> next();

    /// How many bytes wait for their message.
    qsizetype waitingBytes() const { return m_bytes.size() - m_taken; }

private:
    MessageLimits m_limits;
    QByteArray m_bytes;
    qsizetype m_taken = 0; // from the front of m_bytes
};
