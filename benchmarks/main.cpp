#include "Case.h"
#include "Measuring.h"
#include "Rounds.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

namespace {

constexpr int smokeSize = 32;
constexpr int smokeRounds = 2;
constexpr int mostRounds = 51;

std::vector<Case> allCases()
{
    std::vector<Case> cases;
    for (const auto &part : {replyCases(), treeCases(), eventCases(), queryCases(), viewCases()})
        cases.insert(cases.end(), part.begin(), part.end());
    return cases;
}

void registerAll(bool smoke)
{
    for (const Case &entry : allCases()) {
        if (smoke) {
            registerCase(entry, smokeSize, smokeRounds);
            continue;
        }
        for (const int size : entry.sizes)
            registerCase(entry, size, mostRounds);
    }
    registerSignalCounts();
    registerHeapCounts();
    registerManyModels(smoke ? std::vector{smokeSize} : std::vector{100, 1000, 10'000, 50'000});
}

} // namespace

/// Google Benchmark with its own options, and two of ours:
/// --smoke runs everything in one small size, to see that it works;
/// --growth counts instructions under callgrind, see countInstructions().
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool smoke = takeArgument("--smoke", argc, argv);
    const bool growth = takeArgument("--growth", argc, argv);
    const QGuiApplication application(argc, argv);
    if (growth)
        return countInstructions(allCases());
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    registerAll(smoke);
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}
