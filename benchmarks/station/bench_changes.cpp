#include "Measuring.h"
#include "Program.h"
#include "TreeStation.h"

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

void changeFiles(benchmark::State &state, TreeStation &tree, const Change &change)
{
    RecordedTree &files = tree.files();
    tree.settle();
    const int groups = files.layout().groups;
    const auto inEveryGroup = [&](const auto &act) {
        for (int group = 0; group < groups; ++group) {
            act(files, group);
            tree.waitForFigures();
        }
    };
    measure(state,
            {{"ours", [&] { inEveryGroup(change.make); }}, {"taken back", [&] { inEveryGroup(change.takeBack); }}},
            {.rounds = rounds, .cpuSeconds = processSeconds, .isShuffled = false, .pieces = groups});
    if (tree.readingAgain > 0)
        state.counters["ours/reading again"] = state.counters["ours"] / tree.readingAgain;
}
} // namespace

void addChanges(const TreeStations &trees)
{
    for (const auto &tree : trees) {
        for (const Change &change : changes)
            add(change.name, {tree->size()}, [&tree, &change](auto &state, int) { changeFiles(state, *tree, change); });
    }
}
