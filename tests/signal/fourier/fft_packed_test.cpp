// The forms of the spectrum that other subsystems use, against the CCS form.
#include <algorithm>

#include "signal/fourier/fft_reference.h"
#include "signal/fourier/real_fft.h"
#include "signal/fourier/spec.h"

ZOV_KERNEL_TABLE(FftFwdToPacked_32f)
ZOV_KERNEL_TABLE(FftFwdToPacked_64f)
ZOV_KERNEL_TABLE(FftInvFromPacked_32f)
ZOV_KERNEL_TABLE(FftInvFromPacked_64f)
ZOV_KERNEL_TABLE(FftFwdToRunning_32f)
ZOV_KERNEL_TABLE(FftInvFromRunning_32f)
ZOV_KERNEL_TABLE(MulPacked_32f)
ZOV_KERNEL_TABLE(MulPacked_64f)

namespace zov::test {
namespace {

// CCS to the packed and the running form.
template <class T>
std::vector<T> ToPacked(const std::vector<T>& ccs, std::size_t n) {
  std::vector<T> packed(ccs.begin(), ccs.begin() + static_cast<std::ptrdiff_t>(n));
  if (n > 1) packed[1] = ccs[n];
  return packed;
}
template <class T>
std::vector<T> ToRunning(const std::vector<T>& ccs, std::size_t n) {
  std::vector<T> running = {ccs[0]};
  for (std::size_t i = 2; i <= n && n > 1; ++i) running.push_back(ccs[i]);
  return running;
}

template <class T, class Call>
void CheckForm(int level, Call forward, Call inverse,
               std::vector<T> (*convert)(const std::vector<T>&, std::size_t)) {
  for (const int order : {0, 1, 2, 4, 5, 6, 7, 9, 13, 16}) {
    SCOPED_TRACE("order " + std::to_string(order));
    const std::size_t n = std::size_t{1} << order;
    const std::vector<float> signal = RandomSignal(n);
    const std::vector<T> x(signal.begin(), signal.end());
    const FftObject<T> object(level, order, ZOV_FFT_SCALE_INV);
    std::vector<T> ccs(n + 2), result(n), back(n), ccsBack(n);
    ASSERT_EQ(Fft<T>::Forward(level)(x.data(), ccs.data(), object.get(), nullptr), zovStsNoErr);
    ASSERT_EQ(Fft<T>::Inverse(level)(ccs.data(), ccsBack.data(), object.get(), nullptr),
              zovStsNoErr);
    ASSERT_EQ(forward(x.data(), result.data(), object.get(), nullptr), zovStsNoErr);
    EXPECT_EQ(result, convert(ccs, n));
    ASSERT_EQ(inverse(result.data(), back.data(), object.get(), nullptr), zovStsNoErr);
    EXPECT_EQ(back, ccsBack);
    ASSERT_EQ(inverse(result.data(), result.data(), object.get(), nullptr), zovStsNoErr);
    EXPECT_EQ(result, ccsBack);
  }
}

TEST(FftForms, PackedAndRunningHoldTheCcsValues) {
  ForEachLevel([](int level) {
    CheckForm<Zov32f>(level, ZOV_KERNEL_AT(level, FftFwdToPacked_32f),
                      ZOV_KERNEL_AT(level, FftInvFromPacked_32f), ToPacked<Zov32f>);
    CheckForm<Zov64f>(level, ZOV_KERNEL_AT(level, FftFwdToPacked_64f),
                      ZOV_KERNEL_AT(level, FftInvFromPacked_64f), ToPacked<Zov64f>);
    CheckForm<Zov32f>(level, ZOV_KERNEL_AT(level, FftFwdToRunning_32f),
                      ZOV_KERNEL_AT(level, FftInvFromRunning_32f), ToRunning<Zov32f>);
  });
}

template <class T, class Call>
void CheckProduct(Call multiply) {
  EXPECT_EQ(multiply(nullptr, nullptr, 0), zovStsNullPtrErr);
  T one = 1;
  EXPECT_EQ(multiply(&one, &one, 0), zovStsSizeErr);
  for (int count = 1; count <= 40; ++count) {
    std::vector<T> a, b;
    for (int i = 0; i < count; ++i) {
      a.push_back(static_cast<T>(i + 1));
      b.push_back(static_cast<T>(3 * i - 7));
    }
    std::vector<T> expected = b;
    const std::size_t lone = count % 2 == 0 ? 2 : 1;
    for (std::size_t i = 0; i < lone; ++i) expected[i] = a[i] * b[i];
    for (std::size_t i = lone; i < b.size(); i += 2) {
      expected[i] = a[i] * b[i] - a[i + 1] * b[i + 1];
      expected[i + 1] = a[i] * b[i + 1] + a[i + 1] * b[i];
    }
    ASSERT_EQ(multiply(a.data(), b.data(), count), zovStsNoErr);
    EXPECT_EQ(b, expected) << count;
  }
}

TEST(FftForms, ProductOfPackedSpectra) {
  ForEachLevel([](int level) {
    CheckProduct<Zov32f>(ZOV_KERNEL_AT(level, MulPacked_32f));
    CheckProduct<Zov64f>(ZOV_KERNEL_AT(level, MulPacked_64f));
  });
}

}  // namespace
}  // namespace zov::test
