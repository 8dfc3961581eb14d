// Horizontal pass of the antialiased path over bytes in integers. The weights of many ratios, 2 / 3
// with a cubic among them, are short fixed-point numbers: then the documented sums in double
// precision are exact, and so are these, in two parts of 16 bits each. Rounded once to a float,
// both give the same line.
#pragma once

#include "image/resize/antialias_taps.h"
#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"
#include "image/resize/kernel_columns_real.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

#if defined(__SSSE3__)

template <int kChannels>
class AntialiasInteger {
  using Ints = VecI<std::int32_t>;
  using Floats = Vec<float, Ints::kLanes>;
  using Taps = WidenedKernel::Taps;
  static constexpr int kUnit = Ints::kLanes;  // elements that are summed side by side
  static constexpr int kLane = 4;             // those of a 16-byte lane, which share a window
  static constexpr int kWindow = 16;
  static constexpr int kHighBits = 15;  // fraction of the upper part of a weight
  static constexpr int kMostBits = 31;  // and of both
  static constexpr int kEdge = 256;
  static constexpr int kLongest = 1 << 30;  // bytes of a row, so that places around it fit 32 bits

  // What the lower parts of the weights ask for.
  enum class Low { none, exact, carried };

  // Units whose windows leave the row; they see a copy with repeated edges.
  struct Edge {
    int begin;  // units
    int end;
    int first;  // bytes of the row, perhaps outside of it
    int last;
  };

 public:
  using Real = float;
  static constexpr int kRows = 4;

  AntialiasInteger(WorkArena* arena, const WidenedKernel& kernel, const ResizeAxis& axis)
      : count_(axis.count),
        isShort_(axis.extent <= kLongest / kChannels && axis.count <= kLongest / kChannels),
        rowBytes_(isShort_ ? axis.extent * kChannels : 0),
        units_(isShort_ ? (axis.count * kChannels + kUnit - 1) / kUnit : 0),
        mostTaps_(kernel.MostTaps()) {
    const std::int64_t most = (mostTaps_ + 1) / 2;
    starts_ = arena->Take<std::int32_t>(std::int64_t{units_} * kLanes);
    controls_ = arena->Take<Zov8u>(std::int64_t{units_} * kIntVectorBytes);
    pairs_ = arena->Take<std::int32_t>(units_ * most * 2 * kUnit);
    taps_ = arena->Take<ColumnTaps>(count_);
    weights_ = arena->Take<float>(std::int64_t{count_} * mostTaps_);
  }

  // Once the memory is known to suffice. False where the weights are not of that kind.
  bool FillTables(const WidenedKernel& kernel) {
    return isShort_ && GetTaps(kernel) && PlaceWindows() && PackWeights() && FindEdges();
  }

  void Resample(const Zov8u* const* sources, std::ptrdiff_t /*ahead*/, float* const* lines) const {
    switch (low_) {
      case Low::none:
        return ResampleBy<Low::none>(sources, lines);
      case Low::exact:
        return ResampleBy<Low::exact>(sources, lines);
      case Low::carried:
        return ResampleBy<Low::carried>(sources, lines);
    }
  }

 private:
  struct ColumnTaps {
    std::int32_t first;
    std::int32_t from;  // taps that have a weight
    std::int32_t count;
  };

  static std::int32_t FixedOf(float weight) {
    return static_cast<std::int32_t>(static_cast<double>(weight) * (1U << kMostBits));
  }

  bool GetTaps(const WidenedKernel& kernel) {
    std::uint32_t bits = 0;
    int most = 1;
    for (int i = 0; i < count_; ++i) {
      const Taps taps = kernel.At(i);
      kernel.GetWeights<float>(i, i, count_, mostTaps_, weights_);
      const float* const weights = weights_ + i * std::int64_t{mostTaps_};
      int from = 0;
      int end = taps.count;
      while (from < end && weights[from] == 0) ++from;
      while (end > from && weights[end - 1] == 0) --end;
      float magnitudes = 0;
      for (int k = from; k < end; ++k) {
        const float magnitude = weights[k] < 0 ? -weights[k] : weights[k];
        magnitudes += magnitude;
        if (!(magnitude < 0.9999F) || !(magnitudes < 1.99F)) return false;
        const std::int32_t fixed = FixedOf(weights[k]);
        if (static_cast<double>(fixed) != static_cast<double>(weights[k]) * (1U << kMostBits)) {
          return false;
        }
        bits |= static_cast<std::uint32_t>(fixed);
      }
      taps_[i] = {static_cast<std::int32_t>(taps.first) + from, from, end - from};
      if (most < end - from) most = end - from;
    }
    if (bits == 0) return false;
    bits_ = kMostBits - __builtin_ctz(bits);
    pairCount_ = (most + 1) / 2;
    return true;
  }

  int ColumnOf(int element) const {
    const int column = element / kChannels;
    return column < count_ ? column : count_ - 1;
  }
  // Of the first tap.
  int ByteOf(int element) const {
    return taps_[ColumnOf(element)].first * kChannels + element % kChannels;
  }

  bool PlaceWindows() {
    for (int element = 0; element < units_ * kUnit; element += kLane) {
      const int start = ByteOf(element);
      if (element > 0 && start < starts_[element / kLane - 1]) return false;
      Zov8u* const control = controls_ + element * 4;
      for (int j = 0; j < kLane; ++j) {
        const int at = ByteOf(element + j) - start;
        if (at < 0 || at + kChannels >= kWindow) return false;
        control[4 * j] = static_cast<Zov8u>(at);
        control[4 * j + 1] = 0x80;
        control[4 * j + 2] = static_cast<Zov8u>(at + kChannels);
        control[4 * j + 3] = 0x80;
      }
      starts_[element / kLane] = start;
    }
    return true;
  }

  bool PackWeights() {
    const int shift = bits_ > kHighBits ? bits_ - kHighBits : 0;
    const int spare = kMostBits - kHighBits - shift;
    int most = 0;
    for (int element = 0; element < units_ * kUnit; ++element) {
      const ColumnTaps taps = taps_[ColumnOf(element)];
      const float* const weights =
          weights_ + ColumnOf(element) * std::int64_t{mostTaps_} + taps.from;
      std::int32_t* to =
          pairs_ + std::int64_t{element} / kUnit * (pairCount_ * 2 * kUnit) + element % kUnit;
      int magnitudes = 0;
      for (int p = 0; p < pairCount_; ++p) {
        std::int32_t high[2] = {0, 0};
        std::int32_t low[2] = {0, 0};
        for (int k = 0; k < 2; ++k) {
          if (2 * p + k >= taps.count) continue;
          const std::int32_t fixed = FixedOf(weights[2 * p + k]) >> spare;
          high[k] = (fixed + (1 << shift >> 1)) >> shift;
          low[k] = fixed - high[k] * (1 << shift);
          magnitudes += low[k] < 0 ? -low[k] : low[k];
        }
        to[0] = Pair(high);
        to[kUnit] = Pair(low);
        to += 2 * kUnit;
      }
      if (most < magnitudes) most = magnitudes;
    }
    constexpr int kExact = (1 << 24) / 255;  // such sums are exact as floats
    low_ = shift == 0 ? Low::none : most < kExact ? Low::exact : Low::carried;
    shift_ = shift;
    // Integer vectors half as wide as those of floats pay with short sums only.
    constexpr int kShort = 3;
    if (kLevel == Level::avx && low_ != Low::none && pairCount_ > kShort) return false;
    return most < (1 << 30) / 255;
  }
  static std::int32_t Pair(const std::int32_t* words) {
    return (words[0] & 0xFFFF) |
           static_cast<std::int32_t>(static_cast<std::uint32_t>(words[1]) << 16);
  }

  bool FindEdges() {
    const auto isInside = [this](int unit) {
      const int end = starts_[unit * kLanes + kLanes - 1] + (pairCount_ - 1) * 2 * kChannels;
      return starts_[unit * kLanes] >= 0 && end + kWindow <= rowBytes_;
    };
    int near = 0;
    while (near < units_ && !isInside(near)) ++near;
    int far = units_;
    while (far > near && !isInside(far - 1)) --far;
    near_ = EdgeOf(0, near);
    far_ = EdgeOf(far, units_);
    return IsCopied(near_) && IsCopied(far_);
  }
  bool IsCopied(const Edge& edge) const {
    if (edge.begin == edge.end) return true;
    return edge.first < rowBytes_ && edge.last > 0 && edge.last - edge.first <= kEdge;
  }
  Edge EdgeOf(int begin, int end) const {
    if (begin == end) return {begin, end, 0, 0};
    return {begin, end, starts_[begin * kLanes],
            starts_[end * kLanes - 1] + (pairCount_ - 1) * 2 * kChannels + kWindow};
  }

  template <Low kLow>
  ZOV_NOINLINE void ResampleBy(const Zov8u* const* sources, float* const* lines) const {
    ResampleEdge<kLow>(sources, lines, near_);
    SumUnits<kLow>(sources, lines, near_.end, far_.begin);
    ResampleEdge<kLow>(sources, lines, far_);
  }

  template <Low kLow>
  ZOV_NOINLINE void ResampleEdge(const Zov8u* const* sources, float* const* lines,
                                 const Edge& edge) const {
    Zov8u copies[kRows][kEdge];
    const Zov8u* rows[kRows];
    for (int r = 0; r < kRows; ++r) {
      Zov8u* const copy = copies[r];
      CopyWithEdges(sources[r], edge, copy);
      rows[r] = copy - edge.first;
    }
    SumUnits<kLow>(rows, lines, edge.begin, edge.end);
  }

  void CopyWithEdges(const Zov8u* row, const Edge& edge, Zov8u* to) const {
    const int begin = edge.first < 0 ? 0 : edge.first;
    const int end = edge.last < rowBytes_ ? edge.last : rowBytes_;
    for (int i = edge.first; i < begin; ++i) {
      to[i - edge.first] = row[(i - edge.first) % kChannels];
    }
    CopyBytes(row + begin, to + (begin - edge.first), end - begin);
    for (int i = end; i < edge.last; ++i) {
      to[i - edge.first] = to[i - edge.first - kChannels];
    }
  }

  static ZOV_INLINE Ints MulPairs(Bytes words, Ints weights) {
#if defined(__AVX2__)
    return {(typename Ints::Native)_mm256_madd_epi16((__m256i)words.v, (__m256i)weights.v)};
#else
    return {(typename Ints::Native)_mm_madd_epi16((__m128i)words.v, (__m128i)weights.v)};
#endif
  }

  template <Low kLow>
  ZOV_INLINE void SumUnits(const Zov8u* const* rows, float* const* lines, int begin,
                           int end) const {
    const Floats highScale = Floats::Broadcast(1.0F / (1 << kHighBits));
    const Floats lowScale = highScale / Floats::Broadcast(static_cast<float>(1 << shift_));
    const int shift = shift_;
    const Ints mask = Ints::Broadcast((1 << shift) - 1);
    const Zov8u* sources[kRows];
    float* targets[kRows];
    for (int r = 0; r < kRows; ++r) {
      sources[r] = rows[r];
      targets[r] = lines[r];
    }
    const int pairCount = pairCount_;
    const std::int32_t* weights = pairs_ + std::int64_t{begin} * (pairCount * 2 * kUnit);
    for (int unit = begin; unit < end; ++unit) {
      const Bytes control = Bytes::LoadAligned(controls_ + std::int64_t{unit} * kIntVectorBytes);
      std::ptrdiff_t at[kLanes];
      for (int l = 0; l < kLanes; ++l) at[l] = starts_[unit * kLanes + l];
      Ints high[kRows];
      Ints low[kRows];
      for (int r = 0; r < kRows; ++r) high[r] = low[r] = Ints::Zero();
      for (int p = 0; p < pairCount; ++p) {
        const Ints highWeights = Ints::LoadAligned(weights);
        const Ints lowWeights = Ints::LoadAligned(weights + kUnit);
        weights += 2 * kUnit;
        for (int r = 0; r < kRows; ++r) {
          const Bytes words = ShuffleBytes(WindowAt(sources[r], at), control);
          high[r] = high[r] + MulPairs(words, highWeights);
          if constexpr (kLow != Low::none) low[r] = low[r] + MulPairs(words, lowWeights);
        }
        for (int l = 0; l < kLanes; ++l) at[l] += 2 * kChannels;
      }
      for (int r = 0; r < kRows; ++r) {
        if constexpr (kLow == Low::carried) {
          high[r] = high[r] + Ints{low[r].v >> shift};
          low[r] = low[r] & mask;
        }
        Floats sums = FloatsOf(high[r]) * highScale;
        if constexpr (kLow != Low::none) {
          // Both products are exact.
          sums = AddProduct<true>(FloatsOf(low[r]) * lowScale, FloatsOf(high[r]), highScale);
        }
        sums.StoreAligned(targets[r] + std::int64_t{unit} * kUnit);
      }
    }
  }

  static ZOV_INLINE Bytes WindowAt(const Zov8u* row, const std::ptrdiff_t* at) {
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + at[0]));
#if defined(__AVX2__)
    const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + at[1]));
    return {(Bytes::Native)_mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1)};
#else
    return {(Bytes::Native)first};
#endif
  }

  static ZOV_INLINE Floats FloatsOf(Ints v) {
    return {__builtin_convertvector(v.v, typename Floats::Native)};
  }

  int count_;
  bool isShort_;
  int rowBytes_;
  int units_;
  int mostTaps_;
  int bits_ = 0;  // fraction of the weights
  int shift_ = 0;
  int pairCount_ = 0;
  Low low_ = Low::none;
  Edge near_;
  Edge far_;
  std::int32_t* starts_;  // byte of a row where the window of a lane begins
  Zov8u* controls_;
  std::int32_t* pairs_;  // weights of two taps, upper and lower parts
  ColumnTaps* taps_;
  float* weights_;
};

#endif

}  // namespace zov::ZOV_LEVEL_NAMESPACE
