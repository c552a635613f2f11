// The scale-factor rule of every _Sfs result, with its short-cut roads.
//
// The exact result r (held in a wide signed integer W) is multiplied by
// 2^-scale, rounded to nearest with ties to even, and saturated to the result
// type D: rounding first, saturation last. Families pick one road per call
// from their scale bands and run a kernel specialised for it; every road gives
// the rule's result for the r that the family can produce.
#pragma once

#include <cstring>
#include <type_traits>

#include "frame/saturate.h"
#include "frame/types.h"

namespace vrks {

// r / 2^s to nearest, ties to even, by the kernels' formula
// (r + 2^(s-1) - 1 + ((r >> s) & 1)) >> s. Needs 1 <= s < bits(W) and
// headroom for r + 2^(s-1) in W.
template <class W>
constexpr W round_shift(W r, int s) {
  return (r + ((W(1) << (s - 1)) - 1) + ((r >> s) & 1)) >> s;
}

// The same result for any r of W and any s >= 1, without overflow.
template <class W>
constexpr W round_shift_safe(W r, int s) {
  if (s >= bits_v<W>) return 0;  // |r| <= 2^(bits-1) <= 2^(s-1): rounds to 0
  using UW = to_unsigned_t<W>;
  W q = r >> s;
  UW mask = (UW(1) << s) - 1;
  UW rem = UW(r) & mask;
  UW half = UW(1) << (s - 1);
  if (rem > half || (rem == half && (q & 1))) ++q;
  return q;
}

// r * 2^k saturated to D (k >= 0).
template <class D, class W>
constexpr D shift_left_saturate(W r, int k) {
  if (r == 0) return D(0);
  if (k >= bits_v<W> - 1) return r > 0 ? int_max<D>() : int_min<D>();
  if (r > 0) return r > (W(int_max<D>()) >> k) ? int_max<D>() : D(r << k);
  if constexpr (!is_signed_int_v<D>) {
    return D(0);
  } else {
    // r * 2^k >= min exactly when r >= ceil(min / 2^k); min is -2^(b-1).
    W lo = k <= bits_v<D> - 1 ? W(int_min<D>()) >> k : W(0);
    return r < lo ? int_min<D>() : D(W(r * (W(1) << k)));
  }
}

// The whole rule at any scale: round r * 2^-scale, then saturate to D.
template <class D, class W>
constexpr D scale_exact(W r, int scale) {
  if (scale == 0) return saturate<D>(r);
  if (scale > 0) return saturate<D>(round_shift_safe(r, scale));
  return shift_left_saturate<D>(r, -scale);
}

// ---- multipliers for floating data ------------------------------------------

template <class F>
inline constexpr int kMantissa = std::is_same_v<F, float> ? 23 : 52;
template <class F>
inline constexpr int kBias = std::is_same_v<F, float> ? 127 : 1023;

// 2^-s built in the exponent field: the caller clamps s to the member's range;
// a field of 0 (s equal to the bias) gives 0.
template <class F>
inline F pow2_field(int s) {
  using U = std::conditional_t<std::is_same_v<F, float>, uint32_t, uint64_t>;
  const U bits = U(kBias<F> - s) << kMantissa<F>;
  F m;
  std::memcpy(&m, &bits, sizeof m);
  return m;
}

// ---- roads ----------------------------------------------------------------

enum class ScaleRoad { Unscaled, Half, Right, Zero, Left, SignOnly };

// A family's bands: above `zero_above` every result is 0; at and above
// `left_down_to` a left shift still fits the working registers; below it only
// the sign of r matters.
struct ScaleBands {
  int zero_above;
  int left_down_to;
};

constexpr ScaleRoad scale_road(int scale, ScaleBands b) {
  if (scale == 0) return ScaleRoad::Unscaled;
  if (scale == 1) return ScaleRoad::Half;
  if (scale > b.zero_above) return ScaleRoad::Zero;
  if (scale > 1) return ScaleRoad::Right;
  if (scale >= b.left_down_to) return ScaleRoad::Left;
  return ScaleRoad::SignOnly;
}

// The scalar form of one road; kernels use it for their tails and short runs.
template <ScaleRoad R, class D, class W>
constexpr D scale_on_road(W r, int scale) {
  if constexpr (R == ScaleRoad::Unscaled) return saturate<D>(r);
  else if constexpr (R == ScaleRoad::Half) return saturate<D>(W((r + ((r >> 1) & 1)) >> 1));
  else if constexpr (R == ScaleRoad::Right) return saturate<D>(round_shift(r, scale));
  else if constexpr (R == ScaleRoad::Zero) return D(0);
  else if constexpr (R == ScaleRoad::Left) return shift_left_saturate<D>(r, -scale);
  else return r > 0 ? int_max<D>() : (r < 0 ? int_min<D>() : D(0));
}

// Calls f with the road chosen for `scale` as a compile-time constant, so that
// a family writes its loop once and gets one specialised copy per road:
//   with_scale_road(scale, bands, [&]<ScaleRoad R>() { ... });
template <class F>
constexpr decltype(auto) with_scale_road(int scale, ScaleBands b, F&& f) {
  switch (scale_road(scale, b)) {
    case ScaleRoad::Unscaled: return f.template operator()<ScaleRoad::Unscaled>();
    case ScaleRoad::Half: return f.template operator()<ScaleRoad::Half>();
    case ScaleRoad::Right: return f.template operator()<ScaleRoad::Right>();
    case ScaleRoad::Zero: return f.template operator()<ScaleRoad::Zero>();
    case ScaleRoad::Left: return f.template operator()<ScaleRoad::Left>();
    case ScaleRoad::SignOnly: break;
  }
  return f.template operator()<ScaleRoad::SignOnly>();
}

}  // namespace vrks
