// The long roads of copy, move and fill, written once over a vector policy V
// (32-byte AVX2 or 64-byte AVX-512 registers). Included only by the
// translation units that instantiate them, each built for its instruction
// set; everything here has internal linkage so the copies never mix.
//
// A long block keeps its first and last vectors in registers, runs an aligned
// loop of four vectors a pass on the destination, and stores the kept vectors
// last. Blocks too large for the outer cache go out with non-temporal stores
// so that they don't evict the caller's working set: from half the cache for
// a copy, where source and destination compete, and from the whole cache for
// a fill.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

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

// Four vectors at an aligned address, streaming past the cache or not.
template <class V, bool Stream, class T>
inline __attribute__((always_inline)) void store4(uint8_t* p, T a, T b, T c, T d) {
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
inline __attribute__((always_inline)) void forward_long(uint8_t* d, const uint8_t* s, size_t n) {
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
inline __attribute__((always_inline)) void backward_long(uint8_t* d, const uint8_t* s, size_t n) {
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
constexpr size_t kStringCopyFrom = size_t(32) << 10;
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

// Apart arrays.
template <class V>
void copy_long_with(uint8_t* d, const uint8_t* s, size_t n) {
  if (n > kStringCopyFrom) [[unlikely]]
    return copy_large<V>(d, s, n);
  forward_long<V, false>(d, s, n);
}

template <class V>
void move_long_with(uint8_t* d, const uint8_t* s, size_t n) {
  const auto di = reinterpret_cast<uintptr_t>(d), si = reinterpret_cast<uintptr_t>(s);
  if (di == si) return;
  if (di >= si + n || si >= di + n) {
    if (n > kStringCopyFrom && cpu_has_fast_strings()) return string_copy(d, s, n);
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

template <class V>
auto widen(__m256i v) {
  if constexpr (V::W == 32) return v;
#ifdef __AVX512F__
  else return _mm512_broadcast_i64x4(v);
#endif
}

// The vector body of a fill: `v` holds the pattern at phase 0; width divides
// 16 and n is a multiple of it, n >= 4 * W. Every unaligned store starts at a
// multiple of width from d; the aligned body uses the pattern at the phase
// where it starts.
template <class V, bool Stream>
inline __attribute__((always_inline)) void fill_body(uint8_t* d, __m256i v, size_t width, size_t n) {
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

template <class V>
inline __attribute__((always_inline)) void fill_long_with(uint8_t* d, __m256i v, size_t width, size_t n) {
  if (n > kStringFillFrom) [[unlikely]]
    return fill_large<V>(d, v, width, n);
  fill_body<V, false>(d, v, width, n);
}

}  // namespace
}  // namespace vrks
