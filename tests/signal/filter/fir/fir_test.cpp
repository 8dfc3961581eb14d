// FIR filters of all families: streams cut in every way against sums in long double, the delay
// line bit by bit, the output steps, and the making of states.
#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "core/memory.h"
#include "signal/filter/fir/state.h"
#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {
namespace {

template <class Family>
struct Exports;
#define FIR_EXPORTS(family, suffix, run, ...)                                                      \
  template <>                                                                                      \
  struct Exports<common::family> {                                                                 \
    using Tap = common::family::Tap;                                                               \
    using Sample = common::family::Sample;                                                         \
    static auto Init(int level) { return ZOV_AT(level, zovsFIRInitAlloc##suffix); }                \
    static auto Free(int level) { return ZOV_AT(level, zovsFIRFree##suffix); }                     \
    static ZovStatus Run(int level, const Sample* pSrc, Sample* pDst, int len, ZovFIRState* state, \
                         [[maybe_unused]] int scaleFactor = 0) {                                   \
      return ZOV_AT(level, zovsFIR##run)(pSrc, pDst, len, state __VA_ARGS__);                      \
    }                                                                                              \
  };
FIR_EXPORTS(Fir32f, _32f, _32f)
FIR_EXPORTS(Fir64f, _64f, _64f)
FIR_EXPORTS(Fir64fOn32f, 64f_32f, 64f_32f)
FIR_EXPORTS(Fir64fOn16s, 64f_16s, 64f_16s_Sfs, , scaleFactor)

template <class Family>
using Record = common::FirRecord<typename Family::Tap>;

// A state made at a level, with its record open.
template <class Family>
class Filter {
 public:
  Filter(int level, const std::vector<float>& taps,
         const typename Family::Sample* pDlyLine = nullptr)
      : level_(level) {
    const std::vector<typename Family::Tap> own(taps.begin(), taps.end());
    EXPECT_EQ(
        Exports<Family>::Init(level)(&state_, own.data(), static_cast<int>(own.size()), pDlyLine),
        zovStsNoErr);
  }
  ~Filter() { EXPECT_EQ(Exports<Family>::Free(level_)(state_), zovStsNoErr); }
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;
  ZovFIRState* get() const { return state_; }
  Record<Family>* operator->() const { return static_cast<Record<Family>*>(state_); }

 private:
  int level_;
  ZovFIRState* state_ = nullptr;
};

// A stream of small integers with the sums that filters make of it; the same for all families.
struct Stream {
  std::vector<float> taps;
  std::vector<Zov16s> samples;  // the first taps.size() of them are the delay line
  std::vector<long double> sums;
  long double scale = 0;  // of the sums

  Stream(std::size_t tapsLen, std::size_t length, std::mt19937& random) {
    std::uniform_real_distribution<float> tap(-1, 1);
    std::uniform_int_distribution<int> sample(-1000, 1000);
    for (std::size_t k = 0; k < tapsLen; ++k) taps.push_back(tap(random));
    for (std::size_t i = 0; i < tapsLen + length; ++i) {
      samples.push_back(static_cast<Zov16s>(sample(random)));
    }
    for (const float h : taps) scale += 1000.0L * std::fabs(h);
    for (std::size_t i = tapsLen; i < samples.size(); ++i) {
      long double sum = 0;
      for (std::size_t k = 0; k < tapsLen; ++k) {
        sum += static_cast<long double>(taps[k]) * samples[i - k];
      }
      sums.push_back(sum);
    }
  }
};

long double RoundByLevel(int level, long double value) {
  return level <= 1 ? std::roundl(value) : std::nearbyintl(value);
}

template <class Family>
bool IsClose(int level, typename Family::Sample result, long double sum, const Stream& stream,
             int scaleFactor) {
  using Tap = typename Family::Tap;
  const long double unit = sizeof(Tap) == 4 ? 0x1p-24L : 0x1p-53L;
  const long double error = 16 * unit * stream.scale;
  if constexpr (std::is_same_v<typename Family::Sample, Zov16s>) {
    const long double factor = std::ldexp(1.0L, -scaleFactor);
    return result == RoundByLevel(level, (sum + error) * factor) ||
           result == RoundByLevel(level, (sum - error) * factor);
  } else {
    const long double narrowing = sizeof(Tap) == sizeof result ? 0 : 0x1p-24L * std::fabs(sum);
    return std::fabs(result - sum) <= error + narrowing;
  }
}

// Runs the stream in pieces of the given lengths, each between guard pages and at any byte. Without
// transforms the state is one that has got no FFT object.
template <class Family>
void CheckStream(int level, const Stream& stream, const std::vector<int>& cuts, bool inPlace,
                 bool hasTransforms = true) {
  using Sample = typename Family::Sample;
  const std::size_t tapsLen = stream.taps.size();
  const std::vector<Sample> samples(stream.samples.begin(), stream.samples.end());
  const std::vector<Sample> delayLine(samples.rend() - static_cast<std::ptrdiff_t>(tapsLen),
                                      samples.rend());
  const Filter<Family> filter(level, stream.taps, delayLine.data());
  if (!hasTransforms) filter->fftLen = -1;
  const int scaleFactor = std::max(0, static_cast<int>(std::ceil(std::log2(stream.scale / 3e4L))));
  const std::size_t most = static_cast<std::size_t>(*std::max_element(cuts.begin(), cuts.end()));
  const GuardedArray<Sample> sources(most), destinations(most);
  std::size_t done = 0;
  for (const int cut : cuts) {
    SCOPED_TRACE("cut of " + std::to_string(cut) + " at " + std::to_string(done));
    const std::size_t count = static_cast<std::size_t>(cut);
    const Guard guard = kGuards[count % 2];
    const std::size_t shift = count % 13;
    Sample* const source = sources.At(count, guard, shift);
    Sample* const result = inPlace ? source : destinations.At(count, guard, shift);
    const GuardedArray<Sample>& written = inPlace ? sources : destinations;
    written.Fill(0xA5);
    std::copy_n(&samples[tapsLen + done], count, source);
    ASSERT_EQ(Exports<Family>::Run(level, source, result, cut, filter.get(), scaleFactor),
              zovStsNoErr);
    ASSERT_TRUE(written.UntouchedOutside(result, count, 0xA5));
    std::vector<Sample> outputs(count);  // where they are aligned
    std::memcpy(outputs.data(), result, count * sizeof(Sample));
    std::size_t i = 0;
    while (i < count &&
           IsClose<Family>(level, outputs[i], stream.sums[done + i], stream, scaleFactor))
      ++i;
    ASSERT_EQ(i, count) << "an output is " << outputs[i] << " for " << stream.sums[done + i];
    done += count;
    // The last samples, in the order of time.
    ASSERT_TRUE(std::equal(filter->pDlyLine, filter->pDlyLine + tapsLen, &samples[done]));
    ASSERT_EQ(filter->dlyIndex, 0);
  }
}

class Fir : public testing::TestWithParam<int> {};

TEST_P(Fir, StreamsHaveTheSumsHoweverTheyAreCut) {
  const int tapsLen = GetParam();
  std::mt19937 random(static_cast<unsigned>(tapsLen));
  // Around what a direct pass stages, the outputs of one transform, and the limits of the routes.
  int fftLen = 8;
  while (fftLen <= 2 * tapsLen) fftLen *= 2;
  const int outputs = fftLen - tapsLen + 1;
  std::vector<int> cuts = {1, 2, 3, 5, 7, 40, 77, 3 * outputs + 17};
  for (const int limit : {(tapsLen + 3) / 4 * 4 + 1, (tapsLen + 7) / 8 * 8 + 1, outputs, 512}) {
    for (const int step : {-1, 0, 1}) cuts.push_back(limit + step);
  }
  // Past the chunks and the blocks in place.
  for (const int limit : {2049, 2113, 4096 + 512, 4224 + 513, 8448 + 300}) cuts.push_back(limit);
  int total = 0;
  for (const int cut : cuts) total += cut;
  std::vector<int> randomCuts;
  for (int left = total; left > 0; left -= randomCuts.back()) {
    const int most = randomCuts.size() % 3 == 0 ? 3000 : 200;
    randomCuts.push_back(
        std::min(left, 1 + static_cast<int>(random() % static_cast<unsigned>(most))));
  }
  const Stream stream(static_cast<std::size_t>(tapsLen), static_cast<std::size_t>(total), random);
  ForEachLevel([&](int level) {
    const auto check = [&](const std::vector<int>& lengths, bool inPlace) {
      SCOPED_TRACE(inPlace ? "in place" : "out of place");
      CheckStream<common::Fir32f>(level, stream, lengths, inPlace);
      CheckStream<common::Fir64f>(level, stream, lengths, inPlace);
      CheckStream<common::Fir64fOn32f>(level, stream, lengths, inPlace);
      CheckStream<common::Fir64fOn16s>(level, stream, lengths, inPlace);
    };
    check(cuts, false);
    check(cuts, true);
    check({total}, false);
    check(randomCuts, true);
  });
}
INSTANTIATE_TEST_SUITE_P(Taps, Fir,
                         testing::Values(1, 2, 7, 15, 16, 31, 32, 63, 64, 65, 127, 128, 1000));

// All lengths of a chunk meet all lengths of history that the direct sums can have.
TEST(FirRoute, IsDirectWithManyTapsWithoutTransforms) {
  for (const int tapsLen : {64, 513, 514, 1025, 1500, 2046, 2112}) {
    SCOPED_TRACE(tapsLen);
    std::mt19937 random(static_cast<unsigned>(tapsLen));
    const std::vector<int> cuts = {tapsLen + 9, 5, 2048, 2112, 100, tapsLen + 500, 1, 2 * 2112 - 1};
    int total = 0;
    for (const int cut : cuts) total += cut;
    const Stream stream(static_cast<std::size_t>(tapsLen), static_cast<std::size_t>(total), random);
    ForEachLevel([&](int level) {
      for (const bool inPlace : {false, true}) {
        CheckStream<common::Fir64f>(level, stream, cuts, inPlace, false);
        CheckStream<common::Fir64fOn32f>(level, stream, cuts, inPlace, false);
        CheckStream<common::Fir64fOn16s>(level, stream, cuts, inPlace, false);
      }
    });
  }
}

// The last sample of a delay line meets no tap, so that not even a NaN is felt.
template <class Family>
void CheckOldestSample(int level) {
  for (const std::size_t tapsLen : {1, 2, 5, 16, 31, 40, 64, 200}) {
    std::vector<typename Family::Sample> delayLine(tapsLen, 1);
    delayLine.back() = NAN;
    for (const int len : {1, 3, 31, 200, 512, 2000}) {
      const Filter<Family> filter(level, std::vector<float>(tapsLen, 1), delayLine.data());
      std::vector<typename Family::Sample> x(static_cast<std::size_t>(len), 1), y(x);
      Exports<Family>::Run(level, x.data(), y.data(), len, filter.get());
      for (const auto result : y) {
        ASSERT_NEAR(result, tapsLen, 1e-3) << tapsLen << " taps, " << len << " samples";
      }
    }
  }
}

TEST(FirRoute, NeverReadsTheOldestSample) {
  ForEachLevel([](int level) {
    CheckOldestSample<common::Fir32f>(level);
    CheckOldestSample<common::Fir64f>(level);
    CheckOldestSample<common::Fir64fOn32f>(level);
  });
}

#ifdef __linux__
// 2^31 samples that are the same few pages over and over, with nothing below and above.
class RepeatedSamples {
 public:
  static constexpr std::size_t kPeriod = 1 << 20;

  RepeatedSamples() {
    const int file = memfd_create("samples", 0);
    void* const mapping =
        mmap(nullptr, 3 * kBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    EXPECT_TRUE(ftruncate(file, kPart) == 0 && mapping != MAP_FAILED);
    begin_ = static_cast<std::uint8_t*>(mapping) + kBytes;
    for (std::size_t offset = 0; offset < kBytes; offset += kPart) {
      void* const part =
          mmap(begin_ + offset, kPart, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0);
      EXPECT_EQ(part, begin_ + offset);
    }
    close(file);
  }
  ~RepeatedSamples() { munmap(begin_ - kBytes, 3 * kBytes); }
  RepeatedSamples(const RepeatedSamples&) = delete;
  RepeatedSamples& operator=(const RepeatedSamples&) = delete;
  Zov16s* get() const { return reinterpret_cast<Zov16s*>(begin_); }

 private:
  static constexpr std::size_t kPart = kPeriod * sizeof(Zov16s);
  static constexpr std::size_t kBytes = std::size_t{1} << 32;
  std::uint8_t* begin_;
};

TEST(FirRoute, CountsToTheLongestCall) {
  const RepeatedSamples source, destination;
  if (testing::Test::HasFailure()) return;
  for (std::size_t i = 0; i < RepeatedSamples::kPeriod; ++i) {
    source.get()[i] = static_cast<Zov16s>(i % 10007);
  }
  const int level = zovDispatchIndex;  // for its speed
  const Filter<common::Fir64fOn16s> filter(level, {-1});
  ASSERT_EQ(
      ZOV_AT(level, zovsFIR64f_16s_Sfs)(source.get(), destination.get(), INT_MAX, filter.get(), 0),
      zovStsNoErr);
  EXPECT_EQ(filter->pDlyLine[0], source.get()[INT_MAX - 1]);
  EXPECT_EQ(destination.get()[INT_MAX - 1], -source.get()[INT_MAX - 1]);
}
#endif

// Whether a call of a length goes by transforms, which leave their marks in the work block.
template <class Family>
void CheckRoute(int level, int len, bool inPlace, bool expected) {
  SCOPED_TRACE(std::to_string(len) + (inPlace ? " in place" : ""));
  const Filter<Family> filter(level, std::vector<float>(64, 1.0F));
  std::vector<typename Family::Sample> x(static_cast<std::size_t>(len), 1), y(x);
  std::fill_n(filter->pFFTWork, filter->fftLen, 77);
  Exports<Family>::Run(level, x.data(), inPlace ? x.data() : y.data(), len, filter.get());
  EXPECT_EQ(filter->pFFTWork[70] != 77, expected);
}

TEST(FirRoute, ChangesAtItsLimits) {
  ForEachLevel([](int level) {
    const int block = level >= 5 ? 4224 : 4096;
    for (const int step : {-1, 0}) {
      const bool expected = step == 0;
      CheckRoute<common::Fir32f>(level, 512 + step, false, expected);
      CheckRoute<common::Fir64f>(level, 512 + step, false, expected);
      CheckRoute<common::Fir64fOn32f>(level, 512 + step, false, expected);
      CheckRoute<common::Fir64fOn16s>(level, 512 + step, false, expected);
      CheckRoute<common::Fir32f>(level, block + 512 + step, true, expected);
      CheckRoute<common::Fir64f>(level, block + 512 + step, true, expected);
      CheckRoute<common::Fir64fOn32f>(level, 512 + step, true, expected);
      CheckRoute<common::Fir64fOn16s>(level, 512 + step, true, expected);
    }
  });
}

// One tap of `tap` on one sample.
Zov16s Scaled(int level, double tap, Zov16s sample, int scaleFactor) {
  ZovFIRState* state = nullptr;
  EXPECT_EQ(ZOV_AT(level, zovsFIRInitAlloc64f_16s)(&state, &tap, 1, nullptr), zovStsNoErr);
  Zov16s result = 0;
  EXPECT_EQ(ZOV_AT(level, zovsFIR64f_16s_Sfs)(&sample, &result, 1, state, scaleFactor),
            zovStsNoErr);
  EXPECT_EQ(ZOV_AT(level, zovsFIRFree64f_16s)(state), zovStsNoErr);
  return result;
}

TEST(FirOutput, RoundsAndSaturatesByLevel) {
  ForEachLevel([](int level) {
    for (int quarters = -30; quarters <= 30; ++quarters) {
      const Zov16s sample = static_cast<Zov16s>(quarters);
      const long double value = quarters / 4.0L;
      EXPECT_EQ(Scaled(level, 0.25, sample, 0), RoundByLevel(level, value));
      EXPECT_EQ(Scaled(level, 1, sample, 2), RoundByLevel(level, value));
      EXPECT_EQ(Scaled(level, 0.0625, sample, -2), RoundByLevel(level, value));
    }
    EXPECT_EQ(Scaled(level, 2.5, 1, 0), level <= 1 ? 3 : 2);
    EXPECT_EQ(Scaled(level, 2.5, -1, 0), level <= 1 ? -3 : -2);
    EXPECT_EQ(Scaled(level, 40000, 1, 0), 32767);
    EXPECT_EQ(Scaled(level, 40000, -1, 0), -32768);
    EXPECT_EQ(Scaled(level, 0x1p31, 1, 0), level <= 1 ? 32767 : -32768);
    EXPECT_EQ(Scaled(level, 0x1p31, -1, 0), -32768);
    EXPECT_EQ(Scaled(level, NAN, 1, 0), level <= 1 ? 0 : -32768);
  });
}

TEST(FirOutput, ScaleFactorsAtTheirLimits) {
  ForEachLevel([](int level) {
    const bool wholeFactor = level >= 2 && level <= 4;
    for (const int scaleFactor : {1, 126, 127, 128, 131, 1022, 1023, -1, -127, -128, -130, -1023}) {
      // What counts of the scale factor; where 2^-f is nothing.
      const int counts = wholeFactor ? scaleFactor : scaleFactor % 128;
      const bool vanishes = (level >= 5 && counts == 127) || counts == 1023;
      EXPECT_EQ(Scaled(level, std::ldexp(5.0, std::min(counts, 1021)), 1, scaleFactor),
                vanishes        ? 0
                : counts > 1021 ? RoundByLevel(level, 2.5L)
                                : 5)
          << scaleFactor;
    }
    EXPECT_EQ(Scaled(level, 7, 1, INT_MIN), 7);
    // Past its field the exponent reaches the sign: minus infinity, a negative factor, minus 0.
    EXPECT_EQ(Scaled(level, 7, 1, 1024), wholeFactor ? -32768 : 7);
    EXPECT_EQ(Scaled(level, 7, 0, 1025), 0);
    EXPECT_EQ(Scaled(level, 0x1p-1020, 1, 1025), wholeFactor ? -8 : 0);
    EXPECT_EQ(Scaled(level, 7, 1, -1025), wholeFactor ? 0 : 14);
  });
}

// The heap, counted and made to fail.
int blocks, allocations, failAt;
const HeapTable kHeap = zovHeap;
void* CountedAllocate(std::size_t size) {
  if (++allocations == failAt) return nullptr;
  ++blocks;
  return kHeap.allocate(size);
}
void CountedRelease(void* block) {
  --blocks;
  kHeap.release(block);
}
struct CountedHeap {
  explicit CountedHeap(int fail) {
    blocks = allocations = 0;
    failAt = fail;
    zovHeap.allocate = CountedAllocate;
    zovHeap.release = CountedRelease;
  }
  ~CountedHeap() { zovHeap = kHeap; }
};

template <class Family>
void CheckMemory(int level, bool wide) {
  std::vector<typename Family::Tap> taps(1000);
  std::vector<typename Family::Sample> x(9000);
  for (int fail = 1; fail <= (wide ? 1 : 3); ++fail) {
    const CountedHeap heap(fail);
    ZovFIRState other;
    ZovFIRState* state = &other;
    const ZovStatus expected = wide || fail == 3 ? zovStsMemAllocErr : zovStsNullPtrErr;
    EXPECT_EQ(Exports<Family>::Init(level)(&state, taps.data(), 1000, nullptr), expected) << fail;
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(blocks, 0);
  }
  const CountedHeap heap(0);
  {
    const Filter<Family> filter(level, std::vector<float>(1000));
    const int made = allocations;
    EXPECT_EQ(blocks, wide ? 1 : 2);
    for (const int len : {100, 9000}) {
      Exports<Family>::Run(level, x.data(), x.data(), len, filter.get());
      Exports<Family>::Run(level, x.data(), x.data() + 4500, len / 2, filter.get());
    }
    EXPECT_EQ(allocations, made);
    // A state without memory of its own is left alone.
    filter->ownsMemory = 0;
    EXPECT_EQ(Exports<Family>::Free(level)(filter.get()), zovStsNoErr);
    EXPECT_EQ(blocks, wide ? 1 : 2);
    EXPECT_EQ(Exports<Family>::Run(level, x.data(), x.data() + 4500, 4500, filter.get()),
              zovStsNoErr);
    filter->ownsMemory = 1;
  }
  EXPECT_EQ(blocks, 0);
}

TEST(FirState, MemoryIsTakenByConstructorsOnly) {
  ForEachLevel([](int level) {
    CheckMemory<common::Fir32f>(level, false);
    CheckMemory<common::Fir64f>(level, true);
    CheckMemory<common::Fir64fOn32f>(level, true);
    CheckMemory<common::Fir64fOn16s>(level, true);
  });
}

// The record against its table of shapes: lanes of the replicated taps, and the shifted copies.
template <class Family>
void CheckRecord(int level, std::size_t tapsLen) {
  constexpr bool kWide = sizeof(typename Family::Tap) == 8;
  std::vector<float> taps;
  for (std::size_t i = 0; i < tapsLen; ++i) taps.push_back(static_cast<float>(i + 1));
  const Filter<Family> filter(level, taps);
  const std::size_t threshold = kWide && level <= 1 ? 32 : 64;
  int fftLen = -1;
  if (tapsLen >= threshold) fftLen = static_cast<int>(4 * std::bit_floor(tapsLen));
  EXPECT_EQ(filter->fftLen, fftLen);
  EXPECT_EQ(filter->pFFTSpec != nullptr, fftLen > 0);
  const bool eights = !kWide && level >= 5;
  EXPECT_EQ(filter->directLimit,
            static_cast<int>(eights ? (tapsLen + 7) / 8 * 8 + 1 : (tapsLen + 3) / 4 * 4 + 1));
  EXPECT_EQ(filter->ownsMemory, 1);

  const std::size_t lanes = level >= 5 ? (kWide ? 4 : 8) : kWide ? 2 : 4;
  EXPECT_EQ(filter->pTapsBroadcast != nullptr, level >= (kWide ? 1 : 2));
  if (filter->pTapsBroadcast != nullptr) {
    for (std::size_t i = 0; i < lanes * tapsLen; ++i) {
      ASSERT_EQ(filter->pTapsBroadcast[i], taps[i / lanes]);
    }
  }
  // Elements from the front: copies (or rows) of `stride`, of which `at` gives the reversed taps.
  const auto reversed = [&](std::ptrdiff_t i) {
    const std::ptrdiff_t length = static_cast<std::ptrdiff_t>(tapsLen);
    return i >= 0 && i < length ? taps[static_cast<std::size_t>(length - 1 - i)] : 0.0F;
  };
  const std::size_t stride = level < 2 ? tapsLen
                             : kWide   ? (tapsLen + 2) / 2 * 2
                             : eights  ? (tapsLen + 16) / 8 * 8
                                       : (tapsLen + 6) / 4 * 4;
  const std::size_t copies = level < 2 || eights ? 1 : kWide ? 2 : 4;
  for (std::size_t c = 0; c < copies; ++c) {
    for (std::size_t i = 0; i < stride; ++i) {
      ASSERT_EQ(filter->pTaps[c * stride + i], reversed(static_cast<std::ptrdiff_t>(i - c)));
    }
  }
  for (std::size_t i = 0; eights && i < 8 * stride; ++i) {
    ASSERT_EQ(filter->pTaps[stride + i], reversed(static_cast<std::ptrdiff_t>(i / 8 - i % 8)));
  }
}

TEST(FirState, RecordHasTheTablesOfItsLevel) {
  ForEachLevel([](int level) {
    for (const std::size_t tapsLen : {1, 7, 31, 32, 63, 64, 127, 128}) {
      SCOPED_TRACE(tapsLen);
      CheckRecord<common::Fir32f>(level, tapsLen);
      CheckRecord<common::Fir64f>(level, tapsLen);
      CheckRecord<common::Fir64fOn32f>(level, tapsLen);
      CheckRecord<common::Fir64fOn16s>(level, tapsLen);
    }
  });
}

TEST(FirState, AccessorsReadAndWrite) {
  ForEachLevel([](int level) {
    const std::vector<float> taps = {1, 2, 3, 4, 5};
    const auto check = [&](auto filter, auto run, auto get, auto set, auto zero) {
      using Samples = std::vector<decltype(zero)>;
      Samples line(5, 7);
      const Samples written = {5, -4, 3, -2, 1};
      EXPECT_EQ(get(filter, line.data()), zovStsNoErr);
      EXPECT_EQ(line, Samples(5));
      EXPECT_EQ(set(filter, written.data()), zovStsNoErr);
      EXPECT_EQ(get(filter, line.data()), zovStsNoErr);
      EXPECT_EQ(line, written);
      // In the middle of a stream, too.
      Samples x = {10, 20}, y(2);
      for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(set(filter, written.data()), zovStsNoErr);
        EXPECT_EQ(run(x.data(), y.data(), 2, filter), zovStsNoErr);
        EXPECT_EQ(y, (Samples{10, 54}));
        EXPECT_EQ(get(filter, line.data()), zovStsNoErr);
        EXPECT_EQ(line, (Samples{20, 10, 5, -4, 3}));
      }
      EXPECT_EQ(set(filter, nullptr), zovStsNoErr);
      EXPECT_EQ(get(filter, line.data()), zovStsNoErr);
      EXPECT_EQ(line, Samples(5));
      EXPECT_EQ(get(filter, nullptr), zovStsNullPtrErr);
      EXPECT_EQ(get(nullptr, line.data()), zovStsNullPtrErr);
      EXPECT_EQ(set(nullptr, line.data()), zovStsNullPtrErr);
      const Filter<common::Fir64fOn16s> other(level, taps);
      EXPECT_EQ(get(other.get(), line.data()), zovStsContextMatchErr);
      EXPECT_EQ(set(other.get(), line.data()), zovStsContextMatchErr);
    };
    const Filter<common::Fir32f> single(level, taps);
    check(single.get(), ZOV_AT(level, zovsFIR_32f), ZOV_AT(level, zovsFIRGetDlyLine_32f),
          ZOV_AT(level, zovsFIRSetDlyLine_32f), Zov32f{});
    check(Filter<common::Fir64f>(level, taps).get(), ZOV_AT(level, zovsFIR_64f),
          ZOV_AT(level, zovsFIRGetDlyLine_64f), ZOV_AT(level, zovsFIRSetDlyLine_64f), Zov64f{});
    check(Filter<common::Fir64fOn32f>(level, taps).get(), ZOV_AT(level, zovsFIR64f_32f),
          ZOV_AT(level, zovsFIRGetDlyLine64f_32f), ZOV_AT(level, zovsFIRSetDlyLine64f_32f),
          Zov32f{});
    std::vector<float> read(5);
    const auto getTaps = ZOV_AT(level, zovsFIRGetTaps_32f);
    EXPECT_EQ(getTaps(single.get(), read.data()), zovStsNoErr);
    EXPECT_EQ(read, taps);
    EXPECT_EQ(getTaps(nullptr, read.data()), zovStsNullPtrErr);
    EXPECT_EQ(getTaps(single.get(), nullptr), zovStsNullPtrErr);
    EXPECT_EQ(getTaps(Filter<common::Fir64f>(level, taps).get(), read.data()),
              zovStsContextMatchErr);
  });
}

template <class Family, class Other>
void CheckStatuses(int level) {
  typename Family::Tap tap = 1;
  typename Family::Sample x = 3, y = 0;
  ZovFIRState untouched;
  ZovFIRState* none = &untouched;
  const auto init = Exports<Family>::Init(level);
  EXPECT_EQ(init(nullptr, &tap, 0, nullptr), zovStsNullPtrErr);
  EXPECT_EQ(init(&none, nullptr, 0, nullptr), zovStsNullPtrErr);
  EXPECT_EQ(init(&none, &tap, 0, nullptr), zovStsFirLenErr);
  EXPECT_EQ(none, &untouched);
  const Filter<Family> filter(level, {2});
  const Filter<Other> other(level, {2});
  const auto run = Exports<Family>::Run;
  EXPECT_EQ(run(level, nullptr, &y, 0, other.get(), 0), zovStsNullPtrErr);
  EXPECT_EQ(run(level, &x, nullptr, 0, other.get(), 0), zovStsNullPtrErr);
  EXPECT_EQ(run(level, &x, &y, 0, nullptr, 0), zovStsNullPtrErr);
  // The length comes before the tag.
  EXPECT_EQ(run(level, &x, &y, 0, other.get(), 0), zovStsSizeErr);
  EXPECT_EQ(run(level, &x, &y, 1, other.get(), 0), zovStsContextMatchErr);
  EXPECT_EQ(y, 0);
  EXPECT_EQ(run(level, &x, &y, 1, filter.get(), 0), zovStsNoErr);
  EXPECT_EQ(y, 6);
  EXPECT_EQ(Exports<Family>::Free(level)(nullptr), zovStsNullPtrErr);
  EXPECT_EQ(Exports<Family>::Free(level)(other.get()), zovStsContextMatchErr);
}

TEST(FirState, Statuses) {
  ForEachLevel([](int level) {
    CheckStatuses<common::Fir32f, common::Fir64f>(level);
    CheckStatuses<common::Fir64f, common::Fir64fOn32f>(level);
    CheckStatuses<common::Fir64fOn32f, common::Fir64fOn16s>(level);
    CheckStatuses<common::Fir64fOn16s, common::Fir32f>(level);
    // Longer than any transform: refused before a tap is read.
    Zov32f tap = 1;
    ZovFIRState other;
    ZovFIRState* state = &other;
    EXPECT_EQ(ZOV_AT(level, zovsFIRInitAlloc_32f)(&state, &tap, INT_MAX, nullptr),
              zovStsNullPtrErr);
    EXPECT_EQ(state, nullptr);
  });
}

}  // namespace
}  // namespace zov::test
