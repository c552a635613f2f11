// The frame's shared mechanisms: version record, checks, rounding and
// saturation, state objects and work buffers, the threaded road.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <mutex>
#include <set>
#include <utility>

#include "frame/check.h"
#include "frame/rounding.h"
#include "frame/state.h"
#include "frame/threaded.h"
#include "standin_core.h"

namespace {

TEST(Frame, VersionRecord) {
  const VrkLibraryVersion* v = vrksGetLibVersion();
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v, vrksGetLibVersion());
  EXPECT_EQ(v->versionMajor, 6);
  EXPECT_EQ(v->versionMinor, 1);
  EXPECT_EQ(v->buildMajor, 137);
  EXPECT_EQ(v->buildNumber, 811);
  EXPECT_EQ(std::memcmp(v->targetTag, "e9\0\0", 4), 0);
  EXPECT_STREQ(v->libraryName, "vrkse9-6.1.dll");
  EXPECT_STREQ(v->versionText, "6.1 build 137.20");
  EXPECT_STREQ(v->buildDate, "Jun 10 2009");
}

TEST(Frame, CheckOrderPointersThenLength) {
  int a = 0;
  EXPECT_EQ(vrks::check_vector(5, &a, &a), vrkStatusOk);
  EXPECT_EQ(vrks::check_vector(0, &a, (int*)nullptr), vrkStatusNullPointer);
  EXPECT_EQ(vrks::check_vector(0, &a), vrkStatusSizeError);
  EXPECT_EQ(vrks::check_vector(INT_MIN, &a), vrkStatusSizeError);
}

TEST(Frame, RoundingModes) {
  using vrks::Rounding;
  struct Case { double x; double zero, even, away; };
  const Case cases[] = {
      {2.5, 2, 2, 3},   {-2.5, -2, -2, -3}, {3.5, 3, 4, 4},   {-0.5, -0.0, -0.0, -1},
      {0.4, 0, 0, 0},   {-1.75, -1, -2, -2}, {1e300, 1e300, 1e300, 1e300},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(vrks::round_integral<Rounding::ToZero>(c.x), c.zero) << c.x;
    EXPECT_EQ(vrks::round_integral<Rounding::NearestEven>(c.x), c.even) << c.x;
    EXPECT_EQ(vrks::round_integral<Rounding::HalfAway>(c.x), c.away) << c.x;
  }
  // Half away from zero adds one half in the value's own precision: just
  // below one half it rounds up, and above 2^23 odd values go to even.
  EXPECT_EQ(vrks::round_integral<Rounding::HalfAway>(0.49999997f), 1.0f);
  EXPECT_EQ(vrks::round_integral<Rounding::HalfAway>(8388609.0f), 8388610.0f);
  EXPECT_EQ(vrks::round_integral<Rounding::HalfAway>(-8388609.0f), -8388610.0f);
  // Nearest-even does not read the processor's mode.
  const unsigned saved = _mm_getcsr();
  _mm_setcsr((saved & ~0x6000u) | 0x4000u);  // round up
  EXPECT_EQ(vrks::round_integral<Rounding::NearestEven>(2.5f), 2.0f);
  {
    vrks::RoundNearestGuard guard;
    volatile float a = 1.0f, b = 3.0f;
    EXPECT_EQ(a / b, 0.333333343f);  // to nearest under the guard
  }
  EXPECT_EQ(_mm_getcsr(), (saved & ~0x6000u) | 0x4000u);
  _mm_setcsr(saved);
  EXPECT_EQ(vrks::rounding_from(0), Rounding::ToZero);
  EXPECT_EQ(vrks::rounding_from(1), Rounding::NearestEven);
  EXPECT_EQ(vrks::rounding_from(7), Rounding::HalfAway);
  EXPECT_EQ(vrks::rounding_from(-1), Rounding::HalfAway);
}

TEST(Frame, FloatSaturation) {
  EXPECT_EQ((vrks::round_to<int16_t, vrks::Rounding::NearestEven>(40000.0f)), 32767);
  EXPECT_EQ((vrks::round_to<int16_t, vrks::Rounding::NearestEven>(-1e30f)), -32768);
  EXPECT_EQ((vrks::round_to<int32_t, vrks::Rounding::ToZero>(2147483648.0f)), INT32_MAX);
  EXPECT_EQ((vrks::round_to<int64_t, vrks::Rounding::ToZero>(9.3e18)), INT64_MAX);
  EXPECT_EQ((vrks::round_to<uint8_t, vrks::Rounding::HalfAway>(-0.6)), 0);
  EXPECT_EQ((vrks::round_to<int32_t, vrks::Rounding::ToZero>(INFINITY)), INT32_MAX);
  EXPECT_EQ((vrks::round_to<int32_t, vrks::Rounding::ToZero>(NAN)), 0);
}

// ---- state objects: a small family built with the frame's helpers ----------

constexpr uint32_t kToyTag = vrks::tag4('T', 'O', 'Y', '1');
struct Toy {
  uint32_t tag;
  int allocated;
  Vrk8u* inner;  // owned by the object
};

VrkStatus toy_query(int order, vrks::StateSizes& s) {
  if (order < 0) return vrkStatusFFTOrder;
  s.state = int(sizeof(Toy)) + 31;
  s.scratch = order * 16;
  return vrkStatusOk;
}

VrkStatus toy_init(int order, Vrk8u* block, Vrk8u* scratch, Toy** made) {
  if (order > 0 && scratch == nullptr) return vrkStatusNullPointer;
  Toy* t = vrks::align_up<Toy>(block, 32);
  t->inner = vrksMalloc_8u(64);
  if (t->inner == nullptr) return vrkStatusMemoryAllocation;
  t->tag = kToyTag;
  t->allocated = 0;
  *made = t;
  return vrkStatusOk;
}

VrkStatus toy_init_alloc(int order, Toy** out) {
  return vrks::init_alloc(
      out, [&](vrks::StateSizes& s) { return toy_query(order, s); },
      [&](Vrk8u* b, Vrk8u* sc, Toy** m) { return toy_init(order, b, sc, m); },
      [](Toy* t) { t->allocated = 1; });
}

VrkStatus toy_free(Toy* t, vrks::FreeRule rule) {
  return vrks::free_state(t, kToyTag, rule, t != nullptr && t->allocated == 1, [t] {
    vrksFree(t->inner);
    return VrkStatus(vrkStatusOk);
  });
}

TEST(Frame, InitAllocReleasesOnEveryRoad) {
  Toy* t = nullptr;
  EXPECT_EQ(toy_init_alloc(3, nullptr), vrkStatusNullPointer);
  EXPECT_EQ(toy_init_alloc(-1, &t), vrkStatusFFTOrder);
  const int64_t roads = standin::for_each_allocation_failure([](int64_t k) {
    Toy* t = nullptr;
    const VrkStatus s = toy_init_alloc(3, &t);
    if (s != vrkStatusOk) return s == vrkStatusMemoryAllocation && t == nullptr;
    const bool ok = vrks::state_tag(t) == kToyTag && t->allocated == 1;
    return toy_free(t, vrks::FreeRule::ReleaseIfAllocated) == vrkStatusOk && ok;
  });
  EXPECT_EQ(roads, 3);  // state block, scratch, inner block
}

TEST(Frame, FreeRules) {
  alignas(64) Vrk8u block[128];
  Toy* t = nullptr;
  // Built in the caller's block: Free only invalidates it.
  ASSERT_EQ(toy_init(0, block + 1, nullptr, &t), vrkStatusOk);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(t) % 32, 0u);
  vrksFree(t->inner);
  EXPECT_EQ(toy_free(t, vrks::FreeRule::ClearTagIfAllocated), vrkStatusOk);
  EXPECT_EQ(vrks::state_tag(t), 0u);
  EXPECT_EQ(toy_free(t, vrks::FreeRule::ClearTagIfAllocated), vrkStatusContextMismatch);
  EXPECT_EQ(toy_free(nullptr, vrks::FreeRule::ReleaseAlways), vrkStatusNullPointer);
  // Allocated objects are released with what they own.
  const int64_t live = standin::live_blocks();
  ASSERT_EQ(toy_init_alloc(1, &t), vrkStatusOk);
  EXPECT_EQ(toy_free(t, vrks::FreeRule::ClearTagIfAllocated), vrkStatusOk);
  EXPECT_EQ(standin::live_blocks(), live);
  ASSERT_EQ(toy_init_alloc(1, &t), vrkStatusOk);
  EXPECT_EQ(toy_free(t, vrks::FreeRule::ReleaseAlways), vrkStatusOk);
  EXPECT_EQ(standin::live_blocks(), live);
}

TEST(Frame, WorkBuffer) {
  alignas(64) Vrk8u caller[200];
  for (int misalign = 0; misalign < 32; ++misalign) {
    vrks::WorkBuffer w;
    ASSERT_EQ(w.acquire(caller + misalign, 100), vrkStatusOk);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(w.data()) % 32, 0u);
    EXPECT_GE(w.data(), caller + misalign);
    EXPECT_LE(w.data() + 100, caller + misalign + vrks::buffer_size_with_margin(100));
  }
  EXPECT_EQ(vrks::buffer_size_with_margin(0), 0);
  const int64_t live = standin::live_blocks();
  {
    vrks::WorkBuffer w;
    ASSERT_EQ(w.acquire(nullptr, 100), vrkStatusOk);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(w.data()) % 32, 0u);
    EXPECT_EQ(standin::live_blocks(), live + 1);
  }
  EXPECT_EQ(standin::live_blocks(), live);
  {
    vrks::WorkBuffer w;
    EXPECT_EQ(w.acquire(nullptr, 0), vrkStatusOk);  // no scratch needed
    standin::fail_allocations_after(0);
    EXPECT_EQ(w.acquire(nullptr, 100), vrkStatusMemoryAllocation);
    standin::fail_allocations_after(-1);
  }
  EXPECT_EQ(standin::live_blocks(), live);
}

// ---- the threaded road ------------------------------------------------------

struct Chunks {
  std::mutex m;
  std::set<std::pair<int, int>> seen;
  int run(int length, int threshold, int flag_from, vrks::TeamRule rule = vrks::TeamRule::AtMostTwo) {
    seen.clear();
    return vrks::run_threaded(length, threshold, [&](int offset, int count) {
      std::lock_guard<std::mutex> lock(m);
      seen.insert({offset, count});
      return offset >= flag_from ? 1 : 0;
    }, rule);
  }
};

TEST(Frame, ThreadedRoadChunks) {
  using P = std::set<std::pair<int, int>>;
  Chunks c;
  {
    const int32_t previous = vrkSetNumThreads(1);
    EXPECT_EQ(c.run(1001, 100, 1 << 30), 0);
    EXPECT_EQ(c.seen, (P{{0, 1001}}));
    vrkSetNumThreads(2);
    EXPECT_EQ(c.run(99, 100, 1 << 30), 0);  // below the threshold
    EXPECT_EQ(c.seen, (P{{0, 99}}));
    EXPECT_EQ(c.run(1001, 100, 1 << 30), 0);
    EXPECT_EQ(c.seen, (P{{0, 500}, {500, 501}}));
    EXPECT_EQ(c.run(1001, 100, 500), 1);  // one chunk flagged
    EXPECT_EQ(c.run(1001, 100, 0), 2);
    vrkSetNumThreads(8);
    EXPECT_EQ(c.run(7, 1, 1 << 30), 0);  // shorter than the thread count: serial
    EXPECT_EQ(c.seen, (P{{0, 7}}));
    EXPECT_EQ(c.run(1001, 100, 1 << 30), 0);  // team of two at most
    EXPECT_EQ(c.seen, (P{{0, 500}, {500, 501}}));
    EXPECT_EQ(c.run(1003, 100, 1 << 30, vrks::TeamRule::All), 0);
    EXPECT_EQ(c.seen.size(), 8u);
    EXPECT_EQ(*c.seen.rbegin(), std::make_pair(875, 128));
    vrkSetNumThreads(previous);
  }
}

}  // namespace
