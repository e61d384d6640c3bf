#include "AlarmCommands.h"

#include "AlarmText.h"
#include "CommandRun.h"
#include "Output.h"
#include "StationVocabulary.h"
#include "UsageCommands.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

QJsonArray pastAlarmsJson(const QVariantList &alarms)
{
    QJsonArray array;
    for (const QVariant &alarm : alarms)
        array.append(pastAlarmJson(alarm.toMap()));
    return array;
}

} // namespace

TextTable pastAlarmTable(const QVariantList &alarms)
{
    TextTable table({QStringLiteral("Since"), QStringLiteral("Until"), QStringLiteral("Alarm"),
                     QStringLiteral("Acknowledged"), QStringLiteral("Note")});
    for (const QVariant &value : alarms) {
        const QVariantMap alarm = value.toMap();
        const auto text = [&alarm](const QString &key) { return printable(alarm.value(key).toString()); };
        table.addRow({text(StationKey::since), text(StationKey::until), text(StationKey::text),
                      text(StationKey::acknowledgedBy), text(StationKey::note)});
    }
    return table;
}

ExitCode showPastAlarms(CommandRun &run)
{
    QVariantMap request;
    if (run.line().has(StationKey::limit))
        request.insert(StationKey::limit, run.line().value(StationKey::limit).toInt());
    const CallOutcome outcome = run.callStation(StationCommandName::listPastAlarms, request);
    const QVariantList alarms = outcome.parts.isEmpty() ? QVariantList() : outcome.parts.constLast().data.toList();
    return run.end(outcome,
                   {[&] { return pastAlarmsJson(alarms); }, [&] { printText(pastAlarmTable(alarms).toString()); }});
}

ExitCode acknowledgeAlarm(CommandRun &run)
{
    const CommandLine &line = run.line();
    QVariantMap request{{StationKey::kind, line.arguments.at(0)}, {StationKey::subject, line.arguments.at(1)}};
    const bool isWithdrawn = line.has(QStringLiteral("withdraw"));
    if (isWithdrawn && line.has(StationKey::note))
        return run.wrongUse(QStringLiteral("alarm-acknowledge: --withdraw takes no --note"));
    if (line.has(StationKey::note))
        request.insert(StationKey::note, line.value(StationKey::note));
    QVariantList pending; // a station that was started just now has looked
    const CallOutcome looked = awaitFigures(run, &pending);
    if (looked.exitCode != ExitCode::Done)
        return run.end(looked);
    const CallOutcome outcome = run.callStation(
        isWithdrawn ? StationCommandName::withdrawAcknowledgement : StationCommandName::acknowledgeAlarm, request);
    return run.end(outcome,
                   {[&] {
                        return QJsonObject{{StationKey::kind, line.arguments.at(0)},
                                           {StationKey::subject, line.arguments.at(1)},
                                           {QStringLiteral("isAcknowledged"), !isWithdrawn}};
                    },
                    {}});
}
