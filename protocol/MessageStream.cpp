#include "MessageStream.h"

#include <QtEndian>

namespace {
constexpr qsizetype headerSize = sizeof(quint32);
} // namespace

QByteArray framedMessage(const StationMessage &message, const MessageLimits &limits)
{
    const QByteArray bytes = encodeMessage(message);
    if (bytes.size() > limits.bytes) {
        throw MessageError(
            QStringLiteral("the message would have %1 bytes; at most %2 are sent").arg(bytes.size()).arg(limits.bytes));
    }
    QByteArray frame(headerSize, Qt::Uninitialized);
    qToBigEndian(static_cast<quint32>(bytes.size()), frame.data());
    frame.append(bytes);
    return frame;
}

std::optional<StationMessage> MessageStream::next()
{
    if (waitingBytes() < headerSize)
        return {};
    const qsizetype size = qFromBigEndian<quint32>(m_bytes.constData() + m_taken);
    if (size > m_limits.bytes) {
        throw MessageError(
            QStringLiteral("the message has %1 bytes; at most %2 are taken").arg(size).arg(m_limits.bytes));
    }
    if (waitingBytes() < headerSize + size)
        return {};
    StationMessage message = decodeMessage(QByteArrayView(m_bytes).sliced(m_taken + headerSize, size), m_limits);
    m_taken += headerSize + size;
    if (m_taken == m_bytes.size()) {
        m_bytes.clear();
        m_taken = 0;
    } else if (m_taken > m_bytes.size() / 2) {
        m_bytes.remove(0, m_taken);
        m_taken = 0;
    }
    return message;
}
