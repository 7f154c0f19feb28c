// Function multiversioning: a loop marked TARVIK_SIMD is compiled for the baseline and for wider
// vector units, and the right one is chosen when the library is loaded. Elsewhere it is plain code.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define TARVIK_SIMD __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define TARVIK_SIMD
#endif
