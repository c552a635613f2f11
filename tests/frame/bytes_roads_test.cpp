// Every long road of the byte kernels, called directly: a processor takes
// only some of them through the exports (the vector width, the string moves
// and the streaming stores are chosen by the processor and the cache size).
#include "bytes_roads.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

namespace {

std::vector<size_t> sizes(size_t from) {
  std::vector<size_t> v;
  for (size_t n = from; n <= 600; ++n) v.push_back(n);
  for (size_t n : {1000, 2047, 2048, 4095, 4096, 33000, 70001}) v.push_back(n);
  return v;
}

template <class Road>
void check_copy(const char* name, Road road, size_t from = 128) {
  std::mt19937 rng(1);
  for (size_t n : sizes(from)) {
    for (size_t so : {0, 1, 31, 32, 63}) {
      for (size_t dof : {0, 7, 32, 33}) {
        std::vector<uint8_t> src(n + 128), dst(n + 256, 0xCC), want;
        for (auto& b : src) b = uint8_t(rng());
        want = dst;
        std::memcpy(want.data() + 64 + dof, src.data() + so, n);
        road(dst.data() + 64 + dof, src.data() + so, n);
        ASSERT_EQ(dst, want) << name << " n " << n << " offsets " << so << " " << dof;
      }
    }
  }
}

template <class Road>
void check_move(const char* name, Road road, size_t from = 128) {
  std::mt19937 rng(2);
  for (size_t n : sizes(from)) {
    for (long shift : {-300L, -64L, -33L, -1L, 1L, 17L, 64L, 300L}) {
      std::vector<uint8_t> buf(n + 700), want;
      for (auto& b : buf) b = uint8_t(rng());
      want = buf;
      std::memmove(want.data() + 350 + shift, want.data() + 350, n);
      road(buf.data() + 350 + shift, buf.data() + 350, n);
      ASSERT_EQ(buf, want) << name << " n " << n << " shift " << shift;
    }
  }
}

template <class Road>
void check_fill(const char* name, Road road, size_t from = 128) {
  for (size_t width : {1, 2, 4, 8, 16}) {
    uint8_t pattern[16];
    for (size_t k = 0; k < 16; ++k) pattern[k] = uint8_t(0x10 * k + width);
    for (size_t n : sizes(from)) {
      if (n % width != 0) continue;
      for (size_t dof : {0, 1, 2, 4, 8, 12, 24, 40}) {
        if (dof % width != 0 && width > 8) continue;
        std::vector<uint8_t> dst(n + 256, 0xCC), want = dst;
        for (size_t i = 0; i < n; ++i) want[64 + dof + i] = pattern[i % width];
        road(dst.data() + 64 + dof, pattern, width, n);
        ASSERT_EQ(dst, want) << name << " width " << width << " n " << n << " offset " << dof;
      }
    }
  }
}

TEST(ByteRoads, Vector256) {
  check_copy("forward", roads256::forward);
  check_copy("streaming", roads256::stream);
  check_copy("string", roads256::string);
  check_move("move", roads256::move);
  check_fill("fill", roads256::fill);
  check_fill("streaming fill", roads256::stream_fill);
  check_copy("copy", roads256::copy_any, 0);
  check_move("move", roads256::move_any, 0);
  check_fill("fill", roads256::fill_any, 0);
}

TEST(ByteRoads, Vector512) {
  if (!roads512::available()) GTEST_SKIP() << "no AVX-512 on this processor";
  check_copy("forward", roads512::forward);
  check_copy("streaming", roads512::stream);
  check_move("move", roads512::move);
  check_fill("fill", roads512::fill);
  check_fill("streaming fill", roads512::stream_fill);
  check_copy("copy", roads512::copy_any, 0);
  check_move("move", roads512::move_any, 0);
  check_fill("fill", roads512::fill_any, 0);
}

}  // namespace
