// Times the contestants of one case in turns.
#pragma once

#include <vector>

#include "contest.h"

namespace zov::bench {

// Nanoseconds of one call of each contestant, from many short repetitions in which the contestants
// alternate, so that a slow stretch of the machine meets all of them. Of the repetitions of each
// the first decile counts: the others met another job, and the very fastest may be a stroke of
// luck.
std::vector<double> MeasureInTurns(const std::vector<Contestant>& contestants, double milliseconds);

}  // namespace zov::bench
