#include "Rounds.h"
#include "Trees.h"
#include "Walks.h"
#include "Works.h"

#include <algorithm>
#include <stdexcept>

namespace {
constexpr int changedFiles = 10;
constexpr qint64 growth = 1024 * 1024;

int roundsFor(int size)
{
    return std::clamp(300'000 / size, 1, 7);
}

Variant floorOf(IndexedTree &tree)
{
    return {"floor", [&tree] {
                if (walk(tree.files().path().toStdString()) != tree.files().bytes())
                    throw std::runtime_error("the walk's bytes are not those of the files");
            }};
}

Variant plainOf(IndexedTree &tree)
{
    return {"plain", [&tree] {
                const QMap<QString, DaySums> groups = readPlainly(tree.files().path());
                if (groups.size() != tree.files().sums().size())
                    throw std::runtime_error("the plain reading's groups are not those of the files");
            }};
}

/// Of days that no folder watch hears of.
void growSome(RecordedTree &files)
{
    const Layout &layout = files.layout();
    for (int i = 0; i < changedFiles; ++i)
        files.grow({i % layout.groups, i % layout.cameras, layout.days / 2, i % layout.files}, growth);
}

void finish(benchmark::State &state, const std::string &name, int size, const Costs &costs)
{
    report(state, name, size, costs);
    state.counters["us a file"] = state.counters["ours"] / size;
    state.counters["files a second"] = size / state.counters["ours wall"] * 1e6;
}

void firstReading(benchmark::State &state, IndexedTree &tree, int size)
{
    const Variant ours{"ours",
                       [&tree] {
                           tree.read();
                           tree.checkSums();
                       },
                       [&tree] { tree.forgetIndex(); }};
    finish(state, "first reading", size,
           runRounds({ours, floorOf(tree), plainOf(tree)}, roundsFor(size), Memory::Measured));
}

void readingAgain(benchmark::State &state, IndexedTree &tree, int size)
{
    tree.requireIndex();
    const Variant ours{"ours", [&tree] {
                           tree.read();
                           tree.checkSums();
                       }};
    finish(state, "reading again", size,
           runRounds({ours, floorOf(tree), plainOf(tree)}, roundsFor(size), Memory::Measured));
}

void readingChanges(benchmark::State &state, IndexedTree &tree, int size)
{
    tree.requireIndex();
    const Variant ours{"ours",
                       [&tree] {
                           tree.read();
                           tree.checkSums();
                       },
                       [&tree] { growSome(tree.files()); }};
    finish(state, "reading ten changes", size, runRounds({ours, floorOf(tree)}, roundsFor(size), Memory::Measured));
}
} // namespace

void addReading(Trees &trees)
{
    using Reading = void (*)(benchmark::State &, IndexedTree &, int);
    const std::pair<const char *, Reading> readings[] = {
        {"first reading", firstReading}, {"reading again", readingAgain}, {"reading ten changes", readingChanges}};
    for (const int size : trees.sizes()) {
        for (const auto &[name, reading] : readings) {
            add(name, size,
                [&trees, size, reading = reading](benchmark::State &state) { reading(state, trees.tree(size), size); });
        }
    }
}
