// Quarter-wave sine tables and the tables built from them: the real split
// and merge tables and the 14-bit fixed-point tables of the 16-bit kinds.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "transforms/fft_engine.h"

namespace vrks::fft {

// s[i] = sin(2 pi i / 2^order), i = 0 .. 2^order / 4, each computed in double
// (sines up to the eighth of the circle, cosines beyond) and rounded to T.
template <class T>
void fill_sine(T* s, int order) {
  const size_t N = size_t(1) << order, quarter = N / 4, eighth = N / 8;
  const double h = 6.283185307179586 / double(N);
  for (size_t i = 0; i <= eighth; ++i) s[i] = T(std::sin(double(i) * h));
  for (size_t i = eighth + 1; i <= quarter; ++i) s[i] = T(std::cos(double(quarter - i) * h));
}

// The prepared order-10 table (257 entries, the last exactly 1), built once.
template <class T>
const T* prepared_sine() {
  static const std::array<T, 257> table = [] {
    std::array<T, 257> t{};
    fill_sine(t.data(), 10);
    t[256] = T(1);
    return t;
  }();
  return table.data();
}

// Split table: A[k] = 0.5 cos(2 pi k/N), then B[k] = 0.5 - 0.5 sin(2 pi k/N),
// k = 1 .. N/4, as two arrays. Merge table: U[k] = cos, V[k] = -sin.
template <class T>
void build_real_tables(const Sine<T>& sine, int table_order, int order, T* split, T* merge) {
  const size_t quarter = size_t(1) << (order - 2), step = size_t(1) << (table_order - order);
  for (size_t k = 1; k <= quarter; ++k) {
    T c, s;
    sine.at(k * step, c, s);
    split[k - 1] = T(0.5) * c;
    split[quarter + k - 1] = T(0.5 - 0.5 * double(s));
    merge[k - 1] = c;
    merge[quarter + k - 1] = -s;
  }
}

// ---- 14-bit fixed point ---------------------------------------------------------

// 16384 sin(2 pi i / 1024) rounded half up, i = 0..255.
inline const int16_t* prepared_q14() {
  static const std::array<int16_t, 256> table = [] {
    std::array<int16_t, 256> t{};
    const double h = 6.283185307179586 / 1024.0;
    for (int i = 0; i < 256; ++i)
      t[i] = int16_t(std::floor(16384.0 * (i <= 128 ? std::sin(i * h) : std::cos((256 - i) * h)) + 0.5));
    return t;
  }();
  return table.data();
}

// q[0 .. 2^n / 4] for n = max(order, 2), read from the prepared table; the
// last entry is 16384.
inline void fill_q14(int16_t* q, int order) {
  const int n = order < 2 ? 2 : order;
  const size_t quarter = size_t(1) << (n - 2);
  for (size_t i = 0; i < quarter; ++i) q[i] = prepared_q14()[i << (10 - n)];
  q[quarter] = 16384;
}

// N = 2^n groups of four values c, s, -s, c of 2 pi k / N, k = 0 .. N-1,
// from the table of fill_q14(order) (n <= max(order, 2)).
inline void build_q14_twiddles(const int16_t* q, int order, int n, int16_t* out) {
  const int t = order < 2 ? 2 : order;
  const size_t quarter = size_t(1) << (t - 2), N = size_t(1) << n, step = (size_t(1) << t) >> n;
  for (size_t k = 0; k < N; ++k) {
    const size_t m = k * step, qd = m / quarter, r = m % quarter;
    const int a = q[r], b = q[quarter - r];
    int c, s;
    switch (qd & 3) {
      case 0: c = b, s = a; break;
      case 1: c = -a, s = b; break;
      case 2: c = -b, s = -a; break;
      default: c = a, s = -b; break;
    }
    out[4 * k] = int16_t(c), out[4 * k + 1] = int16_t(s);
    out[4 * k + 2] = int16_t(-s), out[4 * k + 3] = int16_t(c);
  }
}

// The pair list of a bit reversal over n bits at a granularity of four
// elements: words 4i, 4r for every i < r = rev(i) over n - 2 bits at the
// front, 0-terminated; words 4i of the self-paired i filling downward from
// the back, whose last entry (index 2^(n-2)) is 0.
inline void build_pair_list(uint32_t* list, int n) {
  if (n < 2) {
    list[0] = 0;
    return;
  }
  const int bits = n - 2;
  const size_t M = size_t(1) << bits;
  for (size_t i = 0; i <= M; ++i) list[i] = 0;
  size_t front = 0, back = M - 1;
  for (size_t i = 1; i < M; ++i) {
    const size_t r = reverse_bits(uint32_t(i), bits);
    if (i < r) list[front++] = uint32_t(4 * i), list[front++] = uint32_t(4 * r);
    else if (i == r) list[back--] = uint32_t(4 * i);
  }
}

}  // namespace vrks::fft
