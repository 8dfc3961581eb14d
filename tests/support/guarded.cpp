#include "support/guarded.h"

#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace zov::test {

namespace {

constexpr std::size_t kPage = 4096;

#ifdef _WIN32
std::uint8_t* Map(std::size_t bytes) {
  return static_cast<std::uint8_t*>(
      VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS));
}
void SetAccess(std::uint8_t* p, std::size_t bytes, bool readOnly) {
  DWORD old;
  VirtualProtect(p, bytes, readOnly ? PAGE_READONLY : PAGE_READWRITE, &old);
}
void Unmap(std::uint8_t* p, std::size_t) { VirtualFree(p, 0, MEM_RELEASE); }
#else
std::uint8_t* Map(std::size_t bytes) {
  void* const p = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return p == MAP_FAILED ? nullptr : static_cast<std::uint8_t*>(p);
}
void SetAccess(std::uint8_t* p, std::size_t bytes, bool readOnly) {
  mprotect(p, bytes, readOnly ? PROT_READ : PROT_READ | PROT_WRITE);
}
void Unmap(std::uint8_t* p, std::size_t bytes) { munmap(p, bytes); }
#endif

}  // namespace

GuardedPages::GuardedPages(std::size_t bytes) : bytes_((bytes + kPage - 1) / kPage * kPage) {
  mapping_ = Map(bytes_ + 2 * kPage);
  if (mapping_ == nullptr) std::abort();
  begin_ = mapping_ + kPage;
  SetAccess(begin_, bytes_, false);
}

GuardedPages::~GuardedPages() { Unmap(mapping_, bytes_ + 2 * kPage); }

void GuardedPages::Protect(bool readOnly) const { SetAccess(begin_, bytes_, readOnly); }

}  // namespace zov::test
