// The constant quarter wave, and longer ones computed in double.
#include "signal/fourier/sine_table.h"

#include <cmath>

namespace zov {

namespace {

template <class T>
struct QuarterWave {
  T values[257];
};

template <class T>
constexpr QuarterWave<T> MakeQuarterWave() {
  QuarterWave<T> wave{};
  for (int j = 0; j <= 128; ++j) {
    wave.values[256 - j] = static_cast<T>(static_cast<double>(CosineOfEighth(j, 1024)));
    wave.values[j] = static_cast<T>(static_cast<double>(SineOfEighth(j, 1024)));
  }
  return wave;
}

template <class T>
constexpr QuarterWave<T> kQuarterWave = MakeQuarterWave<T>();

}  // namespace

template <class T>
const T* ConstantQuarterSine() {
  return kQuarterWave<T>.values;
}

// Each value comes from the better-conditioned function of the two.
template <class T>
void BuildQuarterSine(T* table, int order) {
  const std::int64_t length = std::int64_t{1} << order;
  const std::int64_t quarter = length / 4;
  const double step = 6.283185307179586 / static_cast<double>(length);
  for (std::int64_t j = 0; j <= quarter / 2; ++j) {
    table[j] = static_cast<T>(std::sin(static_cast<double>(j) * step));
  }
  for (std::int64_t j = quarter / 2 + 1; j <= quarter; ++j) {
    table[j] = static_cast<T>(std::cos(static_cast<double>(quarter - j) * step));
  }
}

template const Zov32f* ConstantQuarterSine<Zov32f>();
template const Zov64f* ConstantQuarterSine<Zov64f>();
template void BuildQuarterSine<Zov32f>(Zov32f* table, int order);
template void BuildQuarterSine<Zov64f>(Zov64f* table, int order);

}  // namespace zov
