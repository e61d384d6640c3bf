#include "Commands.h"

#include "ActivityCommand.h"
#include "AlarmCommands.h"
#include "ArgumentConversion.h"
#include "CameraCommands.h"
#include "ClientSession.h"
#include "CommandRun.h"
#include "EachCommand.h"
#include "GroupCommands.h"
#include "HistoryCommand.h"
#include "ModelPrinter.h"
#include "NasCommands.h"
#include "OutcomeText.h"
#include "Output.h"
#include "PluginInterface.h"
#include "RecordingsCommands.h"
#include "ServerVocabulary.h"
#include "SiteCommands.h"
#include "StationVocabulary.h"
#include "StorageTables.h"
#include "UsageCommands.h"
#include "VolumeTable.h"
#include "Watch.h"

#include <algorithm>

namespace {

ExitCode list(CommandRun &run)
{
    const PluginInterface interface(*run.session().plugin()->metaObject());
    run.show({[&interface] { return interface.toJson(); }, [&interface] { printText(interface.toText()); }});
    return ExitCode::Done;
}

ExitCode call(CommandRun &run)
{
    const QString name = run.line().arguments.first();
    const QStringList texts = run.line().arguments.mid(1);
    QString error;
    const QMetaMethod method = PluginInterface(*run.session().plugin()->metaObject()).find(name, texts.size(), &error);
    if (!method.isValid())
        return run.wrongUse(error);
    const QVariantList arguments = convertArguments(texts, method, &error);
    if (!error.isEmpty())
        return run.wrongUse(error);
    const CallOutcome outcome = run.call(name, arguments);
    const bool isDoneInPart = std::any_of(outcome.parts.cbegin(), outcome.parts.cend(), [](const StationReply &part) {
        return part.returnCode == ReturnCode::Success;
    });
    if (!run.line().json || outcome.exitCode == ExitCode::Done || isDoneInPart) // a refusal's signals are printed, too
        run.show({[&] { return outcomeJson(name, outcome); }, [&] { printOutcome(outcome); }});
    return run.end(outcome);
}

/// A list that lacks the volumes that do not answer is not all there is to know.
ExitCode endOfVolumes(CommandRun &run)
{
    const CallOutcome asked = run.callStation(StationCommandName::listAlarms);
    if (asked.exitCode != ExitCode::Done)
        return ExitCode::Done; // a station that knows no alarms
    ExitCode exitCode = ExitCode::Done;
    const QVariantList alarms = asked.parts.constLast().data.toMap().value(StationKey::alarms).toList();
    for (const QVariant &alarm : alarms) {
        if (alarm.toMap().value(StationKey::kind) != StationAlarmKind::VolumeNotAnswering)
            continue;
        run.reportUnknown(alarm, alarmLine(alarm));
        exitCode = ExitCode::NoAnswer;
    }
    return exitCode;
}

ExitCode volumes(CommandRun &run)
{
    const CallOutcome outcome = run.call(QStringLiteral("getVolume"));
    const ExitCode exitCode = run.end(outcome,
                                      {[&outcome] { return modelJson(*outcome.model, outcome.modelGetter); },
                                       [&outcome] { printText(volumeTable(*outcome.model).toString()); }});
    return exitCode == ExitCode::Done ? endOfVolumes(run) : exitCode;
}

ExitCode folders(CommandRun &run)
{
    const CallOutcome outcome = run.call(QStringLiteral("getServerDir"), {run.line().arguments.value(0)});
    return run.end(
        outcome,
        {[&outcome] { return namesJson(*outcome.model); }, [&outcome] { printText(nameLines(*outcome.model)); }});
}

ExitCode mkdir(CommandRun &run)
{
    const QString path = run.line().arguments.first();
    return run.end(run.call(QStringLiteral("createDirectory"), {path}),
                   {[&path] {
                        return QJsonObject{{QStringLiteral("path"), path}};
                    },
                    {}});
}

struct CommandRow
{
    const char *name;
    ExitCode (*run)(CommandRun &);
};

ExitCode forecast(CommandRun &run);

constexpr CommandRow rows[] = {
    {"list", list},
    {"call", call},
    {"watch", watch},
    {"stations", showStations},
    {"each", runForEach},
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
    {"alarm-acknowledge", acknowledgeAlarm},
    {"storage", showStorage},
    {"recordings-unassigned", showUnassigned},
    {"recordings-assign", assignRecordings},
    {"recordings-delete", deleteRecordings},
    {"forecast", forecast},
    {"activity", showActivity},
    {"history", showHistory},
    {"nas", showNasServers},
    {"nas-add", addNasServer},
    {"nas-update", updateNasServer},
    {"nas-remove", removeNasServer},
    {"nas-folders", showNasFolders},
    {"nas-capacity", showNasCapacity},
    {"nas-volumes", addNasVolumes},
};

ExitCode runNamed(const QString &name, CommandRun &run)
{
    for (const CommandRow &row : rows) {
        if (name == QLatin1String(row.name))
            return row.run(run);
    }
    return run.wrongUse(QStringLiteral("there is no command \"%1\"").arg(name));
}

/// The command says itself what it would ask for.
ExitCode forecast(CommandRun &run)
{
    return runNamed(run.line().edit, run);
}

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
    const ExitCode exitCode = runNamed(line.command, run);
    const bool isWatch = line.command == QStringLiteral("watch"); // printed a line for each event
    if (line.json && (!isWatch || run.reply().hasError()))
        printReply(run.reply(), line);
    return exitCode;
}
