#include "Program.h"

#include <algorithm>
#include <stdexcept>

bool takeFlag(std::string_view name, int &count, char **arguments)
{
    char **const end = arguments + count;
    count = static_cast<int>(std::remove(arguments + 1, end, name) - arguments);
    return arguments + count < end;
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
