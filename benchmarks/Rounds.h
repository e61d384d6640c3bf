#pragma once

#include "Case.h"

/// Registers @p entry in one @p size with Google Benchmark, as one iteration of at most @p mostRounds rounds.
///
/// In a round each variant runs once, in random order, and is timed by the CPU time of this thread. Reported are the
/// medians over the rounds: "<variant>" in microseconds, and the ratios within a round, "ours/(read+floor)",
/// "ours/plain" and "ours/without", as far as the case has these variants.
void registerCase(const Case &entry, int size, int mostRounds);
