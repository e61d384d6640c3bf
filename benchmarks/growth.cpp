#include "Case.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#include <valgrind/callgrind.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

constexpr int runs = 10; // one alone shows the lists of freed blocks that the work before left behind

} // namespace

int countInstructions(const std::vector<Case> &cases)
{
    if (!RUNNING_ON_VALGRIND) {
        std::fputs("--growth counts instructions and must run under valgrind --tool=callgrind\n", stderr);
        return 1;
    }
    for (const Case &entry : cases) {
        for (const int size : entry.growth) {
            const std::string name = title(entry) + '/' + std::to_string(size);
            const Work work = entry.work(size);
            const auto ours = std::find_if(work.variants.begin(), work.variants.end(),
                                           [](const Variant &variant) { return variant.name == "ours"; });
            const auto prepare = [&ours] {
                if (ours->prepare)
                    ours->prepare();
            };
            for (int run = 0; run < runs; ++run) {
                prepare();
                CALLGRIND_START_INSTRUMENTATION;
                ours->run();
                CALLGRIND_STOP_INSTRUMENTATION;
            }
            CALLGRIND_DUMP_STATS_AT(name.c_str());
            CALLGRIND_ZERO_STATS;
        }
    }
    return 0;
}
