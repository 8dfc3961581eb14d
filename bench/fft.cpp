// Cases of the real FFT, against FFTW: forward and inverse, to another array and in place. The work
// is 2.5 N log2 N operations by the usual count.
#include "fft.h"

#include "core/cpu.h"
#include "registry.h"

namespace zov::bench {

namespace {

template <class T, class Spec>
struct FftExports {
  ZovStatus (*init)(Spec**, int, int, int);
  ZovStatus (*free)(Spec*);
  ZovStatus (*forward)(const T*, T*, const Spec*, Zov8u*);
  ZovStatus (*inverse)(const T*, T*, const Spec*, Zov8u*);
};

// An object belongs to the level that made it, so there is one for each level that is measured.
template <class T, class Spec>
struct LevelObjects {
  FftExports<T, Spec> exports;
  int order;
  Spec* objects[kLevelCount] = {};

  ~LevelObjects() {
    for (Spec* object : objects) {
      if (object != nullptr) exports.free(object);
    }
  }
  const Spec* Get() {
    Spec*& object = objects[zovDispatchIndex];
    if (object == nullptr) exports.init(&object, order, ZOV_FFT_SCALE_NONE, 0);
    return object;
  }
};

template <class T, class Spec>
void AddType(Cases& cases, const char* name, FftExports<T, Spec> exports) {
  for (const bool inverse : {false, true}) {
    for (const bool inPlace : {false, true}) {
      for (int order = 3; order <= 22; ++order) {
        const std::size_t count = std::size_t{1} << order;
        const auto setUp = [=](Contest& contest) {
          auto objects = std::make_shared<LevelObjects<T, Spec>>();
          objects->exports = exports;
          objects->order = order;
          contest.Keep(objects);
          // Room for the work of any level: one complex array, or two tiles.
          Zov8u* const work = contest.Array<Zov8u>(2 * sizeof(T) * count + 262144);
          T* const from = contest.Array<T>(count + 2);
          T* const to = inPlace ? from : contest.Array<T>(count + 2);
          LevelObjects<T, Spec>* const own = objects.get();
          const auto transform = inverse ? exports.inverse : exports.forward;
          contest.Ours([=] { return transform(from, to, own->Get(), work); });
#if KELOZOV_BENCH_FFTW
          if (contest.withPeers()) AddFftw(contest, FftTask<T>{order, inverse, from, to});
#endif
          // Plans leave their marks. Zeros stay what they are, however often they are transformed.
          for (std::size_t i = 0; i < count + 2; ++i) from[i] = to[i] = 0;
        };
        cases.push_back(
            {"fft",
             std::string(name) + (inverse ? " inverse" : " forward") + (inPlace ? " in place" : ""),
             "2^" + std::to_string(order), "GFLOP/s", 2.5 * static_cast<double>(count) * order,
             setUp});
      }
    }
  }
}

}  // namespace

void AddFftCases(Cases& cases) {
  AddType<Zov32f, ZovFFTSpec_R_32f>(cases, "32f",
                                    {&Kelo_zovsFFTInitAlloc_R_32f, &Kelo_zovsFFTFree_R_32f,
                                     &Kelo_zovsFFTFwd_RToCCS_32f, &Kelo_zovsFFTInv_CCSToR_32f});
  AddType<Zov64f, ZovFFTSpec_R_64f>(cases, "64f",
                                    {&Kelo_zovsFFTInitAlloc_R_64f, &Kelo_zovsFFTFree_R_64f,
                                     &Kelo_zovsFFTFwd_RToCCS_64f, &Kelo_zovsFFTInv_CCSToR_64f});
}

}  // namespace zov::bench
