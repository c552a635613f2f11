// FFT state objects of all thirteen kinds: the sizes that callers lay memory
// by, where Init puts an object, the order of the checks, Free and InitAlloc.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "fft_reference.h"
#include "standin_core.h"
#include "vrks.h"

namespace {

using fftref::Block;

enum Id { C_16sc, C_16s, R_16s, C_32fc, C_32f, R_32f, C_64fc, C_64f, R_64f, C_32sc, C_32s, R_32s, R_16s32s };
enum Class { Floating, Short, Wide };  // floating, 16-bit, 32-bit integer

struct Kind {
  const char* name;
  Id id;
  Class cls;
  uint32_t tag;
  int limit;  // the largest order
  VrkStatus (*get_size)(int, int, int, int*, int*, int*);
  VrkStatus (*init)(void**, int, int, int, Vrk8u*, Vrk8u*);
  VrkStatus (*init_alloc)(void**, int, int, int);
  VrkStatus (*free)(void*);
  VrkStatus (*get_buf_size)(const void*, int*);
};

#define FFT_KIND(k, cls, tag, limit)                                                               \
  Kind {                                                                                           \
    #k, k, cls, tag, limit, vrksFFTGetSize_##k,                                                    \
        [](void** s, int o, int f, int h, Vrk8u* m, Vrk8u* b) {                                    \
          return vrksFFTInit_##k(reinterpret_cast<VrksFFTState_##k**>(s), o, f, h, m, b);          \
        },                                                                                         \
        [](void** s, int o, int f, int h) {                                                        \
          return vrksFFTInitAlloc_##k(reinterpret_cast<VrksFFTState_##k**>(s), o, f, h);           \
        },                                                                                         \
        [](void* s) { return vrksFFTFree_##k(static_cast<VrksFFTState_##k*>(s)); },                \
        [](const void* s, int* n) {                                                                \
          return vrksFFTGetBufSize_##k(static_cast<const VrksFFTState_##k*>(s), n);                \
        }                                                                                          \
  }

const Kind kKinds[] = {
    FFT_KIND(C_16sc, Short, 1, 27),         FFT_KIND(C_16s, Short, 2, 27),
    FFT_KIND(R_16s, Short, 3, 27),          FFT_KIND(C_32fc, Floating, 4, 27),
    FFT_KIND(C_32f, Floating, 5, 27),       FFT_KIND(R_32f, Floating, 6, 27),
    FFT_KIND(C_64fc, Floating, 7, 26),      FFT_KIND(C_64f, Floating, 8, 26),
    FFT_KIND(R_64f, Floating, 9, 26),       FFT_KIND(C_32sc, Wide, 0x434D414C, 26),
    FFT_KIND(C_32s, Wide, 0x434D414D, 26),  FFT_KIND(R_32s, Wide, 0x434D414E, 26),
    FFT_KIND(R_16s32s, Wide, 0x434D414F, 27),
};

const int kFlags[] = {vrkFFTScaleFwdByN, vrkFFTScaleInvByN, vrkFFTScaleBySqrtN, vrkFFTScaleNone};
const int kBadFlags[] = {0, 3, 5, 6, 7, 9, 12, 15, 16, -1, INT_MIN};

// ---- an independent model of the sizes --------------------------------------------

struct Sizes {
  int64_t state, init, buffer;
  bool operator==(const Sizes&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Sizes& s) {
  return os << "{" << s.state << ", " << s.init << ", " << s.buffer << "}";
}

int64_t A(int64_t x) { return (x + 31) & ~int64_t(31); }

// The complex engine with e bytes a complex element (8 or 16) at order n:
// outer rows and log2 of the outer area of the block plan, table bytes and
// work bytes (the outermost level has a floor from the tile threshold on).
int rows(int e, int n) { return e == 8 ? (n <= 19 ? 4 : n <= 22 ? 6 : 8) : (n <= 21 ? 6 : 8); }
int area(int e, int n) { return e == 8 ? (n <= 19 ? 10 : n <= 22 ? 13 : 14) : (n <= 18 ? 10 : n <= 21 ? 12 : 13); }
bool direct(int e, int n) { return n <= (e == 8 ? 17 : 16); }
int64_t tables(int e, int n) {
  return direct(e, n) ? A((int64_t(e) << n) + e) : tables(e, n - rows(e, n)) + (int64_t(e) << n);
}
int64_t work(int e, int n) {
  return direct(e, n) ? A(int64_t(e) << n) : std::max(work(e, n - rows(e, n)), int64_t(e) << area(e, n));
}
int64_t outer_work(int e, int n) {
  return n >= (e == 8 ? 19 : 18) ? std::max<int64_t>(work(e, n), e == 8 ? 65536 : 32768) : work(e, n);
}
int64_t sine_table(int e, int64_t N) { return e == 8 ? A(N + 4) : A(2 * N + 8); }

Sizes complex_float(int e, int o) {
  if (o <= 5) return {168, 0, 0};
  const int64_t N = int64_t(1) << o;
  return {tables(e, o) + A(N + 4) + 192, o > 10 ? sine_table(e, N) + 32 : 0, outer_work(e, o) + 32};
}

Sizes real_float(int e, int o) {
  const int64_t N = int64_t(1) << o;
  if (o <= (e == 8 ? 4 : 5)) return {168, 0, 0};
  const int64_t split_merge = 2 * A(N * e / 4);
  if (o <= 6) return {split_merge + 192, 0, 0};
  return {tables(e, o - 1) + A(N / 2 + 4) + split_merge + 192, o > 10 ? sine_table(e, N) + 32 : 0,
          outer_work(e, o - 1) + 32};
}

Sizes model(Id k, int o, int hint) {
  const int64_t N = int64_t(1) << o;
  switch (k) {
    case C_32fc: case C_32f: return complex_float(8, o);
    case C_64fc: case C_64f: return complex_float(16, o);
    case R_32f: return real_float(8, o);
    case R_64f: return real_float(16, o);
    case C_16sc: case C_16s: case R_16s: {
      if (o == 0) return {104, 0, 0};
      if (o <= 3 && (hint == 0 || hint == 1)) {  // the fixed-point road
        const int64_t init = A(N / 2 + 2) + 32;
        if (k == R_16s) return {A(4 * N) + A(N / 2 + 4) + A(8 * N) + 128, init, 4 * (N + 2) + 32};
        return {A(8 * N) + A(N + 4) + 128, init, (k == C_16sc ? 8 : 12) * N + 32};
      }
      const Sizes f = k == R_16s ? real_float(8, o) : complex_float(8, o);
      return {f.state + 128, f.init + 32, f.buffer + (k == R_16s ? 4 * N + 8 : 8 * N) + 32};
    }
    default: {
      const Sizes f = k == R_16s32s ? real_float(8, o) : k == R_32s ? real_float(16, o) : complex_float(16, o);
      const int64_t convert = k == R_16s32s ? 4 * N + 8 : k == R_32s ? 8 * N + 16 : 16 * N;
      return {f.state + 64, f.init > 0 ? f.init + 32 : 0, f.buffer + convert + 32};
    }
  }
}

const Kind& kind(Id id) { return kKinds[id]; }

// Values worked by hand from the size rules, independent of the model.
TEST(FFTState, WorkedSizes) {
  struct Row { Id k; int order; Sizes want; } rows[] = {
      {C_32fc, 0, {168, 0, 0}},            {C_32fc, 6, {832, 0, 544}},
      {C_32fc, 11, {18688, 2112, 16416}},  {C_32fc, 18, {2490624, 262208, 131104}},
      {C_64fc, 6, {1344, 0, 1056}},        {C_64fc, 18, {4522240, 524352, 65568}},
      {R_32f, 5, {320, 0, 0}},             {R_32f, 6, {448, 0, 0}},
      {R_32f, 11, {17664, 2112, 8224}},    {R_64f, 6, {704, 0, 0}},
      {R_64f, 7, {2368, 0, 1056}},         {C_16sc, 0, {104, 0, 0}},
      {C_32sc, 0, {232, 0, 48}},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(model(r.k, r.order, 0), r.want) << kind(r.k).name << " order " << r.order;
    int s = 0, i = 0, b = 0;
    ASSERT_EQ(kind(r.k).get_size(r.order, vrkFFTScaleNone, 0, &s, &i, &b), vrkStatusOk);
    EXPECT_EQ((Sizes{s, i, b}), r.want) << kind(r.k).name << " order " << r.order;
  }
}

// Every kind, order, flag and a few hints against the model; orders past the
// floating limit are refused and nothing is written.
TEST(FFTState, SizesOfEveryKind) {
  for (const Kind& k : kKinds)
    for (int order = -2; order <= 32; ++order) {
      std::string wrong;
      for (int flag : kFlags)
        for (int hint : {0, 1, 2, -1, 100}) {
          int s = -7, i = -7, b = -7;
          const VrkStatus st = k.get_size(order, flag, hint, &s, &i, &b);
          const bool refused = order < 0 || order > k.limit;
          const Sizes want = refused ? Sizes{-7, -7, -7} : model(k.id, order, hint);
          if (wrong.empty() && (st != (refused ? vrkStatusFFTOrder : vrkStatusOk) || Sizes{s, i, b} != want)) {
            std::ostringstream os;
            os << "flag " << flag << " hint " << hint << ": status " << st << ", sizes " << Sizes{s, i, b}
               << ", model " << want;
            wrong = os.str();
          }
        }
      EXPECT_TRUE(wrong.empty()) << k.name << " order " << order << ", " << wrong;
    }
}

// Init in caller memory at odd addresses: the object lies at the next 32-byte
// boundary and inside the reported bytes, the init buffer likewise, and
// GetBufSize answers GetSize. Free only invalidates it; InitAlloc takes
// exactly one block, which Free releases.
TEST(FFTState, InitPlacesTheObjectInsideTheBlock) {
  const size_t misaligns[] = {1, 7, 13, 31, 33, 0, 50};
  for (const Kind& k : kKinds)
    for (int order = 0; order <= 20; ++order) {
      const int flag = kFlags[order % 4];
      std::vector<int> hints = {0};
      if (k.cls == Short && order >= 1 && order <= 3) hints.push_back(5);  // the floating road
      for (int hint : hints) {
        const std::string what = std::string(k.name) + " order " + std::to_string(order) + " hint " +
                                 std::to_string(hint);
        int s = 0, i = 0, b = 0;
        ASSERT_EQ(k.get_size(order, flag, hint, &s, &i, &b), vrkStatusOk) << what;
        Block mem(size_t(s), misaligns[order % 7]), init(size_t(i), misaligns[(order + 3) % 7]);
        const int64_t attempts = standin::allocation_attempts();
        void* state = nullptr;
        ASSERT_EQ(k.init(&state, order, flag, hint, mem.data(), i > 0 ? init.data() : nullptr), vrkStatusOk)
            << what;
        EXPECT_EQ(standin::allocation_attempts(), attempts) << what << ": Init allocated";
        const auto at = reinterpret_cast<uintptr_t>(mem.data());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(state), (at + 31) & ~uintptr_t(31)) << what;
        EXPECT_TRUE(mem.guards_intact()) << what << ": object outside its block";
        EXPECT_TRUE(init.guards_intact()) << what << ": outside the init buffer";
        uint32_t tag = 0;
        std::memcpy(&tag, state, 4);
        EXPECT_EQ(tag, k.tag) << what;
        int size = -1;
        EXPECT_EQ(k.get_buf_size(state, &size), vrkStatusOk) << what;
        EXPECT_EQ(size, b) << what;
        const int64_t live = standin::live_blocks();
        EXPECT_EQ(k.free(state), vrkStatusOk) << what;
        EXPECT_EQ(standin::live_blocks(), live) << what << ": Free released caller memory";
        std::memcpy(&tag, state, 4);
        EXPECT_EQ(tag, 0u) << what << ": tag not cleared";
        EXPECT_EQ(k.free(state), vrkStatusContextMismatch) << what;
        EXPECT_EQ(k.get_buf_size(state, &size), vrkStatusContextMismatch) << what;

        state = nullptr;
        ASSERT_EQ(k.init_alloc(&state, order, flag, hint), vrkStatusOk) << what;
        EXPECT_EQ(standin::live_blocks(), live + 1) << what;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(state) & 31, 0u) << what;
        size = -1;
        EXPECT_EQ(k.get_buf_size(state, &size), vrkStatusOk) << what;
        EXPECT_EQ(size, b) << what;
        EXPECT_EQ(k.free(state), vrkStatusOk) << what;
        EXPECT_EQ(standin::live_blocks(), live) << what;
      }
    }
}

// GetSize: order range, the three outputs, flag, then the floating limit.
TEST(FFTState, GetSizeCheckOrder) {
  for (const Kind& k : kKinds) {
    SCOPED_TRACE(k.name);
    int s = -7, i = -7, b = -7;
    for (int order : {-1, 31, INT_MIN, INT_MAX})
      EXPECT_EQ(k.get_size(order, 0, 0, nullptr, nullptr, nullptr), vrkStatusFFTOrder);
    for (int order : {0, 5, k.limit + 1, 30}) {
      EXPECT_EQ(k.get_size(order, 0, 0, nullptr, &i, &b), vrkStatusNullPointer) << order;
      EXPECT_EQ(k.get_size(order, 1, 0, &s, nullptr, &b), vrkStatusNullPointer) << order;
      EXPECT_EQ(k.get_size(order, 1, 0, &s, &i, nullptr), vrkStatusNullPointer) << order;
      for (int flag : kBadFlags) EXPECT_EQ(k.get_size(order, flag, 0, &s, &i, &b), vrkStatusFFTFlag) << order;
    }
    EXPECT_TRUE(s == -7 && i == -7 && b == -7);
  }
}

// Init: the checks of each class in their order; a failure hands out no
// object and leaves the init buffer alone.
TEST(FFTState, InitCheckOrder) {
  for (const Kind& k : kKinds) {
    SCOPED_TRACE(k.name);
    const int over = k.limit + 1;
    Block mem(4096, 1), ib(4096, 3);
    const Block ib_before = ib;
    void* const sentinel = &mem;
    void* out = sentinel;
    auto init = [&](int order, int flag, bool memory, bool buffer) {
      return k.init(&out, order, flag, 0, memory ? mem.data() : nullptr, buffer ? ib.data() : nullptr);
    };
    auto tag_cleared = [&] {
      uint32_t tag;
      std::memcpy(&tag, mem.data() + ((0 - reinterpret_cast<uintptr_t>(mem.data())) & 31), 4);
      return tag == 0;
    };
    EXPECT_EQ(k.init(nullptr, 31, 0, 0, nullptr, nullptr), vrkStatusNullPointer);
    for (int order : {-1, 31, INT_MIN}) EXPECT_EQ(init(order, 0, false, false), vrkStatusFFTOrder);
    EXPECT_EQ(init(3, 0, false, true), vrkStatusNullPointer);
    for (int flag : kBadFlags) {
      std::memset(mem.data(), 0x5A, 64);
      EXPECT_EQ(init(3, flag, true, true), vrkStatusFFTFlag) << flag;
      EXPECT_TRUE(tag_cleared()) << flag;
    }
    switch (k.cls) {
      case Floating:
        EXPECT_EQ(init(over, 0, false, false), vrkStatusFFTOrder);
        EXPECT_EQ(init(11, 1, true, false), vrkStatusNullPointer);
        break;
      case Short:
        EXPECT_EQ(init(over, 0, false, true), vrkStatusNullPointer);
        EXPECT_EQ(init(over, 0, true, true), vrkStatusFFTFlag);
        for (int order : {1, 3, 4, 11}) EXPECT_EQ(init(order, 1, true, false), vrkStatusNullPointer) << order;
        std::memset(mem.data(), 0x5A, 64);
        EXPECT_EQ(init(over, 1, true, true), vrkStatusFFTOrder);
        EXPECT_TRUE(tag_cleared());
        break;
      case Wide:
        EXPECT_EQ(init(over, 1, false, true), vrkStatusNullPointer);
        std::memset(mem.data(), 0x5A, 64);
        EXPECT_EQ(init(over, 0, true, true), vrkStatusFFTOrder);
        EXPECT_TRUE(tag_cleared());
        EXPECT_EQ(init(11, 1, true, false), vrkStatusNullPointer);
        break;
    }
    EXPECT_EQ(out, sentinel);
    EXPECT_TRUE(ib.same(ib_before) && mem.guards_intact());
    // An init buffer is optional up to order 10 (the 16-bit kinds need one above order 0).
    const int plain = k.cls == Short ? 0 : 10;
    int s = 0, i = 0, b = 0;
    ASSERT_EQ(k.get_size(plain, 1, 0, &s, &i, &b), vrkStatusOk);
    Block big(size_t(s), 5);
    EXPECT_EQ(k.init(&out, plain, 1, 0, big.data(), nullptr), vrkStatusOk);
    EXPECT_EQ(k.free(out), vrkStatusOk);
  }
}

// Free and GetBufSize: null first, then the tag; an object of another kind
// is refused and stays valid. InitAlloc passes on the size query's failure
// before it allocates anything.
TEST(FFTState, FreeAndGetBufSizeChecks) {
  for (size_t n = 0; n < std::size(kKinds); ++n) {
    const Kind &k = kKinds[n], &other = kKinds[(n + 1) % std::size(kKinds)];
    SCOPED_TRACE(k.name);
    int size = -7;
    void* state = nullptr;
    EXPECT_EQ(k.free(nullptr), vrkStatusNullPointer);
    EXPECT_EQ(k.get_buf_size(nullptr, &size), vrkStatusNullPointer);
    ASSERT_EQ(k.init_alloc(&state, 6, 1, 0), vrkStatusOk);
    EXPECT_EQ(k.get_buf_size(state, nullptr), vrkStatusNullPointer);
    void* foreign = nullptr;
    ASSERT_EQ(other.init_alloc(&foreign, 6, 1, 0), vrkStatusOk);
    EXPECT_EQ(k.free(foreign), vrkStatusContextMismatch);
    EXPECT_EQ(k.get_buf_size(foreign, &size), vrkStatusContextMismatch);
    EXPECT_EQ(size, -7);
    EXPECT_EQ(other.get_buf_size(foreign, &size), vrkStatusOk);
    EXPECT_EQ(other.free(foreign), vrkStatusOk);
    EXPECT_EQ(k.free(state), vrkStatusOk);

    const int64_t attempts = standin::allocation_attempts();
    EXPECT_EQ(k.init_alloc(nullptr, 6, 1, 0), vrkStatusNullPointer);
    EXPECT_EQ(k.init_alloc(&state, 31, 1, 0), vrkStatusFFTOrder);
    EXPECT_EQ(k.init_alloc(&state, k.limit + 1, 1, 0), vrkStatusFFTOrder);
    EXPECT_EQ(k.init_alloc(&state, 6, 3, 0), vrkStatusFFTFlag);
    EXPECT_EQ(standin::allocation_attempts(), attempts);
  }
}

// InitAlloc with each of its allocations failing in turn: the status says
// so, nothing is handed out and nothing leaks.
TEST(FFTState, InitAllocUnderAllocationFailure) {
  for (const Kind& k : kKinds)
    for (int order : {0, 2, 6, 11}) {
      int s = 0, i = 0, b = 0;
      ASSERT_EQ(k.get_size(order, 4, 0, &s, &i, &b), vrkStatusOk);
      const int64_t needed = standin::for_each_allocation_failure([&](int64_t) {
        void* state = &s;
        const VrkStatus st = k.init_alloc(&state, order, vrkFFTScaleBySqrtN, 0);
        if (st != vrkStatusOk) return st == vrkStatusMemoryAllocation && state == &s;
        return k.free(state) == vrkStatusOk;
      });
      EXPECT_EQ(needed, i > 0 ? 2 : 1) << k.name << " order " << order;
    }
}

}  // namespace
