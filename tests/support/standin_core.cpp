// Stand-in for libvrkcore in the tests: same entries, plus failure injection
// and a count of live blocks.
#include "standin_core.h"

#include <atomic>
#include <cstdlib>

#include "vrkcore.h"

namespace {
std::atomic<int64_t> g_fail_after{-1};
std::atomic<int64_t> g_attempts{0};
std::atomic<int64_t> g_live{0};
std::atomic<int32_t> g_threads{1};
}  // namespace

namespace standin {
void fail_allocations_after(int64_t n) {
  g_fail_after = n < 0 ? -1 : g_attempts.load() + n;
}
int64_t live_blocks() { return g_live.load(); }
int64_t allocation_attempts() { return g_attempts.load(); }
}  // namespace standin

extern "C" {

void* vrkMalloc(uint64_t size) {
  const int64_t attempt = g_attempts.fetch_add(1);
  const int64_t limit = g_fail_after.load();
  if (limit >= 0 && attempt >= limit) return nullptr;
  void* p = std::aligned_alloc(64, (size + 63) & ~uint64_t(63));
  if (p != nullptr) ++g_live;
  return p;
}

void vrkFree(void* pointer) {
  if (pointer != nullptr) --g_live;
  std::free(pointer);
}

int32_t ownGetNumThreads(void) { return g_threads.load(); }

int32_t vrkSetNumThreads(int32_t count) { return g_threads.exchange(count > 0 ? count : 1); }

}  // extern "C"
