#include "BareClient.h"
#include "Benchmarks.h"
#include "Lines.h"
#include "Program.h"
#include "SiteClient.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>

namespace {
/// Part of a measurement: one client, "--client URL STATIONS [window]".
int runClient(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("RECORDING_TRACE_LEVEL"))
        qputenv("RECORDING_TRACE_LEVEL", "off"); // refusals while the broker is away are no news
    const QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fleet-benchmark"));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const QStringList arguments = QCoreApplication::arguments();
    SiteClient client({arguments.value(2), arguments.value(3).toInt(), arguments.value(4) == QStringLiteral("window")});
    const InputLines input([&client](const QString &word) { client.obey(word); });
    client.start();
    return QCoreApplication::exec();
}

/// Another part: "--echo PORT ASK-TOPIC ANSWER-TOPIC SIZE".
int runEcho(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    runBareEcho(arguments.value(2).toUShort(), arguments.value(3).toUtf8(), arguments.value(4).toUtf8(),
                arguments.value(5).toLongLong());
    return EXIT_SUCCESS;
}

int runPart(const QByteArray &part, int argc, char **argv)
{
    try {
        return part == "--client" ? runClient(argc, argv) : runEcho(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
} // namespace

/// Google Benchmark with its own options, and two of ours: --smoke runs everything in a small size, to see that it
/// works; --long watches a thousand stations for an hour instead of two minutes.
int main(int argc, char **argv)
{
    const QByteArray part = argc > 1 ? argv[1] : "";
    if (part == "--client" || part == "--echo")
        return runPart(part, argc, argv);
    Scale scale;
    scale.isSmoke = takeFlag("--smoke", argc, argv);
    if (takeFlag("--long", argc, argv))
        scale.watch = std::chrono::hours(1);
    const QCoreApplication application(argc, argv);
    addBody(scale);
    addRoundTrip(scale);
    addSites(scale);
    addBrokerRestart(scale);
    return runBenchmarks(argc, argv);
}
