// The core companion: aligned blocks and the process-wide thread count.
#include "vrkcore.h"

#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

namespace {

constexpr uint64_t kAlignment = 64;

int32_t available_processors() {
  cpu_set_t set;
  if (sched_getaffinity(0, sizeof set, &set) == 0) {
    int n = CPU_COUNT(&set);
    if (n > 0) return n;
  }
  long n = sysconf(_SC_NPROCESSORS_ONLN);
  return n > 0 ? static_cast<int32_t>(n) : 1;
}

// 0 means "not chosen yet": the default is read on first use.
std::atomic<int32_t> g_threads{0};

}  // namespace

extern "C" {

void* vrkMalloc(uint64_t size) {
  if (size == 0 || size > UINT64_MAX - kAlignment) return nullptr;
  uint64_t rounded = (size + kAlignment - 1) & ~(kAlignment - 1);
  if (rounded > SIZE_MAX) return nullptr;
  return std::aligned_alloc(kAlignment, static_cast<size_t>(rounded));
}

void vrkFree(void* pointer) { std::free(pointer); }

int32_t ownGetNumThreads(void) {
  int32_t n = g_threads.load(std::memory_order_relaxed);
  if (n > 0) return n;
  n = available_processors();
  int32_t expected = 0;
  g_threads.compare_exchange_strong(expected, n, std::memory_order_relaxed);
  return g_threads.load(std::memory_order_relaxed);
}

int32_t vrkSetNumThreads(int32_t count) {
  int32_t previous = ownGetNumThreads();
  g_threads.store(count > 0 ? count : available_processors(), std::memory_order_relaxed);
  return previous;
}

}  // extern "C"
