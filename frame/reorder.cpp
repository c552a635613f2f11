// Reversal of element order (Flip) and of byte order within elements
// (SwapBytes). Both are written once over the element size.
#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <utility>

#include "frame/check.h"

namespace vrks {
namespace {

using V = __m256i;
inline V ld(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const V*>(p)); }
inline void st(uint8_t* p, V v) { _mm256_storeu_si256(reinterpret_cast<V*>(p), v); }

// ---- Flip -------------------------------------------------------------------

// The 32-byte vector with its N-byte elements in reverse order.
template <int N>
inline V reverse_elements(V v) {
  if constexpr (N == 1) {
    const V m = _mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12,
                                 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, m), 0x4E);
  } else if constexpr (N == 2) {
    const V m = _mm256_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1, 14, 15, 12, 13,
                                 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
    return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, m), 0x4E);
  } else if constexpr (N == 4) {
    return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0));
  } else if constexpr (N == 8) {
    return _mm256_permute4x64_epi64(v, 0x1B);
  } else {
    static_assert(N == 16);
    return _mm256_permute4x64_epi64(v, 0x4E);
  }
}

template <int N>
void flip(const uint8_t* s, uint8_t* d, size_t count) {
  const size_t n = count * N;
  size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    V a = ld(s + n - i - 32), b = ld(s + n - i - 64);
    st(d + i, reverse_elements<N>(a));
    st(d + i + 32, reverse_elements<N>(b));
  }
  for (; i + 32 <= n; i += 32) st(d + i, reverse_elements<N>(ld(s + n - i - 32)));
  for (; i < n; i += N) std::memcpy(d + i, s + n - i - N, N);
}

template <int N>
void flip_in_place(uint8_t* p, size_t count) {
  size_t lo = 0, hi = count * N;
  for (; hi - lo >= 64; lo += 32, hi -= 32) {
    V a = ld(p + lo), b = ld(p + hi - 32);
    st(p + lo, reverse_elements<N>(b));
    st(p + hi - 32, reverse_elements<N>(a));
  }
  if (hi - lo < 2 * N) return;
  uint8_t x[N], y[N];
  for (size_t i = lo, j = hi - N; i < j; i += N, j -= N) {
    std::memcpy(x, p + i, N);
    std::memcpy(y, p + j, N);
    std::memcpy(p + i, y, N);
    std::memcpy(p + j, x, N);
  }
}

template <class T>
VrkStatus flip_export(const T* src, T* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  flip<sizeof(T)>(reinterpret_cast<const uint8_t*>(src), reinterpret_cast<uint8_t*>(dst), size_t(length));
  return vrkStatusOk;
}

template <class T>
VrkStatus flip_in_place_export(T* srcDst, int length) {
  VRKS_CHECK(check_vector(length, srcDst));
  flip_in_place<sizeof(T)>(reinterpret_cast<uint8_t*>(srcDst), size_t(length));
  return vrkStatusOk;
}

// ---- SwapBytes --------------------------------------------------------------

template <int N>
inline void swap_one(const uint8_t* s, uint8_t* d) {
  uint8_t e[N];
  for (int k = 0; k < N; ++k) e[k] = s[N - 1 - k];
  std::memcpy(d, e, N);
}

// Works in place too: each pass loads before it stores what it loaded.
template <int N>
void swap_bytes(const uint8_t* s, uint8_t* d, size_t count) {
  const size_t n = count * N;
  size_t i = 0;
  if constexpr (N == 3) {
    // Five whole elements in each 16-byte half; byte 15 of a half passes
    // through unchanged and is rewritten by the next store.
    const V m = _mm256_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15, 2, 1, 0, 5, 4,
                                 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
    for (; i + 31 <= n; i += 30) {
      const V v = _mm256_shuffle_epi8(
          _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(s + i + 15),
                              reinterpret_cast<const __m128i*>(s + i)),
          m);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm256_castsi256_si128(v));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 15), _mm256_extracti128_si256(v, 1));
    }
  } else {
    V m;
    if constexpr (N == 2)
      m = _mm256_setr_epi8(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14, 1, 0, 3, 2, 5, 4, 7, 6,
                           9, 8, 11, 10, 13, 12, 15, 14);
    else if constexpr (N == 4)
      m = _mm256_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12, 3, 2, 1, 0, 7, 6, 5, 4,
                           11, 10, 9, 8, 15, 14, 13, 12);
    else
      m = _mm256_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0,
                           15, 14, 13, 12, 11, 10, 9, 8);
    for (; i + 64 <= n; i += 64) {
      V a = ld(s + i), b = ld(s + i + 32);
      st(d + i, _mm256_shuffle_epi8(a, m));
      st(d + i + 32, _mm256_shuffle_epi8(b, m));
    }
    for (; i + 32 <= n; i += 32) st(d + i, _mm256_shuffle_epi8(ld(s + i), m));
  }
  for (; i < n; i += N) swap_one<N>(s + i, d + i);
}

template <int N, class T>
VrkStatus swap_export(const T* src, T* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  swap_bytes<N>(reinterpret_cast<const uint8_t*>(src), reinterpret_cast<uint8_t*>(dst), size_t(length));
  return vrkStatusOk;
}

template <int N, class T>
VrkStatus swap_in_place_export(T* srcDst, int length) {
  VRKS_CHECK(check_vector(length, srcDst));
  auto* p = reinterpret_cast<uint8_t*>(srcDst);
  swap_bytes<N>(p, p, size_t(length));
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks

#define VRKS_FLIP(code)                                                               \
  VrkStatus vrksFlip_##code(const Vrk##code* src, Vrk##code* dst, int length) {       \
    return vrks::flip_export(src, dst, length);                                       \
  }                                                                                   \
  VrkStatus vrksFlip_##code##_I(Vrk##code* srcDst, int length) {                      \
    return vrks::flip_in_place_export(srcDst, length);                                \
  }
VRKS_FLIP(8u)
VRKS_FLIP(16u)
VRKS_FLIP(32f)
VRKS_FLIP(32fc)
VRKS_FLIP(64f)
VRKS_FLIP(64fc)

#define VRKS_SWAP(code, bytes, T)                                                      \
  VrkStatus vrksSwapBytes_##code(const T* src, T* dst, int length) {                   \
    return vrks::swap_export<bytes>(src, dst, length);                                 \
  }                                                                                    \
  VrkStatus vrksSwapBytes_##code##_I(T* srcDst, int length) {                          \
    return vrks::swap_in_place_export<bytes>(srcDst, length);                          \
  }
VRKS_SWAP(16u, 2, Vrk16u)
VRKS_SWAP(24u, 3, Vrk8u)
VRKS_SWAP(32u, 4, Vrk32u)
VRKS_SWAP(64u, 8, Vrk64u)
