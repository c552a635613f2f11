#include "frame/bytes.h"

namespace vrks {

namespace avx512 {
void copy_bytes(uint8_t* d, const uint8_t* s, size_t n);
void move_bytes(uint8_t* d, const uint8_t* s, size_t n);
void fill_bytes(uint8_t* d, __m256i v, size_t width, size_t n);
}  // namespace avx512

void copy_bytes(void* dst, const void* src, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  auto* s = static_cast<const uint8_t*>(src);
  if (cpu_has_avx512()) return avx512::copy_bytes(d, s, n);
  copy<V256>(d, s, n);
}

void move_bytes(void* dst, const void* src, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  auto* s = static_cast<const uint8_t*>(src);
  if (cpu_has_avx512()) return avx512::move_bytes(d, s, n);
  move<V256>(d, s, n);
}

void fill_bytes(void* dst, __m256i v, size_t width, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  if (cpu_has_avx512()) return avx512::fill_bytes(d, v, width, n);
  fill<V256>(d, v, width, n);
}

}  // namespace vrks
