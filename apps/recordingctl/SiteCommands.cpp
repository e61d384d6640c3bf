#include "SiteCommands.h"

#include "ClientSession.h"
#include "CommandRun.h"
#include "Commands.h"
#include "JsonFields.h"
#include "ModelPrinter.h"
#include "Output.h"
#include "TableOrder.h"
#include "Units.h"
#include "UsageCommands.h"

#include <QAbstractItemModel>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

QString timeText(const QDateTime &time)
{
    return time.isValid() ? time.toLocalTime().toString(Qt::ISODate) : QStringLiteral("-");
}

QString bytesText(double bytes)
{
    return sizeText(bytes < 0 ? -1 : static_cast<qlonglong>(bytes / 1024));
}

QString missingText(const StationFigures &figures)
{
    if (!figures.isTold() || (figures.missingDays == 0 && figures.unknownGroups > 0))
        return daysText(-1);
    return figures.missingDays > 0 ? daysText(figures.missingDays) : QStringLiteral("-");
}

QString alarmsText(const StationDirectory::Record &record)
{
    if (!record.areAlarmsTold && record.alarms == 0)
        return daysText(-1); // "unknown"
    return record.areAlarmsTold ? QString::number(record.alarms) : QStringLiteral("%1 or more").arg(record.alarms);
}

QJsonValue numberJson(double number)
{
    return number < 0 ? QJsonValue() : QJsonValue(number);
}

/// Says which stations are not up, and which have told nothing; the command's exit code.
ExitCode reportSilence(CommandRun &run, const QList<ListedStation> &stations)
{
    ExitCode exitCode = ExitCode::Done;
    for (const ListedStation &station : stations) {
        const StationState &state = station.record.presence.state;
        if (!station.record.isUp()) {
            const QDateTime &since = station.record.presence.since;
            run.refused(QStringLiteral("LinkDown"),
                        QStringLiteral("%1: %2%3%4")
                            .arg(station.shownId(), stateWord(state),
                                 since.isValid() ? QStringLiteral(" since ") + timeText(since) : QString(),
                                 state.reason.isEmpty() ? QString() : QStringLiteral(": ") + state.reason));
            exitCode = ExitCode::Refused;
        } else if (!station.record.figures.isTold()) {
            run.reportUnknown(QVariantMap{{QStringLiteral("kind"), QStringLiteral("FiguresNotTold")},
                                          {QStringLiteral("subject"), station.id},
                                          {QStringLiteral("text"), QStringLiteral("The station has told no figures.")}},
                              QStringLiteral("unknown: %1 has told no figures").arg(station.shownId()));
            exitCode = exitCode == ExitCode::Done ? ExitCode::NoAnswer : exitCode;
        }
    }
    return exitCode;
}

const QAbstractItemModel *usageOf(const CommandRun &run, const ListedStation &station)
{
    const QString source = station.id == run.session().directStation() ? QString() : station.id;
    return qobject_cast<QAbstractItemModel *>(run.read<QObject *>("getStorageUsageModel", source));
}

QJsonArray usageJson(const CommandRun &run, const QList<ListedStation> &stations)
{
    QJsonArray groups;
    for (const ListedStation &station : stations) {
        const QAbstractItemModel &usage = *usageOf(run, station);
        const QJsonArray ofStation = modelJson(usage, QStringLiteral("getStorageUsageModel"));
        for (const int row : usageRows(usage)) {
            QJsonObject group = ofStation.at(row).toObject();
            group.insert(QStringLiteral("station"), textJson(station.id));
            group.insert(QStringLiteral("stationName"), textJson(station.name()));
            group.insert(QStringLiteral("figuresAt"), timeJson(figuresTime(station.record)));
            groups.append(group);
        }
    }
    return groups;
}

TextTable usageTable(const CommandRun &run, const QList<ListedStation> &stations)
{
    QStringList headers{QStringLiteral("Station")};
    headers += usageHeaders();
    headers += QStringLiteral("Figures of");
    TextTable table(headers);
    for (const int column : {2, 3, 4, 5})
        table.setRightAligned(column);
    for (const ListedStation &station : stations) {
        const QAbstractItemModel &usage = *usageOf(run, station);
        const QDateTime time = figuresTime(station.record);
        for (const int row : usageRows(usage))
            table.addRow(QStringList{station.shownId()} + usageCells(usage, row)
                         + QStringList{time.isValid() ? timeText(time) : QStringLiteral("now")});
        if (!station.record.figures.isTold())
            table.addRow(QStringList{station.shownId()} + QStringList(usageHeaders().size(), daysText(-1))
                         + QStringList{QStringLiteral("-")});
    }
    return table;
}

} // namespace

SiteList awaitStations(CommandRun &run, bool withFigures)
{
    const ClientSession &session = run.session();
    const StationDirectory &directory = *session.stations();
    run.waitForStation(); // whether or not that one is up
    QEventLoop loop;
    QTimer quiet;
    quiet.setSingleShot(true);
    QObject::connect(&quiet, &QTimer::timeout, &loop, &QEventLoop::quit);
    const auto wait = [&] {
        const StationState state = session.stationState();
        const bool isOutOfReach = state.kind == StationState::Kind::Down && state.retryAt.isValid();
        if (isOutOfReach)
            quiet.start(0ms);
        else if (!directory.whyIncomplete().isEmpty())
            quiet.stop();
        else
            quiet.start(directory.count() > 0 && (!withFigures || directory.untold() == 0) ? 300ms : 1500ms);
    };
    QObject::connect(&directory, &StationDirectory::changed, &loop, wait);
    QObject::connect(&directory, &StationDirectory::completenessChanged, &loop, wait);
    QObject::connect(&session, &ClientSession::stationStateChanged, &loop, wait);
    QTimer::singleShot(run.line().timeout.value_or(defaultTimeout), &loop, &QEventLoop::quit);
    wait();
    loop.exec();

    QList<ListedStation> stations;
    const QStringList ids = directory.relayPaths();
    for (const QString &id : ids)
        stations.append({id, directory.record(id)});
    const QCollator collator = tableOrder();
    std::sort(stations.begin(), stations.end(), [&collator](const ListedStation &one, const ListedStation &other) {
        const int order = collator.compare(one.id, other.id);
        return order != 0 ? order < 0 : one.id < other.id;
    });
    return {stations, directory.whyIncomplete()};
}

QString stateWord(const StationState &state)
{
    switch (state.kind) {
    case StationState::Kind::Up:
        return QStringLiteral("up");
    case StationState::Kind::Down:
        return state.isSilent ? QStringLiteral("silent") : QStringLiteral("down");
    case StationState::Kind::Connecting:
        return QStringLiteral("connecting");
    case StationState::Kind::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

QDateTime figuresTime(const StationDirectory::Record &record)
{
    if (record.isUp() || !record.figures.isTold())
        return {};
    return record.presence.since.isValid() ? record.presence.since : record.toldAt;
}

TextTable stationTable(const QList<ListedStation> &stations)
{
    TextTable table({QStringLiteral("Station"), QStringLiteral("Name"), QStringLiteral("State"),
                     QStringLiteral("Since"), QStringLiteral("Days short"), QStringLiteral("Free"),
                     QStringLiteral("Alarms"), QStringLiteral("Version")});
    for (const int column : {4, 5, 6})
        table.setRightAligned(column);
    for (const ListedStation &station : stations) {
        const StationDirectory::Record &record = station.record;
        table.addRow({station.shownId(), station.name(), stateWord(record.presence.state),
                      timeText(record.presence.since), missingText(record.figures), bytesText(record.figures.freeBytes),
                      alarmsText(record),
                      record.presence.version.isEmpty() ? QStringLiteral("-") : record.presence.version});
    }
    return table;
}

QJsonObject stationJson(const ListedStation &station)
{
    const StationDirectory::Record &record = station.record;
    const StationFigures &figures = record.figures;
    const bool isMissingKnown = figures.isTold() && (figures.missingDays > 0 || figures.unknownGroups == 0);
    return {{QStringLiteral("id"), textJson(station.id)},
            {QStringLiteral("name"), textJson(station.name())},
            {QStringLiteral("address"), textJson(record.presence.address)},
            {QStringLiteral("version"), textJson(record.presence.version)},
            {QStringLiteral("state"), stateWord(record.presence.state)},
            {QStringLiteral("since"), timeJson(record.presence.since)},
            {QStringLiteral("reason"), textJson(record.presence.state.reason)},
            {QStringLiteral("groups"), numberJson(figures.groups)},
            {QStringLiteral("shortGroups"), numberJson(figures.isTold() ? figures.shortGroups : -1)},
            {QStringLiteral("missingDays"), numberJson(isMissingKnown ? figures.missingDays : -1)},
            {QStringLiteral("availableBytes"), numberJson(figures.freeBytes)},
            {QStringLiteral("alarms"), numberJson(record.areAlarmsTold ? record.alarms : -1)},
            {QStringLiteral("errors"), numberJson(record.areAlarmsTold ? record.errors : -1)},
            {QStringLiteral("figuresAt"), timeJson(figuresTime(record))}};
}

ExitCode showStations(CommandRun &run)
{
    const SiteList list = awaitStations(run, true);
    if (!list.whyIncomplete.isEmpty())
        return run.noAnswer(list.whyIncomplete);
    const QList<ListedStation> &stations = list.stations;
    run.show({[&stations] {
                  QJsonArray array;
                  for (const ListedStation &station : stations)
                      array.append(stationJson(station));
                  return array;
              },
              [&stations] { printText(stationTable(stations).toString()); }});
    return reportSilence(run, stations);
}

ExitCode showUsageOfAll(CommandRun &run)
{
    const SiteList list = awaitStations(run, true);
    if (!list.whyIncomplete.isEmpty())
        return run.noAnswer(list.whyIncomplete);
    const QList<ListedStation> &stations = list.stations;
    run.show({[&] { return usageJson(run, stations); }, [&] { printText(usageTable(run, stations).toString()); }});
    return reportSilence(run, stations);
}
