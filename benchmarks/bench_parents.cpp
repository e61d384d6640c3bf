#include "Case.h"

#include <QSharedPointer>
#include <QStandardItemModel>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

// What the end of one model costs among many children of one parent, in the worst order, at random, as maps have it.
void registerManyModels(const std::vector<int> &sizes)
{
    for (int size : sizes) {
        benchmark::RegisterBenchmark(
            ("models of one parent/" + std::to_string(size)).c_str(),
            [size](benchmark::State &state) {
                for ([[maybe_unused]] auto iteration : state) {
                    state.PauseTiming();
                    QObject parent;
                    std::vector<QSharedPointer<QStandardItemModel>> models;
                    for (int i = 0; i < size; ++i)
                        models.emplace_back(new QStandardItemModel(&parent));
                    std::shuffle(models.begin(), models.end(), std::mt19937(1));
                    state.ResumeTiming();
                    models.clear();
                }
                state.counters["end of one, us"] = benchmark::Counter(
                    size * 1e-6, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
            })
            ->Unit(benchmark::kMicrosecond);
    }
}
