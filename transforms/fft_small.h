// Transforms of up to 32 points: straight radix-2 code with constant
// twiddles, no tables and no work buffer. They read all of their input
// before they store, so they work in place.
#pragma once

#include <cstddef>

#include "transforms/fft_engine.h"

namespace vrks::fft {
// Each instruction-set road compiles its own copy.
namespace {

// sin(2 pi k / 32), k = 0..8: the quarter wave of the 32-point circle.
template <class T>
inline constexpr T kSine32[9] = {
    T(0), T(0.195090322016128267848284868477022240L), T(0.382683432365089771728459984030398866L),
    T(0.555570233019602224742830813948532874L), T(0.707106781186547524400844362104849039L),
    T(0.831469612302545237078788377617905756L), T(0.923879532511286756128183189396788933L),
    T(0.980785280403230449126182236134239036L), T(1)};

template <class T>
constexpr Sine<T> small_sine() { return Sine<T>{kSine32<T>, 8}; }

// The split (A, B) and merge (U, V) tables of the real orders up to 5, as
// build_real_tables would make them, fixed at compile time.
template <class T, int order>
struct SmallRealTables {
  T a[8]{}, b[8]{}, u[8]{}, v[8]{};
  constexpr SmallRealTables() {
    const size_t quarter = order >= 2 ? size_t(1) << (order - 2) : 0;
    const Sine<T> sine{kSine32<T>, 8};
    for (size_t k = 1; k <= quarter; ++k) {
      T c{}, sn{};
      sine.at(k << (5 - order), c, sn);
      a[k - 1] = T(0.5) * c;
      b[k - 1] = T(0.5 - 0.5 * double(sn));
      u[k - 1] = c;
      v[k - 1] = -sn;
    }
  }
};
template <class T, int order>
inline constexpr SmallRealTables<T, order> kSmallReal{};

// ---- 16 and 32 points on four lanes ---------------------------------------------

// W_N^(b k1) for rows k1 = 0 .. N/4 - 1: W cosines then W negated sines, lane
// l holding b = rev-free lane order `perm` of the loads.
template <class T, int N, bool Permuted>
struct SmallTwiddles {
  alignas(32) T v[N / 4][2][4];
  constexpr SmallTwiddles() : v{} {
    const int perm[4] = {0, Permuted ? 2 : 1, Permuted ? 1 : 2, 3};
    const Sine<T> sine{kSine32<T>, 8};
    for (int k1 = 0; k1 < N / 4; ++k1)
      for (int l = 0; l < 4; ++l) {
        T c{}, sn{};
        sine.at(size_t(perm[l] * k1 * (32 / N)) % 32, c, sn);
        v[k1][0][l] = c;
        v[k1][1][l] = -sn;
      }
  }
};
template <class T, int N, bool Permuted>
inline constexpr SmallTwiddles<T, N, Permuted> kSmallTwiddles{};

// N = 4R points as R rows of four: DFTs of length R down the rows, twiddles,
// then DFTs of length 4 across each row after a 4 x 4 transpose.
// `load(r)` gives row r (elements 4r .. 4r+3, lanes in the order that
// `Permuted` names); `store(e, v)` writes four outputs from element e.
template <class X, class T, int N, bool Permuted, class Load, class Store>
[[gnu::always_inline]] inline void small4(Load&& load, Store&& store) {
  using S = Simd<X>;
  constexpr int R = N / 4;
  CV<X> a[R];
  for (int r = 0; r < R; ++r) a[r] = load(r);
  if constexpr (R == 4) dft4(a);
  else dft8(a);
  const auto& tw = kSmallTwiddles<T, N, Permuted>;
  for (int k1 = 1; k1 < R; ++k1) a[k1] = cmul(a[k1], S::load(tw.v[k1][0]), S::load(tw.v[k1][1]));
  constexpr int perm[4] = {0, Permuted ? 2 : 1, Permuted ? 1 : 2, 3};
  for (int c = 0; c < R / 4; ++c) {
    typename S::V re[4], im[4];
    for (int u = 0; u < 4; ++u) re[u] = a[4 * c + u].re, im[u] = a[4 * c + u].im;
    S::transpose(re);
    S::transpose(im);
    CV<X> z[4];
    for (int v = 0; v < 4; ++v) z[perm[v]] = CV<X>{re[v], im[v]};
    dft4(z);
    for (int k2 = 0; k2 < 4; ++k2) store(size_t(R * k2 + 4 * c), z[k2]);
  }
}

// Lanes of four for each element type: SSE floats, AVX doubles.
template <class T> struct Lanes4;
template <> struct Lanes4<float> { using X = F4; static constexpr bool permuted = false; };
template <> struct Lanes4<double> { using X = double; static constexpr bool permuted = true; };

template <class T, int N, bool Inv>
void small_interleaved(const T* src, T* dst, bool scaled, T factor) {
  using X = typename Lanes4<T>::X;
  using S = Simd<X>;
  const auto f = S::set1(factor);
  small4<X, T, N, Lanes4<T>::permuted>(
      [&](int r) {
        CV<X> v;
        if (Inv) S::load_c(src + 8 * r, v.im, v.re);
        else S::load_c(src + 8 * r, v.re, v.im);
        return v;
      },
      [&](size_t e, CV<X> v) {
        if (scaled) v = {S::mul(v.re, f), S::mul(v.im, f)};
        if (Inv) S::store_c(dst + 2 * e, v.im, v.re);
        else S::store_c(dst + 2 * e, v.re, v.im);
      });
}

template <class T, int N>
void small_split(const T* sre, const T* sim, T* dre, T* dim, bool scaled, T factor) {
  using X = typename Lanes4<T>::X;
  using S = Simd<X>;
  const auto f = S::set1(factor);
  small4<X, T, N, false>(
      [&](int r) { return CV<X>{S::load(sre + 4 * r), S::load(sim + 4 * r)}; },
      [&](size_t e, CV<X> v) {
        if (scaled) v = {S::mul(v.re, f), S::mul(v.im, f)};
        S::store(dre + e, v.re);
        S::store(dim + e, v.im);
      });
}

// ---- up to 8 points, one value at a time ------------------------------------------

template <class T> struct One {};
template <class T>
struct Simd<One<T>> {
  using V = T;
  static constexpr int W = 1;
  static V set1(double x) { return T(x); }
  static V add(V a, V b) { return a + b; }
  static V sub(V a, V b) { return a - b; }
  static V mul(V a, V b) { return a * b; }
  static V fmadd(V a, V b, V c) { return a * b + c; }
  static V fmsub(V a, V b, V c) { return a * b - c; }
};

template <class T, int N>
[[gnu::always_inline]] inline void tiny_dft(CV<One<T>>* a) {
  if constexpr (N == 2) {
    const CV<One<T>> s = cadd(a[0], a[1]), d = csub(a[0], a[1]);
    a[0] = s, a[1] = d;
  } else if constexpr (N == 4) {
    dft4(a);
  } else if constexpr (N == 8) {
    dft8(a);
  }
}

// Orders 0 to 3 between interleaved arrays; `Inv` exchanges real and
// imaginary parts on the way in and out. All loads come before the stores.
template <class T, int N, bool Inv>
void tiny_interleaved(const T* src, T* dst, bool scaled, T f) {
  CV<One<T>> a[N];
  for (int i = 0; i < N; ++i) a[i] = Inv ? CV<One<T>>{src[2 * i + 1], src[2 * i]} : CV<One<T>>{src[2 * i], src[2 * i + 1]};
  tiny_dft<T, N>(a);
  for (int i = 0; i < N; ++i) {
    T re = a[i].re, im = a[i].im;
    if (scaled) re = re * f, im = im * f;
    dst[2 * i] = Inv ? im : re;
    dst[2 * i + 1] = Inv ? re : im;
  }
}

template <class T, int N>
void tiny_split(const T* sre, const T* sim, T* dre, T* dim, bool scaled, T f) {
  CV<One<T>> a[N];
  for (int i = 0; i < N; ++i) a[i] = CV<One<T>>{sre[i], sim[i]};
  tiny_dft<T, N>(a);
  for (int i = 0; i < N; ++i) {
    dre[i] = scaled ? a[i].re * f : a[i].re;
    dim[i] = scaled ? a[i].im * f : a[i].im;
  }
}

// The straight road, orders 0 to 5.
template <class T, bool Inv>
void straight_interleaved(int n, const T* src, T* dst, bool scaled, T f) {
  switch (n) {
    case 0: return tiny_interleaved<T, 1, Inv>(src, dst, scaled, f);
    case 1: return tiny_interleaved<T, 2, Inv>(src, dst, scaled, f);
    case 2: return tiny_interleaved<T, 4, Inv>(src, dst, scaled, f);
    case 3: return tiny_interleaved<T, 8, Inv>(src, dst, scaled, f);
    case 4: return small_interleaved<T, 16, Inv>(src, dst, scaled, f);
    default: return small_interleaved<T, 32, Inv>(src, dst, scaled, f);
  }
}
template <class T>
void straight_split(int n, const T* sre, const T* sim, T* dre, T* dim, bool scaled, T f) {
  switch (n) {
    case 0: return tiny_split<T, 1>(sre, sim, dre, dim, scaled, f);
    case 1: return tiny_split<T, 2>(sre, sim, dre, dim, scaled, f);
    case 2: return tiny_split<T, 4>(sre, sim, dre, dim, scaled, f);
    case 3: return tiny_split<T, 8>(sre, sim, dre, dim, scaled, f);
    case 4: return small_split<T, 16>(sre, sim, dre, dim, scaled, f);
    default: return small_split<T, 32>(sre, sim, dre, dim, scaled, f);
  }
}

}  // namespace
}  // namespace vrks::fft
