// The AVX-512 road of the FFT kernels gives the bytes of the AVX2 road.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "frame/cpu.h"
#include "transforms/fft_roads.h"
#include "vrks.h"

namespace {

using vrks::fft::FloatState;

template <class T>
const vrks::fft::TypeRoads<T>& of(const vrks::fft::Roads& r) {
  if constexpr (sizeof(T) == 4) return r.f32;
  else return r.f64;
}

template <class T, class State>
void compare(State* state, int n, bool real) {
  const auto* st = reinterpret_cast<const FloatState<T>*>(state);
  const size_t N = size_t(1) << n;
  std::mt19937_64 rng(n);
  std::normal_distribution<double> g;
  std::vector<T> src(2 * N + 2), a(2 * N + 2), b(2 * N + 2), work(2 * N + 64);
  for (auto& x : src) x = T(g(rng));
  for (int inv = 0; inv < 2; ++inv) {
    const auto& r2 = of<T>(vrks::fft::roads_avx2());
    const auto& r5 = of<T>(vrks::fft::roads_avx512());
    const bool scaled = inv == 1;
    r2.interleaved[inv](st, n, src.data(), a.data(), work.data(), scaled, T(0.25));
    r5.interleaved[inv](st, n, src.data(), b.data(), work.data(), scaled, T(0.25));
    EXPECT_EQ(0, std::memcmp(a.data(), b.data(), 2 * N * sizeof(T))) << "interleaved n " << n;
    r2.split[inv](st, n, src.data(), src.data() + N, a.data(), a.data() + N, work.data(), scaled, T(0.25));
    r5.split[inv](st, n, src.data(), src.data() + N, b.data(), b.data() + N, work.data(), scaled, T(0.25));
    EXPECT_EQ(0, std::memcmp(a.data(), b.data(), 2 * N * sizeof(T))) << "split n " << n;
  }
  if (real && st->realSplitTable != nullptr) {
    const auto& r2 = of<T>(vrks::fft::roads_avx2());
    const auto& r5 = of<T>(vrks::fft::roads_avx512());
    const size_t M = N;  // complex points of the real length 2N
    a = src, b = src;
    r2.split_step(a.data(), M, st->realSplitTable, st->realSplitTable + M / 2);
    r5.split_step(b.data(), M, st->realSplitTable, st->realSplitTable + M / 2);
    EXPECT_EQ(0, std::memcmp(a.data(), b.data(), 2 * M * sizeof(T))) << "split step n " << n;
    a = src, b = src;
    r2.merge_step(a.data(), M, st->realMergeTable, st->realMergeTable + M / 2);
    r5.merge_step(b.data(), M, st->realMergeTable, st->realMergeTable + M / 2);
    EXPECT_EQ(0, std::memcmp(a.data(), b.data(), 2 * M * sizeof(T))) << "merge step n " << n;
  }
}

TEST(FFTRoads, Avx512GivesTheBytesOfAvx2) {
  if (!vrks::cpu_has_avx512()) GTEST_SKIP() << "no AVX-512";
  for (int n : {0, 3, 4, 5, 6, 7, 9, 12, 16, 17, 18}) {
    VrksFFTState_C_32fc* c32 = nullptr;
    VrksFFTState_C_64fc* c64 = nullptr;
    ASSERT_EQ(vrkStatusOk, vrksFFTInitAlloc_C_32fc(&c32, n, vrkFFTScaleNone, 0));
    ASSERT_EQ(vrkStatusOk, vrksFFTInitAlloc_C_64fc(&c64, n, vrkFFTScaleNone, 0));
    compare<float>(c32, n, false);
    compare<double>(c64, n, false);
    vrksFFTFree_C_32fc(c32);
    vrksFFTFree_C_64fc(c64);
    // a real object of order n + 1 holds the complex tables of order n
    VrksFFTState_R_32f* r32 = nullptr;
    VrksFFTState_R_64f* r64 = nullptr;
    ASSERT_EQ(vrkStatusOk, vrksFFTInitAlloc_R_32f(&r32, n + 1, vrkFFTScaleNone, 0));
    ASSERT_EQ(vrkStatusOk, vrksFFTInitAlloc_R_64f(&r64, n + 1, vrkFFTScaleNone, 0));
    compare<float>(r32, n, true);
    compare<double>(r64, n, true);
    vrksFFTFree_R_32f(r32);
    vrksFFTFree_R_64f(r64);
  }
}

}  // namespace
