#include "Case.h"
#include "Program.h"

#include <QGuiApplication>

#include <cstdio>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#include <valgrind/callgrind.h>
#pragma GCC diagnostic pop

namespace {

constexpr int smokeSize = 32;

std::vector<Case> allCases()
{
    std::vector<Case> cases;
    for (const auto &part : {replyCases(), eventCases(), queryCases(), viewCases()})
        cases.insert(cases.end(), part.begin(), part.end());
    return cases;
}

constexpr int countedRuns = 10; // one alone shows the lists of freed blocks that the work before left behind

// Every variant runs, as the results are compared when all are there.
void count(const std::vector<Variant> &variants, const std::string &name)
{
    for (const Variant &variant : variants) {
        const bool isCounted = variant.name == "ours";
        for (int run = 0; run < (isCounted ? countedRuns : 1); ++run) {
            variant.prepare();
            if (isCounted)
                CALLGRIND_START_INSTRUMENTATION;
            variant.run();
            CALLGRIND_STOP_INSTRUMENTATION;
        }
    }
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    CALLGRIND_ZERO_STATS;
}

// Under callgrind (--instr-atstart=no): the instructions of "ours" alone go into a dump named "<case>/<size>".
int countInstructions()
{
    if (!RUNNING_ON_VALGRIND) {
        std::fputs("--growth counts instructions and must run under valgrind --tool=callgrind\n", stderr);
        return 1;
    }
    for (const Case &entry : allCases()) {
        for (const int size : entry.growth) {
            const std::string name = entry.name + '/' + std::to_string(size);
            entry.run(size, [&name](const std::vector<Variant> &variants) { count(variants, name); });
        }
    }
    return 0;
}

void addAll(bool isSmoke)
{
    const Plan plan = isSmoke ? Plan{.rounds = 2} : Plan{.rounds = 51, .seconds = 3};
    for (const Case &entry : allCases()) {
        add(entry.name, isSmoke ? std::vector{smokeSize} : entry.sizes, [=](benchmark::State &state, int size) {
            entry.run(size, [&](const std::vector<Variant> &variants) { measure(state, variants, plan); });
        });
    }
    addSignalCounts();
    addHeapCounts();
}

} // namespace

/// Google Benchmark with its own options, and two of ours:
/// --smoke runs everything in one small size, to see that it works;
/// --growth counts instructions under callgrind, see countInstructions().
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool isSmoke = takeFlag("--smoke", argc, argv);
    const bool isGrowth = takeFlag("--growth", argc, argv);
    const QGuiApplication application(argc, argv);
    if (isGrowth)
        return countInstructions();
    addAll(isSmoke);
    return runBenchmarks(argc, argv);
}
