// Widening conversions: integers to wider integers and to floating types
// (optionally times 2^-scale), packed 24-bit samples, float to double, and the
// two that round: 32s to 32f and 64s to 64f.
#include "arith/convert.h"

namespace vrks::conv {
namespace {

// Four elements of S widened to four 32-bit lanes.
template <class S>
inline __m128i int_lanes4(const S* p) {
  if constexpr (std::is_same_v<S, int16_t>) return _mm_cvtepi16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  else return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Integer to F, times m when Scaled. Exact for every member but 32s to 32f,
// which rounds to nearest; the scale clamps keep every product normal.
template <class S, class F, bool Scaled>
struct IntToFloat {
  F m = 1;
  F operator()(S x) const { return Scaled ? F(x) * m : F(x); }
  V vec(const S* p) const {
    if constexpr (std::is_same_v<F, float>) {
      VF y = _mm256_cvtepi32_ps(int_lanes(p));
      if constexpr (Scaled) y = _mm256_mul_ps(y, _mm256_set1_ps(m));
      return _mm256_castps_si256(y);
    } else {
      VD y = _mm256_cvtepi32_pd(int_lanes4(p));
      if constexpr (Scaled) y = _mm256_mul_pd(y, _mm256_set1_pd(m));
      return _mm256_castpd_si256(y);
    }
  }
};

// Integer to wider integer, sign- or zero-extended.
template <class S, class D>
struct Widen {
  D operator()(S x) const { return D(x); }
  V vec(const S* p) const {
    if constexpr (sizeof(D) == 4) return int_lanes(p);
    else return _mm256_cvtepi8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  }
};

// Packed 24-bit samples to 32-bit integers or floats (exact).
template <bool Signed, class D>
struct From24 {
  D operator()(P24 p) const {
    if constexpr (Signed) return D(read24s(p));
    else return D(read24u(p));
  }
  static constexpr size_t kSlack = kSlack24;
  V vec(const P24* s) const {
    const V v = load24<Signed>(s);
    if constexpr (std::is_same_v<D, float>) return _mm256_castps_si256(_mm256_cvtepi32_ps(v));
    else return v;
  }
};

struct FloatToDouble {
  double operator()(float x) const { return x; }
  V vec(const float* p) const { return _mm256_castpd_si256(_mm256_cvtps_pd(_mm_loadu_ps(p))); }
};

struct Int64ToDouble {
  double operator()(int64_t x) const { return double(x); }
};

// The entries of int-to-float with scale: scale 0 runs without a multiply.
template <class S, class F>
VrkStatus scaled_to_float(const S* src, F* dst, int length, int scale, int lo, int hi) {
  VRKS_CHECK(check_vector(length, src, dst));
  constexpr Env E = sizeof(S) == 4 && sizeof(F) == 4 ? Env::Ieee : Env::Exact;
  if (scale == 0) run<E>(src, dst, size_t(length), IntToFloat<S, F, false>{});
  else run<E>(src, dst, size_t(length), IntToFloat<S, F, true>{pow2_field<F>(clamp(scale, lo, hi))});
  return vrkStatusOk;
}

inline const P24* p24(const Vrk8u* p) { return reinterpret_cast<const P24*>(p); }

}  // namespace
}  // namespace vrks::conv

using namespace vrks;
using namespace vrks::conv;

// Plain widening: exact, but for the two that round to nearest.
#define VRKS_TO_FLOAT(code, S, F, env)                                              \
  VrkStatus vrksConvert_##code(const S* src, F* dst, int length) {                  \
    return convert<Env::env>(src, dst, length, IntToFloat<S, F, false>{});          \
  }
VRKS_TO_FLOAT(8s32f, Vrk8s, Vrk32f, Exact)
VRKS_TO_FLOAT(8u32f, Vrk8u, Vrk32f, Exact)
VRKS_TO_FLOAT(16s32f, Vrk16s, Vrk32f, Exact)
VRKS_TO_FLOAT(16u32f, Vrk16u, Vrk32f, Exact)
VRKS_TO_FLOAT(32s32f, Vrk32s, Vrk32f, Ieee)
VRKS_TO_FLOAT(32s64f, Vrk32s, Vrk64f, Exact)

VrkStatus vrksConvert_8s16s(const Vrk8s* src, Vrk16s* dst, int length) {
  return convert<Env::Exact>(src, dst, length, Widen<Vrk8s, Vrk16s>{});
}
VrkStatus vrksConvert_16s32s(const Vrk16s* src, Vrk32s* dst, int length) {
  return convert<Env::Exact>(src, dst, length, Widen<Vrk16s, Vrk32s>{});
}
VrkStatus vrksConvert_32f64f(const Vrk32f* src, Vrk64f* dst, int length) {
  return convert<Env::Ieee>(src, dst, length, FloatToDouble{});
}
VrkStatus vrksConvert_64s64f(const Vrk64s* src, Vrk64f* dst, uint32_t length) {
  VRKS_CHECK(check_unsigned(length, src, dst));
  run<Env::Ieee>(src, dst, length, Int64ToDouble{});
  return vrkStatusOk;
}

#define VRKS_FROM_24(code, sign, D)                                                   \
  VrkStatus vrksConvert_##code(const Vrk8u* src, D* dst, int length) {                \
    return convert<Env::Exact>(p24(src), dst, length, From24<sign, D>{});             \
  }
VRKS_FROM_24(24s32f, true, Vrk32f)
VRKS_FROM_24(24s32s, true, Vrk32s)
VRKS_FROM_24(24u32f, false, Vrk32f)
VRKS_FROM_24(24u32u, false, Vrk32u)

// Integer to floating times 2^-scale, scale clamped to the member's range.
VrkStatus vrksConvert_16s32f_Sfs(const Vrk16s* src, Vrk32f* dst, int length, int scale) {
  return scaled_to_float(src, dst, length, scale, -112, 126);
}
VrkStatus vrksConvert_32s32f_Sfs(const Vrk32s* src, Vrk32f* dst, int length, int scale) {
  return scaled_to_float(src, dst, length, scale, -96, 126);
}
VrkStatus vrksConvert_16s64f_Sfs(const Vrk16s* src, Vrk64f* dst, int length, int scale) {
  return scaled_to_float(src, dst, length, scale, -1008, 1022);
}
VrkStatus vrksConvert_32s64f_Sfs(const Vrk32s* src, Vrk64f* dst, int length, int scale) {
  return scaled_to_float(src, dst, length, scale, -992, 1022);
}
