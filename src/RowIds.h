#pragma once

#include <QUuid>

#include <array>
#include <cstddef>

/// Makes the identifiers of rows: version 4 UUIDs out of the system's generator, as QUuid::createUuid() makes them. The
/// generator is asked for a kilobyte at a time, which is most of what an identifier costs. One object for each reply.
class RowIds
{
public:
    QUuid next();

private:
    static constexpr std::size_t wordsPerId = 4;
    static constexpr std::size_t words = 1024 / sizeof(quint32);

    std::array<quint32, words> m_words;
    std::size_t m_used = words;
};
