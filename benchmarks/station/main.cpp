#include "Keeper.h"
#include "Trees.h"
#include "Works.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include <unistd.h>

namespace {
constexpr auto help = R"(station-benchmark [--folder=DIR] [--most-files=N] [--smoke] [options of Google Benchmark]

What the station's index of recordings costs, and the link to it. Up to 1,110,000 sparse files stand for the recordings.
They take inodes, 1 GB of memory and next to no space, and go with the program. They are made in /dev/shm where that has
room for them: other file systems are much slower at making so many files, above all where as many were removed a minute
ago. The station's database lies in the system's temporary folder.

  --folder=DIR    makes the files in DIR
  --most-files=N  leaves out trees of more files
  --smoke         runs everything in a small size, to see that it works
)";

const std::vector<Layout> allLayouts{{10, 1, 20, 50}, {10, 5, 20, 100}, {10, 50, 20, 100}};
const std::vector<Layout> smokeLayouts{{2, 2, 9, 3}};
constexpr int smokeRecords = 32;

/// The value of "<name>=value" or, for a flag, an empty text; taken out of the command line. None: it is not there.
std::optional<std::string> take(const char *name, int &count, char **arguments)
{
    const std::size_t length = std::strlen(name);
    for (int i = 1; i < count; ++i) {
        const char *argument = arguments[i];
        if (std::strncmp(argument, name, length) != 0 || (argument[length] != '=' && argument[length] != '\0'))
            continue;
        const std::string value = argument[length] == '=' ? argument + length + 1 : "";
        std::copy(arguments + i + 1, arguments + count, arguments + i);
        --count;
        return value;
    }
    return {};
}

/// A file system in memory with room for all of @p layouts twice over.
std::optional<std::string> quickFolder(const std::vector<Layout> &layouts)
{
    const std::string folder = "/dev/shm";
    for (Layout layout : layouts) {
        layout.groups *= 2;
        if (access(folder.c_str(), W_OK) != 0 || !missingRoom(folder, layout).empty())
            return {};
    }
    return folder;
}

int run(int argc, char **argv)
{
    const bool isSmoke = take("--smoke", argc, argv).has_value();
    const std::optional<std::string> folder = take("--folder", argc, argv);
    const int mostFiles = std::stoi(take("--most-files", argc, argv).value_or("1000000"));
    std::vector<Layout> layouts;
    for (const Layout &layout : isSmoke ? smokeLayouts : allLayouts) {
        if (layout.all() <= mostFiles)
            layouts.push_back(layout);
    }
    const std::string temporary = std::filesystem::temp_directory_path().string();
    const Keeper keeper({folder.value_or(quickFolder(layouts).value_or(temporary)), temporary});
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;

    Trees trees(keeper.folder(0), keeper.folder(1), layouts);
    addReading(trees);
    addChanges(trees);
    addEvents(isSmoke ? std::vector{smokeRecords} : std::vector{10, 100, 1000});
    addLink(keeper.folder(1), isSmoke ? std::vector{smokeRecords} : std::vector{0, 1000, 10'000});
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}
} // namespace

int main(int argc, char **argv)
{
    try {
        if (take("--help", argc, argv)) {
            std::fputs(help, stdout);
            return 0;
        }
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "station-benchmark: %s\n", error.what());
        return 1;
    }
}
