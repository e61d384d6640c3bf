#pragma once

#include "Scenario.h"

/// Registers @p scenario in one @p size with Google Benchmark, as one iteration of at most @p mostRounds rounds.
///
/// In a round the message reaches a window of the plug-in and one of the plain rules, in random order, and once more a
/// plug-in of each kind that nobody looks at. Reported are medians over the rounds, each for ours and with "plain "
/// before it: "stall, ms" and "stall, CPU ms" (the longest turn of the event loop), "shown, ms" (until the first frame
/// with the rows), "dropped" (frames), "handler, CPU ms" (the message where nobody looks), "window, CPU ms" (all that
/// the shown window takes beyond that), "peak, MB" (memory that the refill takes meanwhile) and "grown, KB" (memory
/// that it keeps beyond the rows of before). "heap, MB" and "first stall, CPU ms" are what the first message takes,
/// rows and page. "stall, ours/plain" is the ratio in CPU time within a round.
void registerScenario(const Scenario &scenario, const Scenario::Size &size, int mostRounds);

/// Registers the window while nothing arrives: "dropped" and "stall, ms" of a second, which should be next to nothing.
void registerIdle(int milliseconds);
