// Addition and subtraction: Add, AddC, Sub, SubC, SubCRev on every element
// type. Sub takes the second source minus the first; SubCRev the constant
// minus the source.
#include "arith/scaled.h"

namespace vrks::arith {
namespace {

// Scale bands: above `zero_above` every result is 0; below `left_down_to`
// only the sign of the exact result counts. They change no result.
template <Op O, class T>
constexpr ScaleBands bands() {
  using P = part_t<T>;
  if constexpr (std::is_same_v<P, Vrk8u>) return O == Op::Add ? ScaleBands{9, -7} : ScaleBands{8, -7};
  else if constexpr (std::is_same_v<P, Vrk16u>) return O == Op::Add ? ScaleBands{17, -15} : ScaleBands{16, -15};
  else if constexpr (sizeof(P) == 2) return {16, -15};
  else if constexpr (sizeof(P) == 4) return {32, -30};
  else return {63, -62};  // the 65-bit sum of two 64-bit values
}

// The 16-bit unsigned forms take their all-zero road ahead of every other
// check, with the statuses of a clear of the destination.
template <Op O, class T>
bool early_zero(int scale) {
  return std::is_same_v<T, Vrk16u> && scale > bands<O, T>().zero_above;
}

// x[i] (op) y[i] into d, scaled. Complex data tests the length first.
template <Op O, class T, class D = T, class Y = T>
VrkStatus arrays(const T* x, const Y* y, D* d, int n, int scale) {
  if (early_zero<O, D>(scale)) return zero_16u(reinterpret_cast<Vrk16u*>(d), n);
  VRKS_CHECK(complex_v<T> ? check_length_first(n, x, y, d) : check_vector(n, x, y, d));
  scaled_op<O>(x, y, d, n, scale, bands<O, D>());
  return vrkStatusOk;
}

// x[i] (op) value into d, scaled.
template <Op O, class T>
VrkStatus constant(const T* x, T value, T* d, int n, int scale) {
  if constexpr (std::is_same_v<T, Vrk16u>) {
    if (early_zero<O, T>(scale)) return zero_16u(d, n);
    // Far below the left-shift band any sum with a non-zero constant is the
    // maximum: a fill, with the statuses of a fill.
    if (O == Op::Add && value != 0 && scale < bands<O, T>().left_down_to)
      return vrksSet_16s(Vrk16s(-1), reinterpret_cast<Vrk16s*>(d), n);
  }
  VRKS_CHECK(check_vector(n, x, d));
  scaled_op<O>(x, value, d, n, scale, bands<O, T>());
  return vrkStatusOk;
}

// value - x[i] into d, scaled.
template <class T>
VrkStatus constant_minus(T value, const T* x, T* d, int n, int scale) {
  if (early_zero<Op::Sub, T>(scale)) return zero_16u(reinterpret_cast<Vrk16u*>(d), n);
  VRKS_CHECK(check_vector(n, x, d));
  scaled_op_rev<Op::Sub>(value, x, d, n, scale, bands<Op::Sub, T>());
  return vrkStatusOk;
}

// Floating x[i] (op) y[i]: the complex forms run as the real form on twice
// as many parts, testing the length first.
template <Op O, class T>
VrkStatus float_arrays(const T* x, const T* y, T* d, int n) {
  VRKS_CHECK(complex_v<T> ? check_length_first(n, x, y, d) : check_vector(n, x, y, d));
  float_op<O>(x, y, d, n);
  return vrkStatusOk;
}

// Floating x[i] (op) value. A real constant of 0.0 (either sign) copies the
// source bit for bit: -0.0 and signalling NaNs stay as they are.
template <Op O, class T>
VrkStatus float_constant(const T* x, T value, T* d, int n) {
  VRKS_CHECK(check_vector(n, x, d));
  if constexpr (!complex_v<T>) {
    if (value == T(0)) {
      if (x != d) copy_bytes(d, x, size_t(n) * sizeof(T));
      return vrkStatusOk;
    }
  }
  float_op<O>(x, value, d, n);
  return vrkStatusOk;
}

template <class T>
VrkStatus float_constant_minus(T value, const T* x, T* d, int n) {
  VRKS_CHECK(check_vector(n, x, d));
  float_subtract_from(value, x, d, size_t(n));
  return vrkStatusOk;
}

// 16-bit sums and differences as 32-bit floats: exact.
template <Op O>
VrkStatus to_float(const Vrk16s* x, const Vrk16s* y, Vrk32f* d, int n) {
  VRKS_CHECK(check_vector(n, x, y, d));
  map(d, n, [&](int i) { return Vrk32f(combine<O>(int32_t(x[i]), int32_t(y[i]))); });
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::arith

using vrks::arith::Op;
namespace a = vrks::arith;

// ---- scaled integer forms --------------------------------------------------------

#define VRKS_ADD_SUB_SFS(code)                                                                      \
  VrkStatus vrksAdd_##code##_Sfs(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* dst,      \
                                 int length, int scale) {                                           \
    return a::arrays<Op::Add>(src1, src2, dst, length, scale);                                      \
  }                                                                                                 \
  VrkStatus vrksAdd_##code##_ISfs(const Vrk##code* src, Vrk##code* srcDst, int length, int scale) { \
    return a::arrays<Op::Add>(srcDst, src, srcDst, length, scale);                                  \
  }                                                                                                 \
  VrkStatus vrksSub_##code##_Sfs(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* dst,      \
                                 int length, int scale) {                                           \
    return a::arrays<Op::Sub>(src2, src1, dst, length, scale);                                      \
  }                                                                                                 \
  VrkStatus vrksSub_##code##_ISfs(const Vrk##code* src, Vrk##code* srcDst, int length, int scale) { \
    return a::arrays<Op::Sub>(srcDst, src, srcDst, length, scale);                                  \
  }                                                                                                 \
  VrkStatus vrksAddC_##code##_Sfs(const Vrk##code* src, Vrk##code value, Vrk##code* dst,            \
                                  int length, int scale) {                                          \
    return a::constant<Op::Add>(src, value, dst, length, scale);                                    \
  }                                                                                                 \
  VrkStatus vrksAddC_##code##_ISfs(Vrk##code value, Vrk##code* srcDst, int length, int scale) {    \
    return a::constant<Op::Add>(srcDst, value, srcDst, length, scale);                              \
  }                                                                                                 \
  VrkStatus vrksSubC_##code##_Sfs(const Vrk##code* src, Vrk##code value, Vrk##code* dst,            \
                                  int length, int scale) {                                          \
    return a::constant<Op::Sub>(src, value, dst, length, scale);                                    \
  }                                                                                                 \
  VrkStatus vrksSubC_##code##_ISfs(Vrk##code value, Vrk##code* srcDst, int length, int scale) {    \
    return a::constant<Op::Sub>(srcDst, value, srcDst, length, scale);                              \
  }                                                                                                 \
  VrkStatus vrksSubCRev_##code##_Sfs(const Vrk##code* src, Vrk##code value, Vrk##code* dst,         \
                                     int length, int scale) {                                       \
    return a::constant_minus(value, src, dst, length, scale);                                       \
  }                                                                                                 \
  VrkStatus vrksSubCRev_##code##_ISfs(Vrk##code value, Vrk##code* srcDst, int length, int scale) { \
    return a::constant_minus(value, srcDst, srcDst, length, scale);                                 \
  }
VRKS_ADD_SUB_SFS(8u)
VRKS_ADD_SUB_SFS(16u)
VRKS_ADD_SUB_SFS(16s)
VRKS_ADD_SUB_SFS(16sc)
VRKS_ADD_SUB_SFS(32s)
VRKS_ADD_SUB_SFS(32sc)

VrkStatus vrksAdd_64s_Sfs(const Vrk64s* src1, const Vrk64s* src2, Vrk64s* dst, int length, int scale) {
  return a::arrays<Op::Add>(src1, src2, dst, length, scale);
}

// ---- integer forms without a scale -------------------------------------------------

VrkStatus vrksAdd_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length) {
  return a::arrays<Op::Add>(src1, src2, dst, length, 0);
}
VrkStatus vrksAdd_16s_I(const Vrk16s* src, Vrk16s* srcDst, int length) {
  return a::arrays<Op::Add>(srcDst, src, srcDst, length, 0);
}
VrkStatus vrksSub_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length) {
  return a::arrays<Op::Sub>(src2, src1, dst, length, 0);
}
VrkStatus vrksSub_16s_I(const Vrk16s* src, Vrk16s* srcDst, int length) {
  return a::arrays<Op::Sub>(srcDst, src, srcDst, length, 0);
}
VrkStatus vrksAddC_16s_I(Vrk16s value, Vrk16s* srcDst, int length) {
  return a::constant<Op::Add>(srcDst, value, srcDst, length, 0);
}
VrkStatus vrksSubC_16s_I(Vrk16s value, Vrk16s* srcDst, int length) {
  return a::constant<Op::Sub>(srcDst, value, srcDst, length, 0);
}
VrkStatus vrksAdd_16u(const Vrk16u* src1, const Vrk16u* src2, Vrk16u* dst, int length) {
  return a::arrays<Op::Add>(src1, src2, dst, length, 0);
}
VrkStatus vrksAdd_32u(const Vrk32u* src1, const Vrk32u* src2, Vrk32u* dst, int length) {
  return a::arrays<Op::Add>(src1, src2, dst, length, 0);
}
VrkStatus vrksAdd_8u16u(const Vrk8u* src1, const Vrk8u* src2, Vrk16u* dst, int length) {
  return a::arrays<Op::Add>(src1, src2, dst, length, 0);
}
VrkStatus vrksAdd_16s32s_I(const Vrk16s* src, Vrk32s* srcDst, int length) {
  return a::arrays<Op::Add>(srcDst, src, srcDst, length, 0);
}
VrkStatus vrksAdd_16s32f(const Vrk16s* src1, const Vrk16s* src2, Vrk32f* dst, int length) {
  return a::to_float<Op::Add>(src1, src2, dst, length);
}
VrkStatus vrksSub_16s32f(const Vrk16s* src1, const Vrk16s* src2, Vrk32f* dst, int length) {
  return a::to_float<Op::Sub>(src2, src1, dst, length);
}

// ---- floating forms ---------------------------------------------------------------

#define VRKS_ADD_SUB_FLOAT(code)                                                                  \
  VrkStatus vrksAdd_##code(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* dst,          \
                           int length) {                                                          \
    return a::float_arrays<Op::Add>(src1, src2, dst, length);                                     \
  }                                                                                               \
  VrkStatus vrksAdd_##code##_I(const Vrk##code* src, Vrk##code* srcDst, int length) {             \
    return a::float_arrays<Op::Add>(srcDst, src, srcDst, length);                                 \
  }                                                                                               \
  VrkStatus vrksSub_##code(const Vrk##code* src1, const Vrk##code* src2, Vrk##code* dst,          \
                           int length) {                                                          \
    return a::float_arrays<Op::Sub>(src2, src1, dst, length);                                     \
  }                                                                                               \
  VrkStatus vrksSub_##code##_I(const Vrk##code* src, Vrk##code* srcDst, int length) {             \
    return a::float_arrays<Op::Sub>(srcDst, src, srcDst, length);                                 \
  }                                                                                               \
  VrkStatus vrksAddC_##code(const Vrk##code* src, Vrk##code value, Vrk##code* dst, int length) {  \
    return a::float_constant<Op::Add>(src, value, dst, length);                                   \
  }                                                                                               \
  VrkStatus vrksAddC_##code##_I(Vrk##code value, Vrk##code* srcDst, int length) {                 \
    return a::float_constant<Op::Add>(srcDst, value, srcDst, length);                             \
  }                                                                                               \
  VrkStatus vrksSubC_##code(const Vrk##code* src, Vrk##code value, Vrk##code* dst, int length) {  \
    return a::float_constant<Op::Sub>(src, value, dst, length);                                   \
  }                                                                                               \
  VrkStatus vrksSubC_##code##_I(Vrk##code value, Vrk##code* srcDst, int length) {                 \
    return a::float_constant<Op::Sub>(srcDst, value, srcDst, length);                             \
  }                                                                                               \
  VrkStatus vrksSubCRev_##code(const Vrk##code* src, Vrk##code value, Vrk##code* dst,             \
                               int length) {                                                      \
    return a::float_constant_minus(value, src, dst, length);                                      \
  }                                                                                               \
  VrkStatus vrksSubCRev_##code##_I(Vrk##code value, Vrk##code* srcDst, int length) {              \
    return a::float_constant_minus(value, srcDst, srcDst, length);                                \
  }
VRKS_ADD_SUB_FLOAT(32f)
VRKS_ADD_SUB_FLOAT(64f)
VRKS_ADD_SUB_FLOAT(32fc)
VRKS_ADD_SUB_FLOAT(64fc)
