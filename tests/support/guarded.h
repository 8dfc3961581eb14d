// Buffers that end, or begin, at an inaccessible page: one byte too far faults.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace zov::test {

enum class Guard { after, before };

// Both guards, for loops over them.
inline constexpr Guard kGuards[] = {Guard::after, Guard::before};

// Raw pages with an inaccessible page at both ends of the accessible part.
class GuardedPages {
 public:
  explicit GuardedPages(std::size_t bytes);
  ~GuardedPages();
  GuardedPages(const GuardedPages&) = delete;
  GuardedPages& operator=(const GuardedPages&) = delete;

  std::uint8_t* begin() const { return begin_; }
  std::uint8_t* end() const { return begin_ + bytes_; }
  // Makes the accessible part read-only, or writable again.
  void Protect(bool readOnly) const;

 private:
  std::uint8_t* mapping_;
  std::uint8_t* begin_;
  std::size_t bytes_;
};

// An array of up to `capacity` elements of T in guarded pages. At() places `count` elements against
// the guard, moved away from it by `shift` bytes, so that every alignment can be walked.
template <class T>
class GuardedArray {
 public:
  explicit GuardedArray(std::size_t capacity, std::size_t maxShift = 64)
      : pages_(capacity * sizeof(T) + maxShift) {}

  T* At(std::size_t count, Guard guard, std::size_t shift = 0) const {
    std::uint8_t* const place =
        guard == Guard::after ? pages_.end() - count * sizeof(T) - shift : pages_.begin() + shift;
    return reinterpret_cast<T*>(place);
  }

  // Fills all the pages, to show later that nothing else was written.
  void Fill(std::uint8_t byte) const {
    std::memset(pages_.begin(), byte, static_cast<std::size_t>(pages_.end() - pages_.begin()));
  }

  // True when every byte outside [p, p + count) still holds `byte`.
  bool UntouchedOutside(const T* p, std::size_t count, std::uint8_t byte) const {
    const std::uint8_t* const first = reinterpret_cast<const std::uint8_t*>(p);
    const std::uint8_t* const last = first + count * sizeof(T);
    for (const std::uint8_t* q = pages_.begin(); q != first; ++q) {
      if (*q != byte) return false;
    }
    for (const std::uint8_t* q = last; q != pages_.end(); ++q) {
      if (*q != byte) return false;
    }
    return true;
  }

 private:
  GuardedPages pages_;
};

}  // namespace zov::test
