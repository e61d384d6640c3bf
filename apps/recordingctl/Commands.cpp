#include "Commands.h"

#include "ArgumentConversion.h"
#include "CameraCommands.h"
#include "ClientSession.h"
#include "CommandRun.h"
#include "GroupCommands.h"
#include "ModelPrinter.h"
#include "NasCommands.h"
#include "OutcomeText.h"
#include "Output.h"
#include "PluginInterface.h"
#include "StationProtocol.h"
#include "UsageCommands.h"
#include "VolumeTable.h"
#include "Watch.h"

namespace {

ExitCode list(CommandRun &run)
{
    const PluginInterface interface(*run.session().plugin()->metaObject());
    if (run.line().json)
        printLine(indentedJson(interface.toJson()));
    else
        printText(interface.toText());
    return ExitCode::Done;
}

ExitCode call(CommandRun &run)
{
    const QString name = run.line().arguments.first();
    const QStringList texts = run.line().arguments.mid(1);
    QString error;
    const QMetaMethod method = PluginInterface(*run.session().plugin()->metaObject()).find(name, texts.size(), &error);
    if (!method.isValid())
        return wrongUse(error);
    const QVariantList arguments = convertArguments(texts, method, &error);
    if (!error.isEmpty())
        return wrongUse(error);
    const CallOutcome outcome = run.call(name, arguments);
    if (!run.line().json)
        printOutcome(outcome); // a refusal's signals are its result, too
    return run.end(name, outcome);
}

/// A list that lacks the volumes that do not answer is not all there is to know.
ExitCode endOfVolumes(CommandRun &run)
{
    const CallOutcome asked = run.callStation(StationOwnCommandName::listAlarms);
    if (asked.exitCode != ExitCode::Done)
        return ExitCode::Done; // a station that knows no alarms
    QVariantList alarms = asked.parts.constLast().data.toMap().value(StationKey::alarms).toList();
    alarms.removeIf([](const QVariant &alarm) {
        return alarm.toMap().value(StationKey::kind) != StationAlarmKind::VolumeNotAnswering;
    });
    printStationErrors(alarms);
    return alarms.isEmpty() ? ExitCode::Done : ExitCode::NoAnswer;
}

ExitCode volumes(CommandRun &run)
{
    const QString name = QStringLiteral("getVolume");
    const CallOutcome outcome = run.call(name);
    const ExitCode exitCode = run.end(name, outcome, [&outcome] { printText(volumeTable(*outcome.model).toString()); });
    return exitCode == ExitCode::Done ? endOfVolumes(run) : exitCode;
}

ExitCode folders(CommandRun &run)
{
    const QString name = QStringLiteral("getServerDir");
    const CallOutcome outcome = run.call(name, {run.line().arguments.value(0)});
    return run.end(name, outcome, [&outcome] { printText(nameLines(*outcome.model)); });
}

ExitCode mkdir(CommandRun &run)
{
    const QString name = QStringLiteral("createDirectory");
    return run.end(name, run.call(name, {run.line().arguments.first()}));
}

struct CommandRow
{
    const char *name;
    ExitCode (*run)(CommandRun &);
};

constexpr CommandRow rows[] = {
    {"list", list},
    {"call", call},
    {"watch", watch},
    {"volumes", volumes},
    {"folders", folders},
    {"mkdir", mkdir},
    {"tree", showTree},
    {"groups", showGroups},
    {"group-add", addGroup},
    {"group-update", updateGroup},
    {"group-remove", removeGroups},
    {"group-path-add", addGroupPaths},
    {"group-path-set", setGroupPaths},
    {"group-path-remove", removeGroupPaths},
    {"group-members", showMembers},
    {"cameras", showCameras},
    {"camera-add", addCamera},
    {"camera-remove", removeCamera},
    {"site-sample", makeSampleSite},
    {"usage", showUsage},
    {"alarms", showAlarms},
    {"nas", showNasServers},
    {"nas-add", addNasServer},
    {"nas-update", updateNasServer},
    {"nas-remove", removeNasServer},
    {"nas-folders", showNasFolders},
    {"nas-capacity", showNasCapacity},
    {"nas-volumes", addNasVolumes},
};

} // namespace

QStringList runnableCommands()
{
    QStringList names;
    for (const CommandRow &row : rows)
        names.append(QLatin1String(row.name));
    return names;
}

ExitCode runCommand(ClientSession &session, const CommandLine &line)
{
    CommandRun run(session, line);
    for (const CommandRow &row : rows) {
        if (line.command == QLatin1String(row.name))
            return row.run(run);
    }
    return wrongUse(QStringLiteral("there is no command \"%1\"").arg(line.command));
}
