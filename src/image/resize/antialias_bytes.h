// Antialiased reduction of 8-bit images in single precision. What is written is the byte that the
// documented sums give, row by row in double precision: sums here differ from those by less than a
// known bound, and the few pixels that lie so close to a rounding limit are computed once more.
// The order of the passes is free, so columns are combined first, which needs no turning of bytes.
#pragma once

#include "image/resize/antialias_taps.h"
#include "image/resize/image_view.h"
#include "image/resize/kernel_rows.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

template <int kChannels>
class AntialiasBytes {
  using V = VecF;
  using Int = Vec<std::int32_t, V::kLanes>;
  using Fixed = VecI<std::uint32_t>;
  using Fractions = VecI<std::uint16_t>;
  using Taps = WidenedKernel::Taps;
  static constexpr int kLanes = V::kLanes;
  static constexpr int kBlockBytes = V::kBytes;
  static constexpr int kCacheLine = 64;
  static constexpr int kAhead = 256;
  // Vectors of a turned column: rows of one channel, or the four channels of a quarter as many.
  static constexpr int kVectors = 4;
  static constexpr int kGroup = kVectors * kLanes;
  static constexpr int kRows = kGroup / kChannels;
  static constexpr int kPixels = 8 / kChannels;  // of a row that are written at once
  static constexpr float kOne = 65536;           // in the fixed-point form of the final sums
  // The other route is faster where more than one element of so many is computed twice.
  static constexpr int kOftenest = 32;

  // Weights of a source row for two destination rows.
  struct RowTap {
    const Zov8u* row;
    double sums[2];
    float weights[2];
  };
  struct ColumnTaps {
    std::int32_t first;  // column of the block
    std::int32_t count;
  };

 public:
  AntialiasBytes(SourceView src, TargetView dst, const ResizeAxis& x, const ResizeAxis& y,
                 const WidenedKernel& xKernel, const WidenedKernel& yKernel)
      : src_(src), dst_(dst), x_(x), y_(y), xKernel_(xKernel), yKernel_(yKernel) {
    first_ = xKernel.At(0).first;
    const Taps last = xKernel.At(x.count - 1);
    columns_ = static_cast<int>(last.first - first_) + last.count;
  }

  // Returns how many rows it has written: all, or fewer where too many pixels had to be computed
  // twice, or none when it cannot run.
  int Run(Zov8u* workBuffer, std::int64_t bytes) {
    const std::int64_t xTaps = xKernel_.MostTaps();
    const std::int64_t yTaps = yKernel_.MostTaps();
    // A lone column a hair beyond the image may have all its taps there, and a block none to
    // repeat.
    if (first_ >= x_.extent) return 0;
    if (std::int64_t{x_.extent} * kChannels < kBlockBytes) return 0;
    WorkArena arena(workBuffer);
    taps_ = arena.Take<ColumnTaps>(x_.count);
    xWeights_ = arena.Take<float>(x_.count * xTaps);
    yWeights_ = arena.Take<float>(y_.count * yTaps);
    rowTaps_ = arena.Take<RowTap>(kLanes * yTaps);
    block_ = arena.Take<float>(std::int64_t{columns_} * kGroup);
    if (arena.Take<Zov8u>(0) - workBuffer > bytes) return 0;

    if (!FillTables()) return 0;
    for (int row = 0; row < y_.count; row += kRows) {
      const int rows = y_.count - row < kRows ? y_.count - row : kRows;
      FillBlock(row, rows);
      if (!WriteRows(row, rows)) return row;
    }
    return y_.count;
  }

 private:
  // What rounding does to the weights of an axis.
  struct AxisBound {
    double sum = 0;     // most of the sums of magnitudes
    double passed = 0;  // the same, each times the number of additions that it goes through
    bool isCoarse = true;

    void Add(const float* weights, int count) {
      double magnitudes = 0;
      double steps = 0;
      for (int k = 0; k < count; ++k) {
        const double magnitude = weights[k] < 0 ? -weights[k] : weights[k];
        magnitudes += magnitude;
        steps += magnitude * (count - k);
        const float scaled = weights[k] * 128;
        isCoarse = isCoarse && scaled == static_cast<float>(static_cast<int>(scaled));
      }
      if (!(magnitudes <= sum)) sum = magnitudes;
      if (!(steps <= passed)) passed = steps;
    }
  };

  // False when rounding may matter for too many pixels.
  bool FillTables() {
    AxisBound x;
    AxisBound y;
    for (int i = 0; i < x_.count; ++i) {
      const Taps taps = xKernel_.At(i);
      taps_[i] = {static_cast<std::int32_t>(taps.first - first_), taps.count};
      if (xKernel_.GetWeights<float>(i, i, x_.count, xKernel_.MostTaps(), xWeights_))
        x.Add(XWeights(i), taps.count);
    }
    for (int i = 0; i < y_.count; ++i) {
      if (yKernel_.GetWeights<float>(i, i, y_.count, yKernel_.MostTaps(), yWeights_)) {
        y.Add(YWeights(i), yKernel_.At(i).count);
      }
    }
    // In units of 2^-24 of a byte's range: the documented sums round a line's value, each product
    // and each addition along y. The sums here round weights, products and additions along both
    // axes; terms pass no more additions in this order, or half as many in two sums.
    constexpr double kUnit = 255.0 / (1 << 24);
    const double documented = x.sum * (2 * y.sum + y.passed);
    const double here = x.sum * (2 * y.sum + y.passed) + y.sum * (3 * x.sum + x.passed / 2);
    // The first of two values for the additions of the offset, the second for the fixed point.
    const double bound = 1.01 * kUnit * (documented + here) + 2e-5;
    // Of small multiples of 1 / 128, all sums are exact.
    const bool isExact = x.isCoarse && y.isCoarse && x.sum * y.sum < 2;
    if (!(2 * bound * kOftenest < 1)) return false;
    margin_ = isExact ? 0 : static_cast<int>(bound * kOne) + 2;
    return true;
  }

  const float* XWeights(int column) const {
    return xWeights_ + column * std::int64_t{xKernel_.MostTaps()};
  }
  const float* YWeights(int row) const {
    return yWeights_ + row * std::int64_t{yKernel_.MostTaps()};
  }

  // The source rows of rows `row` and row + 1, without those of no weight. Returns their number.
  int ListRowTaps(int row, RowTap* list) const {
    const int end = row + 2 < y_.count ? row + 2 : y_.count;
    const Taps last = yKernel_.At(end - 1);
    const int lowest = InImage(yKernel_.At(row).first, y_.extent);
    const int count = InImage(last.first + last.count - 1, y_.extent) - lowest + 1;
    for (int k = 0; k < count; ++k) list[k] = {src_.Row(lowest + k), {0, 0}, {0, 0}};
    for (int r = row; r < end; ++r) {
      const Taps taps = yKernel_.At(r);
      const float* const weights = YWeights(r);
      for (int k = 0; k < taps.count; ++k) {
        list[InImage(taps.first + k, y_.extent) - lowest].sums[r - row] +=
            static_cast<double>(weights[k]);
      }
    }
    constexpr double kNothing = 1e-12;
    int used = 0;
    for (int k = 0; k < count; ++k) {
      RowTap tap = list[k];
      double most = 0;
      for (int r = 0; r < 2; ++r) {
        tap.weights[r] = static_cast<float>(tap.sums[r]);
        const double magnitude = tap.sums[r] < 0 ? -tap.sums[r] : tap.sums[r];
        most = most > magnitude ? most : magnitude;
      }
      if (most > kNothing) list[used++] = tap;
    }
    return used;
  }

  // Combines source rows to destination rows, and turns these: pixels of a column lie side by side.
  void FillBlock(int row, int rows) {
    const std::int64_t begin = first_ < 0 ? 0 : first_;
    const std::int64_t beyond = first_ + columns_;
    const std::int64_t endByte = (beyond < x_.extent ? beyond : x_.extent) * kChannels;
    for (int r = 0; r < rows; r += kLanes) {
      const int lastRow = r + kLanes < rows ? row + r + kLanes - 1 : row + rows - 1;
      const Taps last = yKernel_.At(lastRow);
      const int lowest = InImage(yKernel_.At(row + r).first, y_.extent);
      const int highest = InImage(last.first + last.count - 1, y_.extent);
      int counts[kLanes / 2];
      for (int pair = 0; pair < kLanes / 2; ++pair) {
        const int at = r + 2 * pair < rows ? row + r + 2 * pair : row + rows - 1;
        counts[pair] = ListRowTaps(at, rowTaps_ + 2 * pair * std::int64_t{yKernel_.MostTaps()});
      }
      // The last block overlaps the one before it. A narrow image is read beyond what is needed.
      for (std::int64_t byte = begin * kChannels; byte < endByte; byte += kBlockBytes) {
        std::int64_t from = byte + kBlockBytes <= endByte ? byte : endByte - kBlockBytes;
        from = from < 0 ? 0 : from;
        // More rows are read side by side than the processor prefetches by itself.
        if (byte % kCacheLine < kBlockBytes) {
          for (int y = lowest; y <= highest; ++y) {
            _mm_prefetch(reinterpret_cast<const char*>(src_.Row(y) + from + kAhead), _MM_HINT_T0);
          }
        }
        alignas(32) float planes[kLanes][4 * kLanes];
        for (int pair = 0; pair < kLanes / 2; ++pair) {
          CombineRows(rowTaps_ + 2 * pair * std::int64_t{yKernel_.MostTaps()}, counts[pair], from,
                      planes[2 * pair], planes[2 * pair + 1]);
        }
        TurnPlanes(planes, from / kChannels, r);
      }
    }
    for (std::int64_t x = first_; x < 0; ++x) CopyColumn(begin, x);
    for (std::int64_t x = x_.extent; x < beyond; ++x) CopyColumn(x_.extent - 1, x);
  }

  // Four neighbouring bytes go to four planes.
  static ZOV_INLINE void CombineRows(const RowTap* taps, int count, std::int64_t from, float* upper,
                                     float* lower) {
    V sums[2][4];
    for (int j = 0; j < 4; ++j) sums[0][j] = sums[1][j] = V::Zero();
    for (int k = 0; k < count; ++k) {
      const Vec<std::uint32_t, kLanes> bytes = Vec<std::uint32_t, kLanes>::Load(taps[k].row + from);
      const V weights[2] = {V::Broadcast(taps[k].weights[0]), V::Broadcast(taps[k].weights[1])};
      for (int j = 0; j < 4; ++j) {
        const Int lanes = {j == 3 ? (typename Int::Native)(bytes.v >> 24)
                                  : (typename Int::Native)bytes.v & (255 << 8 * j)};
        const V pixels = {__builtin_convertvector(lanes.v, typename V::Native)};
        for (int r = 0; r < 2; ++r) sums[r][j] = AddProduct<true>(sums[r][j], weights[r], pixels);
      }
    }
    // Brings bytes of all places to fixed point.
    constexpr float kScales[4] = {kOne, kOne / (1 << 8), kOne / (1 << 16), kOne};
    for (int j = 0; j < 4; ++j) {
      const V scale = V::Broadcast(kScales[j]);
      (sums[0][j] * scale).StoreAligned(upper + j * kLanes);
      (sums[1][j] * scale).StoreAligned(lower + j * kLanes);
    }
  }

  ZOV_INLINE float* Column(std::int64_t x) { return block_ + (x - first_) * kGroup; }

  void CopyColumn(std::int64_t from, std::int64_t to) {
    for (int i = 0; i < kGroup; i += kLanes) {
      V::LoadAligned(Column(from) + i).StoreAligned(Column(to) + i);
    }
  }

  // Columns from x on of the rows from r on of a group.
  ZOV_INLINE void TurnPlanes(const float (*planes)[4 * kLanes], std::int64_t x, int r) {
    for (int j = 0; j < 4; ++j) {
      for (int part = 0; part < kLanes; part += 4) {
        const auto load = [=](int k) __attribute__((always_inline)) {
          const float* const at = planes[k] + j * kLanes + part;
#if defined(__AVX__)
          return _mm256_set_m128(_mm_load_ps(at + 4 * 4 * kLanes), _mm_load_ps(at));
#else
          return _mm_load_ps(at);
#endif
        };
        decltype(load(0)) four[4];
        TransposeFour(load(0), load(1), load(2), load(3), four);
        for (int k = 0; k < 4; ++k) {
          const int pixel = part + k;
          const std::int64_t column = x + (kChannels == 1 ? 4 * pixel + j : pixel);
          // A narrow image has columns that no pixel needs.
          if (column < first_ || column >= first_ + columns_) continue;
          V{(typename V::Native)four[k]}.StoreAligned(Column(column) +
                                                      (kChannels == 1 ? r : j * kLanes));
        }
      }
    }
  }

  // Rows of the group from their block. False when too many pixels had to be computed twice.
  bool WriteRows(int row, int rows) {
    constexpr int kSide = Fixed::kLanes;
    const int most = static_cast<int>(std::int64_t{rows} * x_.count * kChannels / kOftenest);
    int redone = 0;
    for (int column = 0; column < x_.count; column += kPixels) {
      const int pixels = x_.count - column < kPixels ? x_.count - column : kPixels;
      alignas(32) float sums[kPixels][kGroup];
      for (int k = 0; k < kPixels; ++k) {
        SumColumn(column + (k < pixels ? k : pixels - 1), sums[k]);
      }
      for (int r = 0; r < rows; r += kSide) {
        const int count = rows - r < kSide ? rows - r : kSide;
        alignas(32) Zov8u bytes[kSide * 8];
        const bool isSure = ToBytes(sums, r, bytes);
        for (int i = 0; i < count; ++i) {
          // The order of the halves of vectors.
          const int place = kSide == 8 ? (i & 1) | (i & 2) << 1 | (i & 4) >> 1 : i;
          Zov8u* const to = dst_.Row(row + r + i) + std::int64_t{column} * kChannels;
          if (pixels == kPixels) {
            StoreAs(to, LoadAs<std::int64_t>(bytes + place * 8));
          } else {
            for (int b = 0; b < pixels * kChannels; ++b) to[b] = bytes[place * 8 + b];
          }
        }
        if (!isSure) {
          for (int k = 0; k < pixels * kChannels; ++k) {
            for (int i = 0; i < count; ++i) {
              const int fraction = static_cast<int>(SumsAt(sums, k, r)[i]) & 0xFFFF;
              if (fraction >= 2 * margin_) continue;
              if (++redone > most) return false;
              Redo(row + r + i, column + k / kChannels, k % kChannels);
            }
          }
        }
      }
    }
    return true;
  }

  static ZOV_INLINE const float* SumsAt(const float (*sums)[kGroup], int k, int r) {
    return sums[k / kChannels] + k % kChannels * kLanes + r;
  }

  // Even and odd taps are summed apart, for speed. The offset makes a truncation round.
  ZOV_INLINE void SumColumn(int column, float* sums) const {
    const ColumnTaps taps = taps_[column];
    const float* pixels = block_ + std::int64_t{taps.first} * kGroup;
    const float* const weights = XWeights(column);
    V even[kVectors];
    V odd[kVectors];
    for (int v = 0; v < kVectors; ++v) {
      even[v] = V::Broadcast(kOne / 2 + static_cast<float>(margin_));
      odd[v] = V::Zero();
    }
    const auto add = [&](V * to, int tap) __attribute__((always_inline)) {
      const V weight = V::Broadcast(weights[tap]);
      for (int v = 0; v < kVectors; ++v) {
        to[v] = AddProduct<true>(to[v], V::LoadAligned(pixels + v * kLanes), weight);
      }
      pixels += kGroup;
    };
    int k = 0;
    for (; k + 2 <= taps.count; k += 2) {
      add(even, k);
      add(odd, k + 1);
    }
    if (k < taps.count) add(even, k);
    for (int v = 0; v < kVectors; ++v) (even[v] + odd[v]).StoreAligned(sums + v * kLanes);
  }

  static ZOV_INLINE Bytes InterleaveWords(Bytes a, Bytes b, bool high) {
#if defined(__AVX2__)
    return {(Bytes::Native)(high ? _mm256_unpackhi_epi16((__m256i)a.v, (__m256i)b.v)
                                 : _mm256_unpacklo_epi16((__m256i)a.v, (__m256i)b.v))};
#else
    return {(Bytes::Native)(high ? _mm_unpackhi_epi16((__m128i)a.v, (__m128i)b.v)
                                 : _mm_unpacklo_epi16((__m128i)a.v, (__m128i)b.v))};
#endif
  }

  // Eight bytes of as many rows as an integer vector has lanes. True when no sum lies so close to
  // a whole number that the documented one may lie on its other side.
  ZOV_INLINE bool ToBytes(const float (*sums)[kGroup], int r, Zov8u* to) const {
    using Floats = Vec<float, Fixed::kLanes>;
    const Fixed low = Fixed::Broadcast(0xFFFF);
    Fractions least = Fractions::Broadcast(0xFFFF);
    Words whole[4];
    for (int p = 0; p < 4; ++p) {
      const auto fixed = [=](int k) __attribute__((always_inline)) {
        const Floats floats = Floats::LoadAligned(SumsAt(sums, k, r));
        using Integers = typename VecI<std::int32_t>::Native;
        return Fixed{(Fixed::Native) __builtin_convertvector(floats.v, Integers)};
      };
      const Fixed a = fixed(2 * p);
      const Fixed b = fixed(2 * p + 1);
      const Fixed fractions = (a & low) | Fixed{b.v << 16};
      least = Min(least, As<std::uint16_t>(fractions));
      whole[p] = As<std::int16_t>(Fixed{a.v >> 16} | AndNot(low, b));
    }
    const Bytes first = PackSaturated(whole[0], whole[1]);
    const Bytes second = PackSaturated(whole[2], whole[3]);
    const Bytes even = InterleaveWords(first, second, false);
    const Bytes odd = InterleaveWords(first, second, true);
    InterleaveWords(even, odd, false).StoreAligned(to);
    InterleaveWords(even, odd, true).StoreAligned(to + Bytes::kBytes);
    const auto unsure = least < Fractions::Broadcast(static_cast<std::uint16_t>(2 * margin_));
    return MoveMask(As<std::int8_t>(unsure)) == 0;
  }

  // One element by the documented sums.
  ZOV_NOINLINE void Redo(int row, int column, int channel) const {
    const Taps rows = yKernel_.At(row);
    const float* const weights = YWeights(row);
    float sum = 0;
    float line = 0;
    int lineRow = -1;
    for (int k = 0; k < rows.count; ++k) {
      const int y = InImage(rows.first + k, y_.extent);
      if (y != lineRow) line = LineAt(src_.Row(y) + channel, column);
      lineRow = y;
      sum += line * weights[k];
    }
    const __m128i words = _mm_packs_epi32(RoundHalfUp(_mm_set_ss(sum)), _mm_setzero_si128());
    dst_.Row(row)[std::int64_t{column} * kChannels + channel] =
        static_cast<Zov8u>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
  }

  // Even and odd taps of one channel are summed apart.
  ZOV_INLINE float LineAt(const Zov8u* row, int column) const {
    const std::int64_t first = first_ + taps_[column].first;
    const int count = taps_[column].count;
    const float* const weights = XWeights(column);
    __m128d sums = _mm_setzero_pd();
    int k = 0;
    if (kChannels == 1 && first >= 0 && first + count <= x_.extent) {
      const __m128i zero = _mm_setzero_si128();
      for (; k + 2 <= count; k += 2) {
        const __m128i bytes = _mm_cvtsi32_si128(LoadAs<std::uint16_t>(row + first + k));
        const __m128i integers = _mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero);
        const __m128d pair = _mm_cvtps_pd(
            _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(weights + k))));
        sums = _mm_add_pd(sums, _mm_mul_pd(_mm_cvtepi32_pd(integers), pair));
      }
    }
    double parts[2];
    _mm_storeu_pd(parts, sums);
    for (; k < count; ++k) {
      const int x = InImage(first + k, x_.extent);
      parts[kChannels == 1 ? k % 2 : 0] +=
          static_cast<double>(row[std::int64_t{x} * kChannels]) * static_cast<double>(weights[k]);
    }
    return static_cast<float>(parts[0] + parts[1]);
  }

  SourceView src_;
  TargetView dst_;
  ResizeAxis x_;
  ResizeAxis y_;
  const WidenedKernel& xKernel_;
  const WidenedKernel& yKernel_;
  std::int64_t first_;  // source column of the first of a block; may lie outside the image
  int columns_;
  int margin_;  // fixed point
  ColumnTaps* taps_;
  float* xWeights_;
  float* yWeights_;
  RowTap* rowTaps_;
  float* block_;
};

}  // namespace zov::ZOV_LEVEL_NAMESPACE
