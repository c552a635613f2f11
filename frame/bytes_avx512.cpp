// The byte kernels on 64-byte vectors; built with AVX-512 enabled and called
// only where the processor has it.
#include "frame/bytes_kernels.h"

namespace vrks::avx512 {

void copy_bytes(uint8_t* d, const uint8_t* s, size_t n) { copy<V512>(d, s, n); }
void move_bytes(uint8_t* d, const uint8_t* s, size_t n) { move<V512>(d, s, n); }
void fill_bytes(uint8_t* d, __m256i v, size_t width, size_t n) { fill<V512>(d, v, width, n); }

}  // namespace vrks::avx512
