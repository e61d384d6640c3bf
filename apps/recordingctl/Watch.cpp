#include "Watch.h"

#include "AlarmText.h"
#include "ClientSession.h"
#include "CommandRun.h"
#include "Interruption.h"
#include "JsonFields.h"
#include "Output.h"
#include "SignalTap.h"
#include "SiteCommands.h"
#include "TextTable.h"
#include "UsageNews.h"
#include "ValueText.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QEventLoop>
#include <QHash>
#include <QTimer>

namespace {

/// One thing that happened, as a line.
struct Happening
{
    QString kind; // "event", "signal", "usage", "alarm" or "station"
    QString name;
    QVariantMap values;
    QStringList order; // of the keys of values
    QString unknown = {}; // stands for a value that is not known
    QJsonObject json = {}; // the values for a program, where they have another form than fieldsJson()

    void print(const CommandLine &line) const
    {
        const QDateTime time = QDateTime::currentDateTime();
        if (line.json) {
            CommandReply reply(line.command);
            reply.setData(QJsonObject{{QStringLiteral("time"), timeJson(time)},
                                      {QStringLiteral("kind"), kind},
                                      {QStringLiteral("name"), name},
                                      {QStringLiteral("values"), json.isEmpty() ? fieldsJson(values, name) : json}});
            printReply(reply, line);
            return;
        }
        QString text = QStringLiteral("%1  %2  %3").arg(time.toString(Qt::ISODateWithMs), kind.leftJustified(6), name);
        for (const QString &key : order)
            text += QStringLiteral(" %1=%2").arg(key, values[key].isValid() ? valueText(values[key]) : unknown);
        printLine(printable(text));
    }
};

Happening alarmNews(const QString &name, StatusMonitorPlugin::Alarm alarm, const QString &source)
{
    alarm.source = source;
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
    news.json = alarmJson(alarm);
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

Happening stationNews(const QString &relayPath, const StationState &state)
{
    Happening news{QStringLiteral("station"),
                   stateWord(state),
                   {{QStringLiteral("source"), relayPath}},
                   {QStringLiteral("source")}};
    if (!state.reason.isEmpty()) {
        news.values.insert(QStringLiteral("reason"), state.reason);
        news.order.append(QStringLiteral("reason"));
    }
    return news;
}

} // namespace

ExitCode watch(CommandRun &run)
{
    ClientSession &session = run.session();
    const CommandLine &line = run.line();
    // One station needs no name; of all of them each has its own, the directly connected one, too.
    const bool isOfAll = line.has(QStringLiteral("all"));
    const auto named = [&session, isOfAll](const QString &source) {
        if (isOfAll)
            return source.isEmpty() ? session.directStation() : source;
        return source == session.directStation() ? QString() : source;
    };
    UsageNews usage;
    QEventLoop loop;
    ExitCode exitCode = ExitCode::Done;
    QObject::connect(&session, &ClientSession::stationStateChanged, &loop, [&](const StationState &state) {
        if (state.kind != StationState::Kind::Down || isOfAll)
            return;
        exitCode = run.noAnswer(QStringLiteral("the station cannot be reached: %1").arg(state.reason));
        loop.quit();
    });
    int printed = 0;
    const auto show = [&](const Happening &happening) {
        if (line.count && printed == *line.count)
            return; // the loop ends after what is being handled now
        happening.print(line);
        ++printed;
        if ((line.count && printed == *line.count) || isOutputLost())
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
                               {{QStringLiteral("source"), named(source)}, {QStringLiteral("data"), data}},
                               {QStringLiteral("source"), QStringLiteral("data")}});
                         const auto *model =
                             qobject_cast<QAbstractItemModel *>(run.read<QObject *>("getStorageUsageModel", source));
                         const QList<UsageNews::Change> changes = usage.take(named(source), *model);
                         for (const UsageNews::Change &change : changes)
                             show(usageNews(change));
                     });
    for (const auto &[signal, name] : {std::pair(&StatusMonitorPlugin::raised, QStringLiteral("raised")),
                                       std::pair(&StatusMonitorPlugin::withdrawn, QStringLiteral("withdrawn"))})
        QObject::connect(session.statusMonitor(), signal, &loop,
                         [&show, &named, name = name](const StatusMonitorPlugin::Alarm &alarm) {
                             show(alarmNews(name, alarm, named(alarm.source)));
                         });
    const QString up = stateWord({StationState::Kind::Up});
    QHash<QString, QString> states; // of all stations, where they were up at first without a line
    const auto showStates = [&](const QStringList &relayPaths) {
        for (const QString &relayPath : relayPaths) {
            const StationState state = session.stations()->record(relayPath).presence.state;
            const bool isFirstAttempt = state.kind == StationState::Kind::Connecting && state.reason.isEmpty();
            if (state.kind == StationState::Kind::Unknown || isFirstAttempt)
                continue;
            const QString before = states.value(relayPath, up);
            states.insert(relayPath, stateWord(state));
            if (stateWord(state) != before)
                show(stationNews(relayPath, state));
        }
    };
    if (isOfAll) {
        QObject::connect(session.stations(), &StationDirectory::changed, &loop, showStates);
        showStates(session.stations()->relayPaths());
    }
    const Interruption interruption([&loop] { loop.quit(); });
    if (line.timeout) {
        QTimer::singleShot(*line.timeout, Qt::PreciseTimer, &loop, [&] {
            if (line.count && printed < *line.count) {
                exitCode =
                    run.noAnswer(QStringLiteral("watch: %1 of %2 lines came in time").arg(printed).arg(*line.count));
            }
            loop.quit();
        });
    }
    loop.exec();
    return exitCode;
}
