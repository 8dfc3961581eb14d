// Bilinear kernels of 8-bit images in fixed point. A horizontal pass gives a line of 16-bit values
// with 6 fractional bits, rounded; the vertical pass rounds once more on its way to 8 bits.
#pragma once

#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// How a lane of eight line elements (eight columns, or two pixels of four channels) finds its pairs
// of taps: all in one window of 16 bytes, each half lane in a window of its own, or each pair of
// pixels loaded by itself.
enum class PairSource { window, halves, pairs };

template <int kChannels>
class Linear8u {
  static constexpr bool kHasShuffle = kLevel >= Level::ssse3;
  static constexpr int kWindow = 16;
  static constexpr int kLaneColumns = 8 / kChannels;
  static constexpr int kBlockLanes = 2 * kLanes;  // two vectors of words make one of bytes
  static constexpr int kBlockBytes = Bytes::kBytes;
  static constexpr int kBlockColumns = kBlockLanes * kLaneColumns;
  // Without a byte shuffle the weights of both taps are stored, else only the second's.
  static constexpr int kLaneWeights = kHasShuffle ? 8 : 16;

 public:
  using Line = std::int16_t;
  using Weight = std::int32_t;  // of the lower row, in units of 1 / 16384

  Linear8u(WorkArena* arena, const ResizeAxis& axis, int begin, int count)
      : count_(count > 0 ? count : 0),
        lanes_((count_ + kBlockColumns - 1) / kBlockColumns * kBlockLanes) {
    if (count_ == 0) return;
    const bool wide = kHasShuffle && axis.extent * std::int64_t{kChannels} >= kWindow;
    if (wide && Build<PairSource::window>(arena, axis, begin)) return;
    if constexpr (kChannels == 1) {
      if (wide && Build<PairSource::halves>(arena, axis, begin)) return;
    }
    Build<PairSource::pairs>(arena, axis, begin);
  }

  std::int64_t LineLength() const { return std::int64_t{lanes_} * 8; }

  void Resample(const Zov8u* row, Line* line) const { ResampleFrom<false>(row, line); }
  // A line of plain pixel values, for rows that take no vertical pass.
  void ResampleBand(const Zov8u* row, Line* line) const { ResampleFrom<true>(row, line); }

  static Weight MakeWeight(double fraction) {
    Weight weight;
    FixedFractions(1, &fraction, &weight);
    return weight;
  }
  static bool IsUpperOnly(Weight weight) { return weight == 0; }

  static Zov8u Between(Zov8u p, Zov8u q, Weight weight) {
    return static_cast<Zov8u>((p * (kFixedOne - weight) + q * weight + kFixedOne / 2) / kFixedOne);
  }

  void Combine(const Line* upper, const Line* lower, Weight weight, Zov8u* dst) const {
    // Four times the smaller weight, negated, fits a 16-bit lane, and the high half of its product
    // with a difference of lines is the exact floor of the share of the other line.
    const bool lowerWeighsMore = weight > kFixedOne / 2;
    const Line* const a = lowerWeighsMore ? lower : upper;
    const Line* const b = lowerWeighsMore ? upper : lower;
    const int share = lowerWeighsMore ? kFixedOne - weight : weight;
    const Words scale = Words::Broadcast(static_cast<std::int16_t>(-4 * share));
    StoreRow(
        dst, [ a, b, scale ](std::int64_t i) __attribute__((always_inline)) {
          const Words upperWords = Words::LoadAligned(a + i);
          return RoundLine(upperWords + MulHigh(upperWords - Words::LoadAligned(b + i), scale));
        });
  }

  void StoreUpper(const Line* line, Zov8u* dst) const {
    StoreRow(
        dst, [line](std::int64_t i) __attribute__((always_inline)) {
          return RoundLine(Words::LoadAligned(line + i));
        });
  }

  void StoreBand(const Line* line, Zov8u* dst) const {
    StoreRow(
        dst, [line](std::int64_t i)
                 __attribute__((always_inline)) { return Words::LoadAligned(line + i); });
  }

 private:
  static constexpr int BasesPerLane(PairSource source) {
    switch (source) {
      case PairSource::window:
        return 1;
      case PairSource::halves:
        return 2;
      default:
        return kLaneColumns;
    }
  }
  static constexpr int ControlBytesPerLane(PairSource source) {
    switch (source) {
      case PairSource::window:
        return kWindow;
      case PairSource::halves:
        return 2 * kWindow;
      default:
        return 0;
    }
  }

  // Fills the tables for one way to fetch the taps; false when some taps lie too far apart for it.
  template <PairSource kSource>
  bool Build(WorkArena* arena, const ResizeAxis& axis, int begin) {
    WorkArena trial = *arena;
    source_ = kSource;
    bases_ = trial.Take<std::int32_t>(std::int64_t{lanes_} * BasesPerLane(kSource));
    controls_ = trial.Take<Zov8u>(std::int64_t{lanes_} * ControlBytesPerLane(kSource));
    weights_ = trial.Take<std::int16_t>(std::int64_t{lanes_} * kLaneWeights);
    const int lastBase = axis.extent * kChannels - kWindow;

    std::int32_t index[kBlockColumns];
    std::int32_t fixed[kBlockColumns];
    double fraction[kBlockColumns];
    for (int lane = 0; lane < lanes_; lane += kBlockLanes) {
      const int column = lane * kLaneColumns;
      const int rest = count_ - column;
      const int filled = rest < kBlockColumns ? rest : kBlockColumns;
      LinearSamples(axis, begin + column, filled, index, fraction);
      FixedFractions(filled, fraction, fixed);
      for (int i = filled; i < kBlockColumns; ++i) {
        index[i] = index[filled - 1];
        fixed[i] = 0;
      }
      for (int place = 0; place < kBlockLanes; ++place) {
        const int first = LogicalLane(place) * kLaneColumns;
        if (!SetLane<kSource>(lane + place, index + first, lastBase)) return false;
        SetWeights(lane + place, fixed + first);
      }
    }
    *arena = trial;
    return true;
  }

  template <PairSource kSource>
  bool SetLane(int lane, const std::int32_t* index, int lastBase) {
    std::int32_t* const bases = bases_ + std::int64_t{lane} * BasesPerLane(kSource);
    if constexpr (kSource == PairSource::pairs) {
      for (int i = 0; i < kLaneColumns; ++i) bases[i] = index[i] * kChannels;
      return true;
    } else {
      constexpr int kWindows = BasesPerLane(kSource);
      constexpr int kColumns = kLaneColumns / kWindows;
      for (int w = 0; w < kWindows; ++w) {
        const int lowest = index[w * kColumns] * kChannels;
        bases[w] = lowest < lastBase ? lowest : lastBase;
        Zov8u* const control = Control(lane, w, kWindows);
        for (int i = 0; i < kWindow; ++i) control[i] = 0x80;
        for (int i = w * kColumns; i < (w + 1) * kColumns; ++i) {
          const int tap = index[i] * kChannels - bases[w];
          if (tap + 2 * kChannels > kWindow) return false;
          for (int c = 0; c < kChannels; ++c) {
            control[2 * (i * kChannels + c)] = static_cast<Zov8u>(tap + c);
            control[2 * (i * kChannels + c) + 1] = static_cast<Zov8u>(tap + c + kChannels);
          }
        }
      }
      return true;
    }
  }

  // Controls of the same window of the lanes of a vector lie side by side.
  Zov8u* Control(int lane, int window, int windows) const {
    const int vector = lane / kLanes;
    return controls_ + (std::int64_t{vector} * windows + window) * Bytes::kBytes +
           lane % kLanes * kWindow;
  }

  void SetWeights(int lane, const std::int32_t* fixed) {
    std::int16_t* weights = weights_ + std::int64_t{lane} * kLaneWeights;
    for (int i = 0; i < kLaneColumns; ++i) {
      for (int c = 0; c < kChannels; ++c) {
        if constexpr (kHasShuffle) {
          // Negated, as -2 fits a lane where 2 does not.
          *weights++ = static_cast<std::int16_t>(-2 * fixed[i]);
        } else {
          *weights++ = static_cast<std::int16_t>(kFixedOne - fixed[i]);
          *weights++ = static_cast<std::int16_t>(fixed[i]);
        }
      }
    }
  }

  template <bool kBand>
  ZOV_INLINE void ResampleFrom(const Zov8u* row, Line* line) const {
    switch (source_) {
      case PairSource::window:
        return ResampleLanes<kBand, PairSource::window>(row, line);
      case PairSource::halves:
        if constexpr (kChannels == 1) ResampleLanes<kBand, PairSource::halves>(row, line);
        return;
      case PairSource::pairs:
        return ResampleLanes<kBand, PairSource::pairs>(row, line);
    }
  }

  template <bool kBand, PairSource kSource>
  void ResampleLanes(const Zov8u* row, Line* line) const {
    if constexpr (kHasShuffle || kSource == PairSource::pairs) {
      const std::int32_t* bases = bases_;
      const Zov8u* controls = controls_;
      const std::int16_t* weights = weights_;
      for (int lane = 0; lane < lanes_; lane += kLanes) {
        const Bytes pairs = LoadPairs<kSource>(row, bases, controls);
        Interpolate<kBand>(pairs, weights).StoreAligned(line);
        bases += kLanes * BasesPerLane(kSource);
        controls += kLanes * ControlBytesPerLane(kSource);
        weights += kLanes * kLaneWeights;
        line += Words::kLanes;
      }
    }
  }

  // The two taps of each line element, side by side.
  template <PairSource kSource>
  static ZOV_INLINE Bytes LoadPairs(const Zov8u* row, const std::int32_t* bases,
                                    [[maybe_unused]] const Zov8u* controls) {
    if constexpr (kSource == PairSource::pairs) {
      __m128i lanes[kLanes];
      for (int i = 0; i < kLanes; ++i) lanes[i] = LoadLanePairs(row, bases + i * kLaneColumns);
      return JoinLanes(lanes);
    }
#if defined(__SSSE3__)
    if constexpr (kSource == PairSource::window) {
      return ShuffleBytes(LoadLanes(row, bases), Bytes::LoadAligned(controls));
    }
    if constexpr (kSource == PairSource::halves) {
      std::int32_t first[kLanes];
      std::int32_t second[kLanes];
      for (int i = 0; i < kLanes; ++i) {
        first[i] = bases[2 * i];
        second[i] = bases[2 * i + 1];
      }
      return ShuffleBytes(LoadLanes(row, first), Bytes::LoadAligned(controls)) |
             ShuffleBytes(LoadLanes(row, second), Bytes::LoadAligned(controls + Bytes::kBytes));
    }
#endif
  }

  static ZOV_INLINE __m128i LoadLanePairs(const Zov8u* row, const std::int32_t* bases) {
    if constexpr (kChannels == 1) {
      const auto pair = [ row, bases ](int i) __attribute__((always_inline)) {
        return LoadAs<std::int16_t>(row + bases[i]);
      };
      __m128i v = _mm_cvtsi32_si128(static_cast<std::uint16_t>(pair(0)));
      v = _mm_insert_epi16(v, pair(1), 1);
      v = _mm_insert_epi16(v, pair(2), 2);
      v = _mm_insert_epi16(v, pair(3), 3);
      v = _mm_insert_epi16(v, pair(4), 4);
      v = _mm_insert_epi16(v, pair(5), 5);
      v = _mm_insert_epi16(v, pair(6), 6);
      return _mm_insert_epi16(v, pair(7), 7);
    } else {
      const __m128i a = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + bases[0]));
      const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + bases[1]));
#if defined(__SSSE3__)
      const __m128i control = _mm_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15);
      return _mm_shuffle_epi8(_mm_unpacklo_epi64(a, b), control);
#else
      const __m128i left = _mm_unpacklo_epi8(a, _mm_srli_epi64(a, 32));
      const __m128i right = _mm_unpacklo_epi8(b, _mm_srli_epi64(b, 32));
      return _mm_unpacklo_epi64(left, right);
#endif
    }
  }

  template <bool kBand>
  static ZOV_INLINE Words Interpolate(Bytes pairs, const std::int16_t* weights) {
#if defined(__SSSE3__)
    constexpr int kUnit = kBand ? 1 : 64;
    const Words base = PairSums(pairs, RepeatPair(kUnit, 0));
    const Words difference = PairSums(pairs, RepeatPair(kUnit, -kUnit));
    return base + MulHighRounded(difference, Words::LoadAligned(weights));
#else
    constexpr int kShift = kBand ? 14 : 8;
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = (__m128i)pairs.v;
    const __m128i half = _mm_set1_epi32(1 << (kShift - 1));
    const __m128i* const w = reinterpret_cast<const __m128i*>(weights);
    const __m128i low = _mm_madd_epi16(_mm_unpacklo_epi8(bytes, zero), _mm_load_si128(w));
    const __m128i high = _mm_madd_epi16(_mm_unpackhi_epi8(bytes, zero), _mm_load_si128(w + 1));
    return {(Words::Native)_mm_packs_epi32(_mm_srli_epi32(_mm_add_epi32(low, half), kShift),
                                           _mm_srli_epi32(_mm_add_epi32(high, half), kShift))};
#endif
  }

  // Line values to pixels: divides by 64, rounded.
  static ZOV_INLINE Words RoundLine(Words line) {
#if defined(__SSSE3__)
    return MulHighRounded(line, Words::Broadcast(512));
#else
    return {(line.v + 32) >> 6};
#endif
  }

  // Writes the pixels of a row; words(i) gives the vector at element i of the line.
  template <class WordsAt>
  ZOV_INLINE void StoreRow(Zov8u* dst, WordsAt words) const {
    const std::int64_t bytes = std::int64_t{count_} * kChannels;
    std::int64_t i = 0;
    for (; i + kBlockBytes <= bytes; i += kBlockBytes) {
      PackSaturated(words(i), words(i + Words::kLanes)).Store(dst + i);
    }
    if (i < bytes) {
      alignas(32) Zov8u rest[kBlockBytes];
      PackSaturated(words(i), words(i + Words::kLanes)).StoreAligned(rest);
      for (int k = 0; i < bytes; ++i, ++k) dst[i] = rest[k];
    }
  }

  int count_;
  int lanes_;
  PairSource source_ = PairSource::pairs;
  std::int32_t* bases_ = nullptr;
  Zov8u* controls_ = nullptr;
  std::int16_t* weights_ = nullptr;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE
