// The element-wise engine of the arithmetic families.
//
// An operation is written once as the exact result of one element pair (in a
// wide integer for integer data, or one IEEE operation for floating data);
// the engine runs it over the vectors, applies the scale-factor rule on the
// road chosen for the call, and provides the entries that check arguments in
// the library's order. Loops run in rising element order and read element i
// before writing it, so in-place forms are exact.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/bytes.h"
#include "frame/check.h"
#include "frame/scale.h"
#include "frame/types.h"

namespace vrks::arith {

// ---- exact results of complex element pairs ----------------------------------

template <class W>
struct Wide2 {  // real and imaginary part of an exact complex result
  W re, im;
};

template <class T>
constexpr bool complex_v = is_complex_v<T>;

// The rule applied to an exact result: each part of a complex result alone.
template <ScaleRoad R, class D, class W>
inline D scaled(W r, int scale) {
  return scale_on_road<R, D>(r, scale);
}
template <ScaleRoad R, class D, class W>
inline D scaled(Wide2<W> r, int scale) {
  using P = part_t<D>;
  return D{scale_on_road<R, P>(r.re, scale), scale_on_road<R, P>(r.im, scale)};
}

// ---- loops -------------------------------------------------------------------

// Fills d[0..n) with all-zero bytes.
template <class D>
inline void zero(D* d, int n) {
  fill(d, uint8_t(0), size_t(n) * sizeof(D));
}

// The 16-bit unsigned forms' early clear: the checks and statuses of a clear
// of the destination, ahead of every other check.
inline VrkStatus zero_16u(Vrk16u* d, int n) { return vrksZero_16s(reinterpret_cast<Vrk16s*>(d), n); }

// d[i] = f(i) for i in [0, n), rising.
template <class D, class F>
inline void map(D* d, int n, F&& f) {
  for (int i = 0; i < n; ++i) d[i] = f(i);
}

// d[i] = the rule applied to exact(i), on the road chosen for `scale` from the
// family's bands; the all-zero road clears d.
template <class D, class F>
inline void scaled_map(D* d, int n, int scale, ScaleBands bands, F&& exact) {
  with_scale_road(scale, bands, [&]<ScaleRoad R>() {
    if constexpr (R == ScaleRoad::Zero) {
      zero(d, n);
    } else {
      for (int i = 0; i < n; ++i) d[i] = scaled<R, D>(exact(i), scale);
    }
  });
}

// ---- checks --------------------------------------------------------------------

// The complex forms that run on the real form at twice the length test the
// length before the pointers.
template <class... P>
[[gnu::always_inline]] constexpr VrkStatus check_length_first(int length, P... p) {
  if (length < 1) return vrkStatusSizeError;
  if (any_null(p...)) return vrkStatusNullPointer;
  return vrkStatusOk;
}

// Whether [b, b + n) overlaps [a, a + n) without being the same array.
template <class A, class B>
inline bool overlaps_shifted(const A* a, const B* b, int n) {
  const auto x = reinterpret_cast<uintptr_t>(a), y = reinterpret_cast<uintptr_t>(b);
  const uintptr_t bytes_a = uintptr_t(n) * sizeof(A), bytes_b = uintptr_t(n) * sizeof(B);
  return x != y && x < y + bytes_b && y < x + bytes_a;
}

}  // namespace vrks::arith
