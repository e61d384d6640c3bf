#include "Measuring.h"
#include "MessageStream.h"
#include "Program.h"
#include "RecordedSite.h"
#include "ServerVocabulary.h"
#include "StationProcess.h"
#include "StationVocabulary.h"
#include "TreeStation.h"
#include "groups/GroupMaps.h"

#include <algorithm>
#include <array>
#include <csignal>

#include <sys/socket.h>

namespace {
/// A database with @p count recording groups, of some cameras each.
void makeGroups(const QString &dataFolder, int count, const QStringList &paths)
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
        RecordingGroup group = RecordedSite::group(QStringLiteral("Group %1").arg(number), paths);
        group.members = members;
        store.insert(group);
    }
    transaction.commit();
}

/// Starts a process that sends @p replySize bytes for every @p size, and ends with the socket, whose other end this is.
int startEcho(size_t size, size_t replySize)
{
    std::array<int, 2> ends{};
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "there is no socket");
    std::string bytes(std::max(size, replySize), 'x');
    if (fork() == 0) {
        close(ends[0]);
        while (recv(ends[1], bytes.data(), size, MSG_WAITALL) > 0 && send(ends[1], bytes.data(), replySize, 0) > 0) { }
        _exit(EXIT_SUCCESS);
    }
    close(ends[1]);
    return ends[0];
}

/// "ours" from the client to the station and back; "station" what the station makes its reply of, in this process;
/// "codec" the messages made and read alone; "floor" as many bytes there and back, with QLocalSocket here and the
/// system's calls there. "link" is what is left of ours without the station's part.
void roundTrip(benchmark::State &state, const QString &dataFolder, int records)
{
    // A command that the station does not know: what remains is the way there and back.
    StationCommand command{QStringLiteral("benchmark.nothing"), {}};
    if (records > 0)
        command = {ServerCommand::retrieveRecordingGroupTreeModel, QVariantMap{{FieldKey::relayPath, QString()}}};
    makeGroups(dataFolder, records, {});
    LocalClient client(dataFolder);
    const StationReply known = ask(client, command);
    const auto askStation = [&] {
        const StationReply reply = ask(client, command);
        const QString &code = records == 0 ? StationReturnCode::UnknownCommand : ReturnCode::Success;
        require(reply.returnCode == code && reply.data.toList().size() == records,
                "the reply is not that of the station's groups");
    };
    command.id = QStringLiteral("00000000-0000-4000-8000-000000000000-1"); // as long as the link's
    const StationMessage messages[] = {CommandMessage{1, command}, ReplyMessage{1, known}};
    const auto encodeAndRead = [&messages] {
        for (const StationMessage &message : messages) {
            MessageStream stream;
            stream.append(framedMessage(message));
            require(stream.next().has_value(), "a message is lost");
        }
    };
    Database database(dataFolder);
    const auto makeReply = [&] {
        QVariantList list;
        for (const RecordingGroup &group : GroupStore(database).groups())
            list.append(treeMap(group, {}));
        require(list.size() == records, "the reply is not made of all groups");
    };
    const QByteArray bytes(framedMessage(messages[0]).size(), 'x');
    const qsizetype replySize = framedMessage(messages[1]).size();
    QLocalSocket echo;
    echo.setSocketDescriptor(startEcho(static_cast<size_t>(bytes.size()), static_cast<size_t>(replySize)));
    const auto exchange = [&] {
        echo.write(bytes);
        waitFor([&] { return echo.bytesAvailable() >= replySize; }, "bytes that come back");
        echo.readAll();
    };
    std::vector<Variant> variants{{"ours", askStation}, {"codec", encodeAndRead}, {"floor", exchange}};
    if (records > 0)
        variants.push_back({"station", makeReply});
    measure(state, variants,
            {.rounds = std::clamp(60'000 / std::max(records, 1), 11, 2001), .cpuSeconds = wallSeconds});
    const double link = state.counters["ours"] - state.counters["station"];
    for (const std::string with : {"codec", "floor"})
        state.counters["link/" + with] = link / state.counters[with];
    state.counters["link/(codec+floor)"] = link / (state.counters["codec"] + state.counters["floor"]);
    endStation(dataFolder, SIGTERM);
}

/// An event of @p groups entries a second, as often as the station sends them. "ours" is the CPU time that all clients,
/// which are in this process, need for one; "slowest" the longest time from one to the next at the last client.
void serveClients(benchmark::State &state, const QString &dataFolder, int count, int groups, int events)
{
    constexpr int warming = 5; // events, until the station has what it keeps
    makeGroups(dataFolder, groups, {dataFolder});
    std::vector<std::unique_ptr<LocalClient>> clients;
    for (int number = 0; number < count; ++number)
        clients.push_back(std::make_unique<LocalClient>(dataFolder));
    const auto haveAll = [&clients] {
        return std::all_of(clients.cbegin(), clients.cend(),
                           [](const auto &client) { return client->events.contains(ServerEvent::VolumeChanged); });
    };
    waitFor(haveAll, "the first event at every client");
    const std::string station = std::to_string(stationProcess(dataFolder));
    double resident = 0;
    Samples samples;
    for (int turn = 0; turn < warming + events; ++turn) {
        if (turn == warming)
            resident = residentBytes(station);
        for (const auto &client : clients)
            client->events.clear();
        const double start = wallSeconds();
        const double startCpu = processSeconds();
        ask(*clients.front(), {ServerCommand::reloadStorageUsageInfo, {}});
        waitFor(haveAll, "an event at every client");
        samples["ours"].push_back((processSeconds() - startCpu) * 1e6);
        samples["ours wall"].push_back((wallSeconds() - start) * 1e6);
    }
    report(state, samples);
    state.counters["slowest ms"] = quantile(samples["ours wall"], 1) / 1000;
    state.counters["grown KB"] = (residentBytes(station) - resident) / 1024;
    endStation(dataFolder, SIGTERM);
}
} // namespace

void addLink(const QString &folder, bool isSmoke)
{
    add("round trip", isSmoke ? std::vector{0, 32} : std::vector{0, 1000, 10'000},
        [folder](benchmark::State &state, int size) {
            roundTrip(state, folder + QStringLiteral("/link-%1").arg(size), size);
        });
    add("event to 20 clients", {isSmoke ? 32 : 1000}, [folder, isSmoke](benchmark::State &state, int groups) {
        serveClients(state, folder + QStringLiteral("/clients"), 20, groups, isSmoke ? 1 : 20);
    });
}
