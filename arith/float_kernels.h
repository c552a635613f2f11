// Vector kernels of the floating arithmetic: one loop written over the
// element precision and the operation. Each operation has a vector form and
// a scalar form made of the same IEEE operations in the same order, so that
// the scalar head and tail give what the vector body would.
//
// Intermediate products are laundered through `keep` before they are added,
// so that no compiler pattern can fuse a product into an addition: a fused
// operation rounds once where the library promises two roundings.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/types.h"

namespace vrks::arith {

template <class T>
[[gnu::always_inline]] inline T keep(T x) {
  __asm__("" : "+x"(x));
  return x;
}

template <class T>
struct Lanes;
template <>
struct Lanes<float> {
  using V = __m256;
  static constexpr size_t N = 8;
  static V ld(const float* p) { return _mm256_loadu_ps(p); }
  static void st(float* p, V v) { _mm256_storeu_ps(p, v); }
  static void stream(float* p, V v) { _mm256_stream_ps(p, v); }
  static V set1(float x) { return _mm256_set1_ps(x); }
  static V add(V a, V b) { return _mm256_add_ps(a, b); }
  static V sub(V a, V b) { return _mm256_sub_ps(a, b); }
  static V mul(V a, V b) { return _mm256_mul_ps(a, b); }
  static V addsub(V a, V b) { return _mm256_addsub_ps(a, b); }
  static V dup_re(V a) { return _mm256_moveldup_ps(a); }
  static V dup_im(V a) { return _mm256_movehdup_ps(a); }
  static V swap_parts(V a) { return _mm256_permute_ps(a, 0xB1); }
  static V neg_re(V a) { return _mm256_xor_ps(a, _mm256_setr_ps(-0.0f, 0, -0.0f, 0, -0.0f, 0, -0.0f, 0)); }
  static V pair(float re, float im) { return _mm256_setr_ps(re, im, re, im, re, im, re, im); }
};
template <>
struct Lanes<double> {
  using V = __m256d;
  static constexpr size_t N = 4;
  static V ld(const double* p) { return _mm256_loadu_pd(p); }
  static void st(double* p, V v) { _mm256_storeu_pd(p, v); }
  static void stream(double* p, V v) { _mm256_stream_pd(p, v); }
  static V set1(double x) { return _mm256_set1_pd(x); }
  static V add(V a, V b) { return _mm256_add_pd(a, b); }
  static V sub(V a, V b) { return _mm256_sub_pd(a, b); }
  static V mul(V a, V b) { return _mm256_mul_pd(a, b); }
  static V addsub(V a, V b) { return _mm256_addsub_pd(a, b); }
  static V dup_re(V a) { return _mm256_movedup_pd(a); }
  static V dup_im(V a) { return _mm256_permute_pd(a, 0xF); }
  static V swap_parts(V a) { return _mm256_permute_pd(a, 0x5); }
  static V neg_re(V a) { return _mm256_xor_pd(a, _mm256_setr_pd(-0.0, 0, -0.0, 0)); }
  static V pair(double re, double im) { return _mm256_setr_pd(re, im, re, im); }
};

// From this many destination bytes a kernel streams its results past the
// cache: they won't be read again soon, and the cache holds the sources.
constexpr size_t kStreamFrom = size_t(1) << 20;

// Runs `body(i)` (a vector of parts at part index i) and `tail(k)` (one
// element at element index k) over n elements of `per` parts each, storing
// vectors with `store(p, v)`; the destination is brought to 32 bytes by
// single elements first when it is long enough to stream.
// A destination that is also a source is never streamed: its lines are in
// the cache already.
template <class P, class Body, class Tail>
inline void run_parts(P* d, size_t n, size_t per, bool apart, Body&& body, Tail&& tail) {
  using L = Lanes<P>;
  const size_t parts = n * per;
  size_t k = 0;  // elements done
  const bool stream = apart && parts * sizeof(P) >= kStreamFrom;
  if (stream) {
    while (k < n && (reinterpret_cast<uintptr_t>(d + k * per) & 31) != 0) tail(k++);
    if ((reinterpret_cast<uintptr_t>(d + k * per) & 31) != 0) {  // can't be aligned: no streaming
      for (; k < n; ++k) tail(k);
      return;
    }
  }
  size_t i = k * per;
  if (stream) {
    for (; i + 2 * L::N <= parts; i += 2 * L::N) {
      const auto a = body(i), b = body(i + L::N);
      L::stream(d + i, a);
      L::stream(d + i + L::N, b);
    }
    _mm_sfence();
  } else {
    for (; i + 2 * L::N <= parts; i += 2 * L::N) {
      const auto a = body(i), b = body(i + L::N);
      L::st(d + i, a);
      L::st(d + i + L::N, b);
    }
    for (; i + L::N <= parts; i += L::N) L::st(d + i, body(i));
  }
  for (k = i / per; k < n; ++k) tail(k);
}

// ---- operations ---------------------------------------------------------------

enum class FOp { Add, Sub, Mul };

template <FOp O, class L, class V>
inline V vop(V a, V b) {
  if constexpr (O == FOp::Add) return L::add(a, b);
  else if constexpr (O == FOp::Sub) return L::sub(a, b);
  else return L::mul(a, b);
}
template <FOp O, class P>
inline P sop(P a, P b) {
  if constexpr (O == FOp::Add) return a + b;
  else if constexpr (O == FOp::Sub) return a - b;
  else return a * b;
}

// (a + ib)(c + id) = (ac - bd) + i(bc + ad), four products and two sums.
template <class T>
inline T complex_product(const T& x, const T& y) {
  const auto ac = keep(x.re * y.re), bd = keep(x.im * y.im), bc = keep(x.im * y.re), ad = keep(x.re * y.im);
  return T{ac - bd, bc + ad};
}
// The same on vectors of complex numbers: [ac, bc] and [bd, ad], then one
// subtract-and-add.
template <class L, class V>
inline V complex_product(V x, V y) {
  return L::addsub(L::mul(x, L::dup_re(y)), L::mul(L::swap_parts(x), L::dup_im(y)));
}

}  // namespace vrks::arith

namespace vrks::arith {

// d[k] = x[k] (op) y[k], or x[k] (op) y for a constant y; element types
// float, double and their complex records. Sums and differences go part by
// part; complex products as above.
template <FOp O, class T, class Y>
void float_apply(const T* x, const Y& y, T* d, size_t n) {
  using P = part_t<T>;
  using L = Lanes<P>;
  constexpr bool cplx = is_complex_v<T>;
  constexpr size_t per = cplx ? 2 : 1;
  constexpr bool arrays = std::is_pointer_v<Y>;
  const P* xp = reinterpret_cast<const P*>(x);
  P* dp = reinterpret_cast<P*>(d);
  bool apart = static_cast<const void*>(x) != d;
  if constexpr (arrays) apart = apart && static_cast<const void*>(y) != d;
  auto y_at = [&](size_t k) -> const T& {
    if constexpr (arrays) return y[k];
    else return y;
  };
  auto tail = [&](size_t k) {
    if constexpr (cplx && O == FOp::Mul) d[k] = complex_product(x[k], y_at(k));
    else if constexpr (cplx) d[k] = T{sop<O>(x[k].re, y_at(k).re), sop<O>(x[k].im, y_at(k).im)};
    else d[k] = sop<O>(x[k], y_at(k));
  };
  if constexpr (arrays) {
    const P* yp = reinterpret_cast<const P*>(y);
    if constexpr (cplx && O == FOp::Mul)
      run_parts(dp, n, per, apart, [&](size_t i) { return complex_product<L>(L::ld(xp + i), L::ld(yp + i)); }, tail);
    else
      run_parts(dp, n, per, apart, [&](size_t i) { return vop<O, L>(L::ld(xp + i), L::ld(yp + i)); }, tail);
  } else if constexpr (cplx && O == FOp::Mul) {
    const auto c = L::set1(y.re), e = L::set1(y.im);
    run_parts(dp, n, per, apart, [&](size_t i) {
      const auto v = L::ld(xp + i);
      return L::addsub(L::mul(v, c), L::mul(L::swap_parts(v), e));
    }, tail);
  } else {
    typename L::V yv;
    if constexpr (cplx) yv = L::pair(y.re, y.im);
    else yv = L::set1(y);
    run_parts(dp, n, per, apart, [&](size_t i) { return vop<O, L>(L::ld(xp + i), yv); }, tail);
  }
}

// d[k] = value - x[k].
template <class T>
void float_subtract_from(const T& value, const T* x, T* d, size_t n) {
  using P = part_t<T>;
  using L = Lanes<P>;
  constexpr size_t per = is_complex_v<T> ? 2 : 1;
  typename L::V v;
  if constexpr (is_complex_v<T>) v = L::pair(value.re, value.im);
  else v = L::set1(value);
  const P* xp = reinterpret_cast<const P*>(x);
  run_parts(reinterpret_cast<P*>(d), n, per, static_cast<const void*>(x) != d, [&](size_t i) { return L::sub(v, L::ld(xp + i)); },
            [&](size_t k) {
              if constexpr (is_complex_v<T>) d[k] = T{value.re - x[k].re, value.im - x[k].im};
              else d[k] = value - x[k];
            });
}

// acc[k] = acc[k] + x[k] * y[k] (or * y), two roundings; complex:
// ((ac) + acc) - bd and ((bc) + acc) + ad.
template <class T, class Y>
void float_accumulate(const T* x, const Y& y, T* acc, size_t n) {
  using P = part_t<T>;
  using L = Lanes<P>;
  constexpr bool cplx = is_complex_v<T>;
  constexpr bool arrays = std::is_pointer_v<Y>;
  auto y_at = [&](size_t k) -> const T& {
    if constexpr (arrays) return y[k];
    else return y;
  };
  auto tail = [&](size_t k) {
    const T& b = y_at(k);
    if constexpr (cplx) {
      const auto ac = keep(x[k].re * b.re), bd = keep(x[k].im * b.im), bc = keep(x[k].im * b.re),
                 ad = keep(x[k].re * b.im);
      acc[k] = T{(ac + acc[k].re) - bd, (bc + acc[k].im) + ad};
    } else {
      acc[k] = acc[k] + keep(x[k] * b);
    }
  };
  const P* xp = reinterpret_cast<const P*>(x);
  P* ap = reinterpret_cast<P*>(acc);
  if constexpr (cplx) {
    const P* yp = reinterpret_cast<const P*>(y);
    run_parts(ap, n, 2, false, [&](size_t i) {
      const auto a = L::ld(xp + i), b = L::ld(yp + i);
      return L::addsub(L::add(L::mul(a, L::dup_re(b)), L::ld(ap + i)), L::mul(L::swap_parts(a), L::dup_im(b)));
    }, tail);
  } else if constexpr (arrays) {
    run_parts(ap, n, 1, false, [&](size_t i) { return L::add(L::ld(ap + i), L::mul(L::ld(xp + i), L::ld(y + i))); }, tail);
  } else {
    const auto v = L::set1(y);
    run_parts(ap, n, 1, false, [&](size_t i) { return L::add(L::ld(ap + i), L::mul(L::ld(xp + i), v)); }, tail);
  }
}

}  // namespace vrks::arith
