// Prints the relative RMS error of the real FFT at every level, and FFTW's on the same input, as
// the tables of docs/accuracy.md.
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <random>
#include <vector>

#include "core/cpu.h"
#include "exports/tables.h"

namespace {

using Complex = std::complex<long double>;

// Least number of input values of an order.
constexpr std::size_t kValues = 1 << 16;

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

// Sums over all inputs of an order: one short input says little.
struct Error {
  long double error = 0;
  long double norm = 0;

  template <class T>
  void Add(const std::vector<T>& ccs, const std::vector<Complex>& reference) {
    for (std::size_t k = 0; k <= reference.size() / 2; ++k) {
      error += std::norm(Complex(ccs[2 * k], ccs[2 * k + 1]) - reference[k]);
      norm += std::norm(reference[k]);
    }
  }
  double Relative() const { return static_cast<double>(std::sqrt(error / norm)); }
};

template <class Spec, class Init, class Transform, class Free, class T>
std::vector<T> Transformed(Init init, Transform transform, Free release, int order,
                           const std::vector<T>& x) {
  Spec* spec = nullptr;
  init(&spec, order, ZOV_FFT_SCALE_NONE, 0);
  std::vector<T> ccs(x.size() + 2);
  transform(x.data(), ccs.data(), spec, nullptr);
  release(spec);
  return ccs;
}
std::vector<float> Ours(int level, int order, const std::vector<float>& x) {
  return Transformed<ZovFFTSpec_R_32f>(zovTable_zovsFFTInitAlloc_R_32f[level],
                                       zovTable_zovsFFTFwd_RToCCS_32f[level],
                                       zovTable_zovsFFTFree_R_32f[level], order, x);
}
std::vector<double> Ours(int level, int order, const std::vector<double>& x) {
  return Transformed<ZovFFTSpec_R_64f>(zovTable_zovsFFTInitAlloc_R_64f[level],
                                       zovTable_zovsFFTFwd_RToCCS_64f[level],
                                       zovTable_zovsFFTFree_R_64f[level], order, x);
}

std::vector<float> Fftw(std::vector<float> x) {
  std::vector<float> ccs(x.size() + 2);
  const fftwf_plan plan =
      fftwf_plan_dft_r2c_1d(static_cast<int>(x.size()), x.data(),
                            reinterpret_cast<fftwf_complex*>(ccs.data()), FFTW_ESTIMATE);
  fftwf_execute(plan);
  fftwf_destroy_plan(plan);
  return ccs;
}
std::vector<double> Fftw(std::vector<double> x) {
  std::vector<double> ccs(x.size() + 2);
  const fftw_plan plan =
      fftw_plan_dft_r2c_1d(static_cast<int>(x.size()), x.data(),
                           reinterpret_cast<fftw_complex*>(ccs.data()), FFTW_ESTIMATE);
  fftw_execute(plan);
  fftw_destroy_plan(plan);
  return ccs;
}

template <class T>
void PrintTable(const char* name) {
  std::printf("Relative RMS error of the forward transform, %s\n\n", name);
  std::printf(
      "| order |    sse2 |    sse3 |   ssse3 | ssse3_movbe |    sse4 |     avx |    avx2 |    FFTW "
      "|"
      " worst ratio |\n");
  std::printf(
      "| ----: | ------: | ------: | ------: | ----------: | ------: | ------: | ------: | ------: "
      "|"
      " ----------: |\n");
  for (int order = 4; order <= 20; ++order) {
    const std::size_t n = std::size_t{1} << order;
    std::vector<Complex> roots(n / 2), reference(n);
    for (std::size_t k = 0; k < n / 2; ++k) {
      const long double angle =
          6.283185307179586476925286766559005768L * static_cast<long double>(k) / n;
      roots[k] = {std::cos(angle), -std::sin(angle)};
    }
    std::mt19937 random(static_cast<unsigned>(order));
    Error ours[zov::kLevelCount];
    Error fftw;
    for (std::size_t done = 0; done < kValues; done += n) {
      std::vector<T> x(n);
      for (T& value : x) value = static_cast<T>(random() / 2147483648.0 - 1.0);
      Reference(x.data(), n, 1, reference.data(), roots);
      fftw.Add(Fftw(x), reference);
      for (int level = 0; level <= zovDispatchIndex; ++level) {
        ours[level].Add(Ours(level, order, x), reference);
      }
    }
    double worst = 0;
    std::printf("| %5d ", order);
    for (int level = 0; level < zov::kLevelCount; ++level) {
      const int width = level == 3 ? 11 : 7;
      if (level > zovDispatchIndex) {
        std::printf("| %*s ", width, "");
        continue;
      }
      worst = std::max(worst, ours[level].Relative() / fftw.Relative());
      std::printf("| %*.1e ", width, ours[level].Relative());
    }
    std::printf("| %.1e | %11.2f |\n", fftw.Relative(), worst);
  }
  std::printf("\n");
}

}  // namespace

int main() {
  PrintTable<float>("32f");
  PrintTable<double>("64f");
}
