#include "Rounds.h"

#include "Measuring.h"
#include "Memory.h"
#include "PlainRecordingManagement.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace {

constexpr double secondsForASize = 4;
constexpr int fewestRounds = 3;
constexpr int framesToRest = 8;
constexpr double megabyte = 1024 * 1024;

using Samples = std::map<std::string, std::vector<double>>;

/// A plug-in with a window, and one of the same kind that nobody looks at.
struct Contender
{
    template<typename Plugin>
    static Contender *make(const Scenario &scenario, const std::string &prefix)
    {
        return new Contender(scenario, prefix, std::make_unique<Plugin>(), std::make_unique<Plugin>());
    }

    Contender(const Scenario &scenario, const std::string &words, std::unique_ptr<PluginRecordingManagement> watched,
              std::unique_ptr<PluginRecordingManagement> other)
        : prefix(words)
        , client(std::move(watched))
        , alone(std::move(other))
        , window(client, scenario.page)
    {
    }

    std::string prefix; ///< of its counters
    ConsoleClient client;
    ConsoleClient alone;
    ConsoleWindow window; // goes first
};

double handlerSeconds(const Scenario &scenario, const Message &message, ConsoleClient &client)
{
    if (scenario.request)
        scenario.request(client.plugin());
    for (const Message &earlier : scenario.before)
        client.deliver(earlier);
    Memory::beginPeak(); // as before the window's message
    const double start = threadSeconds();
    client.deliver(message);
    return threadSeconds() - start;
}

/// One message for one contender. The first one fills an empty page, so it tells of memory alone unless @p once.
std::string deliver(const Scenario &scenario, const Message &message, const std::vector<Fact> &facts,
                    Contender &contender, Samples &samples, bool first, bool once)
{
    ConsoleWindow &window = contender.window;
    window.animate(true);
    const double heapBefore = window.heapInUse();
    if (!first) // the page asked by itself when it was made
        window.refresh();
    for (const Message &earlier : scenario.before)
        contender.client.deliver(earlier);
    window.letFramesPass(framesToRest);
    const auto arrival = window.watch([&] { contender.client.deliver(message); }, facts);
    if (!arrival)
        return "not shown: " + window.missing(facts).toStdString();
    window.animate(false);
    const double heapGrowth = window.heapInUse() - heapBefore;
    const double handler = handlerSeconds(scenario, message, contender.alone);
    const auto add = [&](const char *name, double value) { samples[contender.prefix + name].push_back(value); };
    if (first) {
        add("heap, MB", heapGrowth / megabyte);
        add("first stall, CPU ms", arrival->smoothness.longestTurnCpu * 1e3);
        if (!once)
            return {};
    } else {
        add("grown, KB", heapGrowth / 1024);
    }
    add("stall, ms", arrival->smoothness.longestTurn * 1e3);
    add("stall, CPU ms", arrival->smoothness.longestTurnCpu * 1e3);
    add("shown, ms", arrival->shownAfter * 1e3);
    add("dropped", arrival->smoothness.droppedFrames);
    add("handler, CPU ms", handler * 1e3);
    add("window, CPU ms", (arrival->smoothness.busyCpu - handler) * 1e3);
    add("peak, MB", arrival->peakGrowth / megabyte);
    return {};
}

void runRounds(benchmark::State &state, const Scenario &scenario, const Scenario::Size &size, int mostRounds)
{
    const std::unique_ptr<Contender> ours(Contender::make<PluginRecordingManagement>(scenario, ""));
    const std::unique_ptr<Contender> plain(Contender::make<PlainRecordingManagement>(scenario, "plain "));
    std::array<Contender *, 2> order{ours.get(), plain.get()};
    std::mt19937 random(std::random_device{}());
    Samples samples;
    std::string complaint;
    for ([[maybe_unused]] auto iteration : state) {
        const double end = LoopWatch::wallSeconds() + secondsForASize;
        for (int turn = 0; turn <= mostRounds && complaint.empty(); ++turn) {
            if (turn > fewestRounds && LoopWatch::wallSeconds() > end)
                break;
            const Message message = scenario.message(size.records, turn);
            const std::vector<Fact> facts = scenario.facts(size.records, turn);
            const bool plainToo = turn == 0 || !size.plainOnce;
            std::shuffle(order.begin(), order.end(), random);
            for (Contender *const contender : order) {
                const bool once = contender == plain.get() && size.plainOnce;
                if (complaint.empty() && (contender == ours.get() || plainToo))
                    complaint = deliver(scenario, message, facts, *contender, samples, turn == 0, once);
            }
            if (complaint.empty() && plainToo)
                complaint = difference(ours->client.plugin(), plain->client.plugin());
        }
        if (complaint.empty())
            state.SetIterationTime(median(samples.at("stall, ms")) * 1e-3);
    }
    if (!complaint.empty()) {
        state.SkipWithError(complaint.c_str());
        return;
    }
    const std::vector<double> &stalls = samples.at("stall, CPU ms");
    const std::vector<double> &plainStalls = samples.at("plain stall, CPU ms");
    for (std::size_t round = 0; round < stalls.size(); ++round)
        samples["stall, ours/plain"].push_back(stalls[round] / plainStalls[std::min(round, plainStalls.size() - 1)]);
    for (const auto &[name, values] : samples)
        state.counters[name] = median(values);
    state.counters["rounds"] = static_cast<double>(stalls.size());
    state.counters["plain rounds"] = static_cast<double>(plainStalls.size());
}

} // namespace

void registerScenario(const Scenario &scenario, const Scenario::Size &size, int mostRounds)
{
    benchmark::RegisterBenchmark((scenario.name + '/' + std::to_string(size.records)).c_str(),
                                 [=](benchmark::State &state) { runRounds(state, scenario, size, mostRounds); })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

void registerIdle(int milliseconds)
{
    benchmark::RegisterBenchmark("idle page",
                                 [milliseconds](benchmark::State &state) {
                                     ConsoleClient client(std::make_unique<PluginRecordingManagement>());
                                     ConsoleWindow window(client, "volumes");
                                     window.animate(true);
                                     for ([[maybe_unused]] auto iteration : state) {
                                         const Smoothness smoothness = window.watchIdle(milliseconds);
                                         state.SetIterationTime(smoothness.longestTurn);
                                         state.counters["stall, ms"] = smoothness.longestTurn * 1e3;
                                         state.counters["dropped"] = smoothness.droppedFrames;
                                         state.counters["frames"] = smoothness.frames;
                                         if (smoothness.frames == 0)
                                             state.SkipWithError("no frame was swapped");
                                     }
                                 })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}
