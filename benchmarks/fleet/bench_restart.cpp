#include "Benchmarks.h"
#include "Measuring.h"
#include "Program.h"
#include "Site.h"

#include <algorithm>
#include <cmath>
#include <thread>

namespace {
constexpr std::chrono::seconds editing{3}; // before and after
constexpr std::chrono::minutes patience{3};
// Ten clients that hear of each station each second would be more than one machine can show.
constexpr std::chrono::seconds interval{10};

double at(const QJsonObject &line)
{
    return line.value(QStringLiteral("at")).toDouble();
}

/// Each client edits ten times a second while the broker is killed and started again. "back ms": from then until all
/// stations can be reached and all clients have figures of all of them again. "unanswered": commands that ended in
/// another way than with the station's yes. "twice": edits that took effect more than once, or that a station says it
/// took and does not have.
void restartBroker(benchmark::State &state, int stations, int clients)
{
    Site site(stations, interval);
    for (int number = 0; number < clients; ++number)
        site.addClient(false);
    for (const auto &client : site.clients())
        client->say(QStringLiteral("edit"));
    std::this_thread::sleep_for(editing);

    const double killed = wallSeconds();
    site.broker().crashAndRestart();
    const double restarted = wallSeconds();
    site.fleet().hear(QStringLiteral("incomplete"), patience);
    const double stationsBack = at(site.fleet().hear(QStringLiteral("complete"), patience));
    double back = stationsBack;
    for (const auto &client : site.clients()) {
        const QJsonObject seen = client->hear(QStringLiteral("inView"), patience);
        require(seen.value(QStringLiteral("withoutRows")).toString().isEmpty(), "a client has not all figures back");
        back = std::max(back, at(seen));
    }

    std::this_thread::sleep_for(editing);
    double sent = 0;
    double accepted = 0;
    double wrong = 0;
    for (const auto &client : site.clients()) {
        client->say(QStringLiteral("finish"));
        const QJsonObject finished = client->hear(QStringLiteral("finished"), patience);
        sent += finished.value(QStringLiteral("sent")).toDouble();
        const QJsonObject codes = finished.value(QStringLiteral("codes")).toObject();
        accepted += codes.value(QStringLiteral("0")).toDouble();
        for (auto code = codes.begin(); code != codes.end(); ++code) {
            if (code.key() != QStringLiteral("0"))
                state.counters["answered " + code.key().toStdString()].value += code.value().toDouble();
        }
        client->say(QStringLiteral("check"));
        wrong += client->hear(QStringLiteral("checked"), patience).value(QStringLiteral("wrong")).toDouble();
    }
    site.fleet().say(QStringLiteral("report"));
    const QJsonObject report = site.fleet().hear(QStringLiteral("report"));
    const double edits = report.value(QStringLiteral("edits")).toDouble();
    require(sent > 0, "no client edited anything");
    state.counters["back ms"] = (back - killed) * 1e3;
    state.counters["stations back ms"] = (stationsBack - killed) * 1e3;
    state.counters["broker away ms"] = (restarted - killed) * 1e3;
    state.counters["commands"] = sent;
    state.counters["delivered again"] = report.value(QStringLiteral("repeated")).toDouble();
    state.counters["unanswered"] = sent - accepted;
    state.counters["twice"] = wrong + std::abs(edits - accepted);
    state.counters["broker MB"] = site.broker().residentBytes() / (1024 * 1024);
}
} // namespace

void addBrokerRestart(const Scale &scale)
{
    const int clients = scale.isSmoke ? 2 : 10;
    add("broker restarted", scale.isSmoke ? std::vector{10} : std::vector{1000},
        [clients](benchmark::State &state, int stations) { restartBroker(state, stations, clients); });
}
