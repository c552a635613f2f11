// What the processor offers, for kernels that choose a road at run time.
#pragma once

#include <cstdint>

namespace vrks {

// AVX-512 F, BW, DQ and VL, with the operating system saving the registers.
bool cpu_has_avx512();

// Size in bytes of the outermost data cache shared by the calling core, or 0
// when it can't be told. Read once per process.
int64_t outer_cache_bytes();

}  // namespace vrks
