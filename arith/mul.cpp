// Multiplication and accumulated products: Mul, MulC, AddProduct,
// AddProductC on every element type.
#include <bit>
#include <cmath>
#include <immintrin.h>

#include "arith/scaled.h"
#include "frame/rounding.h"

namespace vrks::arith {
namespace {

// Scale bands of the products: above `zero_above` every result is 0; below
// `left_down_to` only the sign of the exact result counts.
template <class X, class Y, class D>
constexpr ScaleBands bands() {
  using P = part_t<D>;
  constexpr bool both_complex = complex_v<X> && complex_v<Y>;
  if constexpr (std::is_same_v<P, Vrk8u>) return {16, -7};
  else if constexpr (std::is_same_v<part_t<X>, Vrk16u> && std::is_same_v<P, Vrk16s>) return {31, -14};
  else if constexpr (std::is_same_v<P, Vrk16u>) return {32, -15};
  else if constexpr (std::is_same_v<P, Vrk16s>) return both_complex ? ScaleBands{31, -15} : ScaleBands{30, -15};
  else if constexpr (std::is_same_v<P, Vrk32s> && sizeof(part_t<X>) == 2) return {30, -30};  // 16s by 16s
  else return both_complex ? ScaleBands{63, -31} : ScaleBands{62, -31};
}

// The 16-bit unsigned forms take their all-zero road (and MulC its zero
// constant) ahead of every other check, with the statuses of a clear.
inline bool early_zero_16u(int scale) { return scale > 32; }

template <class X, class Y, class D>
VrkStatus arrays(const X* x, const Y* y, D* d, int n, int scale) {
  if (std::is_same_v<D, Vrk16u> && early_zero_16u(scale)) return zero_16u(reinterpret_cast<Vrk16u*>(d), n);
  VRKS_CHECK(check_vector(n, x, y, d));
  scaled_op<Op::Mul>(x, y, d, n, scale, bands<X, Y, D>());
  return vrkStatusOk;
}

template <class T>
VrkStatus constant(const T* x, T value, T* d, int n, int scale) {
  if constexpr (std::is_same_v<T, Vrk16u>)
    if (value == 0 || early_zero_16u(scale)) return zero_16u(d, n);
  VRKS_CHECK(check_vector(n, x, d));
  scaled_op<Op::Mul>(x, value, d, n, scale, bands<T, T, T>());
  return vrkStatusOk;
}

template <class X, class Y>
VrkStatus float_arrays(const X* x, const Y* y, std::conditional_t<complex_v<Y>, Y, X>* d, int n) {
  VRKS_CHECK(check_vector(n, x, y, d));
  float_op<Op::Mul>(x, y, d, n);
  return vrkStatusOk;
}

// A real constant of exactly 1.0 copies the source bit for bit; one equal to
// 0.0 clears the destination, so that NaN and infinity give +0.0 too.
template <class T>
VrkStatus float_constant(const T* x, T value, T* d, int n) {
  VRKS_CHECK(check_vector(n, x, d));
  if constexpr (!complex_v<T>) {
    if (value == T(1)) {
      if (x != d) copy_bytes(d, x, size_t(n) * sizeof(T));
      return vrkStatusOk;
    }
    if (value == T(0)) {
      zero(d, n);
      return vrkStatusOk;
    }
  }
  float_op<Op::Mul>(x, value, d, n);
  return vrkStatusOk;
}

// ---- 32-bit products by way of 64-bit floating point ----------------------------

// The 32-bit products that go through 64-bit floating point: on the scales
// in the bands, `approx(i, m)` with m = 2^-scale is the double result, which
// is rounded to nearest even (whatever the caller's rounding mode) and
// saturated; far below them only the sign of `exact(i)` counts.
template <class Exact, class Approx>
void by_double(Vrk32s* d, int n, int scale, ScaleBands b, Exact&& exact, Approx&& approx) {
  switch (scale_road(scale, b)) {
    case ScaleRoad::Zero:
      zero(d, n);
      break;
    case ScaleRoad::SignOnly:
      map(d, n, [&](int i) { return scale_on_road<ScaleRoad::SignOnly, Vrk32s>(exact(i), scale); });
      break;
    default: {
      const double m = pow2_field<double>(scale);
      map(d, n, [&](int i) { return round_to<Vrk32s, Rounding::NearestEven>(approx(i, m)); });
    }
  }
}

// d[i] = x[i] * y[i] * 2^-scale: a product beyond 2^53 is rounded to 53 bits
// before it is scaled and rounded again.
VrkStatus mul_32s_by_float(const Vrk32s* x, const Vrk32s* y, Vrk32s* d, int n, int scale) {
  VRKS_CHECK(check_vector(n, x, y, d));
  by_double(d, n, scale, {62, -31}, [&](int i) { return int64_t(x[i]) * y[i]; },
            [&](int i, double m) { return double(x[i]) * m * double(y[i]); });
  return vrkStatusOk;
}

// acc[i] = (x[i] * y[i] + acc[i]) * 2^-scale, through 64-bit floating point.
VrkStatus add_product_32s_by_float(const Vrk32s* x, const Vrk32s* y, Vrk32s* acc, int n, int scale) {
  VRKS_CHECK(check_vector(n, x, y, acc));
  by_double(acc, n, scale, {62, -30}, [&](int i) { return int64_t(x[i]) * y[i] + acc[i]; },
            [&](int i, double m) { return (double(x[i]) * double(y[i]) + double(acc[i])) * m; });
  return vrkStatusOk;
}

// The low 32 bits of the shifted product: no rounding, no saturation between
// the bounds.
VrkStatus mul_low_32s(const Vrk32s* x, const Vrk32s* y, Vrk32s* d, int n, int scale) {
  VRKS_CHECK(check_vector(n, x, y, d));
  if (scale > 62) {
    zero(d, n);
  } else if (scale < -31) {
    map(d, n, [&](int i) { return scale_on_road<ScaleRoad::SignOnly, Vrk32s>(int64_t(x[i]) * y[i], scale); });
  } else if (scale <= 0) {
    map(d, n, [&](int i) { return Vrk32s(uint32_t(uint64_t(int64_t(x[i]) * y[i]) << -scale)); });
  } else {
    map(d, n, [&](int i) { return Vrk32s(uint32_t(uint64_t((int64_t(x[i]) * y[i]) >> scale))); });
  }
  return vrkStatusOk;
}

// ---- 32-bit floating products into 16-bit integers ---------------------------

// value * 2^-scale (scale clamped to [-127, 126]), then per element the
// product clamped to the 16-bit range and rounded to nearest even. NaN gives
// -32768, as it does in the conversion of the other 16-bit form.
VrkStatus mulc_32f16s(const Vrk32f* x, Vrk32f value, Vrk16s* d, int n, int scale) {
  VRKS_CHECK(check_vector(n, x, d));
  const int s = scale < -127 ? -127 : scale > 126 ? 126 : scale;
  const Vrk32f v = s == 0 ? value : value * pow2_field<Vrk32f>(s);
  map(d, n, [&](int i) {
    const Vrk32f p = x[i] * v;
    if (!(p == p)) return Vrk16s(-32768);
    return Vrk16s(__builtin_roundevenf(p < -32768.0f ? -32768.0f : p > 32767.0f ? 32767.0f : p));
  });
  return vrkStatusOk;
}

// The product converted under the caller's rounding mode; beyond the 32-bit
// range or NaN the conversion gives the integer-indefinite value, which
// saturates to -32768; within it, the value saturates to 16 bits.
VrkStatus mulc_low_32f16s(const Vrk32f* x, Vrk32f value, Vrk16s* d, int n) {
  VRKS_CHECK(check_vector(n, x, d));
  map(d, n, [&](int i) {
    const int32_t r = _mm_cvtss_si32(_mm_set_ss(x[i] * value));
    return Vrk16s(r < -32768 ? -32768 : r > 32767 ? 32767 : r);
  });
  return vrkStatusOk;
}

// ---- 64-bit constants on 64-bit integers -----------------------------------------

// x * value * 2^-scale, exact, rounded once, saturated; x = 0 gives 0.
void mulc_64s(Vrk64s value, Vrk64s* x, uint32_t n, int scale) {
  const ScaleBands b{126, -62};
  with_scale_road(scale, b, [&]<ScaleRoad R>() {
    if constexpr (R == ScaleRoad::Zero) {
      zero(x, int(n));
    } else {
      for (uint32_t i = 0; i < n; ++i) x[i] = scale_on_road<R, Vrk64s>(int128(x[i]) * value, scale);
    }
  });
}

VrkStatus mulc_64s_entry(Vrk64s value, Vrk64s* x, uint32_t n, int scale) {
  if (x == nullptr) return vrkStatusNullPointer;
  if (n == 0) return vrkStatusSizeError;
  if (value == 0) zero(x, int(n));
  else mulc_64s(value, x, n, scale);
  return vrkStatusOk;
}

// A 64-bit floating constant split into an integer mantissa and a power of
// two, so that the product is exact and rounded once.
VrkStatus mulc_64f64s_entry(Vrk64f value, Vrk64s* x, uint32_t n, int scale) {
  if (x == nullptr) return vrkStatusNullPointer;
  if (n == 0) return vrkStatusSizeError;
  const uint64_t bits = std::bit_cast<uint64_t>(value);
  if (std::isinf(value)) {
    const bool positive = value > 0;
    for (uint32_t i = 0; i < n; ++i) {
      const Vrk64s e = x[i];
      if (positive) x[i] = e > 0 ? INT64_MAX : INT64_MIN;
      else x[i] = e < 0 ? INT64_MAX : e > 0 ? INT64_MIN : 0;
    }
    return vrkStatusOk;
  }
  if (bits == 0x7FFFFFFFFFFFFFFFull || bits == 0xFFFFFFFFFFFFFFFFull) {
    for (uint32_t i = 0; i < n; ++i) x[i] = INT64_MIN;
    return vrkStatusOk;
  }
  const int e = int(bits >> 52 & 0x7FF);
  int64_t mantissa = int64_t(bits & ((uint64_t(1) << 52) - 1));
  if (e > 0) mantissa += int64_t(1) << 52;
  if (bits >> 63) mantissa = -mantissa;
  // The shift, held within the bands of the 64-bit product so that no
  // integer overflows: beyond them every result is the same.
  const int64_t s = int64_t(scale) + (e > 0 ? 1075 - e : 1074);
  if (mantissa == 0) zero(x, int(n));
  else mulc_64s(mantissa, x, n, int(s > 200 ? 200 : s < -200 ? -200 : s));
  return vrkStatusOk;
}

// ---- accumulated products ------------------------------------------------------------

// srcDst + src1 * src2 with two roundings. If srcDst overlaps a source at an
// offset, the elements are taken one by one in rising order, so that each
// reads what the earlier ones wrote.
template <class T, class Y>
VrkStatus float_add_product(const T* x, Y y, T* acc, int n) {
  if constexpr (std::is_pointer_v<Y>) {
    VRKS_CHECK(check_vector(n, x, y, acc));
  } else {
    VRKS_CHECK(check_vector(n, x, acc));
  }
  bool shifted = overlaps_shifted(x, acc, n);
  if constexpr (std::is_pointer_v<Y>) shifted = shifted || overlaps_shifted(y, acc, n);
  if (shifted) {
    for (int i = 0; i < n; ++i) {
      if constexpr (std::is_pointer_v<Y>) float_accumulate(x + i, y + i, acc + i, 1);
      else float_accumulate(x + i, y, acc + i, 1);
    }
  } else {
    float_accumulate(x, y, acc, size_t(n));
  }
  return vrkStatusOk;
}

template <class X, class D>
VrkStatus add_product_sfs(const X* x, const X* y, D* acc, int n, int scale, ScaleBands b) {
  VRKS_CHECK(check_vector(n, x, y, acc));
  using W = wide_t<D>;
  scaled_map(acc, n, scale, b, [&](int i) { return W(x[i]) * W(y[i]) + W(acc[i]); });
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::arith

namespace a = vrks::arith;

// ---- products of two vectors ------------------------------------------------------------

#define VRKS_MUL_SFS(code)                                                                          \
  VrkStatus vrksMul_##code##_Sfs(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* dst,      \
                                 int length, int scale) {                                           \
    return a::arrays(src1, src2, dst, length, scale);                                               \
  }                                                                                                 \
  VrkStatus vrksMul_##code##_ISfs(const Vrk##code* src, Vrk##code* srcDst, int length, int scale) { \
    return a::arrays(srcDst, src, srcDst, length, scale);                                           \
  }                                                                                                 \
  VrkStatus vrksMulC_##code##_Sfs(const Vrk##code* src, Vrk##code value, Vrk##code* dst,            \
                                  int length, int scale) {                                          \
    return a::constant(src, value, dst, length, scale);                                             \
  }                                                                                                 \
  VrkStatus vrksMulC_##code##_ISfs(Vrk##code value, Vrk##code* srcDst, int length, int scale) {    \
    return a::constant(srcDst, value, srcDst, length, scale);                                       \
  }
VRKS_MUL_SFS(8u)
VRKS_MUL_SFS(16u)
VRKS_MUL_SFS(16s)
VRKS_MUL_SFS(16sc)
VRKS_MUL_SFS(32sc)

// The 32-bit products of two vectors go through 64-bit floating point; the
// constant forms are exact.
VrkStatus vrksMul_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* dst, int length, int scale) {
  return a::mul_32s_by_float(src1, src2, dst, length, scale);
}
VrkStatus vrksMul_32s_ISfs(const Vrk32s* src, Vrk32s* srcDst, int length, int scale) {
  return a::mul_32s_by_float(srcDst, src, srcDst, length, scale);
}
VrkStatus vrksMulC_32s_Sfs(const Vrk32s* src, Vrk32s value, Vrk32s* dst, int length, int scale) {
  return a::constant(src, value, dst, length, scale);
}
VrkStatus vrksMulC_32s_ISfs(Vrk32s value, Vrk32s* srcDst, int length, int scale) {
  return a::constant(srcDst, value, srcDst, length, scale);
}

VrkStatus vrksMul_32s32sc_Sfs(const Vrk32s* src1, const Vrk32sc* src2, Vrk32sc* dst, int length, int scale) {
  return a::arrays(src1, src2, dst, length, scale);
}
VrkStatus vrksMul_32s32sc_ISfs(const Vrk32s* src, Vrk32sc* srcDst, int length, int scale) {
  return a::arrays(srcDst, src, srcDst, length, scale);
}
VrkStatus vrksMul_16s32s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk32s* dst, int length, int scale) {
  return a::arrays(src1, src2, dst, length, scale);
}
VrkStatus vrksMul_16u16s_Sfs(const Vrk16u* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale) {
  return a::arrays(src1, src2, dst, length, scale);
}
VrkStatus vrksMul_Low_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* dst, int length, int scale) {
  return a::mul_low_32s(src1, src2, dst, length, scale);
}

VrkStatus vrksMul_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length) {
  return a::arrays(src1, src2, dst, length, 0);
}
VrkStatus vrksMul_16s_I(const Vrk16s* src, Vrk16s* srcDst, int length) {
  return a::arrays(srcDst, src, srcDst, length, 0);
}
VrkStatus vrksMulC_16s_I(Vrk16s value, Vrk16s* srcDst, int length) {
  return a::constant(srcDst, value, srcDst, length, 0);
}
VrkStatus vrksMul_8u16u(const Vrk8u* src1, const Vrk8u* src2, Vrk16u* dst, int length) {
  return a::arrays(src1, src2, dst, length, 0);
}
VrkStatus vrksMul_16s32f(const Vrk16s* src1, const Vrk16s* src2, Vrk32f* dst, int length) {
  VRKS_CHECK(vrks::check_vector(length, src1, src2, dst));
  a::map(dst, length, [&](int i) { return Vrk32f(int32_t(src1[i]) * int32_t(src2[i])); });
  return vrkStatusOk;
}

#define VRKS_MUL_FLOAT(code)                                                                      \
  VrkStatus vrksMul_##code(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* dst,          \
                           int length) {                                                          \
    return a::float_arrays(src1, src2, dst, length);                                              \
  }                                                                                               \
  VrkStatus vrksMul_##code##_I(const Vrk##code* src, Vrk##code* srcDst, int length) {             \
    return a::float_arrays(srcDst, src, srcDst, length);                                          \
  }                                                                                               \
  VrkStatus vrksMulC_##code(const Vrk##code* src, Vrk##code value, Vrk##code* dst, int length) {  \
    return a::float_constant(src, value, dst, length);                                            \
  }                                                                                               \
  VrkStatus vrksMulC_##code##_I(Vrk##code value, Vrk##code* srcDst, int length) {                 \
    return a::float_constant(srcDst, value, srcDst, length);                                      \
  }                                                                                               \
  VrkStatus vrksAddProduct_##code(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* srcDst, \
                                  int length) {                                                   \
    return a::float_add_product(src1, src2, srcDst, length);                                      \
  }
VRKS_MUL_FLOAT(32f)
VRKS_MUL_FLOAT(64f)
VRKS_MUL_FLOAT(32fc)
VRKS_MUL_FLOAT(64fc)

VrkStatus vrksMul_32f32fc(const Vrk32f* src1, const Vrk32fc* src2, Vrk32fc* dst, int length) {
  return a::float_arrays(src1, src2, dst, length);
}
VrkStatus vrksMul_32f32fc_I(const Vrk32f* src, Vrk32fc* srcDst, int length) {
  return a::float_arrays(srcDst, src, srcDst, length);
}

// ---- constants into other types -----------------------------------------------------

VrkStatus vrksMulC_32f16s_Sfs(const Vrk32f* src, Vrk32f value, Vrk16s* dst, int length, int scale) {
  return a::mulc_32f16s(src, value, dst, length, scale);
}
VrkStatus vrksMulC_Low_32f16s(const Vrk32f* src, Vrk32f value, Vrk16s* dst, int length) {
  return a::mulc_low_32f16s(src, value, dst, length);
}
VrkStatus vrksMulC_64s_ISfs(Vrk64s value, Vrk64s* srcDst, Vrk32u length, int scale) {
  return a::mulc_64s_entry(value, srcDst, length, scale);
}
VrkStatus vrksMulC_64f64s_ISfs(Vrk64f value, Vrk64s* srcDst, Vrk32u length, int scale) {
  return a::mulc_64f64s_entry(value, srcDst, length, scale);
}

// ---- accumulated products ---------------------------------------------------------------

VrkStatus vrksAddProductC_32f(const Vrk32f* src, Vrk32f value, Vrk32f* srcDst, int length) {
  return a::float_add_product(src, value, srcDst, length);
}
VrkStatus vrksAddProduct_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* srcDst, int length,
                                 int scale) {
  return a::add_product_sfs(src1, src2, srcDst, length, scale, {31, -14});
}
VrkStatus vrksAddProduct_16s32s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk32s* srcDst, int length,
                                    int scale) {
  return a::add_product_sfs(src1, src2, srcDst, length, scale, {32, -30});
}
VrkStatus vrksAddProduct_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* srcDst, int length,
                                 int scale) {
  return a::add_product_32s_by_float(src1, src2, srcDst, length, scale);
}
