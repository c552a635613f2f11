// Vector vocabulary of the FFT engine: one AVX2 register of reals, complex
// vectors as a register of real parts and one of imaginary parts, the
// transposes and the (de)interleaving of complex arrays.
#pragma once

#include <immintrin.h>

#include <cstddef>

namespace vrks::fft {
// Each instruction-set road compiles its own copy.
namespace {

template <class T> struct Simd;

template <>
struct Simd<float> {
  using V = __m256;
  static constexpr int W = 8;
  // Lane l of a deinterleaving load holds element kPerm[l] (an involution).
  static constexpr int kPerm[8] = {0, 1, 4, 5, 2, 3, 6, 7};
  static V load(const float* p) { return _mm256_loadu_ps(p); }
  static void store(float* p, V v) { _mm256_storeu_ps(p, v); }
  static V set1(double x) { return _mm256_set1_ps(float(x)); }
  static V add(V a, V b) { return _mm256_add_ps(a, b); }
  static V sub(V a, V b) { return _mm256_sub_ps(a, b); }
  static V mul(V a, V b) { return _mm256_mul_ps(a, b); }
  static V fmadd(V a, V b, V c) { return _mm256_fmadd_ps(a, b, c); }
  static V fmsub(V a, V b, V c) { return _mm256_fmsub_ps(a, b, c); }
  // W interleaved complex values at p: real parts and imaginary parts, lanes
  // in kPerm order.
  static void load_c(const float* p, V& re, V& im) {
    V a = load(p), b = load(p + 8);
    re = _mm256_shuffle_ps(a, b, 0x88);
    im = _mm256_shuffle_ps(a, b, 0xDD);
  }
  // Stores W complex values in natural order, interleaved.
  static void store_c(float* p, V re, V im) {
    V lo = _mm256_unpacklo_ps(re, im), hi = _mm256_unpackhi_ps(re, im);
    store(p, _mm256_permute2f128_ps(lo, hi, 0x20));
    store(p + 8, _mm256_permute2f128_ps(lo, hi, 0x31));
  }
  // The inverse of load_c: lanes in kPerm order back to interleaved pairs.
  static void store_perm(float* p, V re, V im) {
    store(p, _mm256_unpacklo_ps(re, im));
    store(p + 8, _mm256_unpackhi_ps(re, im));
  }
  // Lane l takes lane kPerm[l]; lanes in reverse order.
  static V permute(V v) { return _mm256_permutevar8x32_ps(v, _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7)); }
  static V reverse(V v) { return _mm256_permutevar8x32_ps(v, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0)); }
  // Transposes W x W values held in W registers.
  static void transpose(V* r) {
    V t0 = _mm256_unpacklo_ps(r[0], r[1]), t1 = _mm256_unpackhi_ps(r[0], r[1]);
    V t2 = _mm256_unpacklo_ps(r[2], r[3]), t3 = _mm256_unpackhi_ps(r[2], r[3]);
    V t4 = _mm256_unpacklo_ps(r[4], r[5]), t5 = _mm256_unpackhi_ps(r[4], r[5]);
    V t6 = _mm256_unpacklo_ps(r[6], r[7]), t7 = _mm256_unpackhi_ps(r[6], r[7]);
    V u0 = _mm256_shuffle_ps(t0, t2, 0x44), u1 = _mm256_shuffle_ps(t0, t2, 0xEE);
    V u2 = _mm256_shuffle_ps(t1, t3, 0x44), u3 = _mm256_shuffle_ps(t1, t3, 0xEE);
    V u4 = _mm256_shuffle_ps(t4, t6, 0x44), u5 = _mm256_shuffle_ps(t4, t6, 0xEE);
    V u6 = _mm256_shuffle_ps(t5, t7, 0x44), u7 = _mm256_shuffle_ps(t5, t7, 0xEE);
    r[0] = _mm256_permute2f128_ps(u0, u4, 0x20);
    r[1] = _mm256_permute2f128_ps(u1, u5, 0x20);
    r[2] = _mm256_permute2f128_ps(u2, u6, 0x20);
    r[3] = _mm256_permute2f128_ps(u3, u7, 0x20);
    r[4] = _mm256_permute2f128_ps(u0, u4, 0x31);
    r[5] = _mm256_permute2f128_ps(u1, u5, 0x31);
    r[6] = _mm256_permute2f128_ps(u2, u6, 0x31);
    r[7] = _mm256_permute2f128_ps(u3, u7, 0x31);
  }
};

template <>
struct Simd<double> {
  using V = __m256d;
  static constexpr int W = 4;
  static constexpr int kPerm[4] = {0, 2, 1, 3};
  static V load(const double* p) { return _mm256_loadu_pd(p); }
  static void store(double* p, V v) { _mm256_storeu_pd(p, v); }
  static V set1(double x) { return _mm256_set1_pd(x); }
  static V add(V a, V b) { return _mm256_add_pd(a, b); }
  static V sub(V a, V b) { return _mm256_sub_pd(a, b); }
  static V mul(V a, V b) { return _mm256_mul_pd(a, b); }
  static V fmadd(V a, V b, V c) { return _mm256_fmadd_pd(a, b, c); }
  static V fmsub(V a, V b, V c) { return _mm256_fmsub_pd(a, b, c); }
  static void load_c(const double* p, V& re, V& im) {
    V a = load(p), b = load(p + 4);
    re = _mm256_unpacklo_pd(a, b);
    im = _mm256_unpackhi_pd(a, b);
  }
  static void store_c(double* p, V re, V im) {
    V lo = _mm256_unpacklo_pd(re, im), hi = _mm256_unpackhi_pd(re, im);
    store(p, _mm256_permute2f128_pd(lo, hi, 0x20));
    store(p + 4, _mm256_permute2f128_pd(lo, hi, 0x31));
  }
  static void store_perm(double* p, V re, V im) {
    store(p, _mm256_unpacklo_pd(re, im));
    store(p + 4, _mm256_unpackhi_pd(re, im));
  }
  static V permute(V v) { return _mm256_permute4x64_pd(v, 0xD8); }
  static V reverse(V v) { return _mm256_permute4x64_pd(v, 0x1B); }
  static void transpose(V* r) {
    V t0 = _mm256_unpacklo_pd(r[0], r[1]), t1 = _mm256_unpackhi_pd(r[0], r[1]);
    V t2 = _mm256_unpacklo_pd(r[2], r[3]), t3 = _mm256_unpackhi_pd(r[2], r[3]);
    r[0] = _mm256_permute2f128_pd(t0, t2, 0x20);
    r[1] = _mm256_permute2f128_pd(t1, t3, 0x20);
    r[2] = _mm256_permute2f128_pd(t0, t2, 0x31);
    r[3] = _mm256_permute2f128_pd(t1, t3, 0x31);
  }
};

// Four floats: the lanes of the short transforms.
struct F4 {};
template <>
struct Simd<F4> {
  using V = __m128;
  static constexpr int W = 4;
  static constexpr int kPerm[4] = {0, 1, 2, 3};
  static V load(const float* p) { return _mm_loadu_ps(p); }
  static void store(float* p, V v) { _mm_storeu_ps(p, v); }
  static V set1(double x) { return _mm_set1_ps(float(x)); }
  static V add(V a, V b) { return _mm_add_ps(a, b); }
  static V sub(V a, V b) { return _mm_sub_ps(a, b); }
  static V mul(V a, V b) { return _mm_mul_ps(a, b); }
  static V fmadd(V a, V b, V c) { return _mm_fmadd_ps(a, b, c); }
  static V fmsub(V a, V b, V c) { return _mm_fmsub_ps(a, b, c); }
  static void load_c(const float* p, V& re, V& im) {
    V a = load(p), b = load(p + 4);
    re = _mm_shuffle_ps(a, b, 0x88);
    im = _mm_shuffle_ps(a, b, 0xDD);
  }
  static void store_c(float* p, V re, V im) {
    store(p, _mm_unpacklo_ps(re, im));
    store(p + 4, _mm_unpackhi_ps(re, im));
  }
  static void transpose(V* r) { _MM_TRANSPOSE4_PS(r[0], r[1], r[2], r[3]); }
};

// A vector of W complex values.
template <class T>
struct CV {
  typename Simd<T>::V re, im;
};

template <class T>
[[gnu::always_inline]] inline CV<T> cadd(CV<T> a, CV<T> b) {
  using S = Simd<T>;
  return {S::add(a.re, b.re), S::add(a.im, b.im)};
}
template <class T>
[[gnu::always_inline]] inline CV<T> csub(CV<T> a, CV<T> b) {
  using S = Simd<T>;
  return {S::sub(a.re, b.re), S::sub(a.im, b.im)};
}
// a times -i
template <class T>
[[gnu::always_inline]] inline CV<T> mul_ni(CV<T> a) {
  using S = Simd<T>;
  return {a.im, S::sub(S::set1(0.0), a.re)};
}
// a times the twiddle (wr, wi)
template <class T>
[[gnu::always_inline]] inline CV<T> cmul(CV<T> a, typename Simd<T>::V wr, typename Simd<T>::V wi) {
  using S = Simd<T>;
  return {S::fmsub(a.re, wr, S::mul(a.im, wi)), S::fmadd(a.re, wi, S::mul(a.im, wr))};
}

// In-place DFT of 4 and of 8 complex vectors, natural order in and out.
template <class T>
[[gnu::always_inline]] inline void dft4(CV<T>* a) {
  using S = Simd<T>;
  CV<T> t0 = cadd(a[0], a[2]), t1 = csub(a[0], a[2]);
  CV<T> t2 = cadd(a[1], a[3]), t3 = csub(a[1], a[3]);
  a[0] = cadd(t0, t2);
  a[2] = csub(t0, t2);
  a[1] = {S::add(t1.re, t3.im), S::sub(t1.im, t3.re)};  // t1 - i t3
  a[3] = {S::sub(t1.re, t3.im), S::add(t1.im, t3.re)};  // t1 + i t3
}

template <class T>
[[gnu::always_inline]] inline void dft8(CV<T>* a) {
  using S = Simd<T>;
  const auto h = S::set1(0.70710678118654752440);
  CV<T> t0 = cadd(a[0], a[4]), t1 = csub(a[0], a[4]);
  CV<T> t2 = cadd(a[2], a[6]), t3 = csub(a[2], a[6]);
  CV<T> t4 = cadd(a[1], a[5]), t5 = csub(a[1], a[5]);
  CV<T> t6 = cadd(a[3], a[7]), t7 = csub(a[3], a[7]);
  CV<T> e0 = cadd(t0, t2), e2 = csub(t0, t2);
  CV<T> e1 = {S::add(t1.re, t3.im), S::sub(t1.im, t3.re)};
  CV<T> e3 = {S::sub(t1.re, t3.im), S::add(t1.im, t3.re)};
  CV<T> o0 = cadd(t4, t6), o2 = csub(t4, t6);
  CV<T> o1 = {S::add(t5.re, t7.im), S::sub(t5.im, t7.re)};
  CV<T> o3 = {S::sub(t5.re, t7.im), S::add(t5.im, t7.re)};
  // o1 (1 - i)/sqrt2, o2 (-i), o3 (-1 - i)/sqrt2
  CV<T> w1 = {S::mul(S::add(o1.re, o1.im), h), S::mul(S::sub(o1.im, o1.re), h)};
  CV<T> w2 = mul_ni(o2);
  CV<T> w3 = {S::mul(S::sub(o3.im, o3.re), h), S::mul(S::sub(S::set1(0.0), S::add(o3.re, o3.im)), h)};
  a[0] = cadd(e0, o0);
  a[4] = csub(e0, o0);
  a[1] = cadd(e1, w1);
  a[5] = csub(e1, w1);
  a[2] = cadd(e2, w2);
  a[6] = csub(e2, w2);
  a[3] = cadd(e3, w3);
  a[7] = csub(e3, w3);
}

// In-place DFT of 16 complex vectors as 4 x 4: DFTs of 4 over j2 for each
// j1 (j = 4 j2 + j1), twiddles W16^(j1 q1), DFTs of 4 over j1.
template <class T>
[[gnu::always_inline]] inline void dft16(CV<T>* a) {
  using S = Simd<T>;
  const auto c1 = S::set1(0.92387953251128675613), s1 = S::set1(0.38268343236508977173);
  const auto h = S::set1(0.70710678118654752440);
  const auto nc1 = S::set1(-0.92387953251128675613), ns1 = S::set1(-0.38268343236508977173);
  const auto nh = S::set1(-0.70710678118654752440);
  CV<T> b[4][4];
  for (int j1 = 0; j1 < 4; ++j1) {
    CV<T> t[4] = {a[j1], a[4 + j1], a[8 + j1], a[12 + j1]};
    dft4(t);
    for (int q1 = 0; q1 < 4; ++q1) b[j1][q1] = t[q1];
  }
  b[1][1] = cmul(b[1][1], c1, ns1);
  b[1][2] = cmul(b[1][2], h, nh);
  b[1][3] = cmul(b[1][3], s1, nc1);
  b[2][1] = cmul(b[2][1], h, nh);
  b[2][2] = mul_ni(b[2][2]);
  b[2][3] = cmul(b[2][3], nh, nh);
  b[3][1] = cmul(b[3][1], s1, nc1);
  b[3][2] = cmul(b[3][2], nh, nh);
  b[3][3] = cmul(b[3][3], nc1, s1);
  for (int q1 = 0; q1 < 4; ++q1) {
    CV<T> t[4] = {b[0][q1], b[1][q1], b[2][q1], b[3][q1]};
    dft4(t);
    for (int q2 = 0; q2 < 4; ++q2) a[q1 + 4 * q2] = t[q2];
  }
}

// The DFT of R = 4, 8 or 16 complex vectors.
template <int R, class T>
[[gnu::always_inline]] inline void dft(CV<T>* a) {
  if constexpr (R == 4) dft4(a);
  else if constexpr (R == 8) dft8(a);
  else dft16(a);
}

}  // namespace
}  // namespace vrks::fft
