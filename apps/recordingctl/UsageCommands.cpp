#include "UsageCommands.h"

#include "AlarmCommands.h"
#include "AlarmText.h"
#include "ClientSession.h"
#include "CommandRun.h"
#include "Commands.h"
#include "ModelPrinter.h"
#include "Output.h"
#include "ServerVocabulary.h"
#include "SiteCommands.h"
#include "StationVocabulary.h"
#include "TableOrder.h"
#include "Units.h"
#include "VolumeTable.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

namespace {

const QString reload = QStringLiteral("reloadStorageUsageInfo");

/// The value of a role of @p row, by the name of the role.
QVariant at(const QAbstractItemModel &model, int row, const char *role)
{
    return model.index(row, 0).data(model.roleNames().key(role));
}

qlonglong numberAt(const QAbstractItemModel &model, int row, const char *role)
{
    return at(model, row, role).toLongLong();
}

const QAbstractItemModel *usageModel(const CommandRun &run)
{
    return qobject_cast<QAbstractItemModel *>(run.read<QObject *>("getStorageUsageModel", QString()));
}

/// Null where the group has no volumes.
const QAbstractItemModel *volumesOf(const CommandRun &run, const QString &groupId)
{
    return qobject_cast<QAbstractItemModel *>(run.read<QObject *>("getGroupVolumeModel", QString(), groupId));
}

/// How the station stands, as it says itself.
struct StationState
{
    QVariantList alarms;
    QVariantList pending; ///< what it does not know yet
};

QString textOf(const QVariant &trouble, const QString &key)
{
    return trouble.toMap().value(key).toString();
}

StationState stateIn(const QVariant &data)
{
    const QVariantMap map = data.toMap();
    return {map.value(StationKey::alarms).toList(), map.value(StationKey::pending).toList()};
}

/// Asks the station for its figures and waits until it knows them, or says nothing more of its storage for longer than
/// anything that it asks may take.
struct Inquiry
{
    CallOutcome outcome; ///< of the reload
    StationState state;

    explicit Inquiry(CommandRun &run)
        : outcome(run.call(reload))
    {
        if (outcome.exitCode == ExitCode::Refused)
            return;
        const CallOutcome asked = run.callStation(StationCommandName::listAlarms);
        if (asked.exitCode == ExitCode::Done)
            state = stateIn(asked.parts.constLast().data);
        else if (outcome.exitCode == ExitCode::Done)
            outcome = asked;
        if (outcome.exitCode != ExitCode::Done || state.pending.isEmpty())
            return;
        const std::chrono::milliseconds silence = std::min<std::chrono::milliseconds>(
            std::chrono::seconds(12), run.line().timeout.value_or(defaultTimeout)); // a NAS server may take ten
        QEventLoop loop;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        QObject::connect(run.session().framework(), &HostFramework::eventDelivered, &loop,
                         [&](const QString &event, const QVariant &data) {
                             timer.start(silence);
                             if (event == StationEventName::AlarmsChanged)
                                 state = stateIn(data);
                             else if (event == ServerEvent::VolumeChanged && state.pending.isEmpty())
                                 loop.quit();
                         });
        timer.start(silence);
        loop.exec();
    }

    /// Says what is broken, and what is not known.
    ExitCode end(CommandRun &run, const ResultView &view) const
    {
        const ExitCode exitCode = run.end(outcome, view);
        QVariantList others = state.alarms;
        others.removeIf([](const QVariant &alarm) {
            return textOf(alarm, StationKey::kind) == StationReturnCode::DatabaseDamaged;
        });
        run.reportBroken(others); // the end of every command tells damage
        reportPending(run, state.pending);
        if (exitCode != ExitCode::Done)
            return exitCode;
        if (std::any_of(state.alarms.cbegin(), state.alarms.cend(), isStationError))
            return ExitCode::Refused;
        return state.pending.isEmpty() ? ExitCode::Done : ExitCode::NoAnswer;
    }
};

QJsonArray usageJson(const CommandRun &run, const QAbstractItemModel &usage)
{
    const QJsonArray unordered = modelJson(usage, QStringLiteral("getStorageUsageModel"));
    QJsonArray groups;
    for (const int row : usageRows(usage)) {
        QJsonObject group = unordered.at(row).toObject();
        const QAbstractItemModel *volumes = volumesOf(run, group.value(QStringLiteral("id")).toString());
        group.insert(QStringLiteral("volumes"),
                     volumes ? modelJson(*volumes, QStringLiteral("getGroupVolumeModel")) : QJsonArray());
        groups.append(group);
    }
    return groups;
}

/// Those that the plug-in alone raised, and the station's own.
QJsonArray alarmsJson(const QList<StatusMonitorPlugin::Alarm> &raised, const QVariantList &stationAlarms)
{
    QJsonArray array;
    for (StatusMonitorPlugin::Alarm alarm : raised) {
        alarm.source.clear(); // of the station that was asked
        if (alarm.word.isEmpty())
            array.append(alarmJson(alarm));
    }
    for (const QVariant &alarm : stationAlarms)
        array.append(stationAlarmJson(alarm.toMap()));
    return array;
}

void printUsage(const CommandRun &run, const QAbstractItemModel &usage)
{
    printText(usageTable(usage).toString());
    for (const int row : usageRows(usage)) {
        if (const QAbstractItemModel *volumes = volumesOf(run, at(usage, row, "idRole").toString())) {
            printLine(QStringLiteral("\n%1").arg(printable(at(usage, row, "nameRole").toString())));
            printText(groupVolumeTable(*volumes).toString());
        }
    }
}

} // namespace

QList<int> usageRows(const QAbstractItemModel &usage)
{
    const QCollator collator = tableOrder();
    QList<std::pair<QCollatorSortKey, int>> keys;
    for (int row = 0; row < usage.rowCount(); ++row)
        keys.emplace_back(collator.sortKey(at(usage, row, "nameRole").toString()), row);
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto &one, const auto &other) { return one.first < other.first; });
    QList<int> rows;
    for (const auto &[key, row] : keys)
        rows.append(row);
    return rows;
}

QStringList usageHeaders()
{
    return {QStringLiteral("Group"), QStringLiteral("Recorded"), QStringLiteral("Remaining"),
            QStringLiteral("Reserved time"), QStringLiteral("Per day")};
}

QStringList usageCells(const QAbstractItemModel &usage, int row)
{
    const qlonglong perDay = numberAt(usage, row, "oneDayUsageRole"); // bytes
    return {at(usage, row, "nameRole").toString(), daysText(numberAt(usage, row, "recordedDaysRole")),
            daysText(numberAt(usage, row, "remainDaysRole")), minutesText(numberAt(usage, row, "reserveTimeRole")),
            perDay < 0 ? daysText(perDay) : sizeText(perDay / 1024)};
}

TextTable usageTable(const QAbstractItemModel &usage)
{
    TextTable table(usageHeaders());
    for (const int column : {1, 2, 3, 4})
        table.setRightAligned(column);
    for (const int row : usageRows(usage))
        table.addRow(usageCells(usage, row));
    return table;
}

TextTable alarmTable(const QAbstractItemModel &alarms)
{
    QStringList columns{QStringLiteral("Since"), QStringLiteral("Alarm"), QStringLiteral("Group"), QStringLiteral("Id"),
                        QStringLiteral("Station")};
    bool isAnyAcknowledged = false;
    for (int row = 0; row < alarms.rowCount(); ++row)
        isAnyAcknowledged |= at(alarms, row, "acknowledgedAtRole").toDateTime().isValid();
    if (isAnyAcknowledged)
        columns += {QStringLiteral("Acknowledged"), QStringLiteral("Note")};
    TextTable table(columns);
    for (int row = 0; row < alarms.rowCount(); ++row) {
        const auto kind = static_cast<StatusMonitorPlugin::Kind>(at(alarms, row, "kindRole").toInt());
        const QString subject = at(alarms, row, "subjectRole").toString();
        const QString words = kind == StatusMonitorPlugin::VolumeError && !subject.isEmpty()
            ? QStringLiteral("%1: %2").arg(alarmWords(kind), subject)
            : alarmWords(kind, at(alarms, row, "textRole").toString());
        QStringList cells{at(alarms, row, "sinceRole").toDateTime().toString(Qt::ISODate), words,
                          at(alarms, row, "groupNameRole").toString(), at(alarms, row, "groupIdRole").toString(),
                          at(alarms, row, "sourceRole").toString()};
        if (isAnyAcknowledged)
            cells += {at(alarms, row, "acknowledgedByRole").toString(), at(alarms, row, "noteRole").toString()};
        table.addRow(cells);
    }
    return table;
}

CallOutcome awaitFigures(CommandRun &run, QVariantList *pending)
{
    const Inquiry inquiry(run);
    *pending = inquiry.state.pending;
    return inquiry.outcome;
}

void reportPending(CommandRun &run, const QVariantList &pending)
{
    for (const QVariant &trouble : pending) {
        const QDateTime since = QDateTime::fromString(textOf(trouble, StationKey::since), Qt::ISODateWithMs);
        run.reportUnknown(trouble,
                          QStringLiteral("unknown, asked since %1: %2")
                              .arg(since.toLocalTime().toString(Qt::ISODate), textOf(trouble, StationKey::text)));
    }
}

ExitCode showUsage(CommandRun &run)
{
    if (run.line().has(QStringLiteral("all")))
        return showUsageOfAll(run);
    const Inquiry inquiry(run);
    const QAbstractItemModel *usage = usageModel(run);
    return inquiry.end(run, {[&] { return usageJson(run, *usage); }, [&] { printUsage(run, *usage); }});
}

ExitCode showAlarms(CommandRun &run)
{
    if (run.line().has(QStringLiteral("past")))
        return showPastAlarms(run);
    if (run.line().has(QStringLiteral("limit")))
        return run.wrongUse(QStringLiteral("alarms: --limit goes with --past"));
    const Inquiry inquiry(run);
    const StatusMonitorPlugin &monitor = *run.session().statusMonitor();
    return inquiry.end(run,
                       {[&] { return alarmsJson(monitor.alarms(), inquiry.state.alarms); },
                        [&] { printText(alarmTable(monitor).toString()); }});
}
