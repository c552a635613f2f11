// Rounding of floating values to integers by the library's three modes, on
// one value or eight lanes, and guards that pin the processor's
// floating-point environment for a kernel's run.
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

// Calls f with a mode as a compile-time constant, so that a family writes its
// loop once and gets one copy per mode:
//   with_rounding(rounding_from(rounding), [&]<Rounding M>() { ... });
template <class F>
inline decltype(auto) with_rounding(Rounding mode, F&& f) {
  switch (mode) {
    case Rounding::ToZero: return f.template operator()<Rounding::ToZero>();
    case Rounding::NearestEven: return f.template operator()<Rounding::NearestEven>();
    case Rounding::HalfAway: break;
  }
  return f.template operator()<Rounding::HalfAway>();
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

// Clears the control bits `Clear` and sets `Set` in the processor's control
// and status word for the lifetime of the guard, and puts the caller's word
// back after. The register is written only when the caller's setting
// differs (writing it costs tens of cycles); exception flags raised under the
// guard then stay raised, as they would for any floating-point code.
template <unsigned Clear, unsigned Set>
class ControlWordGuard {
 public:
  ControlWordGuard() : saved_(_mm_getcsr()) {
    const unsigned want = (saved_ & ~Clear) | Set;
    changed_ = want != saved_;
    if (changed_) _mm_setcsr(want);
  }
  ~ControlWordGuard() {
    if (changed_) _mm_setcsr(saved_);
  }
  ControlWordGuard(const ControlWordGuard&) = delete;
  ControlWordGuard& operator=(const ControlWordGuard&) = delete;

 private:
  unsigned saved_;
  bool changed_;
};

namespace csr {
inline constexpr unsigned kRounding = 0x6000u;        // rounding field (00: to nearest)
inline constexpr unsigned kFlushToZero = 0x8000u;     // subnormal results become 0
inline constexpr unsigned kDenormalsAreZero = 0x0040u;  // subnormal inputs read as 0
inline constexpr unsigned kAllMasked = 0x1F80u;       // every exception masked
}  // namespace csr

// Round-to-nearest with every floating exception masked.
using RoundNearestGuard = ControlWordGuard<csr::kRounding, csr::kAllMasked>;

// The IEEE default environment: round to nearest, subnormal inputs and
// results kept as they are, every exception masked. Kernels whose results
// must not depend on the caller's environment run under it.
using IeeeDefaultGuard =
    ControlWordGuard<csr::kRounding | csr::kFlushToZero | csr::kDenormalsAreZero, csr::kAllMasked>;

// ---- rounding eight lanes ---------------------------------------------------

// Eight floats rounded by mode M with the arithmetic of round_integral<M>,
// converted to 32-bit integers. A lane that is NaN or outside the int32 range
// gives the processor's integer-indefinite value INT32_MIN. HalfAway adds one
// half in the current rounding mode (to nearest under the guards above).
template <Rounding M>
inline __m256i round_lanes(__m256 x) {
  if constexpr (M == Rounding::ToZero) {
    return _mm256_cvttps_epi32(x);
  } else if constexpr (M == Rounding::NearestEven) {
    return _mm256_cvttps_epi32(_mm256_round_ps(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC));
  } else {
    const __m256 half = _mm256_or_ps(_mm256_set1_ps(0.5f),
                                     _mm256_and_ps(x, _mm256_set1_ps(-0.0f)));
    return _mm256_cvttps_epi32(_mm256_add_ps(x, half));
  }
}

}  // namespace vrks
