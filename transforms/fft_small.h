// Transforms of up to 32 points: straight radix-2 code with constant
// twiddles, no tables and no work buffer. They read all of their input
// before they store, so they work in place.
#pragma once

#include <cstddef>

#include "transforms/fft_engine.h"

namespace vrks::fft {

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

}  // namespace vrks::fft
