#include "Keeper.h"
#include "Trees.h"
#include "Works.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

namespace {
constexpr auto help = R"(station-benchmark [--folder=DIR] [--most-files=N] [--smoke] [options of Google Benchmark]

What the station's index of recordings costs, and the link to it. The recordings are sparse files in a new folder, which
goes with the program: they take no space themselves, but 1,110,000 inodes and about 800 MB for folders and index.

  --folder=DIR    makes it in DIR; else in the system's temporary folder
  --most-files=N  leaves out trees of more files
  --smoke         runs everything in a small size, to see that it works
)";

const std::vector<Layout> allLayouts{{10, 1, 20, 50}, {10, 5, 20, 100}, {10, 50, 20, 100}};
const std::vector<Layout> smokeLayouts{{2, 2, 9, 3}};

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

int run(int argc, char **argv)
{
    const bool isSmoke = take("--smoke", argc, argv).has_value();
    const std::string parent = take("--folder", argc, argv).value_or(std::filesystem::temp_directory_path().string());
    const int mostFiles = std::stoi(take("--most-files", argc, argv).value_or("1000000"));
    const Keeper keeper(parent);
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;

    std::vector<Layout> layouts;
    for (const Layout &layout : isSmoke ? smokeLayouts : allLayouts) {
        if (layout.all() <= mostFiles)
            layouts.push_back(layout);
    }
    Trees trees(keeper.folder(), layouts);
    addReading(trees);
    addChanges(trees);
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
