// Interleaved timing, and the arrays that the contestants share.
#include "measure.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zov::bench {

namespace {

using Clock = std::chrono::steady_clock;

// Long against the clock, short against the time slices of the system.
constexpr double kRepetition = 60e3;
constexpr int kLeastRounds = 25;
constexpr int kMostRounds = 400;

double Time(const Contestant& contestant, std::int64_t calls) {
  const Clock::time_point start = Clock::now();
  contestant.run(calls);
  const std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
  return elapsed.count() / static_cast<double>(calls);
}

// Calls that make up one repetition.
std::int64_t CallsPerRepetition(const Contestant& contestant) {
  std::int64_t calls = 1;
  contestant.run(1);
  for (;;) {
    const double elapsed = Time(contestant, calls) * static_cast<double>(calls);
    if (elapsed >= kRepetition / 2) {
      return std::max<std::int64_t>(
          1, static_cast<std::int64_t>(static_cast<double>(calls) * kRepetition / elapsed));
    }
    calls *= 2;
  }
}

}  // namespace

std::vector<double> MeasureInTurns(const std::vector<Contestant>& contestants,
                                   double milliseconds) {
  const std::size_t count = contestants.size();
  std::vector<std::int64_t> calls;
  double round = 0;
  for (const Contestant& contestant : contestants) {
    calls.push_back(CallsPerRepetition(contestant));
    const double call = Time(contestant, calls.back());
    round += call * static_cast<double>(calls.back() + 1);
  }
  const int rounds =
      std::clamp(static_cast<int>(milliseconds * 1e6 / round), kLeastRounds, kMostRounds);
  std::vector<std::vector<double>> times(count);
  for (int r = 0; r < rounds; ++r) {
    for (std::size_t k = 0; k < count; ++k) {
      const std::size_t turn = (k + static_cast<std::size_t>(r)) % count;
      // Untimed: leaves the caches as this contestant leaves them.
      contestants[turn].run(1);
      times[turn].push_back(Time(contestants[turn], calls[turn]));
    }
  }
  std::vector<double> result;
  for (std::vector<double>& each : times) {
    const auto place = each.begin() + rounds / 10;
    std::nth_element(each.begin(), place, each.end());
    result.push_back(*place);
  }
  return result;
}

void* Contest::Allocate(std::size_t bytes) {
  constexpr std::size_t kPage = 4096;
  constexpr std::size_t kSkew = 17 * 64;
  const std::size_t start = kept_.size() * kSkew % kPage;
  const std::size_t whole = (start + bytes + 2 * kPage - 1) / kPage * kPage;
  char* const block = static_cast<char*>(std::aligned_alloc(kPage, whole));
  if (block == nullptr) throw std::bad_alloc();
  std::memset(block, 0, whole);
  kept_.emplace_back(block, std::free);
  return block + start;
}

}  // namespace zov::bench
