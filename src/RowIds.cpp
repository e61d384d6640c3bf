#include "RowIds.h"

#include <cstring>

QUuid RowIds::next()
{
    if (!m_generator)
        m_generator = QRandomGenerator::securelySeeded();
    quint32 words[4];
    m_generator->fillRange(words);
    quint16 middle[2];
    quint8 rest[8];
    std::memcpy(middle, &words[1], sizeof middle);
    std::memcpy(rest, &words[2], sizeof rest);
    return {words[0],
            middle[0],
            static_cast<quint16>((middle[1] & 0x0fff) | 0x4000), // version 4
            static_cast<quint8>((rest[0] & 0x3f) | 0x80), // variant of RFC 4122
            rest[1],
            rest[2],
            rest[3],
            rest[4],
            rest[5],
            rest[6],
            rest[7]};
}
