// Bilinear kernels of 8-bit images in fixed point. A horizontal pass gives a line of 16-bit values
// with 6 fractional bits, rounded; the vertical pass rounds once more on its way to 8 bits.
#pragma once

#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"
#include "image/resize/line_ring.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// How a lane of eight line elements (eight columns, or two pixels of four channels) finds its pairs
// of taps: all in one window of 16 bytes, each half lane in a window of its own, or each pair of
// pixels loaded by itself.
enum class PairSource { none, window, halves, pairs };

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

  Linear8u(WorkArena* arena, const ResizeAxis& axis, const ResizeBands& bands)
      : count_(axis.count), lanes_((count_ + kBlockColumns - 1) / kBlockColumns * kBlockLanes) {
    if (bands.near + bands.far >= count_) return;  // no row kernel runs
    const bool wide = kHasShuffle && axis.extent * std::int64_t{kChannels} >= kWindow;
    if (wide && Build<PairSource::window>(arena, axis, bands)) return;
    if constexpr (kChannels == 1) {
      if (wide && Build<PairSource::halves>(arena, axis, bands)) return;
    }
    Build<PairSource::pairs>(arena, axis, bands);
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

  // Writes kRows rows between the same two source rows.
  template <int kRows>
  void Combine(const LinePair<Line>& lines, const Weight* weights, const RowWriter* writers) const {
    if (lines.lowerRow == nullptr) {
      if (lines.upperRow != nullptr) Resample(lines.upperRow, lines.upper);
      return CombineLines<kRows, PairSource::none, PairSource::none>(lines, weights, writers);
    }
    switch (source_) {
      case PairSource::window:
        return CombineFrom<kRows, PairSource::window>(lines, weights, writers);
      case PairSource::halves:
        if constexpr (kChannels == 1) {
          CombineFrom<kRows, PairSource::halves>(lines, weights, writers);
        }
        return;
      default:
        return CombineFrom<kRows, PairSource::pairs>(lines, weights, writers);
    }
  }

  void StoreUpper(const Line* line, const RowWriter& writer) const {
    StoreRow(
        writer, [line](std::int64_t i) __attribute__((always_inline)) {
          return RoundLine(Words::LoadAligned(line + i));
        });
  }

  void StoreBand(const Line* line, const RowWriter& writer) const {
    StoreRow(
        writer, [line](std::int64_t i)
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

  struct Tables {
    std::int32_t* bases;
    Zov8u* controls;
    std::int16_t* weights;
  };

  // Fills the tables for one way to fetch the taps; false when some taps lie too far apart for it.
  template <PairSource kSource>
  bool Build(WorkArena* arena, const ResizeAxis& axis, const ResizeBands& bands) {
    WorkArena trial = *arena;
    source_ = kSource;
    tables_.bases = trial.Take<std::int32_t>(std::int64_t{lanes_} * BasesPerLane(kSource));
    tables_.controls = trial.Take<Zov8u>(std::int64_t{lanes_} * ControlBytesPerLane(kSource));
    tables_.weights = trial.Take<std::int16_t>(std::int64_t{lanes_} * kLaneWeights);
    const int lastBase = axis.extent * kChannels - kWindow;

    std::int32_t index[kBlockColumns];
    std::int32_t fixed[kBlockColumns];
    double fraction[kBlockColumns];
    for (int lane = 0; lane < lanes_; lane += kBlockLanes) {
      const int column = lane * kLaneColumns;
      const int rest = count_ - column;
      const int filled = rest < kBlockColumns ? rest : kBlockColumns;
      LinearSamplesInImage(axis, bands, column, filled, index, fraction);
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
    std::int32_t* const bases = tables_.bases + std::int64_t{lane} * BasesPerLane(kSource);
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
    return tables_.controls + (std::int64_t{vector} * windows + window) * Bytes::kBytes +
           lane % kLanes * kWindow;
  }

  void SetWeights(int lane, const std::int32_t* fixed) {
    std::int16_t* weights = tables_.weights + std::int64_t{lane} * kLaneWeights;
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
  void ResampleFrom(const Zov8u* row, Line* line) const {
    switch (source_) {
      case PairSource::window:
        return ResampleLanes<kBand, PairSource::window>(row, line);
      case PairSource::halves:
        if constexpr (kChannels == 1) ResampleLanes<kBand, PairSource::halves>(row, line);
        return;
      default:
        return ResampleLanes<kBand, PairSource::pairs>(row, line);
    }
  }

  template <bool kBand, PairSource kSource>
  ZOV_INLINE void ResampleLanes(const Zov8u* row, Line* line) const {
    const Tables tables = tables_;
    const std::int64_t elements = LineLength();
    for (std::int64_t i = 0; i < elements; i += Words::kLanes) {
      ResampleAt<kBand, kSource>(tables, row, i).StoreAligned(line + i);
    }
  }

  // A vector of the line of a source row, from element i on.
  template <bool kBand, PairSource kSource>
  static ZOV_INLINE Words ResampleAt(const Tables& tables, const Zov8u* row, std::int64_t i) {
    if constexpr (kHasShuffle || kSource == PairSource::pairs) {
      const Bytes pairs =
          LoadPairs<kSource>(row, tables.bases + i / (8 / BasesPerLane(kSource)),
                             tables.controls + i * (ControlBytesPerLane(kSource) / 8));
      return Interpolate<kBand>(pairs, tables.weights + i * (kLaneWeights / 8));
    } else {
      return Words::Zero();
    }
  }

  template <int kRows, PairSource kSource>
  ZOV_INLINE void CombineFrom(const LinePair<Line>& lines, const Weight* weights,
                              const RowWriter* writers) const {
    if (lines.upperRow != nullptr) {
      CombineLines<kRows, kSource, kSource>(lines, weights, writers);
    } else {
      CombineLines<kRows, PairSource::none, kSource>(lines, weights, writers);
    }
  }

  // The vertical pass. Lines that are not there yet are resampled on the way.
  template <int kRows, PairSource kUpper, PairSource kLower>
  ZOV_NOINLINE void CombineLines(const LinePair<Line>& lines, const Weight* weights,
                                 const RowWriter* writers) const {
    Words scales[kRows];
    for (int r = 0; r < kRows; ++r) {
      scales[r] = Words::Broadcast(static_cast<std::int16_t>(-2 * weights[r]));
    }
    // Copies that no store can alias.
    const LinePair<Line> source = lines;
    const Tables tables = tables_;
    const RowWriter first = writers[0];
    const RowWriter second = writers[kRows - 1];
    const std::int64_t bytes = std::int64_t{count_} * kChannels;
    const auto block = [&](std::int64_t i, Bytes * out) __attribute__((always_inline)) {
      Words words[kRows][2];
      for (int half = 0; half < 2; ++half) {
        const std::int64_t at = i + half * Words::kLanes;
        if constexpr (IsSparse(kUpper))
          AskForTaps<kUpper>(tables, source.upperRow + source.ahead, at);
        if constexpr (IsSparse(kLower))
          AskForTaps<kLower>(tables, source.lowerRow + source.ahead, at);
        const Words upper = LineAt<kUpper>(tables, source.upperRow, source.upper, at);
        const Words lower = LineAt<kLower>(tables, source.lowerRow, source.lower, at);
        if constexpr (kUpper != PairSource::none) upper.StoreAligned(source.upper + at);
        if constexpr (kLower != PairSource::none) lower.StoreAligned(source.lower + at);
        // The high half of the product of twice a difference with twice a weight, both within 16
        // bits, is the exact floor of the lower row's share.
        const Words difference = upper - lower;
        const Words twice = difference + difference;
        for (int r = 0; r < kRows; ++r) {
          words[r][half] = RoundLine(upper + MulHigh(twice, scales[r]));
        }
      }
      for (int r = 0; r < kRows; ++r) out[r] = PackSaturated(words[r][0], words[r][1]);
    };
    Bytes out[kRows];
    std::int64_t i = 0;
    for (; i + kBlockBytes <= bytes; i += kBlockBytes) {
      block(i, out);
      first.Write(out[0], i);
      if constexpr (kRows == 2) second.Write(out[1], i);
    }
    if (i < bytes) {
      block(i, out);
      for (int r = 0; r < kRows; ++r) StoreFirst(out[r], writers[r].At(i), bytes - i);
    }
  }

  // Taps that lie far apart come from few bytes of each line, and rows that are left out keep the
  // processor from asking ahead by itself. Wider pixels only lose by it.
  static constexpr bool IsSparse(PairSource source) {
    return source == PairSource::pairs || source == PairSource::halves;
  }
  template <PairSource kSource>
  static ZOV_INLINE void AskForTaps(const Tables& tables, const Zov8u* row, std::int64_t i) {
    Prefetch(row + tables.bases[i / (8 / BasesPerLane(kSource))]);
  }

  template <PairSource kSource>
  static ZOV_INLINE Words LineAt(const Tables& tables, const Zov8u* row, const Line* line,
                                 std::int64_t i) {
    if constexpr (kSource == PairSource::none) {
      return Words::LoadAligned(line + i);
    } else {
      return ResampleAt<false, kSource>(tables, row, i);
    }
  }

  // The two taps of each line element, side by side.
  template <PairSource kSource>
  static ZOV_INLINE Bytes LoadPairs(const Zov8u* row, const std::int32_t* bases,
                                    [[maybe_unused]] const Zov8u* controls) {
    if constexpr (kSource == PairSource::pairs) {
#if defined(__AVX2__)
      if constexpr (kChannels == 4) return LoadVectorPairs(row, bases);
#endif
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

#if defined(__AVX2__)
  // Four pairs of pixels. Broadcasts and blends take no turn at the one unit that shuffles.
  static ZOV_INLINE Bytes LoadVectorPairs(const Zov8u* row, const std::int32_t* bases) {
    const auto pair = [ row, bases ](int i) __attribute__((always_inline)) {
      return _mm256_set1_epi64x(LoadAs<std::int64_t>(row + bases[i]));
    };
    const __m256i low = _mm256_blend_epi32(pair(0), pair(1), 0x0C);
    const __m256i high = _mm256_blend_epi32(pair(2), pair(3), 0xC0);
    const __m128i control = _mm_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15);
    return {(Bytes::Native)_mm256_shuffle_epi8(_mm256_blend_epi32(low, high, 0xF0),
                                               _mm256_broadcastsi128_si256(control))};
  }
#endif

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
  ZOV_INLINE void StoreRow(RowWriter writer, WordsAt words) const {
    const std::int64_t bytes = std::int64_t{count_} * kChannels;
    std::int64_t i = 0;
    for (; i + kBlockBytes <= bytes; i += kBlockBytes) {
      writer.Write(PackSaturated(words(i), words(i + Words::kLanes)), i);
    }
    if (i < bytes) {
      StoreFirst(PackSaturated(words(i), words(i + Words::kLanes)), writer.At(i), bytes - i);
    }
  }

  int count_;
  int lanes_;
  PairSource source_ = PairSource::pairs;
  Tables tables_ = {};
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE
