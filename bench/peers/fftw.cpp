// FFTW, which chooses its codelets by the processor alone: below AVX it is not held to the level.
#include <fftw3.h>

#include "../fft.h"

namespace zov::bench {

namespace {

constexpr int kAvxLevel = 5;

template <class Plan>
void Add(Contest& contest, Plan plan, void (*execute)(Plan), void (*destroy)(Plan)) {
  contest.Keep(std::shared_ptr<void>(plan, [destroy](void* p) { destroy(static_cast<Plan>(p)); }));
  const auto call = [plan, execute] { execute(plan); };
  if (contest.level() >= kAvxLevel) {
    contest.Peer("FFTW", call);
  } else {
    contest.Unheld("FFTW", call);
  }
}

}  // namespace

void AddFftw(Contest& contest, const FftTask<float>& task) {
  const int n = 1 << task.order;
  const fftwf_plan plan =
      task.inverse ? fftwf_plan_dft_c2r_1d(n, reinterpret_cast<fftwf_complex*>(task.from), task.to,
                                           FFTW_MEASURE | FFTW_DESTROY_INPUT)
                   : fftwf_plan_dft_r2c_1d(n, task.from, reinterpret_cast<fftwf_complex*>(task.to),
                                           FFTW_MEASURE);
  Add(
      contest, plan, +[](fftwf_plan p) { fftwf_execute(p); }, fftwf_destroy_plan);
}

void AddFftw(Contest& contest, const FftTask<double>& task) {
  const int n = 1 << task.order;
  const fftw_plan plan =
      task.inverse ? fftw_plan_dft_c2r_1d(n, reinterpret_cast<fftw_complex*>(task.from), task.to,
                                          FFTW_MEASURE | FFTW_DESTROY_INPUT)
                   : fftw_plan_dft_r2c_1d(n, task.from, reinterpret_cast<fftw_complex*>(task.to),
                                          FFTW_MEASURE);
  Add(
      contest, plan, +[](fftw_plan p) { fftw_execute(p); }, fftw_destroy_plan);
}

}  // namespace zov::bench
