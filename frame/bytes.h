// Byte kernels behind copy, move, fill and clear. Every family that moves or
// fills memory without arithmetic calls these.
//
// Short blocks (up to 256 bytes) are done inline by a few possibly
// overlapping unaligned loads and stores, all loads first, so they also serve
// overlapping moves. Longer blocks go to the out-of-line kernels in bytes.cpp.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/bytes_long.h"

namespace vrks {

void copy_long(uint8_t* d, const uint8_t* s, size_t n);  // n > 256, apart
void move_long(uint8_t* d, const uint8_t* s, size_t n);  // n > 256
// n > 128: `v` holds the pattern (width 1, 2, 4, 8 or 16) from its phase 0.
void fill_long(uint8_t* d, __m256i v, size_t width, size_t n);

namespace bytes_detail {

#define VRKS_INLINE inline __attribute__((always_inline))

template <class T>
VRKS_INLINE void move_pair(uint8_t* d, const uint8_t* s, size_t n) {
  T a, b;
  std::memcpy(&a, s, sizeof a);
  std::memcpy(&b, s + n - sizeof b, sizeof b);
  std::memcpy(d, &a, sizeof a);
  std::memcpy(d + n - sizeof b, &b, sizeof b);
}

VRKS_INLINE __m256i ld(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
VRKS_INLINE void st(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// n <= 256; every load happens before the first store.
VRKS_INLINE void move_short(uint8_t* d, const uint8_t* s, size_t n) {
  if (n <= 32) {
    if (n >= 16) {
      __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
      __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + n - 16));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), a);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + n - 16), b);
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
    __m256i a = ld(s), b = ld(s + n - 32);
    st(d, a);
    st(d + n - 32, b);
    return;
  }
  if (n <= 128) {
    __m256i a = ld(s), b = ld(s + 32), c = ld(s + n - 64), e = ld(s + n - 32);
    st(d, a);
    st(d + 32, b);
    st(d + n - 64, c);
    st(d + n - 32, e);
    return;
  }
  __m256i a0 = ld(s), a1 = ld(s + 32), a2 = ld(s + 64), a3 = ld(s + 96);
  __m256i b0 = ld(s + n - 128), b1 = ld(s + n - 96), b2 = ld(s + n - 64), b3 = ld(s + n - 32);
  st(d, a0);
  st(d + 32, a1);
  st(d + 64, a2);
  st(d + 96, a3);
  st(d + n - 128, b0);
  st(d + n - 96, b1);
  st(d + n - 64, b2);
  st(d + n - 32, b3);
}

}  // namespace bytes_detail

// Blocks up to this size run inline on 32-byte vectors; beyond it the
// out-of-line roads pay for their call with wider vectors and string moves.
constexpr size_t kInlineBytes = 2048;

// n bytes from src to dst; the arrays must not overlap.
VRKS_INLINE void copy_bytes(void* dst, const void* src, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  auto* s = static_cast<const uint8_t*>(src);
  if (n <= 256) return bytes_detail::move_short(d, s, n);
  if (n <= kInlineBytes) return forward_long<V256, false>(d, s, n);
  copy_long(d, s, n);
}

// n bytes from src to dst, as if src were first copied aside.
VRKS_INLINE void move_bytes(void* dst, const void* src, size_t n) {
  auto* d = static_cast<uint8_t*>(dst);
  auto* s = static_cast<const uint8_t*>(src);
  if (n <= 256) return bytes_detail::move_short(d, s, n);
  if (n <= kInlineBytes) {
    const auto di = reinterpret_cast<uintptr_t>(d), si = reinterpret_cast<uintptr_t>(s);
    if (di <= si || di >= si + n) return forward_long<V256, false>(d, s, n);
    return backward_long<V256>(d, s, n);
  }
  move_long(d, s, n);
}

// `count` copies of the pattern T (1, 2, 4, 8 or 16 bytes); dst needs no
// alignment at all. Every store starts at a multiple of sizeof(T) from dst,
// so the pattern at phase 0 fits it.
template <class T>
VRKS_INLINE void fill(void* dst, const T& value, size_t count) {
  using namespace bytes_detail;
  constexpr size_t w = sizeof(T);
  static_assert(w == 1 || w == 2 || w == 4 || w == 8 || w == 16);
  auto* d = static_cast<uint8_t*>(dst);
  const size_t n = count * w;
  __m256i v;
  if constexpr (w == 16) {
    v = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(&value)));
  } else {
    using Bits = std::conditional_t<w == 1, uint8_t, std::conditional_t<w == 2, uint16_t,
                 std::conditional_t<w == 4, uint32_t, uint64_t>>>;
    Bits bits;
    std::memcpy(&bits, &value, w);
    if constexpr (w == 1) v = _mm256_set1_epi8(char(bits));
    else if constexpr (w == 2) v = _mm256_set1_epi16(short(bits));
    else if constexpr (w == 4) v = _mm256_set1_epi32(int(bits));
    else v = _mm256_set1_epi64x(int64_t(bits));
  }
  if (n < 32) {
    const __m128i h = _mm256_castsi256_si128(v);
    if (n >= 16) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), h);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + n - 16), h);
      return;
    }
    const uint64_t q = uint64_t(_mm_cvtsi128_si64(h));
    if (n >= 8) {
      std::memcpy(d, &q, 8);
      std::memcpy(d + n - 8, &q, 8);
    } else if (n >= 4) {
      std::memcpy(d, &q, 4);
      std::memcpy(d + n - 4, &q, 4);
    } else if (n >= 2) {
      std::memcpy(d, &q, 2);
      std::memcpy(d + n - 2, &q, 2);
    } else if (n == 1) {
      *d = uint8_t(q);
    }
    return;
  }
  if (n <= 256) {
    st(d, v);
    st(d + n - 32, v);
    if (n > 64) {
      st(d + 32, v);
      st(d + n - 64, v);
    }
    if (n > 128) {
      st(d + 64, v);
      st(d + 96, v);
      st(d + n - 96, v);
      st(d + n - 128, v);
    }
    return;
  }
  if (n <= kInlineBytes) return fill_long_with<V256>(d, v, w, n);
  fill_long(d, v, w, n);
}

}  // namespace vrks
