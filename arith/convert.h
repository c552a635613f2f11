// The engine of the conversion family.
//
// A conversion is written once as the result of one element (a callable
// `D operator()(S) const`, the definition used by the scalar loops and the
// tails). The hot pairs add a vector step, `vec(const S*)`, that gives the
// next N results as one 32-byte vector of D (packed 24-bit results: `step`,
// which writes eight samples). map() runs the vector step over the body and
// the definition over the rest; both roads give the same bytes, which the
// tests prove against independent references. Long runs store past the
// cache, so that a conversion of a large block doesn't evict the caller's
// working set.
#pragma once

#include <immintrin.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "frame/check.h"
#include "frame/cpu.h"
#include "frame/rounding.h"
#include "frame/scale.h"
#include "frame/types.h"

namespace vrks::conv {

// ---- 24-bit samples --------------------------------------------------------

// One packed 24-bit sample, least significant byte first. Arrays of it step
// three bytes an element.
struct P24 {
  uint8_t b[3];
};
static_assert(sizeof(P24) == 3 && alignof(P24) == 1);

inline int32_t read24s(P24 p) { return int32_t(uint32_t(p.b[0]) << 8 | uint32_t(p.b[1]) << 16 | uint32_t(p.b[2]) << 24) >> 8; }
inline uint32_t read24u(P24 p) { return uint32_t(p.b[0]) | uint32_t(p.b[1]) << 8 | uint32_t(p.b[2]) << 16; }
inline P24 write24(uint32_t v) { return P24{{uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16)}}; }

inline constexpr int32_t kMin24s = -8388608, kMax24s = 8388607;
inline constexpr uint32_t kMax24u = 16777215;

// ---- vector steps ------------------------------------------------------------

using V = __m256i;
using VF = __m256;
using VD = __m256d;

inline V load(const void* p) { return _mm256_loadu_si256(static_cast<const V*>(p)); }
inline void store(void* p, V v) { _mm256_storeu_si256(static_cast<V*>(p), v); }

// Eight elements of S widened to eight 32-bit lanes (24-bit samples: see
// load24 for the bytes it reads).
template <class S>
inline V int_lanes(const S* p) {
  if constexpr (std::is_same_v<S, int8_t>) return _mm256_cvtepi8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  else if constexpr (std::is_same_v<S, uint8_t>) return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  else if constexpr (std::is_same_v<S, int16_t>) return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  else if constexpr (std::is_same_v<S, uint16_t>) return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  else return load(p);
}

// Eight packed 24-bit samples, sign- or zero-extended. Reads 28 bytes: four
// past the eighth sample, so kSlack24 more elements must follow.
inline constexpr size_t kSlack24 = 2;
template <bool Signed>
inline V load24(const P24* p) {
  const auto* b = reinterpret_cast<const uint8_t*>(p);
  const V v = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(b + 12), reinterpret_cast<const __m128i*>(b));
  const V spread = _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11,
                                    -1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11);
  const V w = _mm256_shuffle_epi8(v, spread);
  return Signed ? _mm256_srai_epi32(w, 8) : _mm256_srli_epi32(w, 8);
}

// The low three bytes of eight lanes as eight packed samples. Writes 28
// bytes: the four past the eighth sample are junk that the next step or the
// scalar tail overwrites.
inline void store24(P24* p, V v) {
  const V squeeze = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,
                                     0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  const V w = _mm256_shuffle_epi8(v, squeeze);
  auto* b = reinterpret_cast<uint8_t*>(p);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(b), _mm256_castsi256_si128(w));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(b + 12), _mm256_extracti128_si256(w, 1));
}

// Thirty-two samples, the low three bytes of the lanes of a, b, c and d, as
// three aligned 32-byte stores past the cache (p on a 32-byte boundary).
inline void stream24(P24* p, V a, V b, V c, V d) {
  const V squeeze = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,
                                     0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  // After the squeeze, the six 32-bit words of a group's 24 bytes lie in
  // places 0, 1, 2, 4, 5, 6.
  const auto at = [&](V v, int i0, int i1, int i2, int i3, int i4, int i5, int i6, int i7) {
    return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(v, squeeze), _mm256_setr_epi32(i0, i1, i2, i3, i4, i5, i6, i7));
  };
  auto* q = reinterpret_cast<V*>(p);
  _mm256_stream_si256(q, _mm256_blend_epi32(at(a, 0, 1, 2, 4, 5, 6, 0, 0), at(b, 0, 0, 0, 0, 0, 0, 0, 1), 0xC0));
  _mm256_stream_si256(q + 1, _mm256_blend_epi32(at(b, 2, 4, 5, 6, 0, 0, 0, 0), at(c, 0, 0, 0, 0, 0, 1, 2, 4), 0xF0));
  _mm256_stream_si256(q + 2, _mm256_blend_epi32(at(c, 5, 6, 0, 0, 0, 0, 0, 0), at(d, 0, 0, 0, 1, 2, 4, 5, 6), 0xFC));
}

// Packs 32-bit lanes with the processor's saturation: a pair into one vector
// of 16-bit elements, four into one vector of 8-bit elements, in order.
template <class D>
inline V pack2(V a, V b) {
  const V p = std::is_signed_v<D> ? _mm256_packs_epi32(a, b) : _mm256_packus_epi32(a, b);
  return _mm256_permute4x64_epi64(p, 0xD8);
}
template <class D>
inline V pack4(V a, V b, V c, V d) {
  const V ab = _mm256_packs_epi32(a, b), cd = _mm256_packs_epi32(c, d);
  const V p = std::is_signed_v<D> ? _mm256_packs_epi16(ab, cd) : _mm256_packus_epi16(ab, cd);
  return _mm256_permutevar8x32_epi32(p, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

// ---- the loop ------------------------------------------------------------------

template <class Op, class S>
concept Vectorised = requires(const Op& op, const S* s) { op.vec(s); };

// Traffic (bytes read plus bytes written) from which stores bypass the
// cache: the outer cache, but no more than 16 MiB, beyond which a block
// outgrows one core's share of any current outer cache.
inline size_t stream_from() {
  constexpr size_t kMost = size_t(16) << 20;
  const int64_t cache = outer_cache_bytes();
  return cache > 0 && size_t(cache) < kMost ? size_t(cache) : kMost;
}

// Ops with packed 24-bit results give eight results at a time as the low
// three bytes of eight 32-bit lanes: `lanes24(s)`.
template <class Op, class S>
concept Packed24 = requires(const Op& op, const S* s) { op.lanes24(s); };

// Elements past a vector step that it reads (an op's kSlack; 0 if it has
// none).
template <class Op>
constexpr size_t slack_of() {
  if constexpr (requires { Op::kSlack; }) return Op::kSlack;
  else return 0;
}

// One element at any address, even one not aligned to its size.
template <class S, class D, class Op>
inline void one(const S* src, D* dst, const Op& op) {
  S x;
  std::memcpy(&x, src, sizeof x);
  const D y = op(x);
  std::memcpy(dst, &y, sizeof y);
}

// dst[i] = op(src[i]) for i in [0, n).
template <class S, class D, class Op>
void map(const S* src, D* dst, size_t n, const Op& op) {
  size_t i = 0;
  if constexpr (Packed24<Op, S>) {
    if (n * (sizeof(S) + 3) >= stream_from()) {
      for (; reinterpret_cast<uintptr_t>(dst + i) % 32 != 0 && i < n; ++i) one(src + i, dst + i, op);
      for (; i + 32 <= n; i += 32) {
        const S* s = src + i;
        stream24(dst + i, op.lanes24(s), op.lanes24(s + 8), op.lanes24(s + 16), op.lanes24(s + 24));
      }
      _mm_sfence();
    }
    for (; i + 8 + kSlack24 <= n; i += 8) store24(dst + i, op.lanes24(src + i));
  } else if constexpr (Vectorised<Op, S>) {
    constexpr size_t N = 32 / sizeof(D), K = slack_of<Op>();
    const auto at = [&](size_t k) { return reinterpret_cast<uintptr_t>(dst + k); };
    if (n * (sizeof(S) + sizeof(D)) >= stream_from() && at(0) % sizeof(D) == 0) {
      const auto stream = [&](size_t k, V v) { _mm256_stream_si256(reinterpret_cast<V*>(dst + k), v); };
      for (; at(i) % 32 != 0 && i < n; ++i) one(src + i, dst + i, op);
      for (; i + 2 * N + K <= n; i += 2 * N) {
        const V a = op.vec(src + i), b = op.vec(src + i + N);
        stream(i, a);
        stream(i + N, b);
      }
      for (; i + N + K <= n; i += N) stream(i, op.vec(src + i));
      _mm_sfence();
    } else {
      for (; i + 2 * N + K <= n; i += 2 * N) {
        const V a = op.vec(src + i), b = op.vec(src + i + N);
        store(dst + i, a);
        store(dst + i + N, b);
      }
      for (; i + N + K <= n; i += N) store(dst + i, op.vec(src + i));
    }
  }
  for (; i < n; ++i) one(src + i, dst + i, op);
}

// ---- scale multipliers -----------------------------------------------------------

// 2^-scale as |scale| multiplications of 1 by 0.5 or by 2 in R with
// subnormals kept: exact while representable in R, 0 below its least
// subnormal, infinity beyond its largest finite value; given in F, which
// holds every such value of R exactly. Built from the bits, so that no
// floating operation runs before the kernel has set its environment.
template <class R, class F = R>
inline F pow2_repeated(int scale) {
  using U = std::conditional_t<std::is_same_v<F, float>, uint32_t, uint64_t>;
  constexpr int least = kBias<R> - 1 + kMantissa<R>;  // 2^-least is R's least subnormal
  if (scale > least) return F(0);
  if (scale < -kBias<R>) return std::numeric_limits<F>::infinity();
  if (scale < kBias<F>) return pow2_field<F>(scale);
  const U bits = U(1) << (least - scale);  // a subnormal of F (then F is R)
  F m;
  std::memcpy(&m, &bits, sizeof m);
  return m;
}

inline int clamp(int v, int lo, int hi) { return v < lo ? lo : v > hi ? hi : v; }

// ---- entries ------------------------------------------------------------------------

// Whether a kernel does floating arithmetic that could round, meet subnormal
// values or raise an exception; such kernels run under the IEEE default
// environment, so that their results never depend on the caller's.
enum class Env { Exact, Ieee };

template <Env E, class S, class D, class Op>
void run(const S* src, D* dst, size_t n, const Op& op) {
  if constexpr (E == Env::Ieee) {
    IeeeDefaultGuard guard;
    map(src, dst, n, op);
  } else {
    map(src, dst, n, op);
  }
}

// The entry of a conversion of shape (src, dst, length).
template <Env E, class S, class D, class Op>
VrkStatus convert(const S* src, D* dst, int length, const Op& op) {
  VRKS_CHECK(check_vector(length, src, dst));
  run<E>(src, dst, size_t(length), op);
  return vrkStatusOk;
}

// ---- float to integer ---------------------------------------------------------------

// The result of a NaN per target: the upper bound for the signed and 8u
// targets, 0 for 16u. The 32s target of a float source takes it from the
// NaN's sign; that of a double source is the upper bound.
template <class D, class F>
inline D nan_result(F y) {
  if constexpr (std::is_same_v<D, uint16_t>) return 0;
  else if constexpr (std::is_same_v<D, int32_t> && std::is_same_v<F, float>) return std::signbit(y) ? INT32_MIN : INT32_MAX;
  else if constexpr (std::is_same_v<D, int64_t>) return INT64_MIN;
  else return int_max<D>();
}

// y rounded by mode M and saturated to D; NaN as nan_result.
template <class D, Rounding M, class F>
inline D float_to_int(F y) {
  if (y != y) return nan_result<D>(y);
  return round_to<D, M>(y);
}

// y = x * m (no multiply when unscaled), rounded by M and saturated to D.
// The vector step clamps the upper side in floating point first, where a NaN
// takes the bound (16u: the lower side, and a NaN gives 0); the lower side
// comes from the saturating pack of the integer-indefinite value. The 32s
// target gives 2147483647 for every y whose bits, read as a signed integer,
// lie above 0x4EFFFFFF: 2^31 and beyond, and NaN with the sign bit clear.
template <class D, Rounding M, bool Scaled>
struct FloatToInt {
  float m = 1;
  D operator()(float x) const { return float_to_int<D, M>(Scaled ? x * m : x); }
  V lanes(const float* p) const {
    VF y = _mm256_loadu_ps(p);
    if constexpr (Scaled) y = _mm256_mul_ps(y, _mm256_set1_ps(m));
    if constexpr (std::is_same_v<D, int32_t>) {
      const V above = _mm256_cmpgt_epi32(_mm256_castps_si256(y), _mm256_set1_epi32(0x4EFFFFFF));
      return _mm256_or_si256(_mm256_andnot_si256(above, round_lanes<M>(y)), _mm256_srli_epi32(above, 1));
    } else if constexpr (std::is_same_v<D, uint16_t>) {
      y = _mm256_min_ps(_mm256_max_ps(y, _mm256_setzero_ps()), _mm256_set1_ps(65535.0f));
    } else {
      y = _mm256_min_ps(y, _mm256_set1_ps(float(int_max<D>())));
    }
    return round_lanes<M>(y);
  }
  V vec(const float* p) const {
    if constexpr (sizeof(D) == 4) return lanes(p);
    else if constexpr (sizeof(D) == 2) return pack2<D>(lanes(p), lanes(p + 8));
    else return pack4<D>(lanes(p), lanes(p + 8), lanes(p + 16), lanes(p + 24));
  }
};

}  // namespace vrks::conv
