#include "CameraCommands.h"

#include "CommandRun.h"
#include "JsonFields.h"
#include "Output.h"
#include "StationVocabulary.h"
#include "TextTable.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

const QString cameraName = QStringLiteral("camName");
const QString streamCount = QStringLiteral("streams");

QVariant answerOf(const CallOutcome &outcome)
{
    return outcome.parts.isEmpty() ? QVariant() : outcome.parts.last().data;
}

QJsonArray camerasJson(const QVariantList &cameras)
{
    QJsonArray array;
    for (const QVariant &camera : cameras)
        array.append(QJsonObject{{QStringLiteral("name"), camera.toMap().value(cameraName).toString()},
                                 {streamCount, camera.toMap().value(streamCount).toInt()}});
    return array;
}

TextTable cameraTable(const QVariantList &cameras)
{
    TextTable table({QStringLiteral("Name"), QStringLiteral("Streams")});
    table.setRightAligned(1);
    for (const QVariant &camera : cameras)
        table.addRow({camera.toMap().value(cameraName).toString(), camera.toMap().value(streamCount).toString()});
    return table;
}

} // namespace

ExitCode showCameras(CommandRun &run)
{
    const CallOutcome outcome = run.callStation(StationCommandName::listCameras);
    const QVariantList cameras = answerOf(outcome).toList();
    return run.end(
        outcome,
        {[&cameras] { return camerasJson(cameras); }, [&cameras] { printText(cameraTable(cameras).toString()); }});
}

ExitCode addCamera(CommandRun &run)
{
    const QString name = run.line().arguments.first();
    const int streams = run.line().value(streamCount, QStringLiteral("1")).toInt();
    const QVariantMap camera{{cameraName, name}, {streamCount, streams}};
    return run.end(run.callStation(StationCommandName::addCamera, camera),
                   {[&] {
                        return QJsonObject{{QStringLiteral("name"), name}, {streamCount, streams}};
                    },
                    {}});
}

ExitCode removeCamera(CommandRun &run)
{
    const QString name = run.line().arguments.first();
    return run.end(run.callStation(StationCommandName::removeCamera, QVariantMap{{cameraName, name}}),
                   {[&name] {
                        return QJsonObject{{QStringLiteral("name"), name}};
                    },
                    {}});
}

ExitCode makeSampleSite(CommandRun &run)
{
    const CallOutcome outcome = run.callStation(StationCommandName::createSampleSite, QVariantMap());
    return run.end(outcome, {[&outcome] { return plainJson(answerOf(outcome)); }, {}});
}
