#include "CameraCommands.h"

#include "CommandRun.h"
#include "Output.h"
#include "TextTable.h"
#include "ValueText.h"

namespace {

const QString cameraName = QStringLiteral("camName");
const QString streamCount = QStringLiteral("streams");

/// Sends @p command and prints, when it is done, nothing or what @p printResult does; with --json the answer.
ExitCode station(CommandRun &run, const QString &command, const QVariant &data,
                 const std::function<void(const QVariant &answer)> &printResult = {})
{
    const CallOutcome outcome = run.callStation(command, data);
    const QVariant answer = outcome.parts.isEmpty() ? QVariant() : outcome.parts.last().data;
    const QJsonObject json{{QStringLiteral("call"), command},
                           {QStringLiteral("returnCode"), outcome.returnCode},
                           {QStringLiteral("data"), valueJson(answer)}};
    return run.end(outcome, json, [&] {
        if (printResult)
            printResult(answer);
    });
}

} // namespace

ExitCode showCameras(CommandRun &run)
{
    return station(run, QStringLiteral("station.listCameras"), {}, [](const QVariant &answer) {
        TextTable table({QStringLiteral("Name"), QStringLiteral("Streams")});
        table.setRightAligned(1);
        const QVariantList cameras = answer.toList();
        for (const QVariant &camera : cameras)
            table.addRow({camera.toMap().value(cameraName).toString(), camera.toMap().value(streamCount).toString()});
        printText(table.toString());
    });
}

ExitCode addCamera(CommandRun &run)
{
    const int streams = run.line().value(streamCount, QStringLiteral("1")).toInt();
    return station(run, QStringLiteral("station.addCamera"),
                   QVariantMap{{cameraName, run.line().arguments.first()}, {streamCount, streams}});
}

ExitCode removeCamera(CommandRun &run)
{
    return station(run, QStringLiteral("station.removeCamera"),
                   QVariantMap{{cameraName, run.line().arguments.first()}});
}

ExitCode makeSampleSite(CommandRun &run)
{
    return station(run, QStringLiteral("station.createSampleSite"), QVariantMap());
}
