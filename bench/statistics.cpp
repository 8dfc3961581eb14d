// Cases of sums, means, deviation, extremes and normalisation.
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

template <class T>
struct Operands {
  T* a;
  T* out;  // of the element-wise members; the others write elements 0 and 1
  int* index;
  int len;
};

struct Nothing {
  template <class... Argument>
  void operator()(Argument&&...) const {}
};

// `shape` calls a routine or the plain loop, `volk` calls VOLK's kernels, `openCv` adds OpenCV.
template <class T, class Function, class Shape, class OpenCv = Nothing, class Volk = Nothing>
void Add(Cases& cases, const Routine<Function>& routine, Shape shape,
         [[maybe_unused]] OpenCv openCv = {}, [[maybe_unused]] Volk volk = {},
         const char* variant = "") {
  for (const std::size_t bytes : Sizes(1024, 16 << 20, 4)) {
    const std::size_t count = bytes / sizeof(T);
    const auto setUp = [=](Contest& contest) {
      const Operands<T> o = {contest.Array<T>(count), contest.Array<T>(count),
                             contest.Array<int>(1), static_cast<int>(count)};
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
      openCv(contest, o);
#endif
    };
    cases.push_back({"statistics", routine.name + std::string(variant), BytesLabel(bytes),
                     "Melem/s", static_cast<double>(count), setUp});
  }
}

template <class T>
Samples SourceOf(const Operands<T>& o) {
  return SamplesOf(o.a, o.len);
}
constexpr auto kOpenCvSum = [](Contest& c, const auto& o) { AddOpenCvSum(c, SourceOf(o)); };
constexpr auto kOpenCvMean = [](Contest& c, const auto& o) { AddOpenCvMean(c, SourceOf(o)); };
constexpr auto kOpenCvDeviation = [](Contest& c, const auto& o) {
  AddOpenCvDeviation(c, SourceOf(o));
};
template <Extremes kWhich>
constexpr auto kOpenCvExtremes =
    [](Contest& c, const auto& o) { AddOpenCvExtremes(c, SourceOf(o), kWhich); };
template <Extremes kWhich>
constexpr auto kOpenCvEvery = [](Contest& c, const auto& o) {
  AddOpenCvEvery(c, SourceOf(o), SamplesOf(o.out, o.len), kWhich);
};
constexpr auto kOpenCvNormalize = [](Contest& c, const auto& o) {
  AddOpenCvConvert(c, SourceOf(o), SamplesOf(o.out, o.len), 0.25, -0.375);
};

}  // namespace

void AddStatisticsCases(Cases& cases) {
  const auto one = [](auto f, const auto& o) { return f(o.a, o.len, o.out); };
  const auto both = [](auto f, const auto& o) { return f(o.a, o.len, o.out, o.out + 1); };
  const auto indexed = [](auto f, const auto& o) { return f(o.a, o.len, o.out, o.index); };
  const auto scaled = [](auto f, const auto& o) { return f(o.a, o.len, o.out, 1); };
  const auto sum = [](auto f, const auto& o) { return f(o.a, o.len, o.index, 1); };
  const auto accurate = [](auto f, const auto& o) { return f(o.a, o.len, o.out, 2); };
  const auto fast = scaled;
  const auto every = [](auto f, const auto& o) { return f(o.a, o.out, o.len); };
  const auto normalize = [](auto f, const auto& o) {
    using T = std::remove_pointer_t<decltype(o.out)>;
    return f(o.a, o.out, o.len, T(1.5), T(4));
  };
  const auto volkDeviation = [](const auto& k, const auto& o) {
    k.deviation(o.out, o.out + 1, o.a, unsigned(o.len));
  };
  const auto volkLargest = [](const auto& k, const auto& o) {
    k.indexOfLargest(reinterpret_cast<std::uint32_t*>(o.index), o.a, unsigned(o.len));
  };
  const auto volkSmallest = [](const auto& k, const auto& o) {
    k.indexOfSmallest(reinterpret_cast<std::uint32_t*>(o.index), o.a, unsigned(o.len));
  };
  const auto volkLarger = [](const auto& k, const auto& o) {
    k.larger(o.out, o.out, o.a, unsigned(o.len));
  };
  const auto volkSmaller = [](const auto& k, const auto& o) {
    k.smaller(o.out, o.out, o.a, unsigned(o.len));
  };
  constexpr Extremes kLargest = Extremes::largest;
  constexpr Extremes kSmallest = Extremes::smallest;
  const Nothing none;
  Add<Zov16s>(cases, ROUTINE(zovsSum_16s32s_Sfs), sum, kOpenCvSum);
  Add<Zov16s>(cases, ROUTINE(zovsMean_16s_Sfs), scaled, kOpenCvMean);
  Add<Zov32s>(cases, ROUTINE(zovsMean_32s_Sfs), scaled, kOpenCvMean);
  Add<Zov32f>(cases, ROUTINE(zovsMean_32f), accurate, kOpenCvMean);
  Add<Zov64f>(cases, ROUTINE(zovsMean_64f), one, kOpenCvMean);
  Add<Zov32f>(cases, ROUTINE(zovsStdDev_32f), accurate, kOpenCvDeviation, none, " accurate");
  Add<Zov32f>(cases, ROUTINE(zovsStdDev_32f), fast, kOpenCvDeviation, volkDeviation, " fast");
  Add<Zov16s>(cases, ROUTINE(zovsMax_16s), one, kOpenCvExtremes<kLargest>);
  Add<Zov32f>(cases, ROUTINE(zovsMax_32f), one, kOpenCvExtremes<kLargest>);
  Add<Zov64f>(cases, ROUTINE(zovsMax_64f), one, kOpenCvExtremes<kLargest>);
  Add<Zov16s>(cases, ROUTINE(zovsMin_16s), one, kOpenCvExtremes<kSmallest>);
  Add<Zov32f>(cases, ROUTINE(zovsMin_32f), one, kOpenCvExtremes<kSmallest>);
  Add<Zov16s>(cases, ROUTINE(zovsMinMax_16s), both, kOpenCvExtremes<Extremes::both>);
  Add<Zov16u>(cases, ROUTINE(zovsMinMax_16u), both, kOpenCvExtremes<Extremes::both>);
  Add<Zov32f>(cases, ROUTINE(zovsMinMax_32f), both, kOpenCvExtremes<Extremes::both>);
  Add<Zov32f>(cases, ROUTINE(zovsMaxIndx_32f), indexed, kOpenCvExtremes<kLargest>, volkLargest);
  Add<Zov32f>(cases, ROUTINE(zovsMinIndx_32f), indexed, kOpenCvExtremes<kSmallest>, volkSmallest);
  Add<Zov32f>(cases, ROUTINE(zovsMaxEvery_32f_I), every, kOpenCvEvery<kLargest>, volkLarger);
  Add<Zov32f>(cases, ROUTINE(zovsMinEvery_32f_I), every, kOpenCvEvery<kSmallest>, volkSmaller);
  Add<Zov32f>(cases, ROUTINE(zovsNormalize_32f), normalize, kOpenCvNormalize);
  Add<Zov64f>(cases, ROUTINE(zovsNormalize_64f), normalize, kOpenCvNormalize);
}

}  // namespace zov::bench
