#include "Benchmarks.h"
#include "ClientSession.h"
#include "Measuring.h"
#include "Program.h"
#include "Site.h"

#include <algorithm>
#include <map>
#include <thread>

namespace {
constexpr double megabyte = 1024 * 1024;
constexpr std::chrono::seconds warming{5};

/// What a client costs, by the number of stations.
struct Cost
{
    double cores;
    double resident;
};

std::map<int, Cost> &costs()
{
    static std::map<int, Cost> all;
    return all;
}

double seconds(std::chrono::duration<double> span)
{
    return span.count();
}

/// What each station more costs between the two largest sizes, as a multiple of what it costs between the two smallest:
/// 1 is linear.
void reportGrowth(benchmark::State &state)
{
    if (costs().size() < 4)
        return;
    const auto slope = [](auto from, auto to, double Cost::*quantity) {
        return (to->second.*quantity - from->second.*quantity) / (to->first - from->first);
    };
    const auto first = costs().begin();
    const auto second = std::next(first);
    const auto last = std::prev(costs().end());
    const auto secondLast = std::prev(last);
    state.counters["growth CPU"] = slope(secondLast, last, &Cost::cores) / slope(first, second, &Cost::cores);
    state.counters["growth memory"] = slope(secondLast, last, &Cost::resident) / slope(first, second, &Cost::resident);
    state.counters["us a station"] = slope(first, last, &Cost::cores) * 1e6;
    state.counters["KB a station"] = slope(first, last, &Cost::resident) / 1024;
}

/// Every station says something each second. "in view ms": from the client's first attempt to connect until it has
/// figures of all stations; then for a while CPU time as a share of one core, memory, and the client's longest turn of
/// its event loop.
void watchSite(benchmark::State &state, int stations, bool hasWindow, std::chrono::seconds watch)
{
    Site site(stations);
    const double inView = site.addClient(hasWindow);
    Child &client = *site.clients().front();
    std::this_thread::sleep_for(warming);
    client.say(QStringLiteral("begin"));
    const double start = wallSeconds();
    const double brokerBefore = site.broker().cpuSeconds();
    const double fleetBefore = site.fleet().cpuSeconds();
    std::this_thread::sleep_for(watch);
    client.say(QStringLiteral("end"));
    const QJsonObject seen = client.hear(QStringLiteral("ended"));
    const double lasted = wallSeconds() - start;
    const auto value = [&seen](const char *key) { return seen.value(QLatin1String(key)).toDouble(); };
    require(value("events") > 0, "the client hears nothing of its stations");
    state.counters["stations ready ms"] = site.arrival() * 1e3;
    state.counters["in view ms"] = inView * 1e3;
    state.counters["longest turn ms"] = value("longestTurn") * 1e3;
    state.counters["longest turn CPU ms"] = value("longestTurnCpu") * 1e3;
    state.counters["client cores"] = value("cores");
    state.counters["client MB"] = value("resident") / megabyte;
    state.counters["client grown KB"] = value("residentGrown") / 1024;
    state.counters["client heap grown KB"] = value("heapGrown") / 1024;
    state.counters["events a second"] = value("events");
    const double told =
        stations / seconds(ClientSession::figuresPauseOfWindows); // of a station that speaks each second
    state.counters["events missed %"] = std::max(0.0, 100 * (1 - value("events") / told)); // it did not keep up
    state.counters["broker cores"] = (site.broker().cpuSeconds() - brokerBefore) / lasted;
    state.counters["broker MB"] = site.broker().residentBytes() / megabyte;
    state.counters["fleet cores"] = (site.fleet().cpuSeconds() - fleetBefore) / lasted;
    state.counters["fleet MB"] = site.fleet().residentBytes() / megabyte;
    state.counters["watched s"] = seconds(watch);
    if (hasWindow)
        return;
    costs()[stations] = {value("cores"), value("resident")};
    reportGrowth(state);
}
} // namespace

void addSites(const Scale &scale)
{
    const auto watch = [scale](int stations) {
        if (scale.isSmoke)
            return std::chrono::seconds(2);
        return stations == 1000 ? scale.watch : std::min(scale.watch, std::chrono::seconds(30));
    };
    add("site", scale.isSmoke ? std::vector{10} : std::vector{10, 300, 1000, 3000},
        [watch](benchmark::State &state, int stations) { watchSite(state, stations, false, watch(stations)); });
    add("console of a site", scale.isSmoke ? std::vector{10} : std::vector{10, 1000},
        [watch](benchmark::State &state, int stations) { watchSite(state, stations, true, watch(stations)); });
}
