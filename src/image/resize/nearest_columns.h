// Row kernels of nearest neighbour: which source pixels a destination row copies.
#pragma once

#include "image/resize/byte_lanes.h"
#include "image/resize/image_view.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// Pixel is an unsigned integer as wide as a pixel with all its channels. One index for each column.
template <class Pixel>
class NearestIndices {
  static constexpr int kPixel = sizeof(Pixel);
  static constexpr int kPadding = 8;

 public:
  NearestIndices(WorkArena* arena, const ResizeAxis& axis) : count_(axis.count) {
    index_ = arena->Take<std::int32_t>(std::int64_t{count_ + kPadding - 1} / kPadding * kPadding);
    NearestSamples(axis, 0, count_, index_);
#if defined(__AVX2__)
    if constexpr (kPixel == 4) ChooseWindow(axis.extent);
#endif
  }

  void CopyRow(const Zov8u* src, Zov8u* dst) const {
    std::int64_t i = 0;
#if defined(__AVX2__)
    if constexpr (kPixel == 4) {
      if (perWindow_ == 8) i = CopyWindows<8>(src, dst);
      if (perWindow_ == 4) i = CopyWindows<4>(src, dst);
    }
#endif
    for (; i < count_; ++i) {
      StoreAs(dst + i * kPixel, LoadAs<Pixel>(src + std::int64_t{index_[i]} * kPixel));
    }
  }

 private:
#if defined(__AVX2__)
  // Takes the most columns whose sources always lie within one vector.
  void ChooseWindow(int extent) {
    lastWindow_ = extent - 8;
    perWindow_ = lastWindow_ < 0 ? 0 : Fits(8) ? 8 : Fits(4) ? 4 : 0;
  }
  bool Fits(int columns) const {
    for (int i = 0; i + columns <= count_; i += columns) {
      if (index_[i + columns - 1] - WindowOf(i) > 7) return false;
    }
    return true;
  }
  ZOV_INLINE int WindowOf(std::int64_t i) const {
    return index_[i] < lastWindow_ ? index_[i] : lastWindow_;
  }

  template <int kColumns>
  ZOV_INLINE std::int64_t CopyWindows(const Zov8u* src, Zov8u* dst) const {
    std::int64_t i = 0;
    for (; i + kColumns <= count_; i += kColumns) {
      const int base = WindowOf(i);
      const __m256i window = Load256(src + std::int64_t{base} * 4);
      if constexpr (kColumns == 8) {
        const __m256i lanes = _mm256_sub_epi32(Load256(index_ + i), _mm256_set1_epi32(base));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i * 4),
                            _mm256_permutevar8x32_epi32(window, lanes));
      } else {
        const __m128i lanes =
            _mm_sub_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(index_ + i)),
                          _mm_set1_epi32(base));
        const __m256i pixels =
            _mm256_permutevar8x32_epi32(window, _mm256_castsi128_si256(lanes));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i * 4), _mm256_castsi256_si128(pixels));
      }
    }
    return i;
  }

  static ZOV_INLINE __m256i Load256(const void* p) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
  }

  int perWindow_ = 0;
  int lastWindow_ = 0;
#endif

  int count_;
  std::int32_t* index_;
};

#if defined(__SSSE3__)

// Columns of 8-bit pixels by byte shuffles of 16-byte windows, each of which serves 16, 8 or 4
// columns. Columns that lie farther apart are copied one by one.
class NearestBytes {
  static constexpr int kWindow = 16;

 public:
  NearestBytes(WorkArena* arena, const ResizeAxis& axis)
      : count_(axis.count), padded_((axis.count + Bytes::kBytes - 1) / Bytes::kBytes * Bytes::kBytes) {
    if (axis.extent >= kWindow) {
      for (perWindow_ = 16; perWindow_ >= 4; perWindow_ /= 2) {
        if (Build(arena, axis)) return;
      }
    }
    perWindow_ = 1;
    bases_ = arena->Take<std::int32_t>(count_);
    NearestSamples(axis, 0, count_, bases_);
  }

  void CopyRow(const Zov8u* src, Zov8u* dst) const {
    switch (perWindow_) {
      case 16:
        return CopyBlocks<16>(src, dst);
      case 8:
        return CopyBlocks<8>(src, dst);
      case 4:
        return CopyBlocks<4>(src, dst);
      default:
        for (int i = 0; i < count_; ++i) dst[i] = src[bases_[i]];
    }
  }

 private:
  // Where the control bytes of a window lie: windows of 4 columns have just 4 of them, the others a
  // full lane, in the order in which Gather takes them.
  std::int64_t ControlOffset(int window) const {
    if (perWindow_ == 4) return std::int64_t{window} * 4;
    return std::int64_t{window} * kWindow;
  }
  // The place of a window in the tables. Two windows of 8 columns make one lane, and a vector takes
  // the first windows of its lanes, then the second ones.
  int Place(int window) const {
    if (perWindow_ != 8 || kLanes == 1) return window;
    return LogicalLane(window);  // its own inverse
  }

  bool Build(WorkArena* arena, const ResizeAxis& axis) {
    WorkArena trial = *arena;
    const int windows = padded_ / perWindow_;
    const int controlBytes = perWindow_ == 4 ? 4 : kWindow;
    bases_ = trial.Take<std::int32_t>(windows);
    controls_ = trial.Take<Zov8u>(std::int64_t{windows} * controlBytes);
    const int lastBase = axis.extent - kWindow;
    std::int32_t index[kWindow];
    for (int window = 0; window < windows; ++window) {
      const int first = window * perWindow_;
      const int rest = count_ - first;
      const int filled = rest < perWindow_ ? rest : perWindow_;
      if (filled > 0) NearestSamples(axis, first, filled, index);
      // Padding repeats the last column; a window of padding only, the last window.
      for (int i = filled > 0 ? filled : 0; i < perWindow_; ++i) {
        index[i] = filled > 0 ? index[filled - 1] : lastBase;
      }
      const int base = index[0] < lastBase ? index[0] : lastBase;
      const int place = Place(window);
      bases_[place] = base;
      Zov8u* control = controls_ + ControlOffset(place);
      for (int i = 0; i < controlBytes; ++i) control[i] = 0x80;
      if (perWindow_ == 8) control += window % 2 * 8;
      for (int i = 0; i < perWindow_; ++i) {
        if (index[i] - base >= kWindow) return false;
        control[i] = static_cast<Zov8u>(index[i] - base);
      }
    }
    *arena = trial;
    return true;
  }

  template <int kColumns>
  ZOV_INLINE void CopyBlocks(const Zov8u* src, Zov8u* dst) const {
    std::int64_t i = 0;
    for (; i + Bytes::kBytes <= count_; i += Bytes::kBytes) Gather<kColumns>(src, i).Store(dst + i);
    if (i < count_) {
      alignas(32) Zov8u rest[Bytes::kBytes];
      Gather<kColumns>(src, i).StoreAligned(rest);
      for (int k = 0; i < count_; ++i, ++k) dst[i] = rest[k];
    }
  }

  // A vector of destination pixels from column i on.
  template <int kColumns>
  ZOV_INLINE Bytes Gather(const Zov8u* src, std::int64_t i) const {
    const std::int32_t* const bases = bases_ + i / kColumns;
    if constexpr (kColumns == 16) {
      return ShuffleBytes(LoadLanes(src, bases), Bytes::LoadAligned(controls_ + i));
    } else if constexpr (kColumns == 8) {
      const Zov8u* const controls = controls_ + 2 * i;
      return ShuffleBytes(LoadLanes(src, bases), Bytes::LoadAligned(controls)) |
             ShuffleBytes(LoadLanes(src, bases + kLanes),
                          Bytes::LoadAligned(controls + Bytes::kBytes));
    } else {
      __m128i lanes[kLanes];
      for (int lane = 0; lane < kLanes; ++lane) {
        const auto four = [&](int k) __attribute__((always_inline)) {
          const int window = lane * 4 + k;
          return _mm_shuffle_epi8(
              _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + bases[window])),
              _mm_cvtsi32_si128(LoadAs<std::int32_t>(controls_ + i + window * 4)));
        };
        lanes[lane] = _mm_unpacklo_epi64(_mm_unpacklo_epi32(four(0), four(1)),
                                         _mm_unpacklo_epi32(four(2), four(3)));
      }
      return JoinLanes(lanes);
    }
  }

  int count_;
  int padded_;
  int perWindow_;
  std::int32_t* bases_;
  Zov8u* controls_ = nullptr;
};

#endif

template <class Pixel>
struct NearestColumnsOf {
  using Type = NearestIndices<Pixel>;
};
#if defined(__SSSE3__)
template <>
struct NearestColumnsOf<std::uint8_t> {
  using Type = NearestBytes;
};
#endif

}  // namespace zov::ZOV_LEVEL_NAMESPACE
