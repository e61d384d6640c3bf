#include "RowIds.h"

#include <QRandomGenerator>

#include <cstring>

QUuid RowIds::next()
{
    if (m_used == words) {
        QRandomGenerator::system()->fillRange(m_words.data(), static_cast<qsizetype>(words));
        m_used = 0;
    }
    quint16 middle[2];
    quint8 rest[8];
    std::memcpy(middle, &m_words[m_used + 1], sizeof middle);
    std::memcpy(rest, &m_words[m_used + 2], sizeof rest);
    const QUuid id(m_words[m_used], middle[0], static_cast<quint16>((middle[1] & 0x0fff) | 0x4000), // version 4
                   static_cast<quint8>((rest[0] & 0x3f) | 0x80), // variant of RFC 4122
                   rest[1], rest[2], rest[3], rest[4], rest[5], rest[6], rest[7]);
    m_used += wordsPerId;
    return id;
}
