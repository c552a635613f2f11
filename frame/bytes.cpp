// The long roads on 32-byte vectors, and the choice of the 64-byte road on
// processors that have it (the bytes written are the same on both).
#include "frame/bytes.h"

#include "frame/bytes_long.h"

namespace vrks {

namespace avx512 {
void copy_long(uint8_t* d, const uint8_t* s, size_t n);
void move_long(uint8_t* d, const uint8_t* s, size_t n);
void fill_long(uint8_t* d, __m256i v, size_t width, size_t n);
}  // namespace avx512

void copy_long(uint8_t* d, const uint8_t* s, size_t n) {
  if (cpu_has_avx512()) return avx512::copy_long(d, s, n);
  copy_long_with<V256>(d, s, n);
}

void move_long(uint8_t* d, const uint8_t* s, size_t n) {
  if (cpu_has_avx512()) return avx512::move_long(d, s, n);
  move_long_with<V256>(d, s, n);
}

void fill_long(uint8_t* d, __m256i v, size_t width, size_t n) {
  if (cpu_has_avx512()) return avx512::fill_long(d, v, width, n);
  fill_long_with<V256>(d, v, width, n);
}

}  // namespace vrks
