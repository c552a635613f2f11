// Complex transforms on a floating state: the straight kernels up to 32
// points, the engine beyond. Shared by the complex and the real exports.
#pragma once

#include "frame/state.h"
#include "transforms/fft_engine.h"
#include "transforms/fft_small.h"

namespace vrks::fft {
// Each instruction-set road compiles its own copy.
namespace {

template <class T>
struct Pair {
  T re, im;
};

// Interleaved transform of order n with the tables of `st` (whose complex
// plan is of order n). `work` holds the work-buffer bytes of that order.
template <class T, bool Inv>
void complex_interleaved(const FloatState<T>* st, int n, const T* src, T* dst, T* work, bool scaled,
                         T factor) {
  if (n <= kRowsMaxOrder<T>) return straight_interleaved<T, Inv>(n, src, dst, scaled, factor);
  const Plan& p = st->plan;
  const InterleavedDst<T, Inv> out{dst, scaled, Simd<T>::set1(factor)};
  if (!p.reverse_first) {
    const Blocked<T> area{src != dst ? dst : work};
    if (p.radix[0] == 16) gather_pass<T, 16>(InterleavedSrc<T, Inv>{src}, area, n, st->bitRevTable);
    else gather_pass<T, 8>(InterleavedSrc<T, Inv>{src}, area, n, st->bitRevTable);
    later_stages<T>(p, n, area, out, st->twiddleTable, [](size_t, size_t) {});
  } else {
    using E = Pair<T>;
    reverse_tiles<E>(reinterpret_cast<const E*>(src), reinterpret_cast<E*>(dst), n,
                     Limits<T>::tile_bits, reinterpret_cast<E*>(work));
    const Blocked<T> area{dst};
    const InterleavedSrc<T, Inv> in{dst};
    later_stages<T>(p, n, area, out, st->twiddleTable,
                    [&](size_t first, size_t count) { natural_pass<T>(in, area, first, count); });
  }
}

// Split transform; the inverse exchanges the two arrays on both sides.
template <class T, bool Inv>
void complex_split(const FloatState<T>* st, int n, const T* sre, const T* sim, T* dre, T* dim,
                   T* work, bool scaled, T factor) {
  if (Inv) std::swap(sre, sim), std::swap(dre, dim);
  if (n <= kRowsMaxOrder<T>) return straight_split<T>(n, sre, sim, dre, dim, scaled, factor);
  const Plan& p = st->plan;
  const SplitDst<T, false> out{dre, dim, scaled, Simd<T>::set1(factor)};
  if (!p.reverse_first) {
    const Blocked<T> area{work};
    if (p.radix[0] == 16) gather_pass<T, 16>(SplitSrc<T, false>{sre, sim}, area, n, st->bitRevTable);
    else gather_pass<T, 8>(SplitSrc<T, false>{sre, sim}, area, n, st->bitRevTable);
    later_stages<T>(p, n, area, out, st->twiddleTable, [](size_t, size_t) {});
  } else {
    reverse_tiles<T>(sre, dre, n, Limits<T>::tile_bits, work);
    reverse_tiles<T>(sim, dim, n, Limits<T>::tile_bits, work);
    const SplitIO<T> area{dre, dim};
    const SplitSrc<T, false> in{dre, dim};
    later_stages<T>(p, n, area, out, st->twiddleTable,
                    [&](size_t first, size_t count) { natural_pass<T>(in, area, first, count); });
  }
}

}  // namespace
}  // namespace vrks::fft
