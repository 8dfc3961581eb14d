// Sums and means, gathered in accumulators wider than the elements.
#include "core/checks.h"
#include "core/entries.h"
#include "core/simd.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

namespace {

constexpr std::int64_t kMax32s = 0x7FFFFFFF;
constexpr std::int64_t kMin32s = -kMax32s - 1;

ZOV_INLINE Zov32s Saturate32s(std::int64_t x) {
  return static_cast<Zov32s>(x > kMax32s ? kMax32s : x < kMin32s ? kMin32s : x);
}

// x / 2^shift, rounded to nearest with ties to even; shift is 1 to 62.
ZOV_INLINE std::int64_t ShiftRoundEven(std::int64_t x, int shift) {
  return (x + (std::int64_t{1} << (shift - 1)) - 1 + ((x >> shift) & 1)) >> shift;
}

// x * 2^shift, saturated to 32 bits; x fits in 32 bits and shift is 1 or more.
ZOV_INLINE Zov32s ShiftLeftSaturated(std::int64_t x, int shift) {
  if (shift > 31) return x > 0 ? Zov32s{kMax32s} : x < 0 ? static_cast<Zov32s>(kMin32s) : 0;
  return Saturate32s(static_cast<std::int64_t>(static_cast<std::uint64_t>(x) << shift));
}

// Pairs of 16-bit lanes added into 32-bit lanes.
ZOV_INLINE VecI<std::int32_t> AddPairs(VecI<std::int16_t> x) {
#if defined(__AVX2__)
  return {(VecI<std::int32_t>::Native)_mm256_madd_epi16((__m256i)x.v, _mm256_set1_epi16(1))};
#else
  return {(VecI<std::int32_t>::Native)_mm_madd_epi16((__m128i)x.v, _mm_set1_epi16(1))};
#endif
}

// Exact: 65536 elements of 16 bits fit in 32 bits, and each such block goes into 64 bits.
std::int64_t SumExactly(const Zov16s* pSrc, int len) {
  using V = VecI<std::int16_t>;
  using Wide = VecI<std::int32_t>;
  constexpr int kBlock = 0x10000;
  std::int64_t total = 0;
  int i = 0;
  while (len - i >= V::kLanes) {
    const int stop = i + (len - i < kBlock ? len - i : kBlock);
    Wide even = Wide::Zero();
    Wide odd = Wide::Zero();
    for (; stop - i >= 4 * V::kLanes; i += 4 * V::kLanes) {
      even = even + AddPairs(V::Load(pSrc + i));
      odd = odd + AddPairs(V::Load(pSrc + i + V::kLanes));
      even = even + AddPairs(V::Load(pSrc + i + 2 * V::kLanes));
      odd = odd + AddPairs(V::Load(pSrc + i + 3 * V::kLanes));
    }
    for (; stop - i >= V::kLanes; i += V::kLanes) even = even + AddPairs(V::Load(pSrc + i));
    total += AddLanes(even + odd);
  }
  for (; i < len; ++i) total += pSrc[i];
  return total;
}

// Exact in 64 bits. Lanes are offset to unsigned, so that a mask and a shift widen them.
std::int64_t SumExactly(const Zov32s* pSrc, int len) {
  using V = VecI<std::uint32_t>;
  using Wide = VecI<std::uint64_t>;
  const V offset = V::Broadcast(0x80000000U);
  Wide low = Wide::Zero();
  Wide high = Wide::Zero();
  const Wide lowHalf = Wide::Broadcast(0xFFFFFFFFU);
  int i = 0;
  for (; len - i >= V::kLanes; i += V::kLanes) {
    const Wide x = As<std::uint64_t>(V::Load(pSrc + i) ^ offset);
    low = low + (x & lowHalf);
    high = high + Wide{x.v >> 32};
  }
  std::int64_t total = static_cast<std::int64_t>(AddLanes(low + high)) - (std::int64_t{i} << 31);
  for (; i < len; ++i) total += pSrc[i];
  return total;
}

// In double precision, in as many running sums as hide the latency of an addition.
template <class T>
ZOV_INLINE double SumInDouble(const T* pSrc, int len) {
  constexpr int kChains = 8;
  VecD sums[kChains];
  for (VecD& sum : sums) sum = VecD::Zero();
  int i = 0;
  for (; len - i >= kChains * VecD::kLanes; i += kChains * VecD::kLanes) {
    for (int k = 0; k < kChains; ++k) sums[k] = sums[k] + LoadAsDouble(pSrc + i + k * VecD::kLanes);
  }
  for (; len - i >= VecD::kLanes; i += VecD::kLanes) sums[0] = sums[0] + LoadAsDouble(pSrc + i);
  for (int k = 1; k < kChains; ++k) sums[0] = sums[0] + sums[k];
  double total = AddLanes(sums[0]);
  for (; i < len; ++i) total += static_cast<double>(pSrc[i]);
  return total;
}

// sum / len with the remainder rounded half to even, on the magnitude.
std::int64_t DivideRoundEven(std::int64_t sum, std::int64_t len) {
  const bool negative = sum < 0;
  const std::uint64_t n = static_cast<std::uint64_t>(len);
  const std::uint64_t magnitude =
      negative ? 0 - static_cast<std::uint64_t>(sum) : static_cast<std::uint64_t>(sum);
  std::uint64_t quotient = magnitude / n;
  const std::uint64_t twice = 2 * (magnitude % n);
  if (twice > n || (twice == n && (quotient & 1) != 0)) ++quotient;
  return negative ? -static_cast<std::int64_t>(quotient) : static_cast<std::int64_t>(quotient);
}

}  // namespace

ZovStatus zovsSum_16s32s_Sfs(const Zov16s* pSrc, int len, Zov32s* pSum, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pSum)) return status;
  std::int64_t sum = SumExactly(pSrc, len);
  if (scaleFactor > 48) {
    sum = 0;
  } else if (scaleFactor >= 1) {
    sum = ShiftRoundEven(sum, scaleFactor);
  }
  const Zov32s saturated = Saturate32s(sum);
  *pSum = scaleFactor >= 0 ? saturated
                           : ShiftLeftSaturated(saturated, scaleFactor < -32 ? 32 : -scaleFactor);
  return zovStsNoErr;
}

ZovStatus zovsMean_16s_Sfs(const Zov16s* pSrc, int len, Zov16s* pMean, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pMean)) return status;
  if (scaleFactor >= 16) {
    *pMean = 0;
    return zovStsNoErr;
  }
  const std::int64_t sum = SumExactly(pSrc, len);
  if (scaleFactor < -14) {
    *pMean = static_cast<Zov16s>(sum > 0 ? 32767 : sum < 0 ? -32768 : 0);
    return zovStsNoErr;
  }
  double numerator = static_cast<double>(sum < 0 ? -sum : sum);
  double denominator = static_cast<double>(len);
  for (int f = scaleFactor; f < 0; ++f) numerator += numerator;
  for (int f = scaleFactor; f > 0; --f) denominator += denominator;
  const double biased = numerator / denominator + 0.5;
  std::int64_t rounded = static_cast<std::int64_t>(biased);
  if ((rounded & 1) != 0 && biased == static_cast<double>(rounded)) --rounded;
  if (sum < 0) rounded = -rounded;
  *pMean = static_cast<Zov16s>(rounded > 32767 ? 32767 : rounded < -32768 ? -32768 : rounded);
  return zovStsNoErr;
}

ZovStatus zovsMean_32s_Sfs(const Zov32s* pSrc, int len, Zov32s* pMean, int scaleFactor) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pMean)) return status;
  const std::int64_t sum = SumExactly(pSrc, len);
  if (scaleFactor == 0) {
    *pMean = static_cast<Zov32s>(DivideRoundEven(sum, len));
  } else if (scaleFactor <= -32) {
    const std::int64_t mean = DivideRoundEven(sum, len);
    *pMean = static_cast<Zov32s>(mean >= 1 ? kMax32s : mean < 0 ? kMin32s : 0);
  } else if (scaleFactor < 0) {
    const int shift = -scaleFactor;
    if (sum >= kMin32s && sum <= kMax32s) {
      // One rounding where the shifted sum fits in 64 bits.
      *pMean = Saturate32s(DivideRoundEven(sum * (std::int64_t{1} << shift), len));
    } else {
      *pMean = ShiftLeftSaturated(DivideRoundEven(sum, len), shift);
    }
  } else {
    // Rounded twice by design. The half is formed in 32 bits, so its shift count wraps at 32, and
    // that of the last step at 64.
    const std::int64_t mean = DivideRoundEven(sum, len);
    const std::int64_t half = std::uint32_t{1} << ((scaleFactor - 1) & 31);
    const int shift = scaleFactor & 63;
    *pMean = static_cast<Zov32s>((mean + half + ((mean >> shift) & 1) - 1) >> shift);
  }
  return zovStsNoErr;
}

ZovStatus zovsMean_32f(const Zov32f* pSrc, int len, Zov32f* pMean, int) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pMean)) return status;
  *pMean = static_cast<Zov32f>(SumInDouble(pSrc, len) / len);
  return zovStsNoErr;
}

ZovStatus zovsMean_64f(const Zov64f* pSrc, int len, Zov64f* pMean) {
  if (const ZovStatus status = CheckArrays(len, pSrc, pMean)) return status;
  *pMean = SumInDouble(pSrc, len) / len;
  return zovStsNoErr;
}

}  // namespace zov::ZOV_LEVEL_NAMESPACE
