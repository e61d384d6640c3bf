#include "MessageStream.h"

#include <cstdint>
#include <cstdlib>

/// What comes from a stream is a message or an error, and a message that was read can be written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    MessageLimits limits;
    limits.elements = 10'000;
    MessageStream stream(limits);
    stream.append(QByteArrayView(data, static_cast<qsizetype>(size)));
    try {
        while (const std::optional<StationMessage> message = stream.next()) {
            const QByteArray once = encodeMessage(*message);
            if (encodeMessage(decodeMessage(once, limits)) != once)
                std::abort();
        }
    } catch (const MessageError &) { // as it should
    }
    return 0;
}
