// Row kernels of nearest neighbour: which source pixels a destination row copies.
#pragma once

#include "image/resize/image_view.h"
#include "image/resize/samples.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// The same vector in kRows rows.
template <int kRows, class V>
ZOV_INLINE void WriteRows(const RowWriter* writers, V v, std::int64_t i) {
  for (int r = 0; r < kRows; ++r) writers[r].Write(v, i);
}

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

  // Writes kRows equal rows. `nextSrc` is the source row after `src` that is used.
  template <int kRows>
  void CopyRow(const Zov8u* src, const Zov8u* nextSrc, const RowWriter* writers) const {
    std::int64_t i = 0;
#if defined(__AVX2__)
    if constexpr (kPixel == 4) {
      if (perWindow_ == 8) i = CopyWindows<kRows, 8>(src, writers);
      if (perWindow_ == 4) i = CopyWindows<kRows, 4>(src, writers);
    }
#endif
    if constexpr (kPixel > 1) {
      constexpr int kLanePixels = 16 / kPixel;
      // Copies that no store can alias.
      const RowWriter rows[2] = {writers[0], writers[kRows - 1]};
      const std::int32_t* const index = index_;
      const std::int64_t count = count_;
      for (; i + kLanePixels <= count; i += kLanePixels) {
        Prefetch(nextSrc + std::int64_t{index[i]} * kPixel);
        WriteRows<kRows>(rows, Gather(src, index + i), i * kPixel);
      }
    }
    const std::int64_t rest = i;
    for (; i < count_; ++i) StoreAs(writers[0].At(i * kPixel), PixelAt(src, index_[i]));
    if constexpr (kRows == 2) {
      CopyBytes(writers[0].At(rest * kPixel), writers[1].At(rest * kPixel), (i - rest) * kPixel);
    }
  }

 private:
  static ZOV_INLINE Pixel PixelAt(const Zov8u* src, std::int32_t x) {
    return LoadAs<Pixel>(src + std::int64_t{x} * kPixel);
  }
  // A vector of 16 bytes from single pixels.
  static ZOV_INLINE Vec128<Pixel> Gather(const Zov8u* src, const std::int32_t* index) {
    using Lane = Vec128<Pixel>;
    if constexpr (kPixel == 4) {
      return Lane{typename Lane::Native{PixelAt(src, index[0]), PixelAt(src, index[1]),
                                        PixelAt(src, index[2]), PixelAt(src, index[3])}};
    } else {
      return Lane{typename Lane::Native{PixelAt(src, index[0]), PixelAt(src, index[1])}};
    }
  }

#if defined(__AVX2__)
  // Takes the most columns whose sources always lie within one vector.
  void ChooseWindow(int extent) {
    lastWindow_ = extent - 8;
    perWindow_ = lastWindow_ < 0 ? 0 : Fits(8) ? 8 : Fits(4) ? 4 : 0;
  }
  bool Fits(int columns) const {
    for (int i = 0; i + columns <= count_; i += columns) {
      const int base = index_[i] < lastWindow_ ? index_[i] : lastWindow_;
      if (index_[i + columns - 1] - base > 7) return false;
    }
    return true;
  }

  template <int kRows, int kColumns>
  ZOV_INLINE std::int64_t CopyWindows(const Zov8u* src, const RowWriter* writers) const {
    // Copies that no store can alias.
    const RowWriter rows[2] = {writers[0], writers[kRows - 1]};
    const std::int32_t* const index = index_;
    const std::int64_t count = count_;
    const std::int32_t lastWindow = lastWindow_;
    // The permutation looks at the low bits alone, so lanes of the other window do no harm.
    const auto window = [ src, index, lastWindow ](std::int64_t at, __m256i columns)
        __attribute__((always_inline)) {
      const std::int32_t base = index[at] < lastWindow ? index[at] : lastWindow;
      const __m256i lanes = _mm256_sub_epi32(columns, _mm256_set1_epi32(base));
      return _mm256_permutevar8x32_epi32(Load256(src + std::int64_t{base} * 4), lanes);
    };
    std::int64_t i = 0;
    for (; i + 8 <= count; i += 8) {
      const __m256i columns = Load256(index + i);
      __m256i pixels = window(i, columns);
      if constexpr (kColumns == 4) {
        pixels = _mm256_blend_epi32(pixels, window(i + 4, columns), 0xF0);
      }
      using Pixels = VecI<std::int32_t>;
      WriteRows<kRows>(rows, Pixels{(Pixels::Native)pixels}, i * 4);
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
// columns. Columns that lie farther apart are copied one by one. Loads bound these kernels, so
// wider vectors would gain nothing.
class NearestBytes {
  static constexpr int kWindow = 16;
  using Block = Vec128<std::uint8_t>;

 public:
  NearestBytes(WorkArena* arena, const ResizeAxis& axis)
      : count_(axis.count), padded_((axis.count + kWindow - 1) / kWindow * kWindow) {
    if (axis.extent >= kWindow) {
      for (perWindow_ = 16; perWindow_ >= 4; perWindow_ /= 2) {
        if (Build(arena, axis)) return;
      }
    }
    perWindow_ = 1;
    bases_ = arena->Take<std::int32_t>(count_);
    NearestSamples(axis, 0, count_, bases_);
  }

  // Writes kRows equal rows.
  template <int kRows>
  void CopyRow(const Zov8u* src, const Zov8u*, const RowWriter* writers) const {
    switch (perWindow_) {
      case 16:
        return CopyBlocks<kRows, 16>(src, writers);
      case 8:
        return CopyBlocks<kRows, 8>(src, writers);
      case 4:
        return CopyBlocks<kRows, 4>(src, writers);
      default:
        for (int i = 0; i < count_; ++i) *writers[0].At(i) = src[bases_[i]];
        if constexpr (kRows == 2) CopyBytes(writers[0].At(0), writers[1].At(0), count_);
    }
  }

 private:
  // A window of 4 columns has a control of 4 bytes, the others have one of a whole vector that puts
  // zeros where the other window's pixels go.
  static constexpr int ControlBytes(int perWindow) { return perWindow == 4 ? 4 : kWindow; }

  bool Build(WorkArena* arena, const ResizeAxis& axis) {
    WorkArena trial = *arena;
    const int windows = padded_ / perWindow_;
    const int controlBytes = ControlBytes(perWindow_);
    bases_ = trial.Take<std::int32_t>(windows);
    controls_ = trial.Take<Zov8u>(std::int64_t{windows} * controlBytes);
    const int lastBase = axis.extent - kWindow;
    std::int32_t index[kWindow] = {};
    for (int window = 0; window < windows; ++window) {
      const int first = window * perWindow_;
      const int rest = count_ - first;
      const int filled = rest < 0 ? 0 : rest < perWindow_ ? rest : perWindow_;
      NearestSamples(axis, first, filled, index);
      // Padding repeats the last column.
      const int last = filled > 0 ? index[filled - 1] : lastBase;
      for (int i = filled; i < perWindow_; ++i) index[i] = last;
      const int base = index[0] < lastBase ? index[0] : lastBase;
      bases_[window] = base;
      Zov8u* control = controls_ + std::int64_t{window} * controlBytes;
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

  template <int kRows, int kColumns>
  ZOV_INLINE void CopyBlocks(const Zov8u* src, const RowWriter* writers) const {
    const RowWriter rows[2] = {writers[0], writers[kRows - 1]};
    const std::int32_t* bases = bases_;
    const Zov8u* controls = controls_;
    const std::int64_t count = count_;
    std::int64_t i = 0;
    for (; i + kWindow <= count; i += kWindow) {
      WriteRows<kRows>(rows, Gather<kColumns>(src, bases, controls), i);
      bases += kWindow / kColumns;
      controls += kWindow / kColumns * ControlBytes(kColumns);
    }
    if (i == count) return;
    const Block last = Gather<kColumns>(src, bases, controls);
    for (int r = 0; r < kRows; ++r) StoreFirst(last, writers[r].At(i), count - i);
  }

  // The next 16 destination pixels.
  template <int kColumns>
  static ZOV_INLINE Block Gather(const Zov8u* src, const std::int32_t* bases,
                                 const Zov8u* controls) {
    const auto window = [ src, bases ](int k) __attribute__((always_inline)) {
      return _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + bases[k]));
    };
    const auto control = [controls](int k) __attribute__((always_inline)) {
      return _mm_load_si128(reinterpret_cast<const __m128i*>(controls) + k);
    };
    __m128i pixels;
    if constexpr (kColumns == 16) {
      pixels = _mm_shuffle_epi8(window(0), control(0));
    } else if constexpr (kColumns == 8) {
      pixels = _mm_or_si128(_mm_shuffle_epi8(window(0), control(0)),
                            _mm_shuffle_epi8(window(1), control(1)));
    } else {
      const auto four = [&](int k) __attribute__((always_inline)) {
        return _mm_shuffle_epi8(window(k),
                                _mm_cvtsi32_si128(LoadAs<std::int32_t>(controls + 4 * k)));
      };
      pixels = _mm_unpacklo_epi64(_mm_unpacklo_epi32(four(0), four(1)),
                                  _mm_unpacklo_epi32(four(2), four(3)));
    }
    return {(Block::Native)pixels};
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
