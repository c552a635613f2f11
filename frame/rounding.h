// Rounding of floating values to integers by the library's three modes, and
// a guard that pins the processor's rounding mode for a kernel's run.
#pragma once

#include <immintrin.h>

#include <cmath>

#include "frame/saturate.h"

namespace vrks {

enum class Rounding { ToZero = vrkRoundToZero, NearestEven = vrkRoundToNearestEven,
                      HalfAway = vrkRoundHalfAwayFromZero };

// Selectors of the conversions that take any value: 0 and 1 as named, every
// other value acts as half away from zero.
constexpr Rounding rounding_from(int mode) {
  return mode == 0 ? Rounding::ToZero : mode == 1 ? Rounding::NearestEven : Rounding::HalfAway;
}

// x rounded to an integral value of the same floating type. NearestEven does
// not read the processor's mode. HalfAway adds one half to the magnitude in
// x's own precision and truncates, so values just below one half, and odd
// values at and above 2^(mantissa bits), follow that addition's rounding.
template <Rounding M, class F>
inline F round_integral(F x) {
  if constexpr (M == Rounding::ToZero) return std::trunc(x);
  else if constexpr (M == Rounding::NearestEven) return __builtin_roundeven(x);
  else return std::copysign(std::trunc(std::fabs(x) + F(0.5)), x);
}

// x rounded by mode M and saturated to D (NaN gives 0).
template <class D, Rounding M, class F>
inline D round_to(F x) {
  return saturate_float<D>(round_integral<M>(x));
}

// Sets round-to-nearest with every floating exception masked for the
// lifetime of the guard, and puts the caller's control word back after.
class RoundNearestGuard {
 public:
  RoundNearestGuard() : saved_(_mm_getcsr()) { _mm_setcsr((saved_ & ~0x6000u) | 0x1F80u); }
  ~RoundNearestGuard() { _mm_setcsr(saved_); }
  RoundNearestGuard(const RoundNearestGuard&) = delete;
  RoundNearestGuard& operator=(const RoundNearestGuard&) = delete;

 private:
  unsigned saved_;
};

}  // namespace vrks
