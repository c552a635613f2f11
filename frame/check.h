// Argument checks in the order every export follows: pointers left to right
// as one test, then the length, then the family's own parameters.
#pragma once

#include "vrks.h"

namespace vrks {

// Always inlined: the checks are compiled into every instruction set's
// instantiation of an export, and no out-of-line copy may be shared between
// them.
template <class... P>
[[gnu::always_inline]] constexpr bool any_null(P... p) {
  return ((p == nullptr) || ...);
}

// Pointers first (vrkStatusNullPointer), then length below 1 (vrkStatusSizeError).
template <class... P>
[[gnu::always_inline]] constexpr VrkStatus check_vector(int length, P... p) {
  if (any_null(p...)) return vrkStatusNullPointer;
  if (length < 1) return vrkStatusSizeError;
  return vrkStatusOk;
}

// The few forms with an unsigned 32-bit length refuse only 0: pointers
// first (vrkStatusNullPointer), then a length of 0 (vrkStatusSizeError).
template <class... P>
[[gnu::always_inline]] constexpr VrkStatus check_unsigned(uint32_t length, P... p) {
  if (any_null(p...)) return vrkStatusNullPointer;
  if (length == 0) return vrkStatusSizeError;
  return vrkStatusOk;
}

}  // namespace vrks

// Returns from the enclosing function when a check fails.
#define VRKS_CHECK(expr)                                        \
  do {                                                          \
    if (const VrkStatus vrks_status_ = (expr); vrks_status_ != vrkStatusOk) \
      return vrks_status_;                                      \
  } while (0)
