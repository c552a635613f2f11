// Byte copy, move and fill for every family that moves or fills memory
// without arithmetic. Each call takes the processor's best road (64-byte
// vectors where AVX-512 exists); the bytes written are the same on all.
#pragma once

#include <cstddef>

#include "frame/bytes_kernels.h"

namespace vrks {

// n bytes from src to dst; the arrays must not overlap.
void copy_bytes(void* dst, const void* src, size_t n);
// n bytes from src to dst, as if src were first copied aside.
void move_bytes(void* dst, const void* src, size_t n);
// n bytes of the pattern in `pattern` (width 1, 2, 4, 8 or 16 bytes; n a
// multiple of it); dst needs no alignment at all.
void fill_bytes(void* dst, __m256i pattern, size_t width, size_t n);

namespace {
// `count` copies of value.
template <class T>
inline void fill(void* dst, const T& value, size_t count) {
  fill_bytes(dst, pattern_of(value), sizeof(T), count * sizeof(T));
}
}  // namespace

}  // namespace vrks
