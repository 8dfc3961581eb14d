// Real transforms against the long double reference, on every route of every level.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "core/memory.h"
#include "signal/fourier/fft_reference.h"
#include "signal/fourier/spec.h"
#include "support/guarded.h"

namespace zov::test {
namespace {

template <class T>
class FftTransform : public ::testing::Test {};
using Elements = ::testing::Types<Zov32f, Zov64f>;
TYPED_TEST_SUITE(FftTransform, Elements);

constexpr int kFlags[] = {ZOV_FFT_SCALE_FWD, ZOV_FFT_SCALE_INV, ZOV_FFT_SCALE_SQRT,
                          ZOV_FFT_SCALE_NONE};

long double ForwardScale(int flag, long double n) {
  if (flag == ZOV_FFT_SCALE_FWD) return 1 / n;
  return flag == ZOV_FFT_SCALE_SQRT ? 1 / std::sqrt(n) : 1;
}
long double InverseScale(int flag, long double n) {
  if (flag == ZOV_FFT_SCALE_INV) return 1 / n;
  return flag == ZOV_FFT_SCALE_SQRT ? 1 / std::sqrt(n) : 1;
}

// Relative RMS distance of a CCS spectrum from `scale` times the reference.
template <class T>
long double SpectrumError(const T* ccs, const std::vector<Complex>& reference, long double scale) {
  const std::size_t n = reference.size();
  long double error = 0;
  long double norm = 0;
  for (std::size_t k = 0; k <= n / 2; ++k) {
    const Complex expected = reference[k] * scale;
    error += std::norm(Complex(ccs[2 * k], ccs[2 * k + 1]) - expected);
    norm += std::norm(expected);
  }
  return std::sqrt(error / norm);
}

template <class T>
long double SignalError(const T* values, const std::vector<float>& signal, long double scale) {
  long double error = 0;
  long double norm = 0;
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const long double expected = signal[i] * scale;
    error += (values[i] - expected) * (values[i] - expected);
    norm += expected * expected;
  }
  return std::sqrt(error / norm);
}

template <class T>
bool SameBits(const T* a, const T* b, std::size_t count) {
  return std::memcmp(a, b, count * sizeof(T)) == 0;
}

// Everything that holds for one object: both directions against the reference, in place as out of
// place, at any alignment, with and without a work buffer, and no byte touched beyond the arrays.
template <class T>
void CheckObject(int level, int order, int flag, const std::vector<float>& signal,
                 const std::vector<Complex>& reference) {
  SCOPED_TRACE("order " + std::to_string(order) + " flag " + std::to_string(flag));
  const std::size_t n = signal.size();
  const std::size_t spectrum = n + (n > 1 ? 2 : 1);
  const long double bound = ErrorBound<T>(order);
  const FftObject<T> object(level, order, flag);
  ASSERT_EQ(object.status(), zovStsNoErr);
  const auto forward = Fft<T>::Forward(level);
  const auto inverse = Fft<T>::Inverse(level);
  const std::vector<T> source(signal.begin(), signal.end());
  const std::size_t workBytes = static_cast<std::size_t>(object.get()->workBytes);
  const GuardedArray<Zov8u> room(workBytes);
  Zov8u* const work = room.At(workBytes, Guard::after);

  const GuardedArray<T> to(n + 2);
  const GuardedArray<T> back(n + 2);
  T* const ccs = to.At(n + 2, Guard::before, 32);
  ASSERT_EQ(forward(source.data(), ccs, object.get(), work - 63), zovStsNoErr);
  EXPECT_EQ(ccs[1], 0);
  if (n > 1) {
    EXPECT_EQ(ccs[n + 1], 0);
  }
  EXPECT_LE(SpectrumError(ccs, reference, ForwardScale(flag, static_cast<long double>(n))), bound);

  T* const inPlace = back.At(n + 2, Guard::after);
  std::copy(source.begin(), source.end(), inPlace);
  ASSERT_EQ(forward(inPlace, inPlace, object.get(), nullptr), zovStsNoErr);
  EXPECT_TRUE(SameBits(inPlace, ccs, spectrum));
  back.Fill(0x55);
  T* const shifted = back.At(n + 2, Guard::before, sizeof(T));
  ASSERT_EQ(forward(source.data(), shifted, object.get(), work), zovStsNoErr);
  EXPECT_TRUE(SameBits(shifted, ccs, spectrum));
  EXPECT_TRUE(back.UntouchedOutside(shifted, spectrum, 0x55));

  // The inverse reads neither of the zeros.
  ccs[1] = static_cast<T>(NAN);
  if (n > 1) ccs[n + 1] = static_cast<T>(NAN);
  const long double scale = static_cast<long double>(n) *
                            ForwardScale(flag, static_cast<long double>(n)) *
                            InverseScale(flag, static_cast<long double>(n));
  back.Fill(0x55);
  T* const result = back.At(n, Guard::after);
  ASSERT_EQ(inverse(ccs, result, object.get(), work), zovStsNoErr);
  EXPECT_LE(SignalError(result, signal, scale), 1.5L * bound);
  EXPECT_TRUE(back.UntouchedOutside(result, n, 0x55));
  const std::vector<T> values(result, result + n);
  T* const unaligned = back.At(n, Guard::before, sizeof(T));
  ASSERT_EQ(inverse(ccs, unaligned, object.get(), work), zovStsNoErr);
  EXPECT_TRUE(SameBits(unaligned, values.data(), n));
  ASSERT_EQ(inverse(ccs, ccs, object.get(), nullptr), zovStsNoErr);
  EXPECT_TRUE(SameBits(ccs, values.data(), n));
}

TYPED_TEST(FftTransform, EveryOrderAtEveryLevel) {
  for (int order = 0; order <= 20; ++order) {
    const std::vector<float> signal = RandomSignal(std::size_t{1} << order);
    const std::vector<Complex> reference = ReferenceTransform(signal);
    ForEachLevel([&](int level) {
      for (const int flag : kFlags) {
        // Long ones take the flags in turn.
        if (order > 14 && flag != kFlags[(order + level) % 4]) continue;
        CheckObject<TypeParam>(level, order, flag, signal, reference);
      }
    });
  }
}

// The reference itself against the sum that defines the transform.
TEST(FftReference, IsTheDefiningSum) {
  const std::vector<float> x = RandomSignal(64);
  const std::vector<Complex> reference = ReferenceTransform(x);
  for (std::size_t k = 0; k < 64; ++k) {
    Complex sum = 0;
    for (std::size_t n = 0; n < 64; ++n) sum += static_cast<long double>(x[n]) * Root(k * n, 64);
    EXPECT_LT(std::abs(sum - reference[k]), 1e-16L);
  }
}

// A real tone of a whole number of periods has one line, and the largest error stays small beside
// it: no bin is wrong that an RMS would hide.
TYPED_TEST(FftTransform, ToneHasOneLine) {
  ForEachLevel([](int level) {
    for (int order = 3; order <= 16; ++order) {
      const std::size_t n = std::size_t{1} << order;
      const std::size_t line = n / 2 - n / 8 - 1;
      std::vector<TypeParam> x(n), spectrum(n + 2);
      for (std::size_t i = 0; i < n; ++i) x[i] = static_cast<TypeParam>(Root(i * line, n).real());
      const FftObject<TypeParam> object(level, order, ZOV_FFT_SCALE_FWD);
      ASSERT_EQ(Fft<TypeParam>::Forward(level)(x.data(), spectrum.data(), object.get(), nullptr),
                zovStsNoErr);
      const long double tiny = sizeof(TypeParam) == 4 ? 4e-7L : 8e-16L;
      for (std::size_t k = 0; k <= n / 2; ++k) {
        const Complex value(spectrum[2 * k], spectrum[2 * k + 1]);
        ASSERT_LT(std::abs(value - (k == line ? 0.5L : 0.0L)), tiny) << order << " bin " << k;
      }
    }
  });
}

// Orders beyond the reference, at the levels where a route, a tiling or a split changes there.
// The signal is a few impulses, so any bin has a short exact sum; the way back shows the rest.
// Apart: out of place, with a given work buffer and the forward scale.
template <class T>
void CheckSparse(int level, int order, bool apart) {
  SCOPED_TRACE("level " + std::to_string(level) + " order " + std::to_string(order));
  const std::size_t n = std::size_t{1} << order;
  std::minstd_rand random(static_cast<unsigned>(order));
  std::vector<T> x(n + 2);
  std::array<std::size_t, 24> places;
  for (std::size_t& place : places) {
    place = (static_cast<std::size_t>(random()) * 65536 + random()) % n;
    x[place] = static_cast<T>(1 + random() % 8);
  }
  std::sort(places.begin(), places.end());
  const auto end = std::unique(places.begin(), places.end());
  std::vector<T> source = x;
  std::vector<T> back(apart ? n : 0);
  const FftObject<T> object(level, order, apart ? ZOV_FFT_SCALE_FWD : ZOV_FFT_SCALE_INV);
  ASSERT_EQ(object.status(), zovStsNoErr);
  const std::size_t workBytes = static_cast<std::size_t>(object.get()->workBytes);
  const GuardedArray<Zov8u> room(workBytes);
  Zov8u* const work = apart ? room.At(workBytes, Guard::after) : nullptr;
  const long double scale = apart ? 1.0L / static_cast<long double>(n) : 1;
  ASSERT_EQ(Fft<T>::Forward(level)((apart ? source : x).data(), x.data(), object.get(), work),
            zovStsNoErr);
  const long double tolerance = (sizeof(T) == 4 ? 1e-5L : 2e-14L);
  for (int i = 0; i < 2000; ++i) {
    const std::size_t k = i < 8 ? n / 2 - static_cast<std::size_t>(i)
                                : (static_cast<std::size_t>(random()) * 65536 + random()) % (n / 2);
    Complex expected = 0;
    for (auto p = places.begin(); p != end; ++p) {
      expected += static_cast<long double>(source[*p]) * Root(k * *p, n);
    }
    ASSERT_LT(std::abs(Complex(x[2 * k], x[2 * k + 1]) - expected * scale), tolerance * 100 * scale)
        << k;
  }
  T* const result = (apart ? back : x).data();
  ASSERT_EQ(Fft<T>::Inverse(level)(x.data(), result, object.get(), work), zovStsNoErr);
  for (std::size_t i = 0; i < n; ++i) {
    if (!(std::abs(result[i] - source[i]) < static_cast<T>(tolerance))) {
      FAIL() << "value " << i << " is " << result[i] << ", not " << source[i];
    }
  }
}

struct LongCase {
  int level, order;
  bool apart = false;
};

TEST(FftLong, ThresholdsOf32f) {
  constexpr LongCase kCases[] = {{1, 21}, {1, 22}, {2, 21}, {3, 22}, {4, 21},      {1, 23},
                                 {0, 23}, {0, 24}, {6, 23}, {6, 24}, {3, 21, true}};
  for (const LongCase& c : kCases) {
    if (c.level <= zovDispatchIndex) CheckSparse<Zov32f>(c.level, c.order, c.apart);
  }
}
TEST(FftLong, ThresholdsOf64f) {
  constexpr LongCase kCases[] = {{0, 21}, {0, 22}, {1, 21}, {1, 22}, {2, 21}, {2, 22},
                                 {3, 21}, {3, 22}, {3, 23}, {6, 22}, {6, 23}, {5, 22, true}};
  for (const LongCase& c : kCases) {
    if (c.level <= zovDispatchIndex) CheckSparse<Zov64f>(c.level, c.order, c.apart);
  }
}

// Infinities and NaN go through; nothing fails.
TYPED_TEST(FftTransform, NonFiniteValuesPropagate) {
  ForEachLevel([](int level) {
    for (const int order : {3, 6, 9, 12}) {
      const std::size_t n = std::size_t{1} << order;
      std::vector<TypeParam> x(n + 2, 1);
      x[n / 2] = static_cast<TypeParam>(NAN);
      const FftObject<TypeParam> object(level, order, ZOV_FFT_SCALE_SQRT);
      ASSERT_EQ(Fft<TypeParam>::Forward(level)(x.data(), x.data(), object.get(), nullptr),
                zovStsNoErr);
      for (std::size_t k = 0; k <= n / 2; ++k) ASSERT_TRUE(std::isnan(x[2 * k])) << k;
    }
  });
}

int allocations = 0;
HeapTable plainHeap;
void* CountingAllocate(std::size_t size) {
  ++allocations;
  return plainHeap.allocate(size);
}
void* RefusingAllocate(std::size_t) { return nullptr; }

// With a work buffer a transform allocates nothing; without one it allocates where the object says
// so, and a refusal leaves the destination alone.
TYPED_TEST(FftTransform, AllocatesOnlyMissingWork) {
  plainHeap = zovHeap;
  ForEachLevel([](int level) {
    for (const int order : {4, 6, 8, 13, 17, 20}) {
      const std::size_t n = std::size_t{1} << order;
      std::vector<TypeParam> x(n + 2, 1), y(n + 2, 7);
      const FftObject<TypeParam> object(level, order, ZOV_FFT_SCALE_NONE);
      const int workBytes = object.get()->workBytes;
      std::vector<Zov8u> work(static_cast<std::size_t>(workBytes) + 64);
      const auto forward = Fft<TypeParam>::Forward(level);
      for (const auto call : {forward, Fft<TypeParam>::Inverse(level)}) {
        std::fill(y.begin(), y.end(), TypeParam{7});
        zovHeap.allocate = RefusingAllocate;
        const ZovStatus refused = call(x.data(), y.data(), object.get(), nullptr);
        zovHeap = plainHeap;
        EXPECT_EQ(refused, workBytes > 0 ? zovStsMemAllocErr : zovStsNoErr);
        if (workBytes > 0) {
          EXPECT_EQ(std::count(y.begin(), y.end(), 7), static_cast<std::ptrdiff_t>(n + 2));
        }
      }
      zovHeap.allocate = CountingAllocate;
      allocations = 0;
      EXPECT_EQ(forward(x.data(), y.data(), object.get(), work.data()), zovStsNoErr);
      EXPECT_EQ(Fft<TypeParam>::Inverse(level)(y.data(), y.data(), object.get(), work.data()),
                zovStsNoErr);
      EXPECT_EQ(allocations, 0);
      EXPECT_EQ(forward(x.data(), y.data(), object.get(), nullptr), zovStsNoErr);
      EXPECT_EQ(allocations, workBytes > 0 ? 1 : 0);
      zovHeap = plainHeap;
    }
  });
}

TYPED_TEST(FftTransform, ChecksInOrder) {
  ForEachLevel([](int level) {
    using Other = std::conditional_t<sizeof(TypeParam) == 4, Zov64f, Zov32f>;
    const FftObject<TypeParam> object(level, 5, ZOV_FFT_SCALE_NONE);
    const FftObject<Other> other(level, 5, ZOV_FFT_SCALE_NONE);
    auto* const wrong = reinterpret_cast<typename Fft<TypeParam>::Spec*>(other.get());
    TypeParam x[34] = {};
    for (const auto call : {Fft<TypeParam>::Forward(level), Fft<TypeParam>::Inverse(level)}) {
      EXPECT_EQ(call(nullptr, nullptr, nullptr, nullptr), zovStsNullPtrErr);
      EXPECT_EQ(call(nullptr, x, wrong, nullptr), zovStsContextMatchErr);
      EXPECT_EQ(call(nullptr, x, object.get(), nullptr), zovStsNullPtrErr);
      EXPECT_EQ(call(x, nullptr, object.get(), nullptr), zovStsNullPtrErr);
      EXPECT_EQ(call(x, x, object.get(), nullptr), zovStsNoErr);
    }
  });
}

}  // namespace
}  // namespace zov::test
