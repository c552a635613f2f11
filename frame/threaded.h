// The threaded road of long element-wise calls.
//
// Below the family's threshold the body runs on the calling thread. At or
// above it, with n = ownGetNumThreads() of 2 or more and length >= n, a team
// of min(2, n) threads (n for TeamRule::All) splits [0, length) into equal
// chunks, the last thread taking the remainder. Results are the same as the
// serial road's bit for bit, because every element is computed by the same
// kernel whichever chunk it falls in.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>

#include "vrkcore.h"

namespace vrks {

enum class TeamRule { AtMostTwo, All };

// body(offset, count) runs the serial kernel on elements [offset,
// offset + count) and returns non-zero when it met an element that warrants
// the family's warning. Returns the number of chunks that did.
template <class Body>
int run_threaded(int length, int threshold, Body&& body, TeamRule rule = TeamRule::AtMostTwo) {
  if (length < threshold) return body(0, length) != 0;
  const int n = ownGetNumThreads();
  if (n < 2 || length < n) return body(0, length) != 0;
  const int team = rule == TeamRule::All ? n : std::min(2, n);
  int chunk = 0, remainder = 0;
  std::atomic<int> flagged{0};
#pragma omp parallel num_threads(team)
  {
#pragma omp master
    {
      const int t = omp_get_num_threads();
      chunk = length / t;
      remainder = length % t;
    }
#pragma omp barrier
    const int t = omp_get_num_threads();
    const int i = omp_get_thread_num();
    const int size = chunk + (i == t - 1 ? remainder : 0);
    if (body(i * chunk, size) != 0) flagged.fetch_add(1, std::memory_order_relaxed);
  }
  return flagged.load(std::memory_order_relaxed);
}

}  // namespace vrks
