// vrksCopy_1u: copies a bit string. Bit offset 0 is the most significant bit
// of a byte; only the low three bits of an offset count.
#include <cstdint>

#include "frame/bytes.h"
#include "frame/check.h"

namespace vrks {
namespace {

inline uint64_t load_be64(const uint8_t* p) {
  uint64_t v;
  __builtin_memcpy(&v, p, 8);
  return __builtin_bswap64(v);
}
inline void store_be64(uint8_t* p, uint64_t v) {
  v = __builtin_bswap64(v);
  __builtin_memcpy(p, &v, 8);
}

// The 8 bits of src starting at bit `shift` (0..7) of src[0]; reads src[1]
// only when the bits reach into it.
inline unsigned byte_at(const uint8_t* src, unsigned shift) {
  if (shift == 0) return src[0];
  return uint8_t(src[0] << shift | src[1] >> (8 - shift));
}

// Up to 8 bits (k of them, 1..8) at bit `shift` of src, in the top of a byte.
inline unsigned bits_at(const uint8_t* src, unsigned shift, unsigned k) {
  unsigned v = unsigned(src[0]) << shift;
  if (shift + k > 8) v |= src[1] >> (8 - shift);
  return uint8_t(v) & uint8_t(0xFF00u >> k);
}

inline void merge(uint8_t* d, unsigned bits, unsigned mask) { *d = uint8_t((*d & ~mask) | (bits & mask)); }

void copy_bits(const uint8_t* src, unsigned so, uint8_t* dst, unsigned dof, size_t n) {
  // Head: fill the first destination byte up to its end.
  if (dof != 0) {
    const unsigned k = unsigned(n < 8 - dof ? n : 8 - dof);
    const unsigned bits = bits_at(src, so, k) >> dof;
    merge(dst, bits, (0xFF00u >> k & 0xFFu) >> dof);
    so += k;
    src += so >> 3;
    so &= 7;
    ++dst;
    n -= k;
  }
  // Body: whole destination bytes, eight at a time where possible.
  size_t whole = n >> 3;
  if (so == 0) {
    copy_bytes(dst, src, whole);
  } else {
    size_t i = 0;
    for (; i + 8 <= whole; i += 8)
      store_be64(dst + i, load_be64(src + i) << so | src[i + 8] >> (8 - so));
    for (; i < whole; ++i) dst[i] = uint8_t(byte_at(src + i, so));
  }
  src += whole;
  dst += whole;
  n &= 7;
  // Tail: the last partial destination byte.
  if (n != 0) merge(dst, bits_at(src, so, unsigned(n)), 0xFF00u >> n & 0xFFu);
}

}  // namespace
}  // namespace vrks

VrkStatus vrksCopy_1u(const Vrk8u* src, int srcBitOffset, Vrk8u* dst, int dstBitOffset, int length) {
  VRKS_CHECK(vrks::check_vector(length, src, dst));
  if (srcBitOffset < 0 || dstBitOffset < 0) return vrkStatusSizeError;
  vrks::copy_bits(src, unsigned(srcBitOffset) & 7, dst, unsigned(dstBitOffset) & 7, size_t(length));
  return vrkStatusOk;
}
