#include "ConsoleWindow.h"
#include "ItemRoles.h"
#include "Measuring.h"
#include "PlainPlugin.h"
#include "Program.h"
#include "Replies.h"
#include "Rows.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>

#include <algorithm>
#include <array>
#include <random>

namespace {

constexpr double secondsForASize = 4;
constexpr int fewestRounds = 3;
constexpr double megabyte = 1024 * 1024;

/// A plug-in with a window, and one of the same kind that nobody looks at.
struct Contender
{
    std::string prefix; ///< of its counters
    QString page;
    ConsoleClient client;
    ConsoleClient alone;
    ConsoleWindow window{client, page}; // goes first
};

template<typename Plugin>
Contender contender(const std::string &prefix, const QString &page)
{
    return {prefix, page, ConsoleClient(std::make_unique<Plugin>()), ConsoleClient(std::make_unique<Plugin>())};
}

/// A message of a scenario and what has to come of it.
struct Turn
{
    const Scenario &scenario;
    QVariant data;
    std::vector<Fact> facts;

    /// What comes from the station before the message.
    void prepare(ConsoleClient &client) const
    {
        if (scenario.isTree)
            deliver(*client.plugin, ServerCommand::getVolume, Replies::volumes(8));
    }
    void reach(ConsoleClient &client) const { deliver(*client.plugin, scenario.message, data); }
};

double handlerSeconds(const Turn &turn, ConsoleClient &client)
{
    if (turn.scenario.isTree)
        client.plugin->retrieveRecordingGroupTreeModel();
    turn.prepare(client);
    beginPeak(); // as before the window's message
    const double start = threadSeconds();
    turn.reach(client);
    return threadSeconds() - start;
}

/// One message for one contender. The first one fills an empty page, so it tells of memory alone unless @p isOnly.
void play(const Turn &turn, Contender &contender, Samples &samples, bool isFirst, bool isOnly)
{
    ConsoleWindow &window = contender.window;
    window.animate(true);
    const double heapBefore = window.heapInUse();
    if (!isFirst) // the page asked by itself when it was made
        window.refresh();
    turn.prepare(contender.client);
    window.rest();
    const double residentBefore = beginPeak();
    const Smoothness seen = window.watch([&] { turn.reach(contender.client); }, turn.facts);
    const double peakGrowth = peak() - residentBefore;
    window.animate(false);
    const double heapGrowth = window.heapInUse() - heapBefore;
    const double handler = handlerSeconds(turn, contender.alone);
    const auto note = [&](const char *name, double value) { samples[contender.prefix + name].push_back(value); };
    note(isFirst ? "heap, MB" : "grown, MB", heapGrowth / megabyte);
    if (isFirst && !isOnly)
        return;
    note("stall, ms", seen.longestTurn * 1e3);
    note("stall, CPU ms", seen.longestTurnCpu * 1e3);
    note("dropped", seen.droppedFrames);
    note("handler, CPU ms", handler * 1e3);
    note("window, CPU ms", (seen.busyCpu - handler) * 1e3);
    note("peak, MB", peakGrowth / megabyte);
}

/// The rows of all models but for what is made up in them. It asks for the volumes of every group, so that an event
/// after it finds more models than a page would ask for.
template<typename Plugin>
std::vector<std::vector<RowValues>> allRows(const Contender &contender)
{
    auto &plugin = static_cast<Plugin &>(*contender.client.plugin);
    const std::vector<RowValues> usage = rowValues(plugin.getStorageUsageModel({}));
    std::vector<std::vector<RowValues>> rows{usage, rowValues(plugin.getVolumeModel(), VolumeRole::Id)};
    if (const QStandardItem *const station = rowsOf(plugin.getRecordingGroupTreeModel()).item(0))
        rows.push_back(rowValues(station, TreeRole::Id));
    for (const RowValues &group : usage) {
        const QString id = group.front().second.toString();
        rows.push_back(rowValues(plugin.getGroupVolumeModel({}, id), VolumeRole::Id));
    }
    return rows;
}

void requireSameModels(const Contender &ours, const Contender &plain)
{
    require(allRows<PluginRecordingManagement>(ours) == allRows<PlainPlugin>(plain),
            "the rows are not those of the plain rules");
}

/// In a round the message reaches a window of the plug-in and one of the plain rules, in random order, and once more a
/// plug-in of each kind that nobody looks at. Reported are medians over the rounds, each for ours and with "plain "
/// before it: "stall, ms" and "stall, CPU ms" (the longest turn of the event loop), "dropped" (frames), "handler, CPU
/// ms" (the message where nobody looks), "window, CPU ms" (all that the shown window takes beyond that), "peak, MB"
/// (memory that the refill takes meanwhile), "grown, MB" (memory that it keeps beyond the rows of before) and "heap,
/// MB" (what the first message takes, rows and page). "stall, ours/plain" is the ratio in CPU time within a round.
void playScenario(benchmark::State &state, const Scenario &scenario, int records, int mostRounds)
{
    const bool isPlainOnce = records > scenario.mostPlain;
    Contender ours = contender<PluginRecordingManagement>("", scenario.page);
    Contender plain = contender<PlainPlugin>("plain ", scenario.page);
    std::array<Contender *, 2> order{&ours, &plain};
    std::mt19937 random(std::random_device{}());
    Samples samples;
    const double end = wallSeconds() + secondsForASize;
    for (int number = 0; number <= mostRounds && (number <= fewestRounds || wallSeconds() < end); ++number) {
        const Turn turn{scenario, scenario.data(records, number), scenario.facts(records, number)};
        const bool isFirst = number == 0;
        std::shuffle(order.begin(), order.end(), random);
        for (Contender *const contender : order) {
            const bool isOnly = contender == &plain && isPlainOnce;
            if (isFirst || !isOnly)
                play(turn, *contender, samples, isFirst, isOnly);
        }
        if (isFirst && isPlainOnce)
            requireSameModels(ours, plain);
    }
    if (!isPlainOnce)
        requireSameModels(ours, plain);
    const std::vector<double> &stalls = samples["stall, CPU ms"];
    const std::vector<double> &plainStalls = samples["plain stall, CPU ms"];
    for (std::size_t round = 0; round < stalls.size(); ++round)
        samples["stall, ours/plain"].push_back(stalls[round] / plainStalls[std::min(round, plainStalls.size() - 1)]);
    report(state, samples);
    state.counters["rounds"] = static_cast<double>(stalls.size());
}

/// The window while nothing arrives: "dropped" and "stall, ms" should be next to nothing.
void watchIdle(benchmark::State &state, int frames)
{
    ConsoleClient client(std::make_unique<PluginRecordingManagement>());
    ConsoleWindow window(client, "volumes");
    window.animate(true);
    const Smoothness seen = window.watch([] {}, {}, frames);
    state.counters["stall, ms"] = seen.longestTurn * 1e3;
    state.counters["dropped"] = seen.droppedFrames;
}

QVariantList someMembers(int count)
{
    QVariantList members;
    for (int i = 0; i < count; ++i)
        members.append(QVariantMap{{"camName", QStringLiteral("Camera %1").arg(i)},
                                   {"streamIndex", 0},
                                   {"enableTimeShift", i % 2 == 0},
                                   {"enableSeamless", false}});
    return members;
}

QVariantList someCameras(int count)
{
    QVariantList cameras;
    for (int i = 0; i < count; ++i)
        cameras.append(QVariantMap{{"camName", QStringLiteral("Camera %1").arg(i)}, {"streams", 2}});
    return cameras;
}

/// The page of recording groups with a group that has as many members beside one that has none: "detail, ms" from the
/// choice of the group until its cameras stand in the window and nothing is left to do.
void openDetail(benchmark::State &state, int members, int rounds)
{
    ConsoleClient client(std::make_unique<PluginRecordingManagement>());
    ConsoleWindow window(client, "groups");
    window.animate(true);
    deliver(*client.plugin, ServerCommand::getVolume, Replies::volumes(8));
    QVariantList groups = Replies::recordingGroups(2);
    QVariantMap large = groups[0].toMap();
    large["recordingGroupMemberList"] = someMembers(members);
    QVariantMap empty = groups[1].toMap();
    empty["recordingGroupMemberList"] = QVariantList{};
    deliver(*client.plugin, ServerCommand::retrieveRecordingGroupTreeModel, QVariantList{large, empty});
    window.call("select", empty["recordingGroupID"].toString());
    window.rest();
    Samples samples;
    for (int round = 0; round < rounds; ++round) {
        const auto choose = [&](const QVariantMap &group) {
            return [&window, id = group["recordingGroupID"].toString()] { window.call("select", id); };
        };
        const Smoothness seen = window.watch(choose(large), {{"detail", "count", members}}, 1);
        samples["detail, ms"].push_back(seen.longestTurn * 1e3);
        samples["detail, CPU ms"].push_back(seen.longestTurnCpu * 1e3);
        window.watch(choose(empty), {{"detail", "count", 0}}, 1);
    }
    report(state, samples);
}

/// The editor of a recording group with as many members, on a station with as many cameras, and then the picker with
/// all of these: "editor, ms" and "picker, ms" from the wish until both stand in the window and nothing is left to do.
void openEditor(benchmark::State &state, int members, int rounds)
{
    ConsoleClient client(std::make_unique<PluginRecordingManagement>());
    ConsoleWindow window(client, "groups");
    window.animate(true);
    client.session.cameraList()->take(someCameras(members));
    deliver(*client.plugin, ServerCommand::getVolume, Replies::volumes(8));
    QVariantMap group = Replies::recordingGroups(1).constFirst().toMap();
    group["recordingGroupMemberList"] = someMembers(members);
    deliver(*client.plugin, ServerCommand::retrieveRecordingGroupTreeModel, QVariantList{group});
    window.rest();
    Samples samples;
    for (int round = 0; round < rounds; ++round) {
        const Smoothness editor = window.watch([&window] { window.call("edit"); }, {{"members", "count", members}}, 1);
        samples["editor, ms"].push_back(editor.longestTurn * 1e3);
        samples["editor, CPU ms"].push_back(editor.longestTurnCpu * 1e3);
        const Smoothness picker =
            window.watch([&window] { window.press("addCamera"); }, {{"cameraChoices", "count", members}}, 1);
        samples["picker, ms"].push_back(picker.longestTurn * 1e3);
        samples["picker, CPU ms"].push_back(picker.longestTurnCpu * 1e3);
        window.closeDialogs();
        client.session.cameraList()->take(someCameras(members)); // the editor asked for them
    }
    report(state, samples);
}

} // namespace

/// Google Benchmark with its own options, and one of ours: --smoke runs everything in one small size, to see that it
/// works.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool isSmoke = takeFlag("--smoke", argc, argv);
    const QGuiApplication application(argc, argv);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    add("idle page", [isSmoke](auto &state) { watchIdle(state, isSmoke ? 12 : 120); });
    for (const Scenario &scenario : scenarios()) {
        add(scenario.name, isSmoke ? std::vector{64} : scenario.sizes,
            [=](auto &state, int records) { playScenario(state, scenario, records, isSmoke ? 1 : 9); });
    }
    add("group editor, members", isSmoke ? std::vector{64} : std::vector{10, 1000, 10'000},
        [isSmoke](auto &state, int members) { openEditor(state, members, isSmoke ? 1 : 9); });
    add("group detail, members", isSmoke ? std::vector{64} : std::vector{10, 1000, 10'000},
        [isSmoke](auto &state, int members) { openDetail(state, members, isSmoke ? 1 : 9); });
    return runBenchmarks(argc, argv);
}
