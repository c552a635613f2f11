// Copy, move and fill, written once over a vector policy V (32-byte AVX2 or
// 64-byte AVX-512 registers). Included only by the translation units that
// instantiate them, each built for its instruction set; everything here has
// internal linkage so that the instantiations for different instruction sets
// never mix.
//
// Blocks up to eight vectors are done by a few possibly overlapping unaligned
// loads and stores, all loads first, so they also serve overlapping moves.
// Longer blocks keep their first and last vectors in registers, run an
// aligned loop of four vectors a pass on the destination, and store the kept
// vectors last. Blocks that live in the outer caches go by the processor's
// string moves where those are fast, and blocks larger than the outer cache
// go out with non-temporal stores so that they don't evict the caller's
// working set: from half the cache for a copy, where source and destination
// compete, and from the whole cache for a fill. No road changes the bytes.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include <cstring>
#include <type_traits>

#include "frame/cpu.h"

namespace vrks {
namespace {

struct V256 {
  using T = __m256i;
  static constexpr size_t W = 32;
  static T ld(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const T*>(p)); }
  static void st(uint8_t* p, T v) { _mm256_storeu_si256(reinterpret_cast<T*>(p), v); }
  static void st_aligned(uint8_t* p, T v) { _mm256_store_si256(reinterpret_cast<T*>(p), v); }
  static void st_stream(uint8_t* p, T v) { _mm256_stream_si256(reinterpret_cast<T*>(p), v); }
};

#ifdef __AVX512F__
struct V512 {
  using T = __m512i;
  static constexpr size_t W = 64;
  static T ld(const uint8_t* p) { return _mm512_loadu_si512(p); }
  static void st(uint8_t* p, T v) { _mm512_storeu_si512(p, v); }
  static void st_aligned(uint8_t* p, T v) { _mm512_store_si512(p, v); }
  static void st_stream(uint8_t* p, T v) { _mm512_stream_si512(reinterpret_cast<T*>(p), v); }
};
#endif

#define VRKS_ALWAYS_INLINE inline __attribute__((always_inline))

template <class T>
VRKS_ALWAYS_INLINE void move_pair(uint8_t* d, const uint8_t* s, size_t n) {
  T a, b;
  std::memcpy(&a, s, sizeof a);
  std::memcpy(&b, s + n - sizeof b, sizeof b);
  std::memcpy(d, &a, sizeof a);
  std::memcpy(d + n - sizeof b, &b, sizeof b);
}

// n < 32.
VRKS_ALWAYS_INLINE void move_tiny(uint8_t* d, const uint8_t* s, size_t n) {
  if (n >= 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + n - 16));
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
}

// W <= n <= 8 W, from both ends.
template <class V>
VRKS_ALWAYS_INLINE void move_few(uint8_t* d, const uint8_t* s, size_t n) {
  constexpr size_t W = V::W;
  if (n <= 2 * W) {
    const auto a = V::ld(s), b = V::ld(s + n - W);
    V::st(d, a);
    V::st(d + n - W, b);
  } else if (n <= 4 * W) {
    const auto a = V::ld(s), b = V::ld(s + W), c = V::ld(s + n - 2 * W), e = V::ld(s + n - W);
    V::st(d, a);
    V::st(d + W, b);
    V::st(d + n - 2 * W, c);
    V::st(d + n - W, e);
  } else {
    const auto a0 = V::ld(s), a1 = V::ld(s + W), a2 = V::ld(s + 2 * W), a3 = V::ld(s + 3 * W);
    const auto b0 = V::ld(s + n - 4 * W), b1 = V::ld(s + n - 3 * W), b2 = V::ld(s + n - 2 * W),
               b3 = V::ld(s + n - W);
    V::st(d, a0);
    V::st(d + W, a1);
    V::st(d + 2 * W, a2);
    V::st(d + 3 * W, a3);
    V::st(d + n - 4 * W, b0);
    V::st(d + n - 3 * W, b1);
    V::st(d + n - 2 * W, b2);
    V::st(d + n - W, b3);
  }
}

// n <= 8 W.
template <class V>
VRKS_ALWAYS_INLINE void move_short(uint8_t* d, const uint8_t* s, size_t n) {
  if (n < 32) return move_tiny(d, s, n);
  if constexpr (V::W == 64)
    if (n <= 64) return move_few<V256>(d, s, n);
  move_few<V>(d, s, n);
}

// Four vectors at an aligned address, streaming past the cache or not.
template <class V, bool Stream, class T>
VRKS_ALWAYS_INLINE void store4(uint8_t* p, T a, T b, T c, T d) {
  constexpr size_t W = V::W;
  if constexpr (Stream) {
    V::st_stream(p, a);
    V::st_stream(p + W, b);
    V::st_stream(p + 2 * W, c);
    V::st_stream(p + 3 * W, d);
  } else {
    V::st_aligned(p, a);
    V::st_aligned(p + W, b);
    V::st_aligned(p + 2 * W, c);
    V::st_aligned(p + 3 * W, d);
  }
}

inline size_t stream_copy_from() {
  const int64_t cache = outer_cache_bytes();
  return cache > 0 ? size_t(cache / 2) : size_t(16) << 20;
}
inline size_t stream_fill_from() {
  const int64_t cache = outer_cache_bytes();
  return cache > 0 ? size_t(cache) : size_t(32) << 20;
}

// Going up; safe when dst is below src or apart from it. n >= 4 * W.
template <class V, bool Stream>
VRKS_ALWAYS_INLINE void forward_long(uint8_t* d, const uint8_t* s, size_t n) {
  constexpr size_t W = V::W;
  const auto head = V::ld(s);
  const auto t0 = V::ld(s + n - 4 * W), t1 = V::ld(s + n - 3 * W), t2 = V::ld(s + n - 2 * W),
             t3 = V::ld(s + n - W);
  const size_t skip = W - (reinterpret_cast<uintptr_t>(d) & (W - 1));
  uint8_t* dp = d + skip;
  const uint8_t* sp = s + skip;
  uint8_t* const end = d + n - 4 * W;
  for (; dp < end; dp += 4 * W, sp += 4 * W) {
    if constexpr (Stream) _mm_prefetch(reinterpret_cast<const char*>(sp + 1024), _MM_HINT_NTA);
    store4<V, Stream>(dp, V::ld(sp), V::ld(sp + W), V::ld(sp + 2 * W), V::ld(sp + 3 * W));
  }
  if constexpr (Stream) _mm_sfence();
  V::st(d + n - 4 * W, t0);
  V::st(d + n - 3 * W, t1);
  V::st(d + n - 2 * W, t2);
  V::st(d + n - W, t3);
  V::st(d, head);
}

// Going down; safe when dst is above src. n >= 4 * W.
template <class V>
VRKS_ALWAYS_INLINE void backward_long(uint8_t* d, const uint8_t* s, size_t n) {
  constexpr size_t W = V::W;
  const auto h0 = V::ld(s), h1 = V::ld(s + W), h2 = V::ld(s + 2 * W), h3 = V::ld(s + 3 * W);
  const auto tail = V::ld(s + n - W);
  uint8_t* e = reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(d + n) & ~uintptr_t(W - 1));
  const uint8_t* se = s + (e - d);
  while (e > d + 4 * W) {
    e -= 4 * W;
    se -= 4 * W;
    store4<V, false>(e, V::ld(se), V::ld(se + W), V::ld(se + 2 * W), V::ld(se + 3 * W));
  }
  V::st(d + n - W, tail);
  V::st(d, h0);
  V::st(d + W, h1);
  V::st(d + 2 * W, h2);
  V::st(d + 3 * W, h3);
}

// Blocks up to this size are copied by the vector loop, which beats the
// string instruction while source and destination stay in the first-level
// cache; above it the string instruction wins until streaming pays.
constexpr size_t kStringCopyFrom = size_t(20) << 10;
constexpr size_t kStringFillFrom = size_t(768) << 10;

inline void string_copy(uint8_t* d, const uint8_t* s, size_t n) {
  __asm__ volatile("rep movsb" : "+D"(d), "+S"(s), "+c"(n) : : "memory");
}
inline void string_fill(uint8_t* d, uint8_t value, size_t n) {
  __asm__ volatile("rep stosb" : "+D"(d), "+c"(n) : "a"(value) : "memory");
}

template <class V>
__attribute__((noinline)) void copy_large(uint8_t* d, const uint8_t* s, size_t n) {
  if (n >= (size_t(1) << 20) && n >= stream_copy_from()) return forward_long<V, true>(d, s, n);
  if (cpu_has_fast_strings()) return string_copy(d, s, n);
  forward_long<V, false>(d, s, n);
}

// n bytes from s to d; the arrays must not overlap.
template <class V>
VRKS_ALWAYS_INLINE void copy(uint8_t* d, const uint8_t* s, size_t n) {
  if (n <= 8 * V::W) return move_short<V>(d, s, n);
  if (n > kStringCopyFrom) [[unlikely]]
    return copy_large<V>(d, s, n);
  forward_long<V, false>(d, s, n);
}

// n bytes from s to d, as if s were first copied aside.
template <class V>
VRKS_ALWAYS_INLINE void move(uint8_t* d, const uint8_t* s, size_t n) {
  if (n <= 8 * V::W) return move_short<V>(d, s, n);
  const auto di = reinterpret_cast<uintptr_t>(d), si = reinterpret_cast<uintptr_t>(s);
  if (di == si) return;
  if (di >= si + n || si >= di + n) {
    if (n > kStringCopyFrom) [[unlikely]]
      return copy_large<V>(d, s, n);
    return forward_long<V, false>(d, s, n);
  }
  if (di < si) return forward_long<V, false>(d, s, n);
  backward_long<V>(d, s, n);
}

// The 32-byte pattern register rotated so that its byte 0 is the pattern's
// byte `phase` (width divides 16, so every 16-byte lane holds whole copies).
inline __m256i rotate_pattern(__m256i v, size_t phase) {
  const __m256i iota = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2,
                                        3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const __m256i idx = _mm256_and_si256(_mm256_add_epi8(iota, _mm256_set1_epi8(char(phase))),
                                       _mm256_set1_epi8(15));
  return _mm256_shuffle_epi8(v, idx);
}

// GCC 12 warns about the undefined upper half that its own intrinsics start
// from; every lane is written here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
template <class V>
auto widen(__m256i v) {
  if constexpr (V::W == 32) return v;
#ifdef __AVX512F__
  else return _mm512_shuffle_i64x2(_mm512_zextsi256_si512(v), _mm512_zextsi256_si512(v), 0x44);
#endif
}
#pragma GCC diagnostic pop

// The vector body of a fill: `v` holds the pattern at phase 0; width divides
// 16 and n is a multiple of it, n >= 4 * W. Every unaligned store starts at a
// multiple of width from d; the aligned body uses the pattern at the phase
// where it starts.
template <class V, bool Stream>
VRKS_ALWAYS_INLINE void fill_body(uint8_t* d, __m256i v, size_t width, size_t n) {
  constexpr size_t W = V::W;
  const size_t skip = W - (reinterpret_cast<uintptr_t>(d) & (W - 1));
  const size_t phase = skip & (width - 1);
  const auto head = widen<V>(v);
  const auto body = phase == 0 ? head : widen<V>(rotate_pattern(v, phase));
  V::st(d, head);
  uint8_t* dp = d + skip;
  uint8_t* const end = d + n - 4 * W;
  for (; dp < end; dp += 4 * W) store4<V, Stream>(dp, body, body, body, body);
  if constexpr (Stream) _mm_sfence();
  V::st(d + n - 4 * W, head);
  V::st(d + n - 3 * W, head);
  V::st(d + n - 2 * W, head);
  V::st(d + n - W, head);
}

template <class V>
__attribute__((noinline)) void fill_large(uint8_t* d, __m256i v, size_t width, size_t n) {
  if (n >= (size_t(1) << 20) && n >= stream_fill_from()) return fill_body<V, true>(d, v, width, n);
  if (width == 1 && cpu_has_fast_strings()) return string_fill(d, uint8_t(_mm256_extract_epi8(v, 0)), n);
  fill_body<V, false>(d, v, width, n);
}

// The 32-byte register holding copies of a 1, 2, 4, 8 or 16-byte value.
template <class T>
VRKS_ALWAYS_INLINE __m256i pattern_of(const T& value) {
  constexpr size_t w = sizeof(T);
  static_assert(w == 1 || w == 2 || w == 4 || w == 8 || w == 16);
  if constexpr (w == 16) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(&value)));
  } else {
    using Bits = std::conditional_t<w == 1, uint8_t, std::conditional_t<w == 2, uint16_t,
                 std::conditional_t<w == 4, uint32_t, uint64_t>>>;
    Bits bits;
    std::memcpy(&bits, &value, w);
    if constexpr (w == 1) return _mm256_set1_epi8(char(bits));
    else if constexpr (w == 2) return _mm256_set1_epi16(short(bits));
    else if constexpr (w == 4) return _mm256_set1_epi32(int(bits));
    else return _mm256_set1_epi64x(int64_t(bits));
  }
}

// n < 8 W bytes of the pattern (n a multiple of its width, which divides 16).
// Every store starts at a multiple of the width from d, so the register at
// phase 0 fits it.
template <class V>
VRKS_ALWAYS_INLINE void fill_short(uint8_t* d, __m256i v, size_t n) {
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
  auto fill_few = [&]<class U>(auto x) {
    constexpr size_t W = U::W;
    U::st(d, x);
    U::st(d + n - W, x);
    if (n > 2 * W) {
      U::st(d + W, x);
      U::st(d + n - 2 * W, x);
    }
    if (n > 4 * W) {
      U::st(d + 2 * W, x);
      U::st(d + 3 * W, x);
      U::st(d + n - 3 * W, x);
      U::st(d + n - 4 * W, x);
    }
  };
  if constexpr (V::W == 64)
    if (n >= 64) return fill_few.template operator()<V>(widen<V>(v));
  fill_few.template operator()<V256>(v);
}

// n bytes of the pattern in v (width 1, 2, 4, 8 or 16; n a multiple of it).
template <class V>
VRKS_ALWAYS_INLINE void fill(uint8_t* d, __m256i v, size_t width, size_t n) {
  if (n <= 8 * V::W) return fill_short<V>(d, v, n);
  if (n > kStringFillFrom) [[unlikely]]
    return fill_large<V>(d, v, width, n);
  fill_body<V, false>(d, v, width, n);
}

}  // namespace
}  // namespace vrks
