// Half-precision conversions (IEEE 754 binary16: sign, 5 exponent bits with
// bias 15, 10 fraction bits). Each is defined on the bits in integers; the
// vector steps use the processor's conversions where those give the same
// codes, under the IEEE default environment, so that the caller's
// flush-to-zero and denormals-are-zero settings can't reach them.
//
// To half, from the magnitude a of a float (its bits with the sign cleared):
//   to nearest: a is rebased by 2^-112 into t, which for half-subnormal
//     results is first rounded to nearest even on the float-subnormal grid
//     (2^-149) and then again, by the bits, to the half grid; the second
//     rounding adds 0x0FFF plus bit 13 and drops 13 bits. This double
//     rounding differs from a single IEEE rounding for some magnitudes in
//     [2^-26, 2^-14): 2^-25 * (1 + 2^-23) gives 0, not the least subnormal.
//     A magnitude of 65520 or more gives infinity (0x7C00).
//   toward zero: truncation; a finite overflow gives 65504 (0x7BFF) and an
//     infinity stays infinite.
//   NaN gives 0x7FFF; the sign of the source is put back in every case.
#include "arith/convert.h"

namespace vrks::conv {
namespace {

constexpr uint32_t kInf32 = 0x7F800000, kHalfNormal32 = 0x38800000;  // 2^-14 as float bits
constexpr uint32_t kRebase = 0x38000000;                               // 112 << 23
constexpr uint32_t kOverflow32 = 0x47800000;                           // 65536 as float bits

inline uint32_t bits_of(float x) {
  uint32_t b;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

// The half code of the magnitude a (float bits, sign cleared).
template <bool Nearest>
constexpr uint32_t half_of(uint32_t a) {
  if (a > kInf32) return 0x7FFF;
  const uint32_t e = a >> 23, m = (a & 0x7FFFFF) | 0x800000;
  if constexpr (Nearest) {
    if (a >= kOverflow32) return 0x7C00;
    uint32_t t = a - kRebase;
    if (a < kHalfNormal32) {  // t lies on the float-subnormal grid: round there first
      const uint32_t s = 113 - e < 31 ? 113 - e : 31;
      t = (m + ((1u << (s - 1)) - 1) + ((m >> s) & 1)) >> s;
    }
    return (t + 0x0FFF + ((t >> 13) & 1)) >> 13;
  } else {
    if (a == kInf32) return 0x7C00;
    if (a >= kOverflow32) return 0x7BFF;
    if (a >= kHalfNormal32) return (a - kRebase) >> 13;
    const uint32_t s = 126 - e;
    return s < 32 ? m >> s : 0;
  }
}

template <bool Nearest>
constexpr uint16_t half_from_bits(uint32_t x) {
  return uint16_t(half_of<Nearest>(x & 0x7FFFFFFF) | ((x >> 16) & 0x8000));
}

// The same on eight lanes of float bits. The half-subnormal results take the
// variable shifts, so they are computed only when a lane needs them: below
// half the least half subnormal (to nearest) or below it (toward zero) the
// result is 0.
template <bool Nearest>
inline V half_lanes(V x) {
  const auto k = [](uint32_t c) { return _mm256_set1_epi32(int(c)); };
  const auto above = [](V v, uint32_t c) { return _mm256_cmpgt_epi32(v, _mm256_set1_epi32(int(c))); };
  const auto round_bits = [&](V t) {  // to nearest even at bit 13, or truncated
    if constexpr (!Nearest) return _mm256_srli_epi32(t, 13);
    const V odd = _mm256_and_si256(_mm256_srli_epi32(t, 13), k(1));
    return _mm256_srli_epi32(_mm256_add_epi32(_mm256_add_epi32(t, k(0x0FFF)), odd), 13);
  };
  const V a = _mm256_and_si256(x, k(0x7FFFFFFF));
  const V normal = above(a, kHalfNormal32 - 1);
  const V low = _mm256_andnot_si256(normal, above(a, Nearest ? 0x33000000 : 0x337FFFFF));
  V r = _mm256_and_si256(round_bits(_mm256_sub_epi32(a, k(kRebase))), normal);
  if (!_mm256_testz_si256(low, low)) {
    const V e = _mm256_srli_epi32(a, 23);
    const V m = _mm256_or_si256(_mm256_and_si256(a, k(0x7FFFFF)), k(0x800000));
    const V s = _mm256_min_epu32(_mm256_sub_epi32(k(113), e), k(31));  // the float-subnormal shift
    V t;
    if constexpr (Nearest) {
      const V bias = _mm256_sub_epi32(_mm256_sllv_epi32(k(1), _mm256_sub_epi32(s, k(1))), k(1));
      const V odd = _mm256_and_si256(_mm256_srlv_epi32(m, s), k(1));
      t = _mm256_srlv_epi32(_mm256_add_epi32(_mm256_add_epi32(m, bias), odd), s);
    } else {
      t = _mm256_srlv_epi32(m, s);
    }
    r = _mm256_blendv_epi8(r, round_bits(t), low);
  }
  if constexpr (Nearest) {
    r = _mm256_blendv_epi8(r, k(0x7C00), above(a, kOverflow32 - 1));
  } else {
    r = _mm256_blendv_epi8(r, k(0x7BFF), above(a, kOverflow32 - 1));
    r = _mm256_blendv_epi8(r, k(0x7C00), _mm256_cmpeq_epi32(a, k(kInf32)));
  }
  r = _mm256_blendv_epi8(r, k(0x7FFF), above(a, kInf32));
  return _mm256_or_si256(r, _mm256_and_si256(_mm256_srli_epi32(x, 16), k(0x8000)));
}

// Float or 16s to half. 16s goes through its exact float value. The vector
// step takes the processor's conversion, which gives the same codes but for
// NaN and, to nearest, the half-subnormal results above half the least
// subnormal: sixteen lanes that hold one of those take half_lanes.
template <class S, bool Nearest>
struct ToHalf {
  static constexpr int kMode = (Nearest ? _MM_FROUND_TO_NEAREST_INT : _MM_FROUND_TO_ZERO) | _MM_FROUND_NO_EXC;
  uint16_t operator()(S x) const { return half_from_bits<Nearest>(bits_of(float(x))); }
  static V above(V v, uint32_t c) { return _mm256_cmpgt_epi32(v, _mm256_set1_epi32(int(c))); }
  // Lanes that the processor's conversion would get wrong.
  static V special(V x) {
    const V a = _mm256_and_si256(x, _mm256_set1_epi32(0x7FFFFFFF));
    const V nan = above(a, kInf32);
    if constexpr (!Nearest) return nan;
    else return _mm256_or_si256(nan, _mm256_andnot_si256(above(a, kHalfNormal32 - 1), above(a, 0x33000000)));
  }
  static __m128i narrow(V r) { return _mm_packus_epi32(_mm256_castsi256_si128(r), _mm256_extracti128_si256(r, 1)); }
  V vec(const S* p) const {
    if constexpr (std::is_same_v<S, float>) {
      const V x0 = load(p), x1 = load(p + 8);
      const V any = _mm256_or_si256(special(x0), special(x1));
      if (!_mm256_testz_si256(any, any)) [[unlikely]]
        return _mm256_set_m128i(narrow(half_lanes<Nearest>(x1)), narrow(half_lanes<Nearest>(x0)));
      return _mm256_set_m128i(_mm256_cvtps_ph(_mm256_castsi256_ps(x1), kMode),
                              _mm256_cvtps_ph(_mm256_castsi256_ps(x0), kMode));
    } else {  // integers: never NaN, never below the half-normal range but 0
      const auto eight = [](const S* q) { return _mm256_cvtps_ph(_mm256_cvtepi32_ps(int_lanes(q)), kMode); };
      return _mm256_set_m128i(eight(p + 8), eight(p));
    }
  }
};

// Half to float, exact: normal codes are rebased by 2^112 in the exponent,
// subnormal ones are their fraction times 2^-24, exponent 31 becomes 255
// with the fraction carried along (a signalling NaN stays signalling). The
// vector step takes the processor's conversion and, where a lane is NaN,
// puts back the quiet bit, which the processor sets.
struct HalfToFloat {
  float operator()(uint16_t h) const {
    const uint32_t w = h & 0x7FFFu, sign = uint32_t(h & 0x8000u) << 16;
    uint32_t b;
    if (w >= 0x7C00) b = (w << 13) + 0x70000000;
    else if (w >= 0x400) b = (w << 13) + kRebase;
    else b = bits_of(float(int(w)) * 0x1p-24f);
    b |= sign;
    float y;
    std::memcpy(&y, &b, sizeof y);
    return y;
  }
  V vec(const uint16_t* p) const {
    const __m128i raw = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const V w = _mm256_and_si256(_mm256_cvtepu16_epi32(raw), _mm256_set1_epi32(0x7FFF));
    const V quiet = _mm256_and_si256(_mm256_cmpgt_epi32(w, _mm256_set1_epi32(0x7C00)), _mm256_set1_epi32(0x400000));
    const V y = _mm256_castps_si256(_mm256_cvtph_ps(raw));
    return _mm256_or_si256(_mm256_andnot_si256(quiet, y), _mm256_and_si256(quiet, _mm256_slli_epi32(w, 13)));
  }
};

// Half to 16s: the exact value times 2^-scale, to nearest even or toward
// zero; NaN gives 0, infinities and results of 16 bits or more saturate.
template <bool Nearest>
int16_t half_to_16s(uint16_t h, int scale) {
  const uint32_t w = h & 0x7FFFu;
  const bool negative = (h & 0x8000u) != 0;
  if (w > 0x7C00) return 0;
  uint64_t q;
  if (w == 0x7C00) {
    q = 1u << 16;
  } else {
    const int e = w >> 10 ? int(w >> 10) : 1;
    const uint64_t mant = w >> 10 ? (w & 0x3FFu) | 0x400u : w;
    const int k = e - 25 - scale;  // value * 2^-scale = mant * 2^k; scale lies in [-64, 64]
    if (k >= 0) q = k > 20 ? (mant ? 1u << 16 : 0) : mant << k;
    else if (k < -40) q = 0;
    else if (Nearest) q = uint64_t(round_shift_safe(int64_t(mant), -k));
    else q = mant >> -k;
  }
  if (q >= 32768) return negative ? INT16_MIN : INT16_MAX;
  return int16_t(negative ? -int(q) : int(q));
}

template <class S>
VrkStatus to_half(const S* src, Vrk16f* dst, int length, int rounding) {
  VRKS_CHECK(check_vector(length, src, dst));
  if (rounding == vrkRoundHalfAwayFromZero) return vrkStatusRoundMode;
  if (rounding == vrkRoundToNearestEven) run<Env::Ieee>(src, dst, size_t(length), ToHalf<S, true>{});
  else run<Env::Ieee>(src, dst, size_t(length), ToHalf<S, false>{});
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::conv

using namespace vrks;
using namespace vrks::conv;

VrkStatus vrksConvert_32f16f(const Vrk32f* src, Vrk16f* dst, int length, VrkRoundMode rounding) {
  return to_half(src, dst, length, rounding);
}
VrkStatus vrksConvert_16s16f(const Vrk16s* src, Vrk16f* dst, int length, VrkRoundMode rounding) {
  return to_half(src, dst, length, rounding);
}
VrkStatus vrksConvert_16f32f(const Vrk16f* src, Vrk32f* dst, int length) {
  return convert<Env::Ieee>(src, dst, length, HalfToFloat{});
}
VrkStatus vrksConvert_16f16s_Sfs(const Vrk16f* src, Vrk16s* dst, int length, VrkRoundMode rounding, int scale) {
  VRKS_CHECK(check_vector(length, src, dst));
  if (rounding == vrkRoundHalfAwayFromZero) return vrkStatusRoundMode;
  const int s = clamp(scale, -64, 64);
  if (rounding == vrkRoundToNearestEven)
    for (int i = 0; i < length; ++i) dst[i] = half_to_16s<true>(src[i], s);
  else
    for (int i = 0; i < length; ++i) dst[i] = half_to_16s<false>(src[i], s);
  return vrkStatusOk;
}
