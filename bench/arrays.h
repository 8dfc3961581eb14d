// Sizes of arrays and what is in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "kelozov/kelozov.h"

namespace zov::bench {

inline std::vector<std::size_t> Sizes(std::size_t least, std::size_t most, std::size_t step) {
  std::vector<std::size_t> sizes;
  for (std::size_t bytes = least; bytes <= most; bytes *= step) sizes.push_back(bytes);
  return sizes;
}

// What the elements are made of. In place, an operation meets its own results again and again: with
// units of either sign products stay what they are.
enum class Data { positive, units };

// A small generator of our own, so that every run has the same data.
class Random {
 public:
  std::uint32_t Next() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>(state_ >> 33);
  }

 private:
  std::uint64_t state_ = 1;
};

template <class T>
T Element(Random& random, Data data) {
  if constexpr (std::is_same_v<T, Zov32fc> || std::is_same_v<T, Zov64fc>) {
    using Part = decltype(T::re);
    return {Element<Part>(random, data), Element<Part>(random, data)};
  } else if constexpr (std::is_same_v<T, Zov16sc>) {
    return {Element<Zov16s>(random, data), Element<Zov16s>(random, data)};
  } else if constexpr (std::is_floating_point_v<T>) {
    if (data == Data::units) return random.Next() % 2 ? T(1) : T(-1);
    return T(1) + static_cast<T>(random.Next() % 0x10000) / T(0x10000);
  } else {
    return static_cast<T>(random.Next());
  }
}

template <class T>
void FillRandom(T* p, std::size_t count, Data data = Data::positive) {
  Random random;
  for (std::size_t i = 0; i < count; ++i) p[i] = Element<T>(random, data);
}

}  // namespace zov::bench
