// Vector kernels of the 8- and 16-bit scaled sums, differences and products.
//
// 32 bytes of parts are widened to 32-bit lanes (sign- or zero-extended, or
// as exact 16-bit products), the exact result r is formed there, the road of
// the call is applied to r in 32 bits, and the lanes are saturated and packed
// back in their original order. Every road gives the scale-factor rule's
// result; the scalar tail runs the same rule one part at a time.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/scale.h"

namespace vrks::arith {

enum class IOp { Add, Sub, Mul };

template <class P>
constexpr bool vector_int_part_v = std::is_same_v<P, int16_t> || std::is_same_v<P, uint16_t> ||
                                   std::is_same_v<P, uint8_t> || std::is_same_v<P, int32_t>;

namespace int_detail {

using V = __m256i;

// The road on exact results in 32-bit lanes; the result is then saturated to
// P by `narrow`.
template <ScaleRoad R, class P>
inline V road(V r, int scale, __m128i count, V bias) {
  if constexpr (R == ScaleRoad::Unscaled) {
    return r;
  } else if constexpr (R == ScaleRoad::Half) {
    return _mm256_srai_epi32(_mm256_add_epi32(r, _mm256_and_si256(_mm256_srai_epi32(r, 1), _mm256_set1_epi32(1))), 1);
  } else if constexpr (R == ScaleRoad::Right) {
    const V odd = _mm256_and_si256(_mm256_sra_epi32(r, count), _mm256_set1_epi32(1));
    return _mm256_sra_epi32(_mm256_add_epi32(_mm256_add_epi32(r, bias), odd), count);
  } else if constexpr (R == ScaleRoad::Left) {
    // Saturate first, then shift: the shifted value still fits 32 bits.
    const V lo = _mm256_set1_epi32(int_min<P>()), hi = _mm256_set1_epi32(int_max<P>());
    return _mm256_sll_epi32(_mm256_min_epi32(_mm256_max_epi32(r, lo), hi), count);
  } else {  // sign only
    const V pos = _mm256_and_si256(_mm256_cmpgt_epi32(r, _mm256_setzero_si256()), _mm256_set1_epi32(int_max<P>()));
    const V neg = _mm256_and_si256(_mm256_cmpgt_epi32(_mm256_setzero_si256(), r), _mm256_set1_epi32(int_min<P>()));
    return _mm256_or_si256(pos, neg);
  }
}

// 32-bit lanes saturated to P and packed to 16-bit lanes, in order within
// each 128-bit half (the inverse of the unpacking below).
template <class P>
inline V pack16(V lo, V hi) {
  if constexpr (std::is_same_v<P, int16_t>) {
    return _mm256_packs_epi32(lo, hi);
  } else {
    const V zero = _mm256_setzero_si256(), top = _mm256_set1_epi32(int_max<P>());
    lo = _mm256_min_epi32(_mm256_max_epi32(lo, zero), top);
    hi = _mm256_min_epi32(_mm256_max_epi32(hi, zero), top);
    return std::is_same_v<P, uint16_t> ? _mm256_packus_epi32(lo, hi) : _mm256_packs_epi32(lo, hi);
  }
}

// 16-bit lanes widened to two vectors of 32-bit lanes.
template <bool Signed>
inline void widen16(V x, V& lo, V& hi) {
  const V ext = Signed ? _mm256_srai_epi16(x, 15) : _mm256_setzero_si256();
  lo = _mm256_unpacklo_epi16(x, ext);
  hi = _mm256_unpackhi_epi16(x, ext);
}

// The exact results of 16 pairs of 16-bit parts in 32-bit lanes.
template <IOp O, bool Signed>
inline void exact16(V a, V b, V& lo, V& hi) {
  if constexpr (O == IOp::Mul) {
    static_assert(Signed, "16-bit unsigned products exceed 32 bits");
    const V l = _mm256_mullo_epi16(a, b), h = _mm256_mulhi_epi16(a, b);
    lo = _mm256_unpacklo_epi16(l, h);
    hi = _mm256_unpackhi_epi16(l, h);
  } else if constexpr (Signed) {
    // a + b (or a - b) of interleaved pairs by one multiply-add against
    // (1, 1) (or (1, -1)) into 32-bit lanes.
    const V k = O == IOp::Add ? _mm256_set1_epi32(0x00010001) : _mm256_set1_epi32(int32_t(0xFFFF0001));
    lo = _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), k);
    hi = _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), k);
  } else {
    V al, ah, bl, bh;
    widen16<Signed>(a, al, ah);
    widen16<Signed>(b, bl, bh);
    lo = O == IOp::Add ? _mm256_add_epi32(al, bl) : _mm256_sub_epi32(al, bl);
    hi = O == IOp::Add ? _mm256_add_epi32(ah, bh) : _mm256_sub_epi32(ah, bh);
  }
}

template <IOp O, ScaleRoad R, class P>
inline V kernel16(V a, V b, int scale, __m128i count, V bias) {
  V lo, hi;
  exact16<O, std::is_same_v<P, int16_t>>(a, b, lo, hi);
  return pack16<P>(road<R, P>(lo, scale, count, bias), road<R, P>(hi, scale, count, bias));
}

// The road on exact 8-bit results in 16-bit lanes: sums and differences
// (within -255..510) as signed lanes, products (up to 65025) as unsigned
// ones; the result is saturated to 0..255.
template <IOp O, ScaleRoad R>
inline V road8(V r, __m128i count, V bias) {
  constexpr bool product = O == IOp::Mul;
  const V top = _mm256_set1_epi16(255), zero = _mm256_setzero_si256();
  auto clamp = [&](V x) { return product ? _mm256_min_epu16(x, top) : _mm256_min_epi16(_mm256_max_epi16(x, zero), top); };
  auto shift_right = [&](V x, __m128i c) { return product ? _mm256_srl_epi16(x, c) : _mm256_sra_epi16(x, c); };
  if constexpr (R == ScaleRoad::Unscaled) {
    return clamp(r);
  } else if constexpr (R == ScaleRoad::Half) {
    const V one = _mm256_set1_epi16(1);
    return clamp(shift_right(_mm256_add_epi16(r, _mm256_and_si256(shift_right(r, _mm_cvtsi32_si128(1)), one)),
                             _mm_cvtsi32_si128(1)));
  } else if constexpr (R == ScaleRoad::Right) {
    const V odd = _mm256_and_si256(shift_right(r, count), _mm256_set1_epi16(1));
    return clamp(shift_right(_mm256_add_epi16(_mm256_add_epi16(r, bias), odd), count));
  } else if constexpr (R == ScaleRoad::Left) {
    return clamp(_mm256_sll_epi16(clamp(r), count));
  } else {  // sign only: anything above 0 is the maximum
    const V pos = product ? _mm256_xor_si256(_mm256_cmpeq_epi16(r, zero), _mm256_set1_epi16(-1))
                          : _mm256_cmpgt_epi16(r, zero);
    return _mm256_and_si256(pos, top);
  }
}

// 32 bytes: widened to 16-bit lanes, the exact result formed and the road
// applied there, then packed back in order.
template <IOp O, ScaleRoad R>
inline V kernel8(V a, V b, __m128i count, V bias) {
  const V zero = _mm256_setzero_si256();
  V out[2];
  for (int h = 0; h < 2; ++h) {
    const V x = h ? _mm256_unpackhi_epi8(a, zero) : _mm256_unpacklo_epi8(a, zero);
    const V y = h ? _mm256_unpackhi_epi8(b, zero) : _mm256_unpacklo_epi8(b, zero);
    const V r = O == IOp::Add ? _mm256_add_epi16(x, y) : O == IOp::Sub ? _mm256_sub_epi16(x, y) : _mm256_mullo_epi16(x, y);
    out[h] = road8<O, R>(r, count, bias);
  }
  return _mm256_packus_epi16(out[0], out[1]);
}

// ---- 32-bit parts in 64-bit lanes -------------------------------------------

// Arithmetic shift right of 64-bit lanes (AVX2 has only the logical one).
inline V sra64(V x, __m128i count) {
  const V sign = _mm256_cmpgt_epi64(_mm256_setzero_si256(), x);
  return _mm256_xor_si256(_mm256_srl_epi64(_mm256_xor_si256(x, sign), count), sign);
}
inline V clamp64(V x, int64_t lo, int64_t hi) {
  const V l = _mm256_set1_epi64x(lo), h = _mm256_set1_epi64x(hi);
  x = _mm256_blendv_epi8(x, l, _mm256_cmpgt_epi64(l, x));
  return _mm256_blendv_epi8(x, h, _mm256_cmpgt_epi64(x, h));
}

template <ScaleRoad R>
inline V road64(V r, __m128i count, V bias) {
  if constexpr (R == ScaleRoad::Unscaled) {
    return r;
  } else if constexpr (R == ScaleRoad::Half || R == ScaleRoad::Right) {
    const __m128i c = R == ScaleRoad::Half ? _mm_cvtsi32_si128(1) : count;
    const V odd = _mm256_and_si256(_mm256_srl_epi64(r, c), _mm256_set1_epi64x(1));
    const V b = R == ScaleRoad::Half ? _mm256_setzero_si256() : bias;
    return sra64(_mm256_add_epi64(_mm256_add_epi64(r, b), odd), c);
  } else if constexpr (R == ScaleRoad::Left) {
    return _mm256_sll_epi64(clamp64(r, INT32_MIN, INT32_MAX), count);
  } else {
    const V zero = _mm256_setzero_si256();
    return _mm256_or_si256(_mm256_and_si256(_mm256_cmpgt_epi64(r, zero), _mm256_set1_epi64x(INT32_MAX)),
                           _mm256_and_si256(_mm256_cmpgt_epi64(zero, r), _mm256_set1_epi64x(INT32_MIN)));
  }
}

// 8 parts: widened to two vectors of 64-bit lanes, the exact result (sums up
// to 33 bits, products up to 62), the road, saturation, and back in order.
template <IOp O, ScaleRoad R>
inline V kernel32(V a, V b, __m128i count, V bias) {
  V half[2];
  for (int h = 0; h < 2; ++h) {
    const V x = _mm256_cvtepi32_epi64(h ? _mm256_extracti128_si256(a, 1) : _mm256_castsi256_si128(a));
    const V y = _mm256_cvtepi32_epi64(h ? _mm256_extracti128_si256(b, 1) : _mm256_castsi256_si128(b));
    const V r = O == IOp::Add ? _mm256_add_epi64(x, y) : O == IOp::Sub ? _mm256_sub_epi64(x, y) : _mm256_mul_epi32(x, y);
    half[h] = _mm256_permutevar8x32_epi32(clamp64(road64<R>(r, count, bias), INT32_MIN, INT32_MAX),
                                          _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6));
  }
  return _mm256_permute2x128_si256(half[0], half[1], 0x20);
}

}  // namespace int_detail

// d[i] = rule(x[i] (op) y[i]) over n parts of type P on road R; y is an
// array of parts, or (when `pattern` is set) a 32-byte register of the
// constant repeated, with `rev` putting the constant on the left.
template <IOp O, ScaleRoad R, class P, class Scalar>
void int_parts(const P* x, const P* y, __m256i pattern, bool rev, P* d, size_t n, int scale,
               Scalar&& scalar) {
  using namespace int_detail;
  const __m128i count = _mm_cvtsi32_si128(scale > 0 ? scale : -scale);
  const int64_t b = scale > 1 && scale < 63 ? (int64_t(1) << (scale - 1)) - 1 : 0;
  const V bias = sizeof(P) == 1 ? _mm256_set1_epi16(short(b))
               : sizeof(P) == 2 ? _mm256_set1_epi32(int32_t(b)) : _mm256_set1_epi64x(b);
  constexpr size_t N = 32 / sizeof(P);
  size_t i = 0;
  // 8-bit products rounded at scales 9 to 16 would overflow 16-bit lanes:
  // those take the scalar road.
  if (sizeof(P) == 1 && O == IOp::Mul && R == ScaleRoad::Right && scale > 8) {
    for (; i < n; ++i) d[i] = scalar(i);
    return;
  }
  auto step = [&](size_t at) {
    const V a = _mm256_loadu_si256(reinterpret_cast<const V*>(x + at));
    V c = y ? _mm256_loadu_si256(reinterpret_cast<const V*>(y + at)) : pattern;
    V l = a;
    if (rev) std::swap(l, c);
    V r;
    if constexpr (sizeof(P) == 1) r = kernel8<O, R>(l, c, count, bias);
    else if constexpr (sizeof(P) == 4) r = kernel32<O, R>(l, c, count, bias);
    else r = kernel16<O, R, P>(l, c, scale, count, bias);
    _mm256_storeu_si256(reinterpret_cast<V*>(d + at), r);
  };
  for (; i + N <= n; i += N) step(i);
  for (; i < n; ++i) d[i] = scalar(i);
}

}  // namespace vrks::arith
