// Byte kernels behind copy, move, fill and clear. Every family that moves or
// fills memory without arithmetic calls these.
#pragma once

#include <cstddef>

namespace vrks {

// n bytes from src to dst; the arrays must not overlap.
void copy_bytes(void* dst, const void* src, size_t n);
// n bytes from src to dst, as if src were first copied aside.
void move_bytes(void* dst, const void* src, size_t n);
// `count` copies of the `width`-byte pattern (width 1, 2, 4, 8 or 16). dst
// needs no alignment at all.
void fill_pattern(void* dst, const void* pattern, size_t width, size_t count);

}  // namespace vrks
