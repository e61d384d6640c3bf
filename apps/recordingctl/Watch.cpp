#include "Watch.h"

#include "ClientSession.h"
#include "CommandRun.h"
#include "Interruption.h"
#include "Output.h"
#include "SignalTap.h"
#include "TextTable.h"
#include "UsageNews.h"
#include "ValueText.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

namespace {

/// One thing that happened, as a line.
struct Happening
{
    QString kind; // "event", "signal", "usage" or "alarm"
    QString name;
    QVariantMap values;
    QStringList order; // of the keys of values
    QString unknown = {}; // stands for a value that is not known

    void print(bool json) const
    {
        const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
        if (json) {
            printLine(compactJson({{QStringLiteral("time"), time},
                                   {QStringLiteral("kind"), kind},
                                   {QStringLiteral("name"), name},
                                   {QStringLiteral("values"), valueJson(values)}}));
            return;
        }
        QString text = QStringLiteral("%1  %2  %3").arg(time, kind.leftJustified(6), name);
        for (const QString &key : order)
            text += QStringLiteral(" %1=%2").arg(key, values[key].isValid() ? valueText(values[key]) : unknown);
        printLine(printable(text));
    }
};

Happening alarmNews(const QString &name, const StatusMonitorPlugin::Alarm &alarm)
{
    Happening news{
        QStringLiteral("alarm"),
        name,
        {{QStringLiteral("source"), alarm.source},
         {QStringLiteral("kind"), QVariant::fromValue(alarm.kind)},
         {QStringLiteral("group"), alarm.groupName},
         {QStringLiteral("groupId"), alarm.groupId}},
        {QStringLiteral("source"), QStringLiteral("kind"), QStringLiteral("group"), QStringLiteral("groupId")}};
    if (!alarm.subject.isEmpty()) { // one of the station's own
        news.values.insert(QStringLiteral("subject"), alarm.subject);
        news.values.insert(QStringLiteral("text"), alarm.text);
        news.order += {QStringLiteral("subject"), QStringLiteral("text")};
    }
    return news;
}

Happening usageNews(const UsageNews::Change &change)
{
    Happening happening{QStringLiteral("usage"),
                        change.isGone ? QStringLiteral("gone") : QStringLiteral("changed"),
                        change.values,
                        {},
                        QStringLiteral("unknown")};
    for (const auto *key :
         {"source", "group", "groupId", "recordedDays", "remainingDays", "oneDayUsage", "reservedTime"}) {
        if (change.values.contains(QLatin1String(key)))
            happening.order.append(QLatin1String(key));
    }
    return happening;
}

} // namespace

ExitCode watch(CommandRun &run)
{
    ClientSession &session = run.session();
    const CommandLine &line = run.line();
    UsageNews usage;
    QEventLoop loop;
    ExitCode exitCode = ExitCode::Done;
    int printed = 0;
    const auto show = [&](const Happening &happening) {
        if (line.count && printed == *line.count)
            return; // the loop ends after what is being handled now
        happening.print(line.json);
        ++printed;
        if (line.count && printed == *line.count)
            loop.quit();
    };
    const SignalTap tap(session.plugin(), [&](const QMetaMethod &signal, const QVariantList &arguments) {
        Happening happening{QStringLiteral("signal"), QString::fromLatin1(signal.name()), {}, {}};
        for (int index = 0; index < arguments.size(); ++index) {
            const QString name = QString::fromLatin1(signal.parameterNames().at(index));
            happening.values.insert(name, arguments[index]);
            happening.order.append(name);
        }
        show(happening);
    });
    QObject::connect(session.framework(), &HostFramework::eventDelivered, &loop,
                     [&](const QString &event, const QVariant &data, const QString &source) {
                         show({QStringLiteral("event"),
                               event,
                               {{QStringLiteral("source"), source}, {QStringLiteral("data"), data}},
                               {QStringLiteral("source"), QStringLiteral("data")}});
                         const auto *model =
                             qobject_cast<QAbstractItemModel *>(run.read<QObject *>("getStorageUsageModel", source));
                         const QList<UsageNews::Change> changes = usage.take(source, *model);
                         for (const UsageNews::Change &change : changes)
                             show(usageNews(change));
                     });
    for (const auto &[signal, name] : {std::pair(&StatusMonitorPlugin::raised, QStringLiteral("raised")),
                                       std::pair(&StatusMonitorPlugin::withdrawn, QStringLiteral("withdrawn"))})
        QObject::connect(
            session.statusMonitor(), signal, &loop,
            [&show, name = name](const StatusMonitorPlugin::Alarm &alarm) { show(alarmNews(name, alarm)); });
    const Interruption interruption([&loop] { loop.quit(); });
    if (line.timeout) {
        QTimer::singleShot(*line.timeout, Qt::PreciseTimer, &loop, [&] {
            if (line.count && printed < *line.count) {
                printError(QStringLiteral("watch: %1 of %2 lines came in time").arg(printed).arg(*line.count));
                exitCode = ExitCode::NoAnswer;
            }
            loop.quit();
        });
    }
    loop.exec();
    return exitCode;
}
