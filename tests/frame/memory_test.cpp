// Allocation, copy, move, fill, clear, reversal, byte swapping and bit copy.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "harness.h"
#include "standin_core.h"

namespace {

template <class T>
void ref_copy(const T* s, T* d, int n) { std::memcpy(d, s, size_t(n) * sizeof(T)); }

template <class T>
void ref_flip(const T* s, T* d, int n) {
  for (int i = 0; i < n; ++i) std::memcpy(d + i, s + n - 1 - i, sizeof(T));
}

template <class T>
void ref_swap(const T* s, T* d, int n) {
  auto* in = reinterpret_cast<const uint8_t*>(s);
  auto* out = reinterpret_cast<uint8_t*>(d);
  for (size_t i = 0; i < size_t(n) * sizeof(T); i += sizeof(T))
    for (size_t k = 0; k < sizeof(T); ++k) out[i + k] = in[i + sizeof(T) - 1 - k];
}

// A value whose bytes all differ, so that a misplaced byte shows.
template <class T>
T pattern_value() {
  T v;
  auto* b = reinterpret_cast<uint8_t*>(&v);
  for (size_t k = 0; k < sizeof(T); ++k) b[k] = uint8_t(0x11 * (k + 1) + 3);
  return v;
}

template <class T>
void run_memory_family(const char* code, VrkStatus (*copy)(const T*, T*, int),
                       VrkStatus (*move)(const T*, T*, int), VrkStatus (*set)(T, T*, int),
                       VrkStatus (*zero)(T*, int)) {
  const std::string c = code;
  const vt::UnaryRow<T, T> rows[] = {{"Copy_" + c, copy, ref_copy<T>}, {"Move_" + c, move, ref_copy<T>}};
  for (const auto& row : rows) {
    vt::run(row);
    vt::check_errors(row);
  }
  const T value = pattern_value<T>();
  const vt::FillRow<T> fills[] = {
      {"Set_" + c, [&](T* d, int n) { return set(value, d, n); },
       [&](T* d, int n) { for (int i = 0; i < n; ++i) std::memcpy(d + i, &value, sizeof(T)); }},
      {"Zero_" + c, zero, [](T* d, int n) { std::memset(d, 0, size_t(n) * sizeof(T)); }},
  };
  for (const auto& row : fills) {
    vt::run(row);
    vt::check_errors(row);
  }
}

#define MEMORY_FAMILY(code) \
  run_memory_family<Vrk##code>(#code, vrksCopy_##code, vrksMove_##code, vrksSet_##code, vrksZero_##code)

TEST(Memory, CopyMoveSetZero8And16Bit) {
  MEMORY_FAMILY(8u);
  MEMORY_FAMILY(16s);
}
TEST(Memory, CopyMoveSetZero32Bit) {
  MEMORY_FAMILY(16sc);
  MEMORY_FAMILY(32s);
  MEMORY_FAMILY(32f);
}
TEST(Memory, CopyMoveSetZero64Bit) {
  MEMORY_FAMILY(32sc);
  MEMORY_FAMILY(32fc);
  MEMORY_FAMILY(64s);
  MEMORY_FAMILY(64f);
}
TEST(Memory, CopyMoveSetZero128Bit) {
  MEMORY_FAMILY(64sc);
  MEMORY_FAMILY(64fc);
}

template <class T>
void run_reorder(const std::string& name, VrkStatus (*fn)(const T*, T*, int), VrkStatus (*in_place)(T*, int),
                 void (*ref)(const T*, T*, int)) {
  const vt::UnaryRow<T, T> row{name, fn, ref, in_place};
  vt::run(row);
  vt::check_errors(row);
}

TEST(Memory, FlipAndSwapBytes) {
  run_reorder<Vrk8u>("Flip_8u", vrksFlip_8u, vrksFlip_8u_I, ref_flip);
  run_reorder<Vrk16u>("Flip_16u", vrksFlip_16u, vrksFlip_16u_I, ref_flip);
  run_reorder<Vrk32f>("Flip_32f", vrksFlip_32f, vrksFlip_32f_I, ref_flip);
  run_reorder<Vrk32fc>("Flip_32fc", vrksFlip_32fc, vrksFlip_32fc_I, ref_flip);
  run_reorder<Vrk64f>("Flip_64f", vrksFlip_64f, vrksFlip_64f_I, ref_flip);
  run_reorder<Vrk64fc>("Flip_64fc", vrksFlip_64fc, vrksFlip_64fc_I, ref_flip);
  run_reorder<Vrk16u>("SwapBytes_16u", vrksSwapBytes_16u, vrksSwapBytes_16u_I, ref_swap);
  run_reorder<Vrk32u>("SwapBytes_32u", vrksSwapBytes_32u, vrksSwapBytes_32u_I, ref_swap);
  run_reorder<Vrk64u>("SwapBytes_64u", vrksSwapBytes_64u, vrksSwapBytes_64u_I, ref_swap);
}

// The 24-bit forms count three-byte elements through byte pointers.
struct U24 { uint8_t b[3]; };
TEST(Memory, SwapBytes24) {
  auto fn = [](const U24* s, U24* d, int n) { return vrksSwapBytes_24u(reinterpret_cast<const Vrk8u*>(s), reinterpret_cast<Vrk8u*>(d), n); };
  auto in_place = [](U24* p, int n) { return vrksSwapBytes_24u_I(reinterpret_cast<Vrk8u*>(p), n); };
  run_reorder<U24>("SwapBytes_24u", fn, in_place, ref_swap);
  const Vrk8u in[3] = {1, 2, 3};
  Vrk8u out[3];
  ASSERT_EQ(vrksSwapBytes_24u(in, out, 1), vrkStatusOk);
  EXPECT_EQ(std::vector<int>(out, out + 3), (std::vector<int>{3, 2, 1}));
}

// Overlapping moves in both directions, short and long.
TEST(Memory, MoveOverlapping) {
  std::mt19937_64 rng(3);
  for (int n : vt::lengths()) {
    for (int shift : {-4097, -200, -64, -33, -7, -1, 1, 7, 33, 64, 200, 4097}) {
      std::vector<uint8_t> buf(size_t(n) + 8300), want;
      for (auto& b : buf) b = uint8_t(rng());
      const size_t s = 4100 + size_t(rng() % 32), d = size_t(ptrdiff_t(s) + shift);
      want = buf;
      std::memmove(want.data() + d, want.data() + s, size_t(n));
      const VrkStatus st = vrksMove_8u(buf.data() + s, buf.data() + d, n);
      ASSERT_EQ(st, n ? vrkStatusOk : vrkStatusSizeError);
      ASSERT_EQ(buf, want) << "length " << n << " shift " << shift;
    }
  }
}

// Blocks beyond the outer cache take the streaming road.
TEST(Memory, LongBlocks) {
  const int n = (48 << 20) + 13;
  std::vector<uint8_t> src(size_t(n) + 64), dst(size_t(n) + 64, 0xEE);
  for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i * 131 + (i >> 12));
  // Runs op on dst[at, at + bytes) and checks the bytes on either side.
  auto bounded = [&](size_t at, size_t bytes, auto op) {
    const uint8_t before = dst[at - 1], after = dst[at + bytes];
    ASSERT_EQ(op(dst.data() + at), vrkStatusOk);
    EXPECT_EQ(dst[at - 1], before);
    EXPECT_EQ(dst[at + bytes], after);
  };
  bounded(5, size_t(n), [&](uint8_t* d) { return vrksCopy_8u(src.data() + 3, d, n); });
  EXPECT_EQ(std::memcmp(src.data() + 3, dst.data() + 5, size_t(n)), 0);
  bounded(1, size_t(n), [&](uint8_t* d) { return vrksSet_8u(0x42, d, n); });
  EXPECT_EQ(std::count(dst.begin() + 1, dst.begin() + 1 + n, 0x42), n);
  bounded(2, size_t(n) - 1, [&](uint8_t* d) { return vrksZero_8u(d, n - 1); });
  EXPECT_EQ(std::count(dst.begin() + 2, dst.begin() + 1 + n, 0), n - 1);
  const Vrk64fc v = {1.5, -2.25};
  const int m = n / 16 - 1;
  bounded(8, size_t(m) * 16, [&](uint8_t* d) { return vrksSet_64fc(v, reinterpret_cast<Vrk64fc*>(d), m); });
  const auto* p = reinterpret_cast<const Vrk64fc*>(dst.data() + 8);
  for (int i = 0; i < m; i += 4099) EXPECT_TRUE(p[i].re == 1.5 && p[i].im == -2.25) << i;
  EXPECT_TRUE(p[m - 1].re == 1.5 && p[m - 1].im == -2.25);
}

TEST(Memory, Allocation) {
  const int64_t attempts = standin::allocation_attempts();
  EXPECT_EQ(vrksMalloc_32f(0), nullptr);
  EXPECT_EQ(vrksMalloc_8u(-5), nullptr);
  EXPECT_EQ(standin::allocation_attempts(), attempts);  // the core is not asked
  vrksFree(nullptr);
  const int64_t live = standin::live_blocks();
  void* blocks[] = {vrksMalloc_8u(1),   vrksMalloc_8s(3),    vrksMalloc_8sc(5),  vrksMalloc_16u(7),
                    vrksMalloc_16s(9),  vrksMalloc_16sc(11), vrksMalloc_32u(13), vrksMalloc_32s(15),
                    vrksMalloc_32sc(17), vrksMalloc_32f(19), vrksMalloc_32fc(21), vrksMalloc_64s(23),
                    vrksMalloc_64sc(25), vrksMalloc_64f(27), vrksMalloc_64fc(1 << 20)};
  for (void* b : blocks) {
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(b) % 64, 0u);
  }
  // The last block is writable over its whole 16 MiB.
  std::memset(blocks[14], 1, size_t(16) << 20);
  EXPECT_EQ(standin::live_blocks(), live + 15);
  for (void* b : blocks) vrksFree(b);
  EXPECT_EQ(standin::live_blocks(), live);
  standin::fail_allocations_after(0);
  EXPECT_EQ(vrksMalloc_64fc(10), nullptr);
  standin::fail_allocations_after(-1);
}

// Copy_1u against a bit-by-bit model over offsets 0..15 (only the low three
// bits count) and lengths across every kernel width.
TEST(Memory, CopyBits) {
  std::mt19937_64 rng(11);
  std::vector<int> lengths;
  for (int n = 1; n <= 140; ++n) lengths.push_back(n);
  for (int n : {255, 256, 257, 300, 511, 1000, 4099}) lengths.push_back(n);
  const size_t bytes = 4099 / 8 + 2;
  for (int n : lengths) {
    for (int so = 0; so < 16; ++so) {
      for (int dof = 0; dof < 16; ++dof) {
        vt::Guarded src(bytes, size_t(so) * 3 % 64), dst(bytes, size_t(dof) * 5 % 64);
        src.fill_random(rng);
        dst.fill_random(rng);
        std::vector<uint8_t> want = dst.bytes();
        const uint8_t* s = src.data();
        for (int i = 0; i < n; ++i) {
          const int sb = (so & 7) + i, db = (dof & 7) + i;
          const int bit = s[sb >> 3] >> (7 - (sb & 7)) & 1;
          want[size_t(db >> 3)] = uint8_t((want[size_t(db >> 3)] & ~(0x80 >> (db & 7))) | bit << (7 - (db & 7)));
        }
        ASSERT_EQ(vrksCopy_1u(src.data(), so, dst.data(), dof, n), vrkStatusOk);
        ASSERT_EQ(dst.bytes(), want) << "length " << n << " offsets " << so << " " << dof;
        ASSERT_TRUE(dst.guards_intact() && src.guards_intact());
      }
    }
  }
  Vrk8u a = 0xFF, b = 0;
  EXPECT_EQ(vrksCopy_1u(&a, -1, &b, 0, 4), vrkStatusSizeError);
  EXPECT_EQ(vrksCopy_1u(&a, 0, &b, -1, 4), vrkStatusSizeError);
  EXPECT_EQ(vrksCopy_1u(&a, -1, &b, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksCopy_1u(nullptr, -1, &b, 0, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksCopy_1u(&a, 0, nullptr, 0, 4), vrkStatusNullPointer);
  EXPECT_EQ(vrksCopy_1u(&a, 0, &b, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(b, 0);
}

}  // namespace
