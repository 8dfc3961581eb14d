// FFTW by plans that it chose by measuring. Below AVX it is held to SSE2, its one other vector set.
// Plans of long transforms take minutes, so what FFTW learns is kept in the build directory.
#include <fftw3.h>

#include <string>

#include "../fft.h"
#include "core/cpu.h"

namespace {

bool IsHeldToSse2() { return zovDispatchIndex < static_cast<int>(zov::Level::avx); }

}  // namespace

// FFTW asks these functions of its own once, before its first plan; the program's go before the
// library's.
extern "C" {
int fftwf_have_simd_avx();
int fftw_have_simd_avx();
int fftwf_have_simd_avx() { return !IsHeldToSse2() && __builtin_cpu_supports("avx"); }
int fftw_have_simd_avx() { return fftwf_have_simd_avx(); }
}

namespace zov::bench {

namespace {

template <class T>
struct Fftw;

template <>
struct Fftw<float> {
  using Plan = fftwf_plan;
  static constexpr const char* kName = "32f";
  static Plan Forward(int n, float* from, float* to) {
    return fftwf_plan_dft_r2c_1d(n, from, reinterpret_cast<fftwf_complex*>(to), FFTW_MEASURE);
  }
  static Plan Inverse(int n, float* from, float* to) {
    return fftwf_plan_dft_c2r_1d(n, reinterpret_cast<fftwf_complex*>(from), to,
                                 FFTW_MEASURE | FFTW_DESTROY_INPUT);
  }
  static void Execute(Plan plan) { fftwf_execute(plan); }
  static void Destroy(Plan plan) { fftwf_destroy_plan(plan); }
  static void Recall(const char* file) { fftwf_import_wisdom_from_filename(file); }
  static void Note(const char* file) { fftwf_export_wisdom_to_filename(file); }
};

template <>
struct Fftw<double> {
  using Plan = fftw_plan;
  static constexpr const char* kName = "64f";
  static Plan Forward(int n, double* from, double* to) {
    return fftw_plan_dft_r2c_1d(n, from, reinterpret_cast<fftw_complex*>(to), FFTW_MEASURE);
  }
  static Plan Inverse(int n, double* from, double* to) {
    return fftw_plan_dft_c2r_1d(n, reinterpret_cast<fftw_complex*>(from), to,
                                FFTW_MEASURE | FFTW_DESTROY_INPUT);
  }
  static void Execute(Plan plan) { fftw_execute(plan); }
  static void Destroy(Plan plan) { fftw_destroy_plan(plan); }
  static void Recall(const char* file) { fftw_import_wisdom_from_filename(file); }
  static void Note(const char* file) { fftw_export_wisdom_to_filename(file); }
};

template <class T>
void Add(Contest& contest, const FftTask<T>& task) {
  using Peer = Fftw<T>;
  const std::string file =
      std::string(KELOZOV_FFTW_WISDOM) + "_" + Peer::kName + (IsHeldToSse2() ? "_sse2" : "");
  Peer::Recall(file.c_str());
  const int n = 1 << task.order;
  const typename Peer::Plan plan =
      task.inverse ? Peer::Inverse(n, task.from, task.to) : Peer::Forward(n, task.from, task.to);
  Peer::Note(file.c_str());
  contest.Keep(std::shared_ptr<void>(
      plan, [](void* p) { Peer::Destroy(static_cast<typename Peer::Plan>(p)); }));
  contest.Peer("FFTW", [plan] { Peer::Execute(plan); });
}

}  // namespace

void AddFftw(Contest& contest, const FftTask<float>& task) { Add(contest, task); }
void AddFftw(Contest& contest, const FftTask<double>& task) { Add(contest, task); }

}  // namespace zov::bench
