// The processor's string move and string store. Both run upwards. The move leaves the direction
// flag as the caller had it; restoring all flags at once would be slow. The store, which serves
// short arrays too, relies on the calling convention, by which the flag is clear.
#pragma once

#include <cstdint>

#include "core/level.h"
#include "kelozov/kelozov.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// The stack pointer steps over the red zone while the flags lie on the stack.
#define ZOV_WITH_DIRECTION_CLEAR(instruction) \
  "leaq -128(%%rsp), %%rsp\n\t"               \
  "pushfq\n\t"                                \
  "popq %[flags]\n\t"                         \
  "leaq 128(%%rsp), %%rsp\n\t"                \
  "cld\n\t" instruction                       \
  "\n\t"                                      \
  "testl $0x400, %k[flags]\n\t"               \
  "jz 1f\n\t"                                 \
  "std\n"                                     \
  "1:"

#define ZOV_STRING_MOVE(instruction)                 \
  asm volatile(ZOV_WITH_DIRECTION_CLEAR(instruction) \
               : "+S"(src), "+D"(dst), "+c"(count), [flags] "=&r"(flags)::"memory", "cc")

// Moves `count` units of T and advances both pointers past them.
template <class T>
ZOV_INLINE void StringMove(const Zov8u*& src, Zov8u*& dst, std::int64_t count) {
  std::uint64_t flags;
  if constexpr (sizeof(T) == 8) {
    ZOV_STRING_MOVE("rep movsq");
  } else if constexpr (sizeof(T) == 4) {
    ZOV_STRING_MOVE("rep movsl");
  } else if constexpr (sizeof(T) == 2) {
    ZOV_STRING_MOVE("rep movsw");
  } else {
    ZOV_STRING_MOVE("rep movsb");
  }
}

// Stores `count` times 8 bytes.
ZOV_INLINE void StringStore(Zov8u* dst, std::uint64_t bits, std::uint64_t count) {
  asm volatile("rep stosq" : "+D"(dst), "+c"(count) : "a"(bits) : "memory");
}

#undef ZOV_STRING_MOVE
#undef ZOV_WITH_DIRECTION_CLEAR

}  // namespace zov::ZOV_LEVEL_NAMESPACE
