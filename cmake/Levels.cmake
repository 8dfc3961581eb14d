# The instruction-set levels and the means to compile one source once for each of them.

set(KELOZOV_LEVELS sse2 sse3 ssse3 ssse3_movbe sse4 avx avx2)

# The instructions that each level may use, and nothing above them.
set(KELOZOV_FLAGS_sse2 -msse2)
set(KELOZOV_FLAGS_sse3 -msse3)
set(KELOZOV_FLAGS_ssse3 -mssse3)
set(KELOZOV_FLAGS_ssse3_movbe -mssse3 -mmovbe)
set(KELOZOV_FLAGS_sse4 -msse4.1)
set(KELOZOV_FLAGS_avx -mavx)
set(KELOZOV_FLAGS_avx2 -mavx2 -mfma -mbmi -mbmi2)

# Flags of everything that ends up in the library.
add_library(kelozov_flags INTERFACE)
target_compile_features(kelozov_flags INTERFACE cxx_std_20)
target_compile_definitions(kelozov_flags INTERFACE KELOZOV_BUILDING)
target_compile_options(kelozov_flags INTERFACE
  -march=x86-64 -mtune=generic -ffp-contract=off -fno-math-errno -fno-trapping-math
  -fvisibility=hidden -fno-semantic-interposition
  $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden -fno-exceptions -fno-rtti
    -fno-threadsafe-statics>
  -Wall -Wextra -Wshadow -Wconversion -Wundef -Wcast-align
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wmissing-declarations>
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:Clang>>:-Wmissing-prototypes>
  -Werror)
if(WIN32)
  # GCC does not align the Windows stack for 32-byte vectors, so no move may demand alignment.
  target_compile_options(kelozov_flags INTERFACE -Wa,-muse-unaligned-vector-move)
endif()
target_include_directories(kelozov_flags INTERFACE
  ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
if(KELOZOV_SANITIZE)
  # Accesses are checked by calls, not in line, and the checks of pointers that the address sanitizer
  # makes anyway are left out: the long straight-line kernels then take a tenth of the time to compile.
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    set(checks_by_call -mllvm -asan-instrumentation-with-call-threshold=0)
  else()
    set(checks_by_call --param asan-instrumentation-with-call-threshold=0)
  endif()
  target_compile_options(kelozov_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize=alignment,null,object-size,pointer-overflow
    -fno-sanitize-recover=all -fno-omit-frame-pointer ${checks_by_call})
  target_link_options(kelozov_flags INTERFACE -fsanitize=address,undefined)
endif()

# kelozov_level_sources(<file>...): sources compiled at every level.
# A level without a routine of its own (ssse3_movbe) takes only those marked OWN_AT_MOVBE.
function(kelozov_level_sources)
  cmake_parse_arguments(PARSE_ARGV 0 arg "OWN_AT_MOVBE" "" "")
  list(TRANSFORM arg_UNPARSED_ARGUMENTS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  foreach(level IN LISTS KELOZOV_LEVELS)
    if(NOT level STREQUAL "ssse3_movbe" OR arg_OWN_AT_MOVBE)
      target_sources(kelozov_level_${level} PRIVATE ${arg_UNPARSED_ARGUMENTS})
    endif()
  endforeach()
endfunction()

# kelozov_common_sources(<file>...): sources compiled once, at the baseline.
function(kelozov_common_sources)
  list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  target_sources(kelozov_common PRIVATE ${ARGN})
endfunction()

add_library(kelozov_common OBJECT)
target_link_libraries(kelozov_common PRIVATE kelozov_flags)
set_target_properties(kelozov_common PROPERTIES POSITION_INDEPENDENT_CODE ON)

set(number 0)
foreach(level IN LISTS KELOZOV_LEVELS)
  add_library(kelozov_level_${level} OBJECT)
  target_compile_definitions(kelozov_level_${level} PRIVATE ZOV_LEVEL=${number})
  # Fill and copy loops stay what they are: no call of the C library stands in for them. Nor does
  # the compiler vectorise a loop by itself, as it would count on arrays aligned to their elements.
  # A function starts on a cache line, as a short loop takes up to twice the time where it happens to
  # straddle two: without that, each change of one routine moves the speed of all that follow. For
  # the same reason loops start on half lines, and no jump crosses one: a large family of processors
  # decodes such a jump anew each time (Zero_64f of 256 bytes: 1.2 times as fast).
  # -fno-ipa-ra: GCC keeps vectors in registers across calls of local functions that leave them
  # alone, and then returns without the vzeroupper that the caller's SSE code needs to run fast.
  target_compile_options(kelozov_level_${level} PRIVATE
    ${KELOZOV_FLAGS_${level}} -falign-functions=64 -falign-loops=32
    $<IF:$<CXX_COMPILER_ID:Clang>,-mbranches-within-32B-boundaries,-Wa$<COMMA>-mbranches-within-32B-boundaries>
    $<$<CXX_COMPILER_ID:GNU>:-fno-tree-loop-distribute-patterns -fno-tree-loop-vectorize -fno-ipa-ra>
    $<$<CXX_COMPILER_ID:Clang>:-fno-builtin-memset$<SEMICOLON>-fno-builtin-memcpy>)
  target_link_libraries(kelozov_level_${level} PRIVATE kelozov_flags)
  # Half of the time of a small source.
  target_precompile_headers(kelozov_level_${level} PRIVATE <immintrin.h>)
  set_target_properties(kelozov_level_${level} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  math(EXPR number "${number} + 1")
endforeach()
