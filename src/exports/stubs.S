// The entry of each dispatched export: load the level, take that slot of the export's table, jump.
// 18 bytes, no frame, and no argument register is touched.
    .text

#ifdef _WIN32
#define ZOV_FUNCTION(symbol) .def symbol; .scl 2; .type 32; .endef
#define ZOV_END(symbol)
#else
#define ZOV_FUNCTION(symbol) .type symbol, @function
#define ZOV_END(symbol) .size symbol, . - symbol
#endif

#define ZOV_EXPORT(name, ...) \
    .p2align 5; \
    .globl Kelo_##name; \
    ZOV_FUNCTION(Kelo_##name); \
Kelo_##name: \
    movslq zovDispatchIndex(%rip), %rax; \
    leaq zovTable_##name(%rip), %r10; \
    jmp *(%r10,%rax,8); \
    ZOV_END(Kelo_##name);
#define ZOV_PLAIN_EXPORT(name)

#include "exports/exports.inc"

#ifndef _WIN32
    .section .note.GNU-stack, "", @progbits
#endif
