// Saturation to an element type.
#pragma once

#include <cmath>

#include "frame/types.h"

namespace vrks {

// Integer v clamped to D's range. W must be D itself or a signed type that
// holds all of D's values.
template <class D, class W>
constexpr D saturate(W v) {
  if constexpr (std::is_same_v<D, W>) {
    return v;
  } else {
    static_assert(is_signed_int_v<W> && bits_v<W> > bits_v<D> - (is_signed_int_v<D> ? 1 : 0),
                  "working type too narrow for saturation");
    if (v > W(int_max<D>())) return int_max<D>();
    if (v < W(int_min<D>())) return int_min<D>();
    return D(v);
  }
}

// Floating v clamped to integer D's range; v is already an integral value.
// NaN gives 0 here: families that define another NaN result test it first.
template <class D, class F>
  requires std::is_floating_point_v<F>
constexpr D saturate_float(F v) {
  if (!(v == v)) return D(0);
  if (v >= F(int_max<D>())) return int_max<D>();  // 2^63 - 1 rounds up to 2^63 in F
  if (v <= F(int_min<D>())) return int_min<D>();
  return D(v);
}

}  // namespace vrks
