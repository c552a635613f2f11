// Narrowing conversions: floating to integer with a rounding mode and a scale
// multiplier, double to float, packed 24-bit results, and integer to
// narrower integer by the scale-factor rule.
#include "arith/convert.h"

namespace vrks::conv {
namespace {

// ---- float to integer ------------------------------------------------------------

// Double to integer: y = x * m in double, then rounded and saturated as
// float_to_int defines (no vector step: these are not hot).
template <class D, Rounding M, bool Scaled>
struct DoubleToInt {
  double m = 1;
  D operator()(double x) const { return float_to_int<D, M>(Scaled ? x * m : x); }
};

// The rounding mode and the scale as compile-time choices; `multiplier`
// gives m from the scale.
template <template <class, Rounding, bool> class Op, class S, class D, class M>
VrkStatus to_int(const S* src, D* dst, int length, int rounding, int scale, M multiplier) {
  VRKS_CHECK(check_vector(length, src, dst));
  with_rounding(rounding_from(rounding), [&]<Rounding R>() {
    if (scale == 0) run<Env::Ieee>(src, dst, size_t(length), Op<D, R, false>{});
    else run<Env::Ieee>(src, dst, size_t(length), Op<D, R, true>{multiplier(scale)});
  });
  return vrkStatusOk;
}

// 64f to 64s: the scalar loop with early exits. With scale above 0 a source
// at or below DBL_MIN / m is 0 at once (so an infinity is 0 where m is 0);
// with scale below 0 one at or above DBL_MAX / m saturates by its sign at
// once (so a zero saturates where m is infinite).
template <Rounding M>
void double_to_int64(const double* src, int64_t* dst, size_t n, int scale) {
  if (scale == 0) {
    for (size_t i = 0; i < n; ++i) dst[i] = float_to_int<int64_t, M>(src[i]);
    return;
  }
  const double m = pow2_repeated<double>(scale);
  for (size_t i = 0; i < n; ++i) {
    const double x = src[i], a = std::fabs(x);
    if (scale > 0 && a <= 2.2250738585072014e-308 / m) dst[i] = 0;
    else if (scale < 0 && a >= 1.7976931348623157e308 / m) dst[i] = std::signbit(x) ? INT64_MIN : INT64_MAX;
    else dst[i] = float_to_int<int64_t, M>(x * m);
  }
}

// ---- double to float ---------------------------------------------------------------

// Clamped to +-3.402823466e+38 first (a NaN takes the upper bound), then
// rounded to nearest: infinities and NaN give the largest finite float.
struct DoubleToFloat {
  static constexpr double kLimit = 3.402823466e+38;
  float operator()(double x) const { return x != x ? float(kLimit) : float(x < -kLimit ? -kLimit : x > kLimit ? kLimit : x); }
  static __m128 half(const double* p) {
    const VD y = _mm256_min_pd(_mm256_loadu_pd(p), _mm256_set1_pd(kLimit));
    return _mm256_cvtpd_ps(_mm256_max_pd(y, _mm256_set1_pd(-kLimit)));
  }
  V vec(const double* p) const { return _mm256_castps_si256(_mm256_set_m128(half(p + 4), half(p))); }
};

// ---- packed 24-bit results -------------------------------------------------------------

// y = x * m rounded to nearest even, clamped in floating point to the 24-bit
// range first (a NaN takes the lower bound).
template <bool Signed, bool Scaled>
struct FloatTo24 {
  float m = 1;
  static constexpr float kLo = Signed ? float(kMin24s) : 0.0f;
  static constexpr float kHi = Signed ? float(kMax24s) : float(kMax24u);
  P24 operator()(float x) const {
    const float y = Scaled ? x * m : x;
    if (y != y) return write24(uint32_t(int32_t(kLo)));
    return write24(uint32_t(int32_t(__builtin_roundevenf(y < kLo ? kLo : y > kHi ? kHi : y))));
  }
  V lanes24(const float* s) const {
    VF y = _mm256_loadu_ps(s);
    if constexpr (Scaled) y = _mm256_mul_ps(y, _mm256_set1_ps(m));
    y = _mm256_min_ps(_mm256_max_ps(y, _mm256_set1_ps(kLo)), _mm256_set1_ps(kHi));
    return round_lanes<Rounding::NearestEven>(y);
  }
};

// Integer to 24 bits by the scale-factor rule (scale clamped to [-31, 31]).
template <bool Signed, ScaleRoad R>
struct IntTo24 {
  int scale;
  P24 operator()(std::conditional_t<Signed, int32_t, uint32_t> x) const {
    const int32_t v = scale_on_road<R, int32_t>(int64_t(x), scale);
    const int32_t lo = Signed ? kMin24s : 0, hi = Signed ? kMax24s : int32_t(kMax24u);
    return write24(uint32_t(v < lo ? lo : v > hi ? hi : v));
  }
};

// ---- integer narrowing with rounding ---------------------------------------------------

// The magnitude of r rounded by M at 2^-s (s >= 1).
template <Rounding M>
constexpr uint64_t round_magnitude(uint64_t a, int s) {
  if constexpr (M == Rounding::ToZero) return a >> s;
  else if constexpr (M == Rounding::HalfAway) return ((a >> (s - 1)) + 1) >> 1;
  else return uint64_t(round_shift_safe(int128(a), s));
}

// 16s to 8s: the magnitude is rounded, the sign put back, and a magnitude of
// 128 or more saturates by sign.
template <Rounding M>
int8_t narrow_16s8s(int16_t x, int scale) {
  const uint64_t a = uint64_t(x < 0 ? -int32_t(x) : x);
  uint64_t q;
  if (scale > 0) q = round_magnitude<M>(a, scale);
  else q = a << -scale;
  if (q >= 128) return x < 0 ? -128 : 127;
  return int8_t(x < 0 ? -int(q) : int(q));
}

// 64s to 32s (scale in [-31, 63]): toward zero, to nearest even, or half
// away from zero on the magnitude; then saturated.
template <Rounding M>
int32_t narrow_64s32s(int64_t r, int scale) {
  if (scale <= 0) return scale_exact<int32_t>(r, scale);
  if constexpr (M == Rounding::NearestEven) return saturate<int32_t>(round_shift_safe(r, scale));
  const uint64_t a = r < 0 ? 0 - uint64_t(r) : uint64_t(r);
  const uint64_t q = round_magnitude<M>(a, scale);
  return saturate<int32_t>(r < 0 ? -int128(q) : int128(q));
}

template <class S, class D, class F>
VrkStatus narrow_int(const S* src, D* dst, uint32_t length, int rounding, F&& one) {
  VRKS_CHECK(check_unsigned(length, src, dst));
  with_rounding(rounding_from(rounding), [&]<Rounding M>() {
    for (size_t i = 0; i < length; ++i) dst[i] = one.template operator()<M>(src[i]);
  });
  return vrkStatusOk;
}

template <bool Signed, class S>
VrkStatus int_to_24(const S* src, Vrk8u* dst, int length, int scale) {
  VRKS_CHECK(check_vector(length, src, dst));
  const int s = clamp(scale, -31, 31);
  with_scale_road(s, ScaleBands{31, -31}, [&]<ScaleRoad R>() {
    run<Env::Exact>(src, reinterpret_cast<P24*>(dst), size_t(length), IntTo24<Signed, R>{s});
  });
  return vrkStatusOk;
}

template <bool Signed>
VrkStatus float_to_24(const Vrk32f* src, Vrk8u* dst, int length, int scale) {
  VRKS_CHECK(check_vector(length, src, dst));
  auto* d = reinterpret_cast<P24*>(dst);
  if (scale == 0) run<Env::Ieee>(src, d, size_t(length), FloatTo24<Signed, false>{});
  else run<Env::Ieee>(src, d, size_t(length), FloatTo24<Signed, true>{pow2_field<float>(clamp(scale, -127, 127))});
  return vrkStatusOk;
}

struct Saturate16 {
  int16_t operator()(int32_t x) const { return saturate<int16_t>(x); }
};

}  // namespace
}  // namespace vrks::conv

using namespace vrks;
using namespace vrks::conv;

// Float to integer: m = 2^-scale as repeated halving or doubling in float.
#define VRKS_FROM_FLOAT(code, D)                                                                   \
  VrkStatus vrksConvert_##code##_Sfs(const Vrk32f* src, D* dst, int length, VrkRoundMode rounding, \
                                     int scale) {                                                  \
    return to_int<FloatToInt>(src, dst, length, rounding, scale, pow2_repeated<float>);            \
  }
VRKS_FROM_FLOAT(32f8s, Vrk8s)
VRKS_FROM_FLOAT(32f8u, Vrk8u)
VRKS_FROM_FLOAT(32f16s, Vrk16s)
VRKS_FROM_FLOAT(32f16u, Vrk16u)
VRKS_FROM_FLOAT(32f32s, Vrk32s)

VrkStatus vrksConvert_64f32s_Sfs(const Vrk64f* src, Vrk32s* dst, int length, VrkRoundMode rounding, int scale) {
  return to_int<DoubleToInt>(src, dst, length, rounding, scale, pow2_repeated<float, double>);
}
VrkStatus vrksConvert_64f16s_Sfs(const Vrk64f* src, Vrk16s* dst, int length, VrkRoundMode rounding, int scale) {
  return to_int<DoubleToInt>(src, dst, length, rounding, scale,
                             [](int s) { return pow2_field<double>(clamp(s, -1008, 1022)); });
}
VrkStatus vrksConvert_64f64s_Sfs(const Vrk64f* src, Vrk64s* dst, uint32_t length, VrkRoundMode rounding, int scale) {
  VRKS_CHECK(check_unsigned(length, src, dst));
  IeeeDefaultGuard guard;
  with_rounding(rounding_from(rounding), [&]<Rounding M>() { double_to_int64<M>(src, dst, length, scale); });
  return vrkStatusOk;
}

VrkStatus vrksConvert_64f32f(const Vrk64f* src, Vrk32f* dst, int length) {
  return convert<Env::Ieee>(src, dst, length, DoubleToFloat{});
}

VrkStatus vrksConvert_32f24s_Sfs(const Vrk32f* src, Vrk8u* dst, int length, int scale) {
  return float_to_24<true>(src, dst, length, scale);
}
VrkStatus vrksConvert_32f24u_Sfs(const Vrk32f* src, Vrk8u* dst, int length, int scale) {
  return float_to_24<false>(src, dst, length, scale);
}

// Integer narrowing.
VrkStatus vrksConvert_32s16s(const Vrk32s* src, Vrk16s* dst, int length) {
  return convert<Env::Exact>(src, dst, length, Saturate16{});
}
VrkStatus vrksConvert_32s16s_Sfs(const Vrk32s* src, Vrk16s* dst, int length, int scale) {
  VRKS_CHECK(check_vector(length, src, dst));
  const int s = clamp(scale, -15, 31);
  with_scale_road(s, ScaleBands{31, -15}, [&]<ScaleRoad R>() {
    for (int i = 0; i < length; ++i) dst[i] = scale_on_road<R, int16_t>(int64_t(src[i]), s);
  });
  return vrkStatusOk;
}
VrkStatus vrksConvert_32s24s_Sfs(const Vrk32s* src, Vrk8u* dst, int length, int scale) {
  return int_to_24<true>(src, dst, length, scale);
}
VrkStatus vrksConvert_32u24u_Sfs(const Vrk32u* src, Vrk8u* dst, int length, int scale) {
  return int_to_24<false>(src, dst, length, scale);
}
VrkStatus vrksConvert_16s8s_Sfs(const Vrk16s* src, Vrk8s* dst, uint32_t length, VrkRoundMode rounding, int scale) {
  const int s = clamp(scale, -8, 18);  // beyond: all zero, or sign only
  return narrow_int(src, dst, length, rounding, [s]<Rounding M>(int16_t x) { return narrow_16s8s<M>(x, s); });
}
VrkStatus vrksConvert_64s32s_Sfs(const Vrk64s* src, Vrk32s* dst, uint32_t length, VrkRoundMode rounding, int scale) {
  const int s = clamp(scale, -31, 63);
  return narrow_int(src, dst, length, rounding, [s]<Rounding M>(int64_t x) { return narrow_64s32s<M>(x, s); });
}
