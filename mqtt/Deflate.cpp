#include "Deflate.h"

#include "MessageCodec.h"

#include <zlib.h>

#include <algorithm>
#include <array>

namespace {
/// Ends the stream whatever happens.
struct Inflation
{
    z_stream stream = {};

    Inflation()
    {
        if (inflateInit(&stream) != Z_OK)
            throw std::bad_alloc();
    }
    ~Inflation() { inflateEnd(&stream); }
    Inflation(const Inflation &) = delete;
    Inflation &operator=(const Inflation &) = delete;
};
} // namespace

QByteArray deflated(QByteArrayView bytes)
{
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    QByteArray result(static_cast<qsizetype>(size), Qt::Uninitialized);
    const auto source = reinterpret_cast<const Bytef *>(bytes.data());
    if (compress2(reinterpret_cast<Bytef *>(result.data()), &size, source, static_cast<uLong>(bytes.size()),
                  Z_BEST_SPEED)
        != Z_OK)
        throw std::bad_alloc();
    result.truncate(static_cast<qsizetype>(size));
    return result;
}

QByteArray inflated(QByteArrayView bytes, qsizetype limit)
{
    Inflation inflation;
    z_stream &stream = inflation.stream;
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    QByteArray result;
    std::array<char, 65536> part = {};
    int outcome = Z_OK;
    while (outcome == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef *>(part.data());
        stream.avail_out = static_cast<uInt>(part.size());
        outcome = inflate(&stream, Z_NO_FLUSH);
        result.append(part.data(), static_cast<qsizetype>(part.size() - stream.avail_out));
        if (result.size() > limit)
            throw MessageError(QStringLiteral("the message has more than %1 bytes when it is inflated").arg(limit));
    }
    if (outcome == Z_MEM_ERROR)
        throw std::bad_alloc();
    if (outcome != Z_STREAM_END || stream.avail_in > 0)
        throw MessageError(QStringLiteral("the message is not deflated as its content type says"));
    return result;
}
