// Cases of the conversions. A case's size is that of its larger array.
#include <algorithm>
#include <string>

#include "arrays.h"
#include "registry.h"
#include "routine.h"
#include "samples.h"
#if KELOZOV_BENCH_VOLK
#include "peers/volk_samples.h"
#endif

namespace zov::bench {

namespace {

template <class In, class Out>
struct Operands {
  In* a;
  Out* out;
  int len;
};

struct Nothing {
  template <class... Argument>
  void operator()(Argument&&...) const {}
};

// `shape` calls a routine or the plain loop, `volk` calls VOLK's kernels; OpenCV multiplies by
// `openCvScale`, or is left out where that is 0.
template <class In, class Out, class Function, class Shape, class Volk = Nothing>
void Add(Cases& cases, const Routine<Function>& routine, const char* variant, Shape shape,
         double openCvScale = 0, [[maybe_unused]] Volk volk = {}) {
  for (const std::size_t bytes : Sizes(1024, 16 << 20, 4)) {
    const std::size_t count = bytes / std::max(sizeof(In), sizeof(Out));
    const auto setUp = [=](Contest& contest) {
      const Operands<In, Out> o = {contest.Array<In>(count), contest.Array<Out>(count),
                                   static_cast<int>(count)};
      FillRandom(o.a, count);
      FillRandom(o.out, count);
      contest.Ours([=, f = routine.entry] { return shape(f, o); });
      contest.Peer("plain loop", [=, f = routine.plain[contest.level()]] { shape(f, o); });
#if KELOZOV_BENCH_VOLK
      if constexpr (!std::is_same_v<Volk, Nothing>) {
        contest.Peer("VOLK", [=, kernels = kVolkSamples[contest.level()]] { volk(*kernels, o); });
      }
#endif
#if KELOZOV_BENCH_OPENCV
      if (openCvScale != 0) {
        AddOpenCvConvert(contest, SamplesOf(o.a, o.len), SamplesOf(o.out, o.len), openCvScale, 0);
      }
#endif
    };
    cases.push_back({"conversion", routine.name + std::string(variant), BytesLabel(bytes),
                     "Melem/s", static_cast<double>(count), setUp});
  }
}

// Interleaved samples to one array for each channel.
template <int kChannels>
void AddSplit(Cases& cases) {
  const auto routine = ROUTINE(zovsSplitScaled_16s32f_D2L);
  for (const std::size_t bytes : Sizes(1024, 16 << 20, 4)) {
    const std::size_t each = bytes / sizeof(Zov32f) / kChannels;
    const auto setUp = [=](Contest& contest) {
      Zov16s* const a = contest.Array<Zov16s>(each * kChannels);
      Zov32f** const rows = contest.Array<Zov32f*>(kChannels);
      FillRandom(a, each * kChannels);
      for (int c = 0; c < kChannels; ++c) rows[c] = contest.Array<Zov32f>(each);
      const int len = static_cast<int>(each);
      contest.Ours([=, f = routine.entry] { return f(a, rows, kChannels, len); });
      contest.Peer("plain loop",
                   [=, f = routine.plain[contest.level()]] { f(a, rows, kChannels, len); });
#if KELOZOV_BENCH_VOLK
      if (kChannels == 2) {
        contest.Peer("VOLK", [=, f = kVolkSamples[contest.level()]->split] {
          f(rows[0], rows[1], a, 32768.0F, unsigned(len));
        });
      }
#endif
    };
    cases.push_back({"conversion", std::string(routine.name) + " x" + std::to_string(kChannels),
                     BytesLabel(bytes), "Melem/s", static_cast<double>(each) * kChannels, setUp});
  }
}

}  // namespace

void AddConversionCases(Cases& cases) {
  const auto plain = [](auto f, const auto& o) { return f(o.a, o.out, o.len); };
  const auto scaled = [](auto f, const auto& o) { return f(o.a, o.out, o.len, 3); };
  const auto unscaled = [](auto f, const auto& o) { return f(o.a, o.out, o.len, 0); };
  const auto zero = [](auto f, const auto& o) { return f(o.a, o.out, o.len, ZOV_RND_ZERO, 3); };
  const auto near = [](auto f, const auto& o) { return f(o.a, o.out, o.len, ZOV_RND_NEAR, 0); };
  const auto nearScaled = [](auto f, const auto& o) {
    return f(o.a, o.out, o.len, ZOV_RND_NEAR, 3);
  };
  const auto financial = [](auto f, const auto& o) {
    return f(o.a, o.out, o.len, ZOV_RND_FINANCIAL, 3);
  };
  const auto toFloat16 = [](const auto& k, const auto& o) {
    k.toFloat16(o.out, o.a, 1.0F, unsigned(o.len));
  };
  const auto toDouble = [](const auto& k, const auto& o) {
    k.toDouble(o.out, o.a, unsigned(o.len));
  };
  const auto toFloat64 = [](const auto& k, const auto& o) {
    k.toFloat64(o.out, o.a, unsigned(o.len));
  };
  const auto toShort = [](const auto& k, const auto& o) {
    k.toShort(o.out, o.a, 0.125F, unsigned(o.len));
  };
  Add<Zov16s, Zov32f>(cases, ROUTINE(zovsConvert_16s32f), "", plain, 1, toFloat16);
  Add<Zov16s, Zov64f>(cases, ROUTINE(zovsConvert_16s64f_Sfs), "", unscaled, 1);
  Add<Zov16s, Zov64f>(cases, ROUTINE(zovsConvert_16s64f_Sfs), " scaled", scaled, 0.125);
  Add<Zov32f, Zov64f>(cases, ROUTINE(zovsConvert_32f64f), "", plain, 1, toDouble);
  Add<Zov64f, Zov32f>(cases, ROUTINE(zovsConvert_64f32f), "", plain, 1, toFloat64);
  Add<Zov32s, Zov16s>(cases, ROUTINE(zovsConvert_32s16s), "", plain, 1);
  Add<Zov32f, Zov16s>(cases, ROUTINE(zovsConvert_32f16s_Sfs), " near", near, 1, toShort);
  Add<Zov32f, Zov16s>(cases, ROUTINE(zovsConvert_32f16s_Sfs), " near scaled", nearScaled, 0.125,
                      toShort);
  Add<Zov32f, Zov16s>(cases, ROUTINE(zovsConvert_32f16s_Sfs), " zero scaled", zero);
  Add<Zov32f, Zov16s>(cases, ROUTINE(zovsConvert_32f16s_Sfs), " financial scaled", financial);
  Add<Zov64f, Zov16s>(cases, ROUTINE(zovsConvert_64f16s_Sfs), " near", near, 1);
  Add<Zov64f, Zov16s>(cases, ROUTINE(zovsConvert_64f16s_Sfs), " near scaled", nearScaled, 0.125);
  Add<Zov64f, Zov16s>(cases, ROUTINE(zovsConvert_64f16s_Sfs), " zero scaled", zero);
  Add<Zov64f, Zov16s>(cases, ROUTINE(zovsConvert_64f16s_Sfs), " financial scaled", financial);
  AddSplit<1>(cases);
  AddSplit<2>(cases);
  AddSplit<6>(cases);
}

}  // namespace zov::bench
