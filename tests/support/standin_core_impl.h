#pragma once
#include <gtest/gtest.h>

namespace standin {

template <class F>
int64_t for_each_allocation_failure(F&& f) {
  for (int64_t k = 0;; ++k) {
    const int64_t live = live_blocks();
    const int64_t before = allocation_attempts();
    fail_allocations_after(k);
    const bool ok = f(k);
    fail_allocations_after(-1);
    EXPECT_TRUE(ok) << "allocation " << k << " failing";
    EXPECT_EQ(live_blocks(), live) << "leak with allocation " << k << " failing";
    if (allocation_attempts() - before <= k) return k;  // this run needed no failure
  }
}

}  // namespace standin
