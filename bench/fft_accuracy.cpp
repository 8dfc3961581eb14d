// Prints the relative RMS error of the real FFT at every level, and FFTW's on the same input, as
// the tables of docs/accuracy.md.
#include <fftw3.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <random>
#include <vector>

#include "core/cpu.h"
#include "exports/tables.h"

namespace {

using Complex = std::complex<long double>;

// The plain recursion in long double: x[0], x[step], ... (n of them) to out.
template <class T>
void Reference(const T* x, std::size_t n, std::size_t step, Complex* out,
               const std::vector<Complex>& roots) {
  if (n == 1) {
    out[0] = static_cast<long double>(x[0]);
    return;
  }
  Reference(x, n / 2, 2 * step, out, roots);
  Reference(x + step, n / 2, 2 * step, out + n / 2, roots);
  for (std::size_t k = 0; k < n / 2; ++k) {
    const Complex turned = out[n / 2 + k] * roots[k * step];
    out[n / 2 + k] = out[k] - turned;
    out[k] += turned;
  }
}

template <class T>
double Error(const std::vector<T>& ccs, const std::vector<Complex>& reference) {
  long double error = 0;
  long double norm = 0;
  for (std::size_t k = 0; k <= reference.size() / 2; ++k) {
    error += std::norm(Complex(ccs[2 * k], ccs[2 * k + 1]) - reference[k]);
    norm += std::norm(reference[k]);
  }
  return static_cast<double>(std::sqrt(error / norm));
}

double Zov(int level, int order, const std::vector<float>& x,
           const std::vector<Complex>& reference) {
  ZovFFTSpec_R_32f* spec = nullptr;
  zovTable_zovsFFTInitAlloc_R_32f[level](&spec, order, ZOV_FFT_SCALE_NONE, 0);
  std::vector<float> ccs(x.size() + 2);
  zovTable_zovsFFTFwd_RToCCS_32f[level](x.data(), ccs.data(), spec, nullptr);
  zovTable_zovsFFTFree_R_32f[level](spec);
  return Error(ccs, reference);
}
double Zov(int level, int order, const std::vector<double>& x,
           const std::vector<Complex>& reference) {
  ZovFFTSpec_R_64f* spec = nullptr;
  zovTable_zovsFFTInitAlloc_R_64f[level](&spec, order, ZOV_FFT_SCALE_NONE, 0);
  std::vector<double> ccs(x.size() + 2);
  zovTable_zovsFFTFwd_RToCCS_64f[level](x.data(), ccs.data(), spec, nullptr);
  zovTable_zovsFFTFree_R_64f[level](spec);
  return Error(ccs, reference);
}

double Fftw(std::vector<float> x, const std::vector<Complex>& reference) {
  std::vector<float> ccs(x.size() + 2);
  const fftwf_plan plan =
      fftwf_plan_dft_r2c_1d(static_cast<int>(x.size()), x.data(),
                            reinterpret_cast<fftwf_complex*>(ccs.data()), FFTW_ESTIMATE);
  fftwf_execute(plan);
  fftwf_destroy_plan(plan);
  return Error(ccs, reference);
}
double Fftw(std::vector<double> x, const std::vector<Complex>& reference) {
  std::vector<double> ccs(x.size() + 2);
  const fftw_plan plan =
      fftw_plan_dft_r2c_1d(static_cast<int>(x.size()), x.data(),
                           reinterpret_cast<fftw_complex*>(ccs.data()), FFTW_ESTIMATE);
  fftw_execute(plan);
  fftw_destroy_plan(plan);
  return Error(ccs, reference);
}

template <class T>
void PrintTable(const char* name) {
  std::printf("Relative RMS error of the forward transform, %s\n\n", name);
  std::printf(
      "| order |   sse2  |   sse3  |  ssse3  | ssse3_movbe |   sse4  |   avx   |  avx2   |  FFTW   "
      "|"
      " worst ratio |\n");
  std::printf(
      "| ----: | ------: | ------: | ------: | ----------: | ------: | ------: | ------: | ------: "
      "|"
      " ----------: |\n");
  for (int order = 4; order <= 20; ++order) {
    const std::size_t n = std::size_t{1} << order;
    std::mt19937 random(static_cast<unsigned>(order));
    std::vector<T> x(n);
    for (T& value : x) value = static_cast<T>(random() / 2147483648.0 - 1.0);
    std::vector<Complex> roots(n / 2), reference(n);
    for (std::size_t k = 0; k < n / 2; ++k) {
      const long double angle =
          6.283185307179586476925286766559005768L * static_cast<long double>(k) / n;
      roots[k] = {std::cos(angle), -std::sin(angle)};
    }
    Reference(x.data(), n, 1, reference.data(), roots);
    const double fftw = Fftw(x, reference);
    double worst = 0;
    std::printf("| %5d ", order);
    for (int level = 0; level < zov::kLevelCount; ++level) {
      if (level > zovDispatchIndex) {
        std::printf("| %*s ", level == 3 ? 11 : 7, "");
        continue;
      }
      const double error = Zov(level, order, x, reference);
      worst = std::max(worst, error / fftw);
      std::printf("| %*.1e ", level == 3 ? 11 : 7, error);
    }
    std::printf("| %.1e | %11.2f |\n", fftw, worst);
  }
  std::printf("\n");
}

}  // namespace

int main() {
  PrintTable<float>("32f");
  PrintTable<double>("64f");
}
