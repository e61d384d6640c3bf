#include "GroupForecast.h"

#include "CommandRun.h"
#include "EditRequestData.h"
#include "Output.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "StorageJson.h"
#include "Units.h"
#include "UsageCommands.h"

namespace {
/// "6 days -> 3 days", or one of them where they are the same.
QString changeText(const QString &now, const QString &then)
{
    return now == then ? now : QStringLiteral("%1 -> %2").arg(now, then);
}

/// What @p text makes of the value of @p key now and then; "-" where there is no group.
QString changeText(const QVariantMap &group, const QString &key, QString (*text)(const QVariant &value))
{
    const auto of = [&](const QString &time) {
        return group.contains(time) ? text(group.value(time).toMap().value(key)) : QStringLiteral("-");
    };
    return changeText(of(StationKey::now), of(StationKey::then));
}

QString days(const QVariant &value)
{
    return daysText(value.toLongLong());
}

QString minutes(const QVariant &value)
{
    return minutesText(value.toLongLong());
}

QString megabytes(const QVariant &value)
{
    return sizeText(value.toLongLong() * 1024);
}

QString bytes(const QVariant &value)
{
    const qlonglong number = value.toLongLong();
    return sizeText(number < 0 ? number : number / 1024);
}

QString plain(const QVariant &value)
{
    return value.toString();
}

void printTables(const QVariantMap &forecast)
{
    printText(forecastGroupTable(forecast).toString());
    if (!forecast.value(StationKey::volumes).toList().isEmpty()) {
        printLine({});
        printText(forecastVolumeTable(forecast).toString());
    }
}
} // namespace

ExitCode showForecast(CommandRun &run, const QString &invokable, const QVariantList &arguments)
{
    QVariantList pending;
    const CallOutcome looked = awaitFigures(run, &pending);
    if (looked.exitCode != ExitCode::Done)
        return run.end(looked);
    CallOutcome outcome = run.callStation(
        StationCommandName::forecast,
        QVariantMap{{StationKey::command, invokable}, {StationKey::data, editRequestData(invokable, arguments)}});
    const QVariantMap forecast = outcome.parts.isEmpty() ? QVariantMap() : outcome.parts.constLast().data.toMap();
    const ResultView view{[&] { return forecastJson(run.line().edit, forecast); }, [&] { printTables(forecast); }};
    const QString returnCode = forecast.value(StationKey::returnCode).toString();
    if (outcome.exitCode == ExitCode::Done && returnCode != ReturnCode::Success) {
        outcome.exitCode = ExitCode::Refused;
        outcome.returnCode = returnCode;
        outcome.error = QStringLiteral("%1: the station would refuse: %2").arg(invokable, returnCode);
        outcome.parts = {{returnCode, forecast.value(StationKey::errors)}};
        if (!forecast.value(StationKey::groups).toList().isEmpty())
            run.show(view); // what the other entries would do
    }
    return run.end(outcome, view);
}

TextTable forecastGroupTable(const QVariantMap &forecast)
{
    TextTable table({QStringLiteral("Group"), QStringLiteral("Recorded"), QStringLiteral("Remaining"),
                     QStringLiteral("Reserved time"), QStringLiteral("Per day")});
    for (const int column : {1, 2, 3, 4})
        table.setRightAligned(column);
    const QVariantList groups = forecast.value(StationKey::groups).toList();
    for (const QVariant &value : groups) {
        const QVariantMap group = value.toMap();
        table.addRow({changeText(group, FieldKey::recordingGroupName, plain),
                      changeText(group, StationKey::recordedDays, days),
                      changeText(group, StationKey::remainingDays, days),
                      changeText(group, FieldKey::recordingGroupReservedTime, minutes),
                      changeText(group, StationKey::bytesPerDay, bytes)});
    }
    return table;
}

TextTable forecastVolumeTable(const QVariantMap &forecast)
{
    TextTable table(
        {QStringLiteral("Volume"), QStringLiteral("Path"), QStringLiteral("Size"), QStringLiteral("Reserved")});
    for (const int column : {2, 3})
        table.setRightAligned(column);
    const QVariantList volumes = forecast.value(StationKey::volumes).toList();
    for (const QVariant &value : volumes) {
        const QVariantMap volume = value.toMap();
        table.addRow({volume.value(FieldKey::volumeName).toString(), volume.value(FieldKey::volumePath).toString(),
                      bytes(volume.value(StationKey::size)), changeText(volume, FieldKey::reserveSpace, megabytes)});
    }
    return table;
}
