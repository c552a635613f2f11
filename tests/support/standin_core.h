// Controls of the stand-in core that the tests link instead of libvrkcore:
// its allocator fails on demand and keeps count of live blocks.
#pragma once

#include <cstdint>

namespace standin {

// The next `n` allocations succeed, every later one fails; -1 never fails.
void fail_allocations_after(int64_t n);
// Blocks handed out and not yet released.
int64_t live_blocks();
// Allocations attempted since the start (failed ones included).
int64_t allocation_attempts();

// Runs f with allocations failing from the k-th on, for k = 0, 1, ... until a
// run needs no failing allocation; checks after each run that nothing leaked.
// f returns true when its result is right for that road.
template <class F>
int64_t for_each_allocation_failure(F&& f);

}  // namespace standin

#include "standin_core_impl.h"
