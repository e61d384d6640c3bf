#include "FixedVolume.h"
#include "Rounds.h"
#include "Station.h"
#include "StationProtocol.h"
#include "Waiting.h"
#include "Works.h"
#include "groups/GroupStore.h"
#include "link/EmbeddedLink.h"
#include "link/StationCalls.h"
#include "store/Database.h"

#include <QDir>
#include <QThread>

#include <algorithm>

#include <sched.h>

namespace {
constexpr int members = 4;
constexpr int recordsInAll = 60'000; // of all trips together, about
constexpr int mostTrips = 1001;
constexpr int fewestTrips = 7;

/// Without records a command that the station does not know: what remains is the way there and back.
StationCommand commandFor(int records)
{
    if (records == 0)
        return {QStringLiteral("benchmark.nothing"), {}};
    return {StationCommandName::retrieveRecordingGroupTreeModel, QVariantMap{{StationKey::relayPath, QString()}}};
}

StationSettings settings(const QString &dataFolder)
{
    StationSettings settings;
    settings.dataFolder = dataFolder;
    settings.volumes =
        std::make_unique<FixedVolume>(Volume{QStringLiteral("/"), QStringLiteral("System"), 1, 1, true, false});
    return settings;
}

/// A database with @p count recording groups, of some cameras each and of no path that a station would look after.
void makeGroups(const QString &dataFolder, int count)
{
    Database database(dataFolder);
    Transaction transaction(database);
    GroupStore store(database);
    for (int camera = 0; camera < members; ++camera)
        store.insert(Camera{QStringLiteral("Camera %1").arg(camera), 1});
    for (int number = 0; number < count; ++number) {
        RecordingGroup group;
        group.id = QStringLiteral("{00000000-0000-4000-8000-%1}").arg(number, 12, 10, QLatin1Char('0'));
        group.name = QStringLiteral("Group %1").arg(number);
        group.folder = group.name;
        for (int camera = 0; camera < members; ++camera)
            group.members.append({QStringLiteral("Camera %1").arg(camera), 0, false, false});
        store.insert(group);
    }
    transaction.commit();
}

/// Keeps this thread, and those that it starts meanwhile, on one core: whether a thread is woken on the same core or on
/// another one costs more than all else, and is the system's whim.
class OneCore
{
public:
    OneCore()
    {
        sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    ~OneCore() { sched_setaffinity(0, sizeof m_before, &m_before); }
    OneCore(const OneCore &) = delete;
    OneCore &operator=(const OneCore &) = delete;

private:
    cpu_set_t m_before = {};
};

/// A thread that hands everything back: two queued calls with a reply, as every link inside a process needs them.
class Echo
{
public:
    Echo()
    {
        m_far.moveToThread(&m_thread);
        m_thread.start();
    }
    ~Echo()
    {
        m_thread.quit();
        m_thread.wait();
    }
    Echo(const Echo &) = delete;
    Echo &operator=(const Echo &) = delete;

    template<typename Take>
    void send(const StationReply &reply, QObject *near, const Take &take)
    {
        QMetaObject::invokeMethod(
            &m_far,
            [reply, near, take] {
                QMetaObject::invokeMethod(
                    near, [reply, take] { take(reply); }, Qt::QueuedConnection);
            },
            Qt::QueuedConnection);
    }

private:
    QThread m_thread;
    QObject m_far;
};

void check(const StationReply &reply, int records)
{
    const QString &code = records == 0 ? StationReturnCode::UnknownCommand : StationReturnCode::Success;
    if (reply.returnCode != code || reply.data.toList().size() != records)
        throw std::runtime_error("the reply is not that of the station's groups");
}

double hundredth(const std::vector<Cost> &costs)
{
    std::vector<double> wall;
    for (const Cost &cost : costs)
        wall.push_back(cost.wall);
    std::sort(wall.begin(), wall.end());
    return wall[(wall.size() - 1) * 99 / 100];
}

/// "ours" from the caller to the station and back, "station" the same command without a link, on this thread, "floor"
/// the station's reply there and back alone.
void roundTrip(benchmark::State &state, const QString &dataFolder, int records)
{
    const OneCore core;
    const StationCommand command = commandFor(records);
    makeGroups(dataFolder, records);
    Station here(settings(dataFolder));
    StationReply reply;
    here.handle(command, [&reply](const StationReply &part) { reply = part; });
    const StationReply known = reply;
    check(known, records);

    EmbeddedLink link([dataFolder] { return std::make_unique<Station>(settings(dataFolder)); });
    StationCalls calls(link);
    Waiting waiting;
    QObject::connect(&link, &StationLink::upChanged, &waiting, [&waiting] { waiting.look(); });
    link.start();
    waiting.waitFor([&link] { return link.isUp(); }, "the link");

    Echo echo;
    bool isThere = false;
    const auto take = [&](const StationReply &part) {
        reply = part;
        isThere = true;
        waiting.look();
    };
    const auto waitForReply = [&] { waiting.waitFor([&] { return isThere; }, "a reply"); };
    const auto prepare = [&] {
        isThere = false;
        reply = {};
    };
    const auto checked = [&](const std::function<void()> &send) {
        return [&, send] {
            send();
            waitForReply();
            check(reply, records);
        };
    };
    const Variant ours{"ours", checked([&] { calls.send(command.name, command.data, &waiting, take); }), prepare};
    const Variant station{"station", checked([&] { here.handle(command, take); }), prepare};
    const Variant floor{"floor", checked([&] { echo.send(known, &waiting, take); }), prepare};
    const Costs costs =
        runRounds({ours, station, floor}, std::clamp(recordsInAll / std::max(records, 1), fewestTrips, mostTrips));
    report(state, "round trip", records, costs);
    state.counters["ours p99 wall"] = hundredth(costs.at("ours"));
    state.counters["floor p99 wall"] = hundredth(costs.at("floor"));
    if (records > 0)
        state.counters["us a record"] = state.counters["ours"] / records;
}
} // namespace

void addLink(const std::string &folder, const std::vector<int> &records)
{
    for (const int size : records) {
        const QString dataFolder = QString::fromStdString(folder) + QStringLiteral("/link-%1").arg(size);
        add("round trip", size, [dataFolder, size](benchmark::State &state) { roundTrip(state, dataFolder, size); });
    }
}
