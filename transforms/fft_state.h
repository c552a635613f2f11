// State objects of the power-of-two FFT: their headers, the sizes that the
// size queries report (callers lay out memory by them), and the plan of the
// engine that an object carries.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vrks.h"

namespace vrks::fft {

// Id tags. The four 32-bit integer kinds carry four characters in memory
// order, read as little-endian words.
enum Tag : uint32_t {
  kTagC16sc = 1, kTagC16s = 2, kTagR16s = 3,
  kTagC32fc = 4, kTagC32f = 5, kTagR32f = 6,
  kTagC64fc = 7, kTagC64f = 8, kTagR64f = 9,
  kTagC32sc = 0x434D414C, kTagC32s = 0x434D414D, kTagR32s = 0x434D414E, kTagR16s32s = 0x434D414F,
};

constexpr int kMaxOrder = 30;
constexpr long long a32(long long x) { return (x + 31) & ~31LL; }

// Orders at which a floating object of element type T changes road.
template <class T> struct Limits;
template <> struct Limits<float> {
  static constexpr int max_order = 27;     // 1 << order must stay within 0x0FFFFFFF
  static constexpr int direct = 17;        // full-length work buffer up to here
  static constexpr int tile = 19;          // from here the work buffer holds at least...
  static constexpr int tile_floor = 65536; // ...this many bytes
  static constexpr int tile_bits = 6;      // reversal tiles of 64 x 64 elements
  static constexpr int straight = 5;       // complex orders without tables
  static constexpr int real_straight = 4;  // real orders without any table
  static constexpr int block_rows(int n) { return n <= 19 ? 4 : n <= 22 ? 6 : 8; }
  static constexpr int block_area(int n) { return n <= 19 ? 10 : n <= 22 ? 13 : 14; }
};
template <> struct Limits<double> {
  static constexpr int max_order = 26;
  static constexpr int direct = 16;
  static constexpr int tile = 18;
  static constexpr int tile_floor = 32768;
  static constexpr int tile_bits = 5;
  static constexpr int straight = 5;
  static constexpr int real_straight = 5;
  static constexpr int block_rows(int n) { return n <= 21 ? 6 : 8; }
  static constexpr int block_area(int n) { return n <= 18 ? 10 : n <= 21 ? 12 : 13; }
};

// Table and work bytes of a complex transform of order n (n at least 6).
template <class T>
constexpr long long table_bytes(int n) {
  constexpr int e = 2 * sizeof(T);
  if (n <= Limits<T>::direct) return a32(((long long)e << n) + e);
  const int i = n - Limits<T>::block_rows(n);
  return table_bytes<T>(i) + ((long long)e << n);
}
template <class T>
constexpr long long work_bytes(int n, bool outermost = true) {
  constexpr int e = 2 * sizeof(T);
  if (n <= Limits<T>::direct) return a32((long long)e << n);
  const int i = n - Limits<T>::block_rows(n);
  long long w = work_bytes<T>(i, false);
  long long outer = (long long)e << Limits<T>::block_area(n);
  if (outer > w) w = outer;
  if (outermost && n >= Limits<T>::tile && w < Limits<T>::tile_floor) w = Limits<T>::tile_floor;
  return w;
}

struct Sizes {
  int state = 0, init = 0, buffer = 0;  // as the size query reports them
};

// Floating kinds; order and flag already checked.
template <class T>
Sizes complex_sizes(int order) {
  if (order <= Limits<T>::straight) return {168, 0, 0};
  const long long n = 1LL << order;
  Sizes s;
  s.state = int(table_bytes<T>(order) + a32(n + 4) + 192);
  const long long sine = sizeof(T) == 4 ? a32(n + 4) : a32(2 * n + 8);
  s.init = order > 10 ? int(sine + 32) : 0;
  s.buffer = int(work_bytes<T>(order) + 32);
  return s;
}
template <class T>
Sizes real_sizes(int order) {
  if (order <= Limits<T>::real_straight) return {168, 0, 0};
  const long long n = 1LL << order;
  // the split and the merge table, N/4 pairs each
  const long long rt = 2 * a32(sizeof(T) == 4 ? 2 * n : 4 * n);
  if (order <= Limits<T>::straight + 1) return {int(rt + 192), 0, 0};
  const int h = order - 1;
  Sizes s;
  s.state = int(table_bytes<T>(h) + a32((n >> 1) + 4) + rt + 192);
  const long long sine = sizeof(T) == 4 ? a32(n + 4) : a32(2 * n + 8);
  s.init = order > 10 ? int(sine + 32) : 0;
  s.buffer = int(work_bytes<T>(h) + 32);
  return s;
}

// ---- headers -----------------------------------------------------------------

// The stage plan of the complex engine. Stage 0 is a radix-8 pass that needs
// no twiddles; every later stage combines sub-transforms of length `span`
// into `radix * span`. Stages up to `inner_stages` run chunk by chunk over
// 1 << inner_bits elements; the rest span the whole array.
struct Plan {
  int8_t radix[12];
  int8_t stages;        // including stage 0
  int8_t inner_stages;  // stages that stay inside one chunk (at least 1)
  int8_t inner_bits;
  int8_t reverse_first; // 1: permute the whole array first (long orders)
};

template <class T>
struct FloatState {
  uint32_t idTag;
  int32_t order;
  uint32_t fwdScaled;
  uint32_t invScaled;
  T scaleFactor;
  int32_t hint;
  int32_t bufferSize;
  uint32_t allocated;
  uint32_t* bitRevTable;
  T* twiddleTable;
  T* realSplitTable;
  T* realMergeTable;
  T* blockTwiddles[3];
  Plan plan;
};
static_assert(sizeof(FloatState<double>) <= 128);

struct Int16State {
  uint32_t idTag;
  int32_t order;
  int32_t fwdShift;
  int32_t invShift;
  uint32_t oddHalf;
  int32_t hint;
  int32_t bufferSize;
  uint32_t useFloat;
  uint32_t allocated;
  uint32_t* bitRevTable;
  int16_t* twiddleTable;
  int16_t* splitTable;
  void* floatState;
};
static_assert(sizeof(Int16State) == 72);

struct Int32State {
  uint32_t idTag;
  int32_t order;
  int32_t hint;
  int32_t bufferSize;
  uint32_t allocated;
  void* floatState;
};
static_assert(sizeof(Int32State) == 32);

}  // namespace vrks::fft
