// Walks an element-wise primitive over lengths, alignments, guard pages and aliasing, against a
// reference that gives one element.
#pragma once

#include <bit>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/guarded.h"
#include "support/levels.h"

namespace zov::test {

// A primitive that makes an array of D from arrays of S. One that works in place reads its last
// source from the destination.
template <class D, class... S>
struct Elementwise {
  std::string name;
  bool inPlace;
  std::function<ZovStatus(int level, const S*..., D*, int)> call;
  std::function<D(S...)> reference;
  std::tuple<std::function<S(std::mt19937&)>...> input;
  // The units in the last place by which a level other than the first may differ.
  int ulps = 0;
};

// Random numbers of either sign over some binades, never zero.
template <class T>
T AnyNumber(std::mt19937& random) {
  if constexpr (std::is_floating_point_v<T>) {
    const double magnitude = std::uniform_real_distribution<double>(0.01, 100.0)(random);
    return static_cast<T>((random() & 1) != 0 ? magnitude : -magnitude);
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(random());
  } else {
    T number;
    number.re = AnyNumber<decltype(number.re)>(random);
    number.im = AnyNumber<decltype(number.im)>(random);
    return number;
  }
}

// The float of the low 32 bits.
inline float FloatOf(std::uint64_t bits) {
  return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
}

// Distance of two finite numbers of one sign in units of the last place.
inline std::int64_t UlpsBetween(float a, float b) {
  const auto x = std::bit_cast<std::int32_t>(a);
  const auto y = std::bit_cast<std::int32_t>(b);
  return x > y ? std::int64_t{x} - y : std::int64_t{y} - x;
}

template <class D, class... S>
class Walk {
 public:
  explicit Walk(const Elementwise<D, S...>& primitive) : primitive_(primitive) {
    std::mt19937 random(20240917);
    std::apply(
        [&](auto&... input) {
          for (std::size_t i = 0; i < kLongest; ++i) {
            const std::tuple<S...> element{input(random)...};
            Append(element, std::index_sequence_for<S...>{});
            expected_.push_back(std::apply(primitive_.reference, element));
          }
        },
        primitive_.input);
  }

  void Lengths(int level) {
    for (std::size_t n = 1; n <= 200; ++n) Shifts(level, n);
    for (const std::size_t n : {255, 256, 257, 511, 514, 1023}) Shifts(level, n);
  }

 private:
  static constexpr std::size_t kLongest = 1023;
  static constexpr std::uint8_t kByte = 0xA7;

  template <std::size_t... k>
  void Append(const std::tuple<S...>& element, std::index_sequence<k...>) {
    (std::get<k>(values_).push_back(std::get<k>(element)), ...);
  }

  // Destinations at every distance from a 32-byte boundary; the sources lie elsewhere.
  void Shifts(int level, std::size_t n) {
    for (std::size_t shift = 0; shift < 36; ++shift) {
      for (const Guard guard : kGuards) {
        Once(level, n, guard, shift, -1, std::index_sequence_for<S...>{});
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
    if (primitive_.inPlace || !((sizeof(S) == sizeof(D)) && ...)) return;
    for (int same = 0; same < static_cast<int>(sizeof...(S)); ++same) {
      Once(level, n, Guard::after, n % 9 * 4, same, std::index_sequence_for<S...>{});
      if (::testing::Test::HasFatalFailure()) return;
    }
  }

  // One call; `same` is the source that the destination equals.
  template <std::size_t... k>
  void Once(int level, std::size_t n, Guard guard, std::size_t shift, int same,
            std::index_sequence<k...>) {
    SCOPED_TRACE("len " + std::to_string(n) + " shift " + std::to_string(shift) +
                 (guard == Guard::after ? " guard after" : " guard before"));
    D* const dst = destination_.At(n, guard, shift);
    auto* const raw = reinterpret_cast<std::uint8_t*>(dst);
    const std::size_t bytes = n * sizeof(D);
    // The bytes beside the destination that lie in its pages.
    const std::size_t before = guard == Guard::after ? 64 : shift;
    const std::size_t after = guard == Guard::after ? shift : 64;
    std::memset(raw - before, kByte, before + bytes + after);
    if (primitive_.inPlace) same = static_cast<int>(sizeof...(S)) - 1;
    const auto place = [&](auto& pages, const auto& values, int index, std::size_t mixed) {
      using T = typename std::decay_t<decltype(values)>::value_type;
      T* const p = same == index ? reinterpret_cast<T*>(dst) : pages.At(n, guard, mixed % 37);
      std::memcpy(static_cast<void*>(p), values.data(), n * sizeof(T));
      return p;
    };
    const ZovStatus status =
        primitive_.call(level,
                        place(std::get<k>(sources_), std::get<k>(values_), static_cast<int>(k),
                              shift * (k + 2) + n * (n % 3))...,
                        dst, static_cast<int>(n));
    ASSERT_EQ(status, zovStsNoErr);
    for (std::size_t i = 0; i < before; ++i)
      ASSERT_EQ(*(raw - before + i), kByte) << "before " << i;
    for (std::size_t i = 0; i < after; ++i) ASSERT_EQ(raw[bytes + i], kByte) << "after " << i;
    if (std::memcmp(raw, expected_.data(), bytes) != 0) Compare(level, n, raw);
  }

  void Compare(int level, std::size_t n, const std::uint8_t* raw) {
    for (std::size_t i = 0; i < n; ++i) {
      D actual;
      std::memcpy(&actual, raw + i * sizeof(D), sizeof(D));
      if (std::memcmp(&actual, &expected_[i], sizeof(D)) == 0) continue;
      if constexpr (std::is_same_v<D, float>) {
        const std::int64_t ulps = UlpsBetween(actual, expected_[i]);
        ASSERT_LE(ulps, level == 0 ? 0 : primitive_.ulps)
            << "element " << i << ": " << actual << ", expected " << expected_[i];
      } else {
        FAIL() << "element " << i << " differs";
      }
    }
  }

  const Elementwise<D, S...>& primitive_;
  std::tuple<std::vector<S>...> values_;
  std::vector<D> expected_;
  std::tuple<GuardedArray<S>...> sources_{((void)sizeof(S), kLongest)...};
  GuardedArray<D> destination_{kLongest, 128};
};

// Null pointers one after another, also beside a bad length, and then the bad lengths.
template <class D, class... S>
void CheckStatuses(const Elementwise<D, S...>& primitive, int level) {
  std::tuple<S...> source{};
  D dst{};
  const int used = static_cast<int>(sizeof...(S)) - (primitive.inPlace ? 1 : 0);
  const auto call = [&](int null, int len) {
    return [&]<std::size_t... k>(std::index_sequence<k...>) {
      return primitive.call(level,
                            (static_cast<int>(k) == null ? nullptr : &std::get<k>(source))...,
                            null == used && null >= 0 ? nullptr : &dst, len);
    }
    (std::index_sequence_for<S...>{});
  };
  for (int null = 0; null <= used; ++null) {
    EXPECT_EQ(call(null, 1), zovStsNullPtrErr) << "pointer " << null;
    EXPECT_EQ(call(null, 0), zovStsNullPtrErr) << "pointer " << null;
  }
  EXPECT_EQ(call(-1, 0), zovStsSizeErr);
  EXPECT_EQ(call(-1, -1), zovStsSizeErr);
  EXPECT_EQ(call(-1, INT32_MIN), zovStsSizeErr);
}

// A primitive as a parameter of a test.
struct Member {
  std::string name;
  std::function<void()> walk, statuses;
};
inline void PrintTo(const Member& member, std::ostream* out) { *out << member.name; }

template <class D, class... S>
Member MemberOf(Elementwise<D, S...> primitive) {
  return {primitive.name,
          [=] {
            Walk<D, S...> walk(primitive);
            ForEachLevel([&](int level) { walk.Lengths(level); });
          },
          [=] { ForEachLevel([&](int level) { CheckStatuses(primitive, level); }); }};
}

}  // namespace zov::test
