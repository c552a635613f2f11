// The long roads on 64-byte vectors; built with AVX-512 enabled and called
// only where the processor has it.
#include "frame/bytes_long.h"

namespace vrks::avx512 {

void copy_long(uint8_t* d, const uint8_t* s, size_t n) {
  if (n < 4 * V512::W) return forward_long<V256, false>(d, s, n);
  copy_long_with<V512>(d, s, n);
}

void move_long(uint8_t* d, const uint8_t* s, size_t n) {
  if (n < 4 * V512::W) return move_long_with<V256>(d, s, n);
  move_long_with<V512>(d, s, n);
}

void fill_long(uint8_t* d, __m256i v, size_t width, size_t n) {
  if (n < 4 * V512::W) return fill_long_with<V256>(d, v, width, n);
  fill_long_with<V512>(d, v, width, n);
}

}  // namespace vrks::avx512
