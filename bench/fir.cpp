// Cases of the FIR filters: direct against plain loops, by transforms against overlap-save of the
// same length. Throughput is in samples.
#include "fir.h"

#include "core/cpu.h"
#include "registry.h"

namespace zov::bench {

namespace plain {
#define ZOV_DECLARE(level)      \
  namespace level {             \
  extern const PlainFirs kFirs; \
  }
ZOV_DECLARE(sse2)
ZOV_DECLARE(sse3)
ZOV_DECLARE(ssse3)
ZOV_DECLARE(ssse3_movbe)
ZOV_DECLARE(sse4)
ZOV_DECLARE(avx)
ZOV_DECLARE(avx2)
}  // namespace plain

const PlainFirs* const kPlainFirs[kLevelCount] = {
    &plain::sse2::kFirs, &plain::sse3::kFirs, &plain::ssse3::kFirs, &plain::ssse3_movbe::kFirs,
    &plain::sse4::kFirs, &plain::avx::kFirs,  &plain::avx2::kFirs};

namespace {

// One filter for each level that is measured, as a state belongs to the level that made it.
template <class T, class S>
struct FirExports {
  ZovStatus (*init)(ZovFIRState**, const T*, int, const S*);
  ZovStatus (*free)(ZovFIRState*);
  ZovStatus (*run)(const S*, S*, int, ZovFIRState*);
};
template <class T, class S>
struct LevelFilters {
  FirExports<T, S> exports;
  const T* taps;
  int tapsLen;
  ZovFIRState* states[kLevelCount] = {};

  ~LevelFilters() {
    for (ZovFIRState* state : states) {
      if (state != nullptr) exports.free(state);
    }
  }
  ZovFIRState* Get() {
    ZovFIRState*& state = states[zovDispatchIndex];
    if (state == nullptr) exports.init(&state, taps, tapsLen, nullptr);
    return state;
  }
};

template <class T, class S>
void Add(Cases& cases, const std::string& operation, FirExports<T, S> exports,
         PlainFir<T, S> PlainFirs::*plain, std::initializer_list<int> tapCounts,
         std::initializer_list<int> blocks) {
  for (const int block : blocks) {
    for (const int tapsLen : tapCounts) {
      const auto setUp = [=](Contest& contest) {
        const std::size_t before = static_cast<std::size_t>(tapsLen - 1);
        const std::size_t count = static_cast<std::size_t>(block);
        T* const taps = contest.Array<T>(before + 1);
        S* const samples = contest.Array<S>(before + count);
        FirTask<T, S> task = {taps, tapsLen, samples + before, contest.Array<S>(count), block};
        for (std::size_t k = 0; k <= before; ++k) taps[k] = T(1) / static_cast<T>(k + 1 + before);
        for (std::size_t i = 0; i < before + count; ++i) samples[i] = static_cast<S>(i * 37 % 251);
        auto filters = std::make_shared<LevelFilters<T, S>>();
        filters->exports = exports;
        filters->taps = taps;
        filters->tapsLen = tapsLen;
        contest.Keep(filters);
        contest.Ours([=, own = filters.get()] {
          return exports.run(task.from, task.to, task.count, own->Get());
        });
        // Peers of long filters go by transforms, as a plain loop is far behind.
        if (tapsLen < 64) {
          const PlainFir<T, S>& loops = kPlainFirs[contest.level()]->*plain;
          contest.Peer("plain loop by taps", [=, loop = loops.tapByTap] { loop(task); });
          contest.Peer("plain loop in blocks", [=, loop = loops.blockByBlock] { loop(task); });
#if KELOZOV_BENCH_LIQUID
          if constexpr (sizeof(T) == 4) AddLiquidFir(contest, task);
#endif
        }
        if constexpr (sizeof(T) == sizeof(S)) {
#if KELOZOV_BENCH_FFTW
          int length = 8;
          while (length <= 2 * tapsLen) length *= 2;
          if (tapsLen >= 64) AddFftwFir(contest, task, length);
#endif
        }
      };
      cases.push_back({"fir", operation,
                       std::to_string(tapsLen) + " taps x " + std::to_string(block), "Melem/s",
                       static_cast<double>(block), setUp});
    }
  }
}

}  // namespace

void AddFirCases(Cases& cases) {
  const std::initializer_list<int> direct = {8, 16, 24, 32, 48, 63};
  const std::initializer_list<int> blocks = {512, 65536};
  const FirExports<Zov32f, Zov32f> f32 = {&Kelo_zovsFIRInitAlloc_32f, &Kelo_zovsFIRFree_32f,
                                          &Kelo_zovsFIR_32f};
  const FirExports<Zov64f, Zov64f> f64 = {&Kelo_zovsFIRInitAlloc_64f, &Kelo_zovsFIRFree_64f,
                                          &Kelo_zovsFIR_64f};
  Add(cases, "32f direct", f32, &PlainFirs::f32, direct, blocks);
  Add(cases, "32f by FFT", f32, &PlainFirs::f32, {64, 128, 256, 512, 1024, 2048, 4096}, {65536});
  Add(cases, "64f direct", f64, &PlainFirs::f64, direct, blocks);
  Add(cases, "64f by FFT", f64, &PlainFirs::f64, {64, 256, 1024, 4096}, {65536});
  Add(cases, "64f on 32f direct",
      FirExports<Zov64f, Zov32f>{&Kelo_zovsFIRInitAlloc64f_32f, &Kelo_zovsFIRFree64f_32f,
                                 &Kelo_zovsFIR64f_32f},
      &PlainFirs::f64On32f, direct, blocks);
  Add(cases, "64f on 16s direct",
      FirExports<Zov64f, Zov16s>{&Kelo_zovsFIRInitAlloc64f_16s, &Kelo_zovsFIRFree64f_16s,
                                 [](const Zov16s* from, Zov16s* to, int count, ZovFIRState* state) {
                                   return Kelo_zovsFIR64f_16s_Sfs(from, to, count, state, 0);
                                 }},
      &PlainFirs::f64On16s, direct, blocks);
}

}  // namespace zov::bench
