#include "FakeVolumes.h"
#include "Measuring.h"
#include "Program.h"
#include "StationProtocol.h"
#include "TreeStation.h"
#include "groups/GroupStore.h"
#include "link/EmbeddedLink.h"
#include "link/StationCalls.h"
#include "store/Database.h"

#include <QScopeGuard>
#include <QThread>

#include <algorithm>

#include <sched.h>

namespace {
constexpr int recordsInAll = 60'000; // of all trips together, about
constexpr int mostTrips = 1001;
constexpr int fewestTrips = 7;

std::unique_ptr<Station> newStation(const QString &dataFolder)
{
    return std::make_unique<Station>(StationSettings{dataFolder, {}, std::make_unique<FakeVolumes>()});
}

/// A database with @p count recording groups, of some cameras each and of no path that a station would look after.
void makeGroups(const QString &dataFolder, int count)
{
    Database database(dataFolder);
    Transaction transaction(database);
    GroupStore store(database);
    QList<GroupMember> members;
    for (const char *const camera : {"Camera 0", "Camera 1", "Camera 2", "Camera 3"}) {
        store.insert(Camera{camera, 1});
        members.append({camera});
    }
    for (int number = 0; number < count; ++number) {
        RecordingGroup group;
        group.id = QStringLiteral("{00000000-0000-4000-8000-%1}").arg(number, 12, 10, QLatin1Char('0'));
        group.name = group.folder = QStringLiteral("Group %1").arg(number);
        group.members = members;
        store.insert(group);
    }
    transaction.commit();
}

/// Keeps this thread, and those that it starts meanwhile, on one core until the guard goes: whether a thread is woken
/// on the same core or on another one costs more than all else, and is the system's whim.
auto stayOnOneCore()
{
    cpu_set_t before;
    sched_getaffinity(0, sizeof before, &before);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
    sched_setaffinity(0, sizeof one, &one);
    return qScopeGuard([before] { sched_setaffinity(0, sizeof before, &before); });
}

/// "ours" from the caller to the station and back, "station" the same command without a link, on this thread, "floor"
/// the station's reply there and back alone.
void roundTrip(benchmark::State &state, const QString &dataFolder, int records)
{
    const auto core = stayOnOneCore();
    // A command that the station does not know: what remains is the way there and back.
    StationCommand command{QStringLiteral("benchmark.nothing"), {}};
    if (records > 0)
        command = {StationCommandName::retrieveRecordingGroupTreeModel,
                   QVariantMap{{StationKey::relayPath, QString()}}};
    makeGroups(dataFolder, records);
    const auto here = newStation(dataFolder);
    std::optional<StationReply> reply;
    const auto take = [&reply](const StationReply &part) { reply = part; };
    here->handle(command, take);
    const StationReply known = reply.value();

    EmbeddedLink link([dataFolder] { return newStation(dataFolder); });
    StationCalls calls(link);
    link.start();
    waitFor([&link] { return link.isUp(); }, "the link");

    QObject caller;
    QObject echo;
    QThread thread;
    echo.moveToThread(&thread);
    thread.start();
    const auto end = qScopeGuard([&thread] {
        thread.quit();
        thread.wait();
    });
    // Two queued calls with the reply, as every link inside a process needs them.
    const auto sendToEcho = [&] {
        const auto answer = [take, known] { take(known); };
        const auto handBack = [&caller, answer] { QMetaObject::invokeMethod(&caller, answer, Qt::QueuedConnection); };
        QMetaObject::invokeMethod(&echo, handBack, Qt::QueuedConnection);
    };
    const auto variant = [&](const std::string &name, const std::function<void()> &send) {
        const auto run = [&, send] {
            send();
            waitFor([&reply] { return reply.has_value(); }, "a reply");
            const QString &code = records == 0 ? StationReturnCode::UnknownCommand : StationReturnCode::Success;
            require(reply->returnCode == code && reply->data.toList().size() == records,
                    "the reply is not that of the station's groups");
        };
        return Variant{name, run, [&reply] { reply.reset(); }};
    };
    measure(state,
            {
                variant("ours", [&] { calls.send(command.name, command.data, &caller, take); }),
                variant("station", [&] { here->handle(command, take); }),
                variant("floor", sendToEcho),
            },
            {.rounds = std::clamp(recordsInAll / std::max(records, 1), fewestTrips, mostTrips),
             .cpuSeconds = processSeconds});
    if (records > 0)
        state.counters["us a record"] = state.counters["ours"] / records;
}
} // namespace

void addLink(const QString &folder, const std::vector<int> &records)
{
    add("round trip", records, [folder](benchmark::State &state, int size) {
        roundTrip(state, folder + QStringLiteral("/link-%1").arg(size), size);
    });
}
