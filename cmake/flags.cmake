# Compiler flags that the library, its tests and its benchmarks share.

add_library(lyrsr_flags INTERFACE)
target_compile_options(lyrsr_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -ffp-contract=off)

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Callers of the 32-bit build may come with a stack aligned to 4 bytes only; the baseline is SSE2 and not the x87 stack.
  target_compile_options(lyrsr_flags INTERFACE -msse2 -mfpmath=sse -mstackrealign)
endif()

if(LYRSR_SANITIZE)
  target_compile_options(lyrsr_flags INTERFACE -fsanitize=${LYRSR_SANITIZE} -fno-omit-frame-pointer
                                               -fno-sanitize-recover=all)
  target_link_options(lyrsr_flags INTERFACE -fsanitize=${LYRSR_SANITIZE})
endif()

if(LYRSR_COVERAGE)
  # Counters of clang's front end: for each condition of the source, whatever is inlined or optimised away behind it.
  target_compile_options(lyrsr_flags INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(lyrsr_flags INTERFACE -fprofile-instr-generate)
endif()

# What only the library's own sources get.
add_library(lyrsr_library_flags INTERFACE)
target_link_libraries(lyrsr_library_flags INTERFACE lyrsr_flags)
target_compile_options(
  lyrsr_library_flags INTERFACE -fvisibility=hidden $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>
                                $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions> $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
                                $<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics> -fno-math-errno)

# The widths that kernels are compiled for, and each one's instruction set.
set(LYRSR_WIDTHS 128)
set(LYRSR_WIDTH_FLAGS_128 "")
set(LYRSR_WIDTH_FLAGS_256 -mavx2 -mfma)
set(LYRSR_WIDTH_FLAGS_512 -mavx2 -mfma -mavx512f -mavx512bw -mavx512dq -mavx512vl -mprefer-vector-width=512)
if(LYRSR_MAX_WIDTH GREATER_EQUAL 256)
  list(APPEND LYRSR_WIDTHS 256)
endif()
if(LYRSR_MAX_WIDTH GREATER_EQUAL 512 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  # With the eight vector registers of the 32-bit instruction set the widest kernels gain nothing.
  list(APPEND LYRSR_WIDTHS 512)
endif()
