// What the processor offers, for kernels that choose a road at run time.
#pragma once

#include <cstdint>

namespace vrks {

// AVX-512 F, BW, DQ and VL, with the operating system saving the registers.
// Inline and cheap: the features were read once when the process started.
#define VRKS_CPU_HAS_AVX512()                                                      \
  (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&     \
   __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
inline bool cpu_has_avx512() { return VRKS_CPU_HAS_AVX512(); }

// Fast short and enhanced string moves (rep movsb/stosb), which beat vector
// loops on blocks that live in the outer caches.
bool cpu_has_fast_strings();

// Size in bytes of the outermost data cache shared by the calling core, or 0
// when it can't be told. Read once per process.
int64_t outer_cache_bytes();

}  // namespace vrks
