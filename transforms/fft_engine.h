// The complex power-of-two engine (orders 6 and above).
//
// Decimation in time over a bit-reversed input. Between the first and the
// last pass the data lives in a working format: runs of W complex values
// held as W real parts followed by W imaginary parts (W = the lanes of one
// register), so that every butterfly works on whole registers. Split arrays
// keep their two arrays instead.
//
// Stage 0 is a radix-8 pass that either gathers its input in bit-reversed
// order straight from the source (`gather_pass`) or, for long transforms
// whose data was permuted in place beforehand, reads it in natural order
// (`natural_pass`). Every later stage combines r sub-transforms of length P
// into one of length rP. Its twiddle table holds, for each run of W values of
// k and for j = 1 .. r-1, W cosines and W negated sines of 2 pi j k / (rP).
// The inverse transform is the forward one with real and imaginary parts
// exchanged on the way in and on the way out.
#pragma once

#include <cstdint>
#include <cstring>
#include <utility>

#include "transforms/fft_simd.h"
#include "transforms/fft_state.h"

namespace vrks::fft {
// Each instruction-set road compiles its own copy.
namespace {

constexpr uint32_t reverse_bits(uint32_t x, int bits) {
  uint32_t r = 0;
  for (int i = 0; i < bits; ++i, x >>= 1) r = (r << 1) | (x & 1);
  return r;
}

// ---- data access -------------------------------------------------------------

// Working format in one array: element e (a multiple of W) has its W real
// parts at 2e and its W imaginary parts at 2e + W.
template <class T>
struct Blocked {
  T* w;
  static constexpr int W = Simd<T>::W;
  CV<T> load(size_t e) const { return {Simd<T>::load(w + 2 * e), Simd<T>::load(w + 2 * e + W)}; }
  void store(size_t e, CV<T> v) const {
    Simd<T>::store(w + 2 * e, v.re);
    Simd<T>::store(w + 2 * e + W, v.im);
  }
};

// Two arrays of real and imaginary parts.
template <class T>
struct SplitIO {
  T* re;
  T* im;
  CV<T> load(size_t e) const { return {Simd<T>::load(re + e), Simd<T>::load(im + e)}; }
  void store(size_t e, CV<T> v) const {
    Simd<T>::store(re + e, v.re);
    Simd<T>::store(im + e, v.im);
  }
};

// Sources of the first pass; `Inv` exchanges real and imaginary parts.
template <class T, bool Inv>
struct InterleavedSrc {
  const T* p;
  static constexpr const int* perm = Simd<T>::kPerm;
  CV<T> load(size_t e) const {
    CV<T> v;
    if (Inv) Simd<T>::load_c(p + 2 * e, v.im, v.re);
    else Simd<T>::load_c(p + 2 * e, v.re, v.im);
    return v;
  }
};
template <class T, bool Inv>
struct SplitSrc {
  const T* re;
  const T* im;
  static constexpr int kIdentity[8] = {0, 1, 2, 3, 4, 5, 6, 7};
  static constexpr const int* perm = kIdentity;
  CV<T> load(size_t e) const {
    CV<T> v{Simd<T>::load(re + e), Simd<T>::load(im + e)};
    if (Inv) std::swap(v.re, v.im);
    return v;
  }
};

// Destinations of the last pass, with the optional factor.
template <class T, bool Inv>
struct InterleavedDst {
  T* p;
  bool scaled;
  typename Simd<T>::V factor;
  void store(size_t e, CV<T> v) const {
    if (scaled) v = {Simd<T>::mul(v.re, factor), Simd<T>::mul(v.im, factor)};
    if (Inv) Simd<T>::store_c(p + 2 * e, v.im, v.re);
    else Simd<T>::store_c(p + 2 * e, v.re, v.im);
  }
};
template <class T, bool Inv>
struct SplitDst {
  T* re;
  T* im;
  bool scaled;
  typename Simd<T>::V factor;
  void store(size_t e, CV<T> v) const {
    if (scaled) v = {Simd<T>::mul(v.re, factor), Simd<T>::mul(v.im, factor)};
    Simd<T>::store(Inv ? im + e : re + e, v.re);
    Simd<T>::store(Inv ? re + e : im + e, v.im);
  }
};

// ---- stage 0 -------------------------------------------------------------------

// Reads x[r N/R0 + c], r = 0 .. R0-1 (R0 = 8 or 16), for every column c;
// the R0-point DFT of column c goes to elements R0 g .. R0 g + R0-1 of the
// working area, g = rev(c) over n - log2 R0 bits. `rev_base[i]` is rev(i W)
// over those bits.
template <class T, int R0, class Src, class Out>
void gather_pass(const Src& src, const Out& out, int n, const uint32_t* rev_base) {
  using S = Simd<T>;
  constexpr int W = S::W;
  const int bits = n - (R0 == 8 ? 3 : 4);
  const size_t rows = size_t(1) << bits;
  uint32_t lane_rev[W];
  for (int j = 0; j < W; ++j) lane_rev[j] = reverse_bits(uint32_t(Src::perm[j]), bits);
  for (size_t c = 0, i = 0; c < rows; c += W, ++i) {
    CV<T> a[R0];
    for (int r = 0; r < R0; ++r) a[r] = src.load(r * rows + c);
    if constexpr (R0 == 8) dft8(a);
    else dft16(a);
    const uint32_t g0 = rev_base[i];
    for (int q = 0; q < R0; q += W) {
      typename S::V re[W], im[W];
      for (int k = 0; k < W; ++k) re[k] = a[q + k].re, im[k] = a[q + k].im;
      S::transpose(re);
      S::transpose(im);
      for (int j = 0; j < W; ++j) out.store(size_t(g0 + lane_rev[j]) * R0 + q, CV<T>{re[j], im[j]});
    }
  }
}

// The same pass over data already in bit-reversed order: the 8-point DFT of
// elements 8g .. 8g+7 replaces them, for `count` elements from `first`.
template <class T, class Src, class Out>
void natural_pass(const Src& src, const Out& out, size_t first, size_t count) {
  using S = Simd<T>;
  constexpr int W = S::W;
  for (size_t g = first; g < first + count; g += 8 * W) {
    CV<T> a[8];
    if constexpr (W == 8) {
      typename S::V re[8], im[8];
      for (int q = 0; q < 8; ++q) {
        CV<T> v = src.load(g + 8 * q);
        re[q] = v.re, im[q] = v.im;
      }
      S::transpose(re);
      S::transpose(im);
      // position q of a group holds row rev(q) of its 8-point DFT
      for (int v = 0; v < 8; ++v) a[reverse_bits(Src::perm[v], 3)] = CV<T>{re[v], im[v]};
      dft8(a);
      for (int k = 0; k < 8; ++k) re[k] = a[k].re, im[k] = a[k].im;
      S::transpose(re);
      S::transpose(im);
      for (int q = 0; q < 8; ++q) out.store(g + 8 * q, CV<T>{re[q], im[q]});
    } else {
      typename S::V re0[4], im0[4], re1[4], im1[4];
      for (int q = 0; q < 4; ++q) {
        CV<T> lo = src.load(g + 8 * q), hi = src.load(g + 8 * q + 4);
        re0[q] = lo.re, im0[q] = lo.im, re1[q] = hi.re, im1[q] = hi.im;
      }
      S::transpose(re0);
      S::transpose(im0);
      S::transpose(re1);
      S::transpose(im1);
      for (int v = 0; v < 4; ++v) {
        a[reverse_bits(Src::perm[v], 3)] = CV<T>{re0[v], im0[v]};
        a[reverse_bits(4 + Src::perm[v], 3)] = CV<T>{re1[v], im1[v]};
      }
      dft8(a);
      for (int k = 0; k < 4; ++k) {
        re0[k] = a[k].re, im0[k] = a[k].im;
        re1[k] = a[k + 4].re, im1[k] = a[k + 4].im;
      }
      S::transpose(re0);
      S::transpose(im0);
      S::transpose(re1);
      S::transpose(im1);
      for (int q = 0; q < 4; ++q) {
        out.store(g + 8 * q, CV<T>{re0[q], im0[q]});
        out.store(g + 8 * q + 4, CV<T>{re1[q], im1[q]});
      }
    }
  }
}

// ---- later stages ----------------------------------------------------------------

// Twiddles that a stage of radix R stores per run of k: W^k and W^2k, and
// W^4k for radix 8; the others are their products.
constexpr int stored_twiddles(int r) { return r == 4 ? 2 : 3; }
constexpr int stored_power(int, int i) { return 1 << i; }

// Combines R sub-transforms of length P into one of length R P, for every
// group in [first, first + count). Block b of a group holds sub-transform
// rev(b); output q goes to k + q P in natural order.
template <class T, int R, class In, class Out>
void radix_stage(const In& in, const Out& out, size_t first, size_t count, size_t P, const T* tw) {
  using S = Simd<T>;
  using V = typename S::V;
  constexpr int W = S::W;
  constexpr int bits = R == 4 ? 2 : 3;
  constexpr int stored = stored_twiddles(R);
  for (size_t g = first; g < first + count; g += R * P) {
    const T* t = tw;
    for (size_t k = 0; k < P; k += W, t += 2 * stored * W) {
      CV<T> a[R];
      for (int b = 0; b < R; ++b) a[reverse_bits(b, bits)] = in.load(g + b * P + k);
      CV<T> w[R];
      for (int i = 0; i < stored; ++i) w[1 << i] = CV<T>{S::load(t + 2 * i * W), S::load(t + (2 * i + 1) * W)};
      // w[j] = w[high bit of j] w[rest of j]
      for (int j = 3; j < R; ++j)
        if (j & (j - 1)) {
          const int h = 1 << (31 - __builtin_clz(j));
          w[j] = cmul(w[j - h], w[h].re, w[h].im);
        }
      for (int j = 1; j < R; ++j) a[j] = cmul(a[j], w[j].re, w[j].im);
      if constexpr (R == 4) dft4(a);
      else dft8(a);
      for (int q = 0; q < R; ++q) out.store(g + q * P + k, a[q]);
    }
  }
  (void)sizeof(V);
}

template <class T, class In, class Out>
void run_stage(int radix, const In& in, const Out& out, size_t first, size_t count, size_t P,
               const T* tw) {
  if (radix == 4) radix_stage<T, 4>(in, out, first, count, P, tw);
  else radix_stage<T, 8>(in, out, first, count, P, tw);
}

// Reals of the twiddle table of a stage of radix r over length P.
constexpr size_t stage_table_size(int r, size_t P) { return 2 * size_t(stored_twiddles(r)) * P; }

// ---- the plan --------------------------------------------------------------------

// Radix 8 for every three bits; a remainder of 2 bits takes a radix-4
// stage, one of 4 bits two radix-4 stages, last (measured the faster way).
inline void add_stages(Plan& p, int bits) {
  const int fours = bits % 3 == 2 ? 1 : bits % 3 == 1 ? 2 : 0;
  for (bits -= 2 * fours; bits > 0; bits -= 3) p.radix[p.stages++] = 8;
  for (int i = 0; i < fours; ++i) p.radix[p.stages++] = 4;
}

// Chunks of 256 kB stay in the second-level cache through the inner stages.
template <class T>
Plan make_plan(int n) {
  Plan p{};
  constexpr int chunk = sizeof(T) == 4 ? 15 : 14;
  int inner = n <= chunk + 1 ? n : chunk;
  p.inner_bits = int8_t(inner);
  p.reverse_first = n > Limits<T>::direct ? 1 : 0;
  // From order 9 a first pass of radix 16 pays for its larger butterflies.
  p.radix[0] = !p.reverse_first && n >= 9 ? 16 : 8;
  p.stages = 1;
  add_stages(p, inner - (p.radix[0] == 16 ? 4 : 3));
  p.inner_stages = p.stages;
  if (n > inner) add_stages(p, n - inner);
  return p;
}

// ---- tables --------------------------------------------------------------------

// sin(2 pi i / L) and cos for any i, from a quarter-wave table s[0..Q] of the
// order whose quarter length is Q, read with a stride.
template <class T>
struct Sine {
  const T* s;
  size_t quarter;  // Q = L/4 of the table's own length
  // angle 2 pi m / (4 Q), m in [0, 4Q)
  constexpr void at(size_t m, T& c, T& sn) const {
    // the quarter is a power of two
    const int shift = __builtin_ctzll(quarter);
    const size_t q = m >> shift, r = m & (quarter - 1);
    const T a = s[r], b = s[quarter - r];
    switch (q & 3) {
      case 0: c = b, sn = a; break;
      case 1: c = -a, sn = b; break;
      case 2: c = -b, sn = -a; break;
      default: c = a, sn = -b; break;
    }
  }
};

// Fills the stage tables of the plan for a complex length 2^n from a sine
// table of length 2^table_order (at least 2^n).
template <class T>
void build_twiddles(const Plan& p, int n, const Sine<T>& sine, int table_order, T* tw) {
  constexpr int W = Simd<T>::W;
  size_t P = size_t(p.radix[0]);
  for (int s = 1; s < p.stages; ++s) {
    const int r = p.radix[s];
    const size_t L = r * P, step = (size_t(1) << table_order) / L;
    for (size_t k0 = 0; k0 < P; k0 += W)
      for (int i = 0; i < stored_twiddles(r); ++i) {
        const size_t j = size_t(stored_power(r, i));
        for (int l = 0; l < W; ++l) {
          T c, sn;
          sine.at((j * (k0 + l) * step) & ((size_t(1) << table_order) - 1), c, sn);
          tw[l] = c;
          tw[W + l] = -sn;
        }
        tw += 2 * W;
      }
    P = L;
  }
  (void)n;
}

// rev(i W) over the column bits of the gathering first pass.
template <class T>
void build_gather_table(const Plan& p, int n, uint32_t* table) {
  constexpr int W = Simd<T>::W;
  const int bits = n - (p.radix[0] == 16 ? 4 : 3);
  const size_t count = (size_t(1) << bits) / W;
  for (size_t i = 0; i < count; ++i) table[i] = reverse_bits(uint32_t(i * W), bits);
}

// ---- bit reversal of long arrays ----------------------------------------------------

// dst[rev(i)] = src[i] over n bits, through tiles of 2^b x 2^b elements held
// in `buf` (room for two tiles). src may equal dst.
template <class E>
void reverse_tiles(const E* src, E* dst, int n, int b, E* buf) {
  const size_t side = size_t(1) << b;
  const int mid_bits = n - 2 * b;
  uint16_t rb[64];
  for (size_t i = 0; i < side; ++i) rb[i] = uint16_t(reverse_bits(uint32_t(i), b));
  auto fetch = [&](const E* from, size_t tile, E* t) {
    for (size_t h = 0; h < side; ++h)
      std::memcpy(t + h * side, from + (h << (n - b)) + (tile << b), side * sizeof(E));
  };
  auto place = [&](const E* t, size_t tile) {
    for (size_t ro = 0; ro < side; ++ro) {
      E* row = dst + (ro << (n - b)) + (tile << b);
      const E* col = t + rb[ro];
      for (size_t co = 0; co < side; ++co) row[co] = col[rb[co] * side];
    }
  };
  E* a = buf;
  E* c = buf + side * side;
  const size_t tiles = size_t(1) << mid_bits;
  for (size_t m = 0; m < tiles; ++m) {
    const size_t rm = reverse_bits(uint32_t(m), mid_bits);
    if (src != dst) {
      fetch(src, m, a);
      place(a, rm);
    } else if (m < rm) {
      fetch(dst, m, a);
      fetch(dst, rm, c);
      place(a, rm);
      place(c, m);
    } else if (m == rm) {
      fetch(dst, m, a);
      place(a, m);
    }
  }
}

// ---- one transform ---------------------------------------------------------------

// The stages after stage 0: chunk by chunk up to inner_stages (each chunk
// first handed to `prologue(first, count)`), then over the whole array; the
// last stage writes `out`.
template <class T, class Work, class Out, class Prologue>
void later_stages(const Plan& p, int n, const Work& work, const Out& out, const T* tw,
                  Prologue&& prologue) {
  const size_t N = size_t(1) << n, chunk = size_t(1) << p.inner_bits;
  const int last = p.stages - 1;
  const T* tables[12];
  {
    size_t P = size_t(p.radix[0]);
    const T* t = tw;
    for (int s = 1; s < p.stages; ++s) {
      tables[s] = t;
      t += stage_table_size(p.radix[s], P);
      P *= p.radix[s];
    }
  }
  for (size_t c0 = 0; c0 < N; c0 += chunk) {
    prologue(c0, chunk);
    size_t P = size_t(p.radix[0]);
    for (int s = 1; s < p.inner_stages; ++s) {
      if (s == last) run_stage<T>(p.radix[s], work, out, c0, chunk, P, tables[s]);
      else run_stage<T>(p.radix[s], work, work, c0, chunk, P, tables[s]);
      P *= p.radix[s];
    }
  }
  size_t P = chunk;
  for (int s = p.inner_stages; s < p.stages; ++s) {
    if (s == last) run_stage<T>(p.radix[s], work, out, 0, N, P, tables[s]);
    else run_stage<T>(p.radix[s], work, work, 0, N, P, tables[s]);
    P *= p.radix[s];
  }
}

}  // namespace
}  // namespace vrks::fft
