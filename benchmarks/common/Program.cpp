#include "Program.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

std::optional<std::string> takeOption(const std::string &name, int &count, char **arguments)
{
    char **const end = arguments + count;
    char **const found = std::find_if(arguments + 1, end, [&name](std::string_view argument) {
        return argument.substr(0, argument.find('=')) == name;
    });
    if (found == end)
        return {};
    const std::string_view argument = *found;
    std::rotate(found, found + 1, end);
    --count;
    return std::string(argument.substr(std::min(name.size() + 1, argument.size())));
}

void add(const std::string &name, const std::function<void(benchmark::State &)> &work)
{
    const auto runOnce = [work](benchmark::State &state) {
        for ([[maybe_unused]] auto iteration : state) {
            try {
                work(state);
            } catch (const std::exception &error) {
                state.SkipWithError(error.what());
            }
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), runOnce)->Iterations(1)->Unit(benchmark::kMillisecond);
}

void add(const std::string &name, const std::vector<int> &sizes,
         const std::function<void(benchmark::State &, int size)> &work)
{
    for (const int size : sizes)
        add(name + '/' + std::to_string(size), [work, size](benchmark::State &state) { work(state, size); });
}

int runBenchmarks(int count, char **arguments)
{
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 1;
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}

void require(bool isSo, const std::string &otherwise)
{
    if (!isSo)
        throw std::runtime_error(otherwise);
}
