#include "Benchmarks.h"
#include "CborVariant.h"
#include "Figures.h"
#include "Measuring.h"
#include "Program.h"
#include "ServerVocabulary.h"
#include "mqtt/Deflate.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttMessages.h"

namespace {
/// The event of each second, without a broker: "ours" read as it travels, deflated, "plain" read where it was not,
/// "made" at the station, and "deflated" alone; CPU time in microseconds. "bytes" and "plain bytes" of its body.
void readBody(benchmark::State &state, int rounds)
{
    const QVariantList entries = Figures::volumeEntries(0);
    const StationEvent event{ServerEvent::VolumeChanged, entries};
    const QByteArray plain = cborFromVariant(eventMap(event));
    const MqttBody body = encodeBody(eventMap(event));
    const auto read = [&](const QByteArray &bytes, const QString &contentType) {
        const StationEvent found = eventFromMap(event.name, decodeBody(bytes, contentType));
        require(found.data.toList().size() == entries.size(), "the event is read as something else");
    };
    measure(state,
            {{"ours", [&] { read(body.bytes, body.contentType); }},
             {"plain", [&] { read(plain, ContentType::Cbor); }},
             {"made",
              [&] { require(encodeBody(eventMap(event)).bytes == body.bytes, "the event is made in another way"); }},
             {"deflated", [&] { require(deflated(plain) == body.bytes, "the body is deflated in another way"); }}},
            {.rounds = rounds});
    state.counters["bytes"] = static_cast<double>(body.bytes.size());
    state.counters["plain bytes"] = static_cast<double>(plain.size());
}
} // namespace

void addBody(const Scale &scale)
{
    add("body of an event", [scale](benchmark::State &state) { readBody(state, scale.isSmoke ? 20 : 2001); });
}
