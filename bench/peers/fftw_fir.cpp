// Overlap-save on FFTW, which is not held to levels below AVX.
#include <fftw3.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "../fir.h"

namespace zov::bench {

namespace {

template <class T>
struct Api;
template <>
struct Api<float> {
  using Plan = fftwf_plan;
  static Plan Forward(int n, float* x, float* s) {
    return fftwf_plan_dft_r2c_1d(n, x, reinterpret_cast<fftwf_complex*>(s), FFTW_MEASURE);
  }
  static Plan Inverse(int n, float* s, float* x) {
    return fftwf_plan_dft_c2r_1d(n, reinterpret_cast<fftwf_complex*>(s), x,
                                 FFTW_MEASURE | FFTW_DESTROY_INPUT);
  }
  static void Execute(Plan plan) { fftwf_execute(plan); }
  static void Destroy(Plan plan) { fftwf_destroy_plan(plan); }
  static auto Multiply(int level) { return kPlainFirs[level]->multiply32f; }
};
template <>
struct Api<double> {
  using Plan = fftw_plan;
  static Plan Forward(int n, double* x, double* s) {
    return fftw_plan_dft_r2c_1d(n, x, reinterpret_cast<fftw_complex*>(s), FFTW_MEASURE);
  }
  static Plan Inverse(int n, double* s, double* x) {
    return fftw_plan_dft_c2r_1d(n, reinterpret_cast<fftw_complex*>(s), x,
                                FFTW_MEASURE | FFTW_DESTROY_INPUT);
  }
  static void Execute(Plan plan) { fftw_execute(plan); }
  static void Destroy(Plan plan) { fftw_destroy_plan(plan); }
  static auto Multiply(int level) { return kPlainFirs[level]->multiply64f; }
};

template <class T>
struct OverlapSave {
  typename Api<T>::Plan forward, inverse;
  ~OverlapSave() {
    Api<T>::Destroy(forward);
    Api<T>::Destroy(inverse);
  }
};

}  // namespace

template <class T>
void AddFftwFir(Contest& contest, const FirTask<T, T>& task, int length) {
  const std::size_t count = static_cast<std::size_t>(length);
  T* const work = contest.Array<T>(count);
  T* const spectrum = contest.Array<T>(count + 2);
  T* const taps = contest.Array<T>(count + 2);
  auto plans = std::make_shared<OverlapSave<T>>();
  plans->forward = Api<T>::Forward(length, work, spectrum);
  plans->inverse = Api<T>::Inverse(length, spectrum, work);
  contest.Keep(plans);
  // The division by the length goes with the taps.
  std::fill_n(work, count, T(0));
  for (int k = 0; k < task.tapsLen; ++k) work[k] = task.taps[k] / static_cast<T>(length);
  Api<T>::Execute(plans->forward);
  std::copy_n(spectrum, count + 2, taps);

  const auto call = [=, own = plans.get(), multiply = Api<T>::Multiply(contest.level())] {
    const int history = task.tapsLen - 1;
    const int outputs = length - history;
    for (int done = 0; done < task.count; done += outputs) {
      const int now = std::min(outputs, task.count - done);
      const std::size_t samples = static_cast<std::size_t>(now + history);
      std::memcpy(work, task.from + done - history, samples * sizeof(T));
      std::memset(work + samples, 0, (count - samples) * sizeof(T));
      Api<T>::Execute(own->forward);
      multiply(taps, spectrum, length / 2 + 1);
      Api<T>::Execute(own->inverse);
      std::memcpy(task.to + done, work + history, static_cast<std::size_t>(now) * sizeof(T));
    }
  };
  constexpr int kAvxLevel = 5;
  if (contest.level() >= kAvxLevel) {
    contest.Peer("FFTW", call);
  } else {
    contest.Unheld("FFTW", call);
  }
}
template void AddFftwFir(Contest&, const FirTask<float, float>&, int);
template void AddFftwFir(Contest&, const FirTask<double, double>&, int);

}  // namespace zov::bench
