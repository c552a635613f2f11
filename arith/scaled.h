// Sums, differences and products element by element, on every element type:
// the operation written once, the typed members instantiated from it.
#pragma once

#include <type_traits>

#include "arith/elementwise.h"
#include "arith/float_kernels.h"
#include "arith/int_kernels.h"

namespace vrks::arith {

enum class Op { Add, Sub, Mul };

// The working integer of a part type: sums and products of two parts, and a
// product plus an accumulator, fit in it exactly.
template <class P>
using wide_t = std::conditional_t<sizeof(P) <= 2, int32_t,
                                  std::conditional_t<sizeof(P) == 4, int64_t, int128>>;

template <class W>
using wider_t = std::conditional_t<std::is_same_v<W, int32_t>, int64_t, int128>;

// The working integer of a whole operation: products of two complex numbers
// (a sum of two products) and products of 16-bit unsigned parts need one
// step more than their result's parts.
template <Op O, class D, class X, class Y>
using work_t = std::conditional_t<
    O == Op::Mul && ((complex_v<X> && complex_v<Y>) || std::is_same_v<part_t<X>, uint16_t>),
    wider_t<wide_t<part_t<D>>>, wide_t<part_t<D>>>;

template <Op O, class W>
constexpr W combine(W a, W b) {
  if constexpr (O == Op::Add) return a + b;
  else if constexpr (O == Op::Sub) return a - b;
  else return a * b;
}

// The exact result of x (op) y for integer elements, real or complex, in the
// working integer W of the result's parts.
template <Op O, class W, class X, class Y>
constexpr auto exact(const X& x, const Y& y) {
  if constexpr (!complex_v<X> && !complex_v<Y>) {
    return combine<O>(W(x), W(y));
  } else if constexpr (O != Op::Mul) {
    return Wide2<W>{combine<O>(W(x.re), W(y.re)), combine<O>(W(x.im), W(y.im))};
  } else if constexpr (!complex_v<X>) {  // real factor times a complex one
    return Wide2<W>{W(x) * W(y.re), W(x) * W(y.im)};
  } else if constexpr (!complex_v<Y>) {
    return Wide2<W>{W(x.re) * W(y), W(x.im) * W(y)};
  } else {  // (a + ib)(c + id) = (ac - bd) + i(ad + bc)
    return Wide2<W>{W(x.re) * W(y.re) - W(x.im) * W(y.im), W(x.re) * W(y.im) + W(x.im) * W(y.re)};
  }
}

// The same for floating elements: one IEEE operation a part; complex products
// as ac - bd and bc + ad, every operation rounded by itself.
template <Op O, class X, class Y>
constexpr auto exact_float(const X& x, const Y& y) {
  if constexpr (!complex_v<X> && !complex_v<Y>) {
    return combine<O>(x, y);
  } else if constexpr (O != Op::Mul) {
    return X{combine<O>(x.re, y.re), combine<O>(x.im, y.im)};
  } else if constexpr (!complex_v<X>) {
    return Y{x * y.re, x * y.im};
  } else if constexpr (!complex_v<Y>) {
    return X{x.re * y, x.im * y};
  } else {
    return complex_product(x, y);
  }
}

// Whether the 8- and 16-bit vector kernels serve an operation: sources and
// result of one type, and products only where they fit 32 bits exactly.
template <Op O, class D, class X, class Y>
constexpr bool int_vector_v = std::is_same_v<X, D> && std::is_same_v<Y, D> && vector_int_part_v<part_t<D>> &&
                              !(O == Op::Mul && (complex_v<D> || std::is_same_v<D, uint16_t>));

// The constant as a 32-byte register of repeated parts.
template <class T>
__m256i int_pattern(const T& v) {
  if constexpr (complex_v<T> && sizeof(T) == 4) {
    int32_t both;
    std::memcpy(&both, &v, 4);
    return _mm256_set1_epi32(both);
  } else if constexpr (sizeof(T) == 8) {
    int64_t both;
    std::memcpy(&both, &v, 8);
    return _mm256_set1_epi64x(both);
  } else if constexpr (sizeof(T) == 4) {
    return _mm256_set1_epi32(int32_t(v));
  } else if constexpr (sizeof(T) == 2) {
    return _mm256_set1_epi16(short(v));
  } else {
    return _mm256_set1_epi8(char(v));
  }
}

// The vector road: parts of x (op) parts of y, or with a constant (`rev`:
// the constant on the left).
template <Op O, class D>
void int_op(const D* x, const D* y, const D* value, bool rev, D* d, int n, int scale, ScaleBands bands) {
  using P = part_t<D>;
  constexpr size_t per = complex_v<D> ? 2 : 1;
  constexpr IOp I = O == Op::Add ? IOp::Add : O == Op::Sub ? IOp::Sub : IOp::Mul;
  const P* xp = reinterpret_cast<const P*>(x);
  const P* yp = reinterpret_cast<const P*>(y);
  const P* vp = reinterpret_cast<const P*>(value);
  const __m256i pattern = value ? int_pattern(*value) : _mm256_setzero_si256();
  with_scale_road(scale, bands, [&]<ScaleRoad R>() {
    if constexpr (R == ScaleRoad::Zero) {
      zero(d, n);
    } else {
      int_parts<I, R>(xp, yp, pattern, rev, reinterpret_cast<P*>(d), size_t(n) * per, scale, [&](size_t i) {
        const int64_t a = xp[i], b = yp ? yp[i] : vp[i % per];
        return scale_on_road<R, P>(rev ? combine<O>(b, a) : combine<O>(a, b), scale);
      });
    }
  });
}

// dst[i] = the rule applied to x[i] (op) y(i); y is an array or a constant.
template <Op O, class D, class X, class Y>
inline void scaled_op(const X* x, const Y& y, D* d, int n, int scale, ScaleBands bands) {
  using Y1 = std::remove_cv_t<std::remove_pointer_t<Y>>;
  using W = work_t<O, D, X, Y1>;
  if constexpr (int_vector_v<O, D, X, Y1>) {
    if constexpr (std::is_pointer_v<Y>) int_op<O, D>(x, y, nullptr, false, d, n, scale, bands);
    else int_op<O, D>(x, nullptr, &y, false, d, n, scale, bands);
  } else if constexpr (std::is_pointer_v<Y>) {
    scaled_map(d, n, scale, bands, [&](int i) { return exact<O, W>(x[i], y[i]); });
  } else {
    scaled_map(d, n, scale, bands, [&](int i) { return exact<O, W>(x[i], y); });
  }
}

// The same with the constant on the left: dst[i] = value (op) x[i].
template <Op O, class D, class X, class Y>
inline void scaled_op_rev(const Y& value, const X* x, D* d, int n, int scale, ScaleBands bands) {
  using W = work_t<O, D, X, Y>;
  if constexpr (int_vector_v<O, D, X, Y>)
    int_op<O, D>(x, nullptr, &value, true, d, n, scale, bands);
  else
    scaled_map(d, n, scale, bands, [&](int i) { return exact<O, W>(value, x[i]); });
}

// Floating x[i] (op) y[i] or x[i] (op) y: the vector kernels where source
// and result share a type, else one element at a time.
template <Op O, class D, class X, class Y>
inline void float_op(const X* x, const Y& y, D* d, int n) {
  using Y1 = std::remove_cv_t<std::remove_pointer_t<Y>>;
  constexpr FOp F = O == Op::Add ? FOp::Add : O == Op::Sub ? FOp::Sub : FOp::Mul;
  if constexpr (std::is_same_v<X, D> && std::is_same_v<Y1, D>)
    float_apply<F>(x, y, d, size_t(n));
  else if constexpr (std::is_pointer_v<Y>)
    map(d, n, [&](int i) { return exact_float<O>(x[i], y[i]); });
  else
    map(d, n, [&](int i) { return exact_float<O>(x[i], y); });
}

}  // namespace vrks::arith
