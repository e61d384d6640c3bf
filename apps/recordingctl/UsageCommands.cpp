#include "UsageCommands.h"

#include "ClientSession.h"
#include "CommandRun.h"
#include "ModelPrinter.h"
#include "OutcomeText.h"
#include "Output.h"
#include "Units.h"
#include "VolumeTable.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

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

bool isAnythingUnknown(const QAbstractItemModel &usage)
{
    for (int row = 0; row < usage.rowCount(); ++row) {
        if (numberAt(usage, row, "recordedDaysRole") < 0 || numberAt(usage, row, "oneDayUsageRole") < 0)
            return true;
    }
    return false;
}

/// Asks the station for its figures. Those that it does not know at once it tells later: they are waited for while it
/// says something about its storage.
CallOutcome reloadUsage(CommandRun &run)
{
    constexpr std::chrono::seconds silence(3); // the station speaks once a second when figures change
    const CallOutcome outcome = run.call(reload);
    if (outcome.exitCode != ExitCode::Done)
        return outcome;
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(run.session().framework(), &HostFramework::eventDelivered, &loop, [&] {
        timer.start(silence);
        if (!isAnythingUnknown(*usageModel(run)))
            loop.quit();
    });
    timer.start(silence);
    if (isAnythingUnknown(*usageModel(run)))
        loop.exec();
    return outcome;
}

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
    TextTable table({QStringLiteral("Since"), QStringLiteral("Alarm"), QStringLiteral("Group"), QStringLiteral("Id"),
                     QStringLiteral("Station")});
    for (int row = 0; row < alarms.rowCount(); ++row) {
        const bool isVolume = at(alarms, row, "kindRole").toInt() == StatusMonitorPlugin::VolumeError;
        table.addRow({at(alarms, row, "sinceRole").toDateTime().toString(Qt::ISODate),
                      isVolume ? QStringLiteral("a volume cannot be reached")
                               : QStringLiteral("reserved time will not be reached"),
                      at(alarms, row, "groupNameRole").toString(), at(alarms, row, "groupIdRole").toString(),
                      at(alarms, row, "sourceRole").toString()});
    }
    return table;
}

ExitCode showUsage(CommandRun &run)
{
    const CallOutcome outcome = reloadUsage(run);
    const QAbstractItemModel *usage = usageModel(run);
    QJsonObject json = outcomeJson(reload, outcome);
    if (outcome.exitCode == ExitCode::Done)
        json.insert(QStringLiteral("groups"), usageJson(run, *usage));
    return run.end(outcome, json, [&] { printUsage(run, *usage); });
}

ExitCode showAlarms(CommandRun &run)
{
    const CallOutcome outcome = reloadUsage(run);
    const QAbstractItemModel &alarms = *run.session().statusMonitor();
    QJsonObject json = outcomeJson(reload, outcome);
    if (outcome.exitCode == ExitCode::Done)
        json.insert(QStringLiteral("alarms"), modelJson(alarms));
    return run.end(outcome, json, [&alarms] { printText(alarmTable(alarms).toString()); });
}
