#include "UsageCommands.h"

#include "ClientSession.h"
#include "CommandRun.h"
#include "Commands.h"
#include "ModelPrinter.h"
#include "OutcomeText.h"
#include "Output.h"
#include "StationProtocol.h"
#include "Units.h"
#include "ValueText.h"
#include "VolumeTable.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <functional>

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
        const CallOutcome asked = run.callStation(StationOwnCommandName::listAlarms);
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
                             if (event == StationOwnEventName::AlarmsChanged)
                                 state = stateIn(data);
                             else if (event == StationEventName::VolumeChanged && state.pending.isEmpty())
                                 loop.quit();
                         });
        timer.start(silence);
        loop.exec();
    }

    /// Says on standard error what is broken, and what is not known.
    ExitCode end(CommandRun &run, const QJsonObject &json, const std::function<void()> &printResult) const
    {
        const ExitCode exitCode = run.end(outcome, json, printResult);
        QVariantList others = state.alarms;
        others.removeIf([](const QVariant &alarm) {
            return textOf(alarm, StationKey::kind) == StationReturnCode::DatabaseDamaged;
        });
        printStationErrors(others); // the end of every command tells damage
        for (const QVariant &trouble : state.pending) {
            const QDateTime since = QDateTime::fromString(textOf(trouble, StationKey::since), Qt::ISODateWithMs);
            printError(QStringLiteral("unknown, asked since %1: %2")
                           .arg(since.toLocalTime().toString(Qt::ISODate), textOf(trouble, StationKey::text)));
        }
        if (exitCode != ExitCode::Done)
            return exitCode;
        if (std::any_of(state.alarms.cbegin(), state.alarms.cend(), isStationError))
            return ExitCode::Refused;
        return state.pending.isEmpty() ? ExitCode::Done : ExitCode::NoAnswer;
    }

    QJsonObject json() const
    {
        QJsonObject object = outcomeJson(reload, outcome);
        object.insert(QStringLiteral("stationAlarms"), valueJson(state.alarms));
        object.insert(QStringLiteral("pending"), valueJson(state.pending));
        return object;
    }
};

QJsonArray usageJson(const CommandRun &run, const QAbstractItemModel &usage)
{
    QJsonArray groups = modelJson(usage);
    for (qsizetype row = 0; row < groups.size(); ++row) {
        QJsonObject group = groups[row].toObject();
        const QAbstractItemModel *volumes = volumesOf(run, group.value(QStringLiteral("idRole")).toString());
        group.insert(QStringLiteral("volumes"), volumes ? modelJson(*volumes) : QJsonArray());
        groups[row] = group;
    }
    return groups;
}

void printUsage(const CommandRun &run, const QAbstractItemModel &usage)
{
    printText(usageTable(usage).toString());
    for (int row = 0; row < usage.rowCount(); ++row) {
        if (const QAbstractItemModel *volumes = volumesOf(run, at(usage, row, "idRole").toString())) {
            printLine(QStringLiteral("\n%1").arg(printable(at(usage, row, "nameRole").toString())));
            printText(groupVolumeTable(*volumes).toString());
        }
    }
}

} // namespace

TextTable usageTable(const QAbstractItemModel &usage)
{
    TextTable table({QStringLiteral("Group"), QStringLiteral("Recorded"), QStringLiteral("Remaining"),
                     QStringLiteral("Reserved time"), QStringLiteral("Per day")});
    for (const int column : {1, 2, 3, 4})
        table.setRightAligned(column);
    for (int row = 0; row < usage.rowCount(); ++row) {
        const qlonglong perDay = numberAt(usage, row, "oneDayUsageRole"); // bytes
        table.addRow({at(usage, row, "nameRole").toString(), daysText(numberAt(usage, row, "recordedDaysRole")),
                      daysText(numberAt(usage, row, "remainDaysRole")),
                      minutesText(numberAt(usage, row, "reserveTimeRole")),
                      perDay < 0 ? daysText(perDay) : sizeText(perDay / 1024)});
    }
    return table;
}

TextTable alarmTable(const QAbstractItemModel &alarms)
{
    const auto words = [&alarms](int row) {
        const QString subject = at(alarms, row, "subjectRole").toString();
        switch (at(alarms, row, "kindRole").toInt()) {
        case StatusMonitorPlugin::VolumeError:
            return QStringLiteral("a volume cannot be reached")
                + (subject.isEmpty() ? QString() : QStringLiteral(": ") + subject);
        case StatusMonitorPlugin::InsufficientRecordingDays:
            return QStringLiteral("reserved time will not be reached");
        default:
            return at(alarms, row, "textRole").toString();
        }
    };
    TextTable table({QStringLiteral("Since"), QStringLiteral("Alarm"), QStringLiteral("Group"), QStringLiteral("Id"),
                     QStringLiteral("Station")});
    for (int row = 0; row < alarms.rowCount(); ++row) {
        table.addRow({at(alarms, row, "sinceRole").toDateTime().toString(Qt::ISODate), words(row),
                      at(alarms, row, "groupNameRole").toString(), at(alarms, row, "groupIdRole").toString(),
                      at(alarms, row, "sourceRole").toString()});
    }
    return table;
}

ExitCode showUsage(CommandRun &run)
{
    const Inquiry inquiry(run);
    const QAbstractItemModel *usage = usageModel(run);
    QJsonObject json = inquiry.json();
    if (inquiry.outcome.exitCode == ExitCode::Done)
        json.insert(QStringLiteral("groups"), usageJson(run, *usage));
    return inquiry.end(run, json, [&] { printUsage(run, *usage); });
}

ExitCode showAlarms(CommandRun &run)
{
    const Inquiry inquiry(run);
    const QAbstractItemModel &alarms = *run.session().statusMonitor();
    QJsonObject json = inquiry.json();
    json.insert(QStringLiteral("alarms"), modelJson(alarms));
    return inquiry.end(run, json, [&alarms] { printText(alarmTable(alarms).toString()); });
}
