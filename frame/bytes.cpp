// Copy, move and fill with 32-byte vectors.
//
// Short blocks (up to 256 bytes) are done by a few possibly overlapping
// unaligned loads and stores, all loads first, so they also serve overlapping
// moves. Longer blocks keep the first and last vectors in registers, run an
// aligned 128-byte loop on the destination, and store the kept vectors last.
// Blocks too large for the outer cache go out with non-temporal stores so
// that they don't evict the caller's working set.
#include "frame/bytes.h"

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "frame/cpu.h"

namespace vrks {
namespace {

using V = __m256i;
using H = __m128i;

#define VRKS_INLINE inline __attribute__((always_inline))

VRKS_INLINE V ld(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const V*>(p)); }
VRKS_INLINE void st(uint8_t* p, V v) { _mm256_storeu_si256(reinterpret_cast<V*>(p), v); }
VRKS_INLINE void st_aligned(uint8_t* p, V v) { _mm256_store_si256(reinterpret_cast<V*>(p), v); }
VRKS_INLINE void st_stream(uint8_t* p, V v) { _mm256_stream_si256(reinterpret_cast<V*>(p), v); }
VRKS_INLINE H ld16(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const H*>(p)); }
VRKS_INLINE void st16(uint8_t* p, H v) { _mm_storeu_si128(reinterpret_cast<H*>(p), v); }

template <class T>
VRKS_INLINE void move_pair(uint8_t* d, const uint8_t* s, size_t n) {
  T a, b;
  std::memcpy(&a, s, sizeof a);
  std::memcpy(&b, s + n - sizeof b, sizeof b);
  std::memcpy(d, &a, sizeof a);
  std::memcpy(d + n - sizeof b, &b, sizeof b);
}

// n <= 256; every load happens before the first store.
VRKS_INLINE void move_short(uint8_t* d, const uint8_t* s, size_t n) {
  if (n <= 32) {
    if (n >= 16) {
      H a = ld16(s), b = ld16(s + n - 16);
      st16(d, a);
      st16(d + n - 16, b);
    } else if (n >= 8) {
      move_pair<uint64_t>(d, s, n);
    } else if (n >= 4) {
      move_pair<uint32_t>(d, s, n);
    } else if (n >= 2) {
      move_pair<uint16_t>(d, s, n);
    } else if (n == 1) {
      *d = *s;
    }
    return;
  }
  if (n <= 64) {
    V a = ld(s), b = ld(s + n - 32);
    st(d, a);
    st(d + n - 32, b);
    return;
  }
  if (n <= 128) {
    V a = ld(s), b = ld(s + 32), c = ld(s + n - 64), e = ld(s + n - 32);
    st(d, a);
    st(d + 32, b);
    st(d + n - 64, c);
    st(d + n - 32, e);
    return;
  }
  V a0 = ld(s), a1 = ld(s + 32), a2 = ld(s + 64), a3 = ld(s + 96);
  V b0 = ld(s + n - 128), b1 = ld(s + n - 96), b2 = ld(s + n - 64), b3 = ld(s + n - 32);
  st(d, a0);
  st(d + 32, a1);
  st(d + 64, a2);
  st(d + 96, a3);
  st(d + n - 128, b0);
  st(d + n - 96, b1);
  st(d + n - 64, b2);
  st(d + n - 32, b3);
}

// n > 256, going up; safe when dst is below src or apart from it.
template <bool Stream>
void forward_long(uint8_t* d, const uint8_t* s, size_t n) {
  const V head = ld(s);
  const V t0 = ld(s + n - 128), t1 = ld(s + n - 96), t2 = ld(s + n - 64), t3 = ld(s + n - 32);
  const size_t skip = 32 - (reinterpret_cast<uintptr_t>(d) & 31);
  uint8_t* dp = d + skip;
  const uint8_t* sp = s + skip;
  uint8_t* const end = d + n - 128;
  while (dp < end) {
    if constexpr (Stream) _mm_prefetch(reinterpret_cast<const char*>(sp + 1024), _MM_HINT_NTA);
    V x0 = ld(sp), x1 = ld(sp + 32), x2 = ld(sp + 64), x3 = ld(sp + 96);
    if constexpr (Stream) {
      st_stream(dp, x0);
      st_stream(dp + 32, x1);
      st_stream(dp + 64, x2);
      st_stream(dp + 96, x3);
    } else {
      st_aligned(dp, x0);
      st_aligned(dp + 32, x1);
      st_aligned(dp + 64, x2);
      st_aligned(dp + 96, x3);
    }
    dp += 128;
    sp += 128;
  }
  if constexpr (Stream) _mm_sfence();
  st(d + n - 128, t0);
  st(d + n - 96, t1);
  st(d + n - 64, t2);
  st(d + n - 32, t3);
  st(d, head);
}

// n > 256, going down; safe when dst is above src.
void backward_long(uint8_t* d, const uint8_t* s, size_t n) {
  const V h0 = ld(s), h1 = ld(s + 32), h2 = ld(s + 64), h3 = ld(s + 96);
  const V tail = ld(s + n - 32);
  uint8_t* e = reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(d + n) & ~uintptr_t(31));
  const uint8_t* se = s + (e - d);
  while (e > d + 128) {
    e -= 128;
    se -= 128;
    V x0 = ld(se), x1 = ld(se + 32), x2 = ld(se + 64), x3 = ld(se + 96);
    st_aligned(e, x0);
    st_aligned(e + 32, x1);
    st_aligned(e + 64, x2);
    st_aligned(e + 96, x3);
  }
  st(d + n - 32, tail);
  st(d, h0);
  st(d + 32, h1);
  st(d + 64, h2);
  st(d + 96, h3);
}

// From this many bytes a copy streams past the cache: half the outer cache,
// since source and destination both compete for it.
size_t stream_copy_from() {
  const int64_t cache = outer_cache_bytes();
  return cache > 0 ? size_t(cache / 2) : size_t(16) << 20;
}
size_t stream_fill_from() {
  const int64_t cache = outer_cache_bytes();
  return cache > 0 ? size_t(cache) : size_t(32) << 20;
}

}  // namespace

void copy_bytes(void* dst, const void* src, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  auto* s = static_cast<const uint8_t*>(src);
  if (n <= 256) return move_short(d, s, n);
  if (n >= (size_t(1) << 20) && n >= stream_copy_from()) return forward_long<true>(d, s, n);
  forward_long<false>(d, s, n);
}

void move_bytes(void* dst, const void* src, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  auto* s = static_cast<const uint8_t*>(src);
  if (n <= 256) return move_short(d, s, n);
  if (d == s) return;
  if (d < s || d >= s + n) return forward_long<false>(d, s, n);
  backward_long(d, s, n);
}

void fill_pattern(void* dst, const void* pattern, size_t width, size_t count) {
  auto* d = static_cast<uint8_t*>(dst);
  const size_t n = width * count;
  alignas(32) uint8_t rep[64];
  for (size_t i = 0; i < sizeof rep; i += width) std::memcpy(rep + i, pattern, width);
  // Every store below starts at a multiple of `width` from dst, so the
  // pattern register of phase 0 fits it; n is a multiple of width too.
  if (n < 32) {
    if (n >= 16) {
      H v = ld16(rep);
      st16(d, v);
      st16(d + n - 16, v);
    } else if (n >= 8) {
      move_pair<uint64_t>(d, rep, n);
    } else if (n >= 4) {
      move_pair<uint32_t>(d, rep, n);
    } else if (n >= 2) {
      move_pair<uint16_t>(d, rep, n);
    } else if (n == 1) {
      *d = rep[0];
    }
    return;
  }
  const V v = ld(rep);
  if (n <= 128) {
    st(d, v);
    st(d + n - 32, v);
    if (n > 64) {
      st(d + 32, v);
      st(d + n - 64, v);
    }
    return;
  }
  // The aligned body starts `skip` bytes in, where the pattern stands at
  // phase skip mod width.
  const size_t skip = 32 - (reinterpret_cast<uintptr_t>(d) & 31);
  const V body = ld(rep + skip % width);
  st(d, v);
  uint8_t* dp = d + skip;
  uint8_t* const end = d + n - 128;
  if (n >= stream_fill_from()) {
    for (; dp < end; dp += 128) {
      st_stream(dp, body);
      st_stream(dp + 32, body);
      st_stream(dp + 64, body);
      st_stream(dp + 96, body);
    }
    _mm_sfence();
  } else {
    for (; dp < end; dp += 128) {
      st_aligned(dp, body);
      st_aligned(dp + 32, body);
      st_aligned(dp + 64, body);
      st_aligned(dp + 96, body);
    }
  }
  st(d + n - 128, v);
  st(d + n - 96, v);
  st(d + n - 64, v);
  st(d + n - 32, v);
}

}  // namespace vrks
