#include "Measuring.h"
#include "Program.h"
#include "ServerVocabulary.h"
#include "StationProcess.h"
#include "StationVocabulary.h"
#include "TreeStation.h"
#include "store/Database.h"

#include <csignal>

namespace {
/// "ours" from a client that finds no station to the answer of the one that was started for it, after a clean end, and
/// "killed" the same after a kill; "lost" from the kill to an answer for a client that was there before. In this
/// process "opened", the database with the checks of every start, and "checked", with those of a start after a kill,
/// too.
void start(benchmark::State &state, TreeStation &tree)
{
    const QString folder = tree.dataFolder();
    tree.waitForFigures();
    tree.stop();
    std::optional<LocalClient> client;
    int edits = 0; // what they leave in the write-ahead file makes a start check the whole database
    const auto askForGroups = [&] {
        if (!client)
            client.emplace(folder);
        const StationReply reply = ask(*client, {ServerCommand::getRecordingGroup, {}});
        require(reply.data.toList().size() == tree.layout().groups, "the groups are not those of the index");
    };
    const auto startAndEnd = [&](int signal) {
        askForGroups();
        const QString name = QString::number(++edits);
        ask(*client, {StationCommandName::addCamera, QVariantMap{{FieldKey::camName, name}, {StationKey::streams, 1}}});
        client.reset();
        endStation(folder, signal);
        require((DatabaseFile(folder).writeAheadBytes() > 0) == (signal == SIGKILL), "that was another end");
    };
    const auto endCleanly = [&] { startAndEnd(SIGTERM); };
    const auto open = [&](bool isAllChecked) {
        Database database(folder);
        require(!isAllChecked || database.value(QStringLiteral("PRAGMA quick_check(1)")) == "ok", "it is damaged");
    };
    measure(state,
            {
                {"ours", askForGroups, endCleanly},
                {"killed", askForGroups, [&] { startAndEnd(SIGKILL); }},
                {"lost", [&] { endStation(folder, SIGKILL), askForGroups(); }, askForGroups},
                {"opened", [&] { open(false); }, endCleanly},
                {"checked", [&] { open(true); }, endCleanly},
            },
            {.rounds = 9, .cpuSeconds = wallSeconds});
    endCleanly();
}
} // namespace

void addStarts(const TreeStations &trees)
{
    for (const auto &tree : trees)
        add("station's start", {tree->size()}, [&tree](auto &state, int) { start(state, *tree); });
}
