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

// In-place forward DFT of 2^n points (n <= 5), natural order in and out.
template <class T>
inline void small_dft(T* re, T* im, int n) {
  const int N = 1 << n;
  for (int i = 0; i < N; ++i) {
    const int j = int(reverse_bits(uint32_t(i), n));
    if (i < j) {
      std::swap(re[i], re[j]);
      std::swap(im[i], im[j]);
    }
  }
  const Sine<T> sine = small_sine<T>();
  for (int L = 2; L <= N; L <<= 1) {
    const int half = L / 2, step = 32 / L;
    for (int k = 0; k < half; ++k) {
      T c, s;
      sine.at(size_t(k * step), c, s);
      for (int g = 0; g < N; g += L) {
        T& ar = re[g + k];
        T& ai = im[g + k];
        T& br = re[g + k + half];
        T& bi = im[g + k + half];
        T tr, ti;
        if (k == 0) {
          tr = br, ti = bi;
        } else if (4 * k == L) {  // times -i
          tr = bi, ti = -br;
        } else {  // times c - i s
          tr = br * c + bi * s;
          ti = bi * c - br * s;
        }
        br = ar - tr, bi = ai - ti;
        ar = ar + tr, ai = ai + ti;
      }
    }
  }
}

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

// One small complex transform between interleaved or split arrays; `Inv`
// exchanges real and imaginary parts on the way in and out.
template <class T>
struct SmallIO {
  T re[32], im[32];
  void load_interleaved(const T* p, int N, bool inv) {
    for (int i = 0; i < N; ++i) (inv ? im : re)[i] = p[2 * i], (inv ? re : im)[i] = p[2 * i + 1];
  }
  void store_interleaved(T* p, int N, bool inv, bool scaled, T f) const {
    for (int i = 0; i < N; ++i) {
      T a = (inv ? im : re)[i], b = (inv ? re : im)[i];
      if (scaled) a = a * f, b = b * f;
      p[2 * i] = a, p[2 * i + 1] = b;
    }
  }
  void load_split(const T* r, const T* m, int N) {
    for (int i = 0; i < N; ++i) re[i] = r[i], im[i] = m[i];
  }
  void store_split(T* r, T* m, int N, bool scaled, T f) const {
    for (int i = 0; i < N; ++i) {
      r[i] = scaled ? re[i] * f : re[i];
      m[i] = scaled ? im[i] * f : im[i];
    }
  }
};

}  // namespace
}  // namespace vrks::fft
