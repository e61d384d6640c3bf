#include "Rounds.h"

#include "Measuring.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>

#include <benchmark/benchmark.h>

namespace {

constexpr int smokeRecords = 64;
constexpr int mostRounds = 9;

void registerAll(bool smoke)
{
    registerIdle(smoke ? 200 : 2000);
    for (const Scenario &scenario : scenarios()) {
        if (smoke) {
            registerScenario(scenario, {smokeRecords}, 1);
            continue;
        }
        for (const Scenario::Size &size : scenario.sizes)
            registerScenario(scenario, size, mostRounds);
    }
}

} // namespace

/// Google Benchmark with its own options, and one of ours: --smoke runs everything in one small size, to see that it
/// works.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool smoke = takeArgument("--smoke", argc, argv);
    const QGuiApplication application(argc, argv);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    registerAll(smoke);
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}
