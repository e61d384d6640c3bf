#include "Rounds.h"
#include "TreeStation.h"
#include "Trees.h"
#include "Works.h"

namespace {
constexpr int rounds = 5;
constexpr qint64 growth = 70 * 1024 * 1024;

/// One file changes, and later is as it was.
struct Change
{
    std::string name;
    std::function<void(RecordedTree &, int group)> make;
    std::function<void(RecordedTree &, int group)> takeBack;
};

/// The one written last, which the station watches.
RecordedTree::File newest(const RecordedTree &files, int group)
{
    return {group, 0, 0, files.layout().files - 1};
}

const Change changes[] = {
    {"a file grows", [](RecordedTree &files, int group) { files.grow(newest(files, group), growth); },
     [](RecordedTree &files, int group) { files.grow(newest(files, group), -growth); }},
    {"a file comes", &RecordedTree::add, &RecordedTree::remove},
};

void start(benchmark::State &state, IndexedTree &tree, int size)
{
    tree.requireIndex();
    const Variant ours{"ours", [&tree] { tree.station().waitForFigures(); }, [&tree] { tree.close(); }};
    report(state, "start to figures", size, runRounds({ours}, rounds));
}

void oneChange(benchmark::State &state, IndexedTree &tree, int size, const Change &change)
{
    tree.requireIndex();
    RecordedTree &files = tree.files();
    TreeStation &station = tree.station();
    station.waitForFigures();
    station.requireReading();
    const int groups = files.layout().groups;
    const auto inEveryGroup = [&](const auto &act) {
        for (int group = 0; group < groups; ++group) {
            act(files, group);
            station.waitForFigures();
        }
    };
    const Variant ours{"ours", [&] { inEveryGroup(change.make); }};
    const Variant back{"taken back", [&] { inEveryGroup(change.takeBack); }};
    Costs costs;
    for (int round = 0; round <= rounds; ++round) {
        for (const Variant &variant : {ours, back}) {
            Cost cost = costOf(variant.run);
            cost.cpu /= groups;
            cost.wall /= groups;
            if (round > 0)
                costs[variant.name].push_back(cost);
        }
    }
    report(state, change.name, size, costs);
    if (const std::optional<double> again = reported("reading again", size))
        state.counters["ours/reading again"] = state.counters["ours"] / *again;
}
} // namespace

void addChanges(Trees &trees)
{
    for (const int size : trees.sizes()) {
        add("start to figures", size,
            [&trees, size](benchmark::State &state) { start(state, trees.tree(size), size); });
        for (const Change &change : changes) {
            add(change.name, size,
                [&trees, size, &change](benchmark::State &state) { oneChange(state, trees.tree(size), size, change); });
        }
    }
}
