// The products with roads of their own (through 64-bit floating point, the
// Low forms, the 64-bit constants), the order of the checks, and a table of
// worked values.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>

#include "harness.h"

namespace {

using i128 = __int128;

std::vector<int32_t> samples32(int n, uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::vector<int32_t> v = {0, 1, -1, INT32_MAX, INT32_MIN, 46341, -46341, 65536};
  while (int(v.size()) < n) v.push_back(int32_t(rng() >> (rng() % 33)));
  return v;
}

int32_t clamp_round(double x) {
  x = std::fmin(std::fmax(x, -2147483648.0), 2147483647.0);
  return int32_t(std::nearbyint(x));
}

// The 32-bit products of two vectors and the 32-bit accumulation round the
// exact product to 53 bits before scaling; wherever the product fits 53 bits
// that is the exact rule.
TEST(Special, ThirtyTwoBitProductsByWayOfDoubles) {
  const auto a = samples32(400, 1), b = samples32(400, 2), acc = samples32(400, 3);
  std::vector<int32_t> got(a.size()), io(a.size());
  const int n = int(a.size());
  for (int s = -40; s <= 70; ++s) {
    ASSERT_EQ(vrksMul_32s_Sfs(a.data(), b.data(), got.data(), n, s), vrkStatusOk);
    io = b;
    ASSERT_EQ(vrksMul_32s_ISfs(a.data(), io.data(), n, s), vrkStatusOk);
    EXPECT_EQ(io, got);
    for (int i = 0; i < n; ++i) {
      const i128 p = i128(a[size_t(i)]) * b[size_t(i)];
      int32_t want;
      if (s > 62) want = 0;
      else if (s < -31) want = p > 0 ? INT32_MAX : p < 0 ? INT32_MIN : 0;
      else want = clamp_round(std::ldexp(double(p), -s));
      ASSERT_EQ(got[size_t(i)], want) << a[size_t(i)] << " * " << b[size_t(i)] << " scale " << s;
      if (p < (i128(1) << 53) && p > -(i128(1) << 53)) {
        ASSERT_EQ(want, int32_t(vt::reference_scale(p, s, INT32_MIN, INT32_MAX)));
      }
    }
    io = acc;
    ASSERT_EQ(vrksAddProduct_32s_Sfs(a.data(), b.data(), io.data(), n, s), vrkStatusOk);
    for (int i = 0; i < n; ++i) {
      const i128 r = i128(a[size_t(i)]) * b[size_t(i)] + acc[size_t(i)];
      int32_t want;
      if (s > 62) want = 0;
      else if (s < -30) want = r > 0 ? INT32_MAX : r < 0 ? INT32_MIN : 0;
      else want = clamp_round(std::ldexp(double(i128(a[size_t(i)]) * b[size_t(i)]) + double(acc[size_t(i)]), -s));
      ASSERT_EQ(io[size_t(i)], want) << "AddProduct scale " << s;
    }
  }
}

TEST(Special, LowForms) {
  const auto a = samples32(300, 4), b = samples32(300, 5);
  std::vector<int32_t> got(a.size());
  for (int s = -40; s <= 70; ++s) {
    ASSERT_EQ(vrksMul_Low_32s_Sfs(a.data(), b.data(), got.data(), int(a.size()), s), vrkStatusOk);
    for (size_t i = 0; i < a.size(); ++i) {
      const int64_t p = int64_t(a[i]) * b[i];
      int32_t want;
      if (s > 62) want = 0;
      else if (s < -31) want = p > 0 ? INT32_MAX : p < 0 ? INT32_MIN : 0;
      else want = int32_t(uint32_t(s >= 0 ? uint64_t(p >> s) : uint64_t(p) << -s));
      ASSERT_EQ(got[i], want) << a[i] << " * " << b[i] << " scale " << s;
    }
  }
  // Constants into 16 bits: scale folded into the constant, to nearest even.
  const float src[] = {1.25f, -3.5f, 2.5f, 1e9f, -1e9f, NAN, 32767.4f, -0.5f};
  Vrk16s d[8];
  ASSERT_EQ(vrksMulC_32f16s_Sfs(src, 2.0f, d, 8, 1), vrkStatusOk);
  EXPECT_EQ(std::vector<int>(d, d + 8), (std::vector<int>{1, -4, 2, 32767, -32768, -32768, 32767, 0}));
  ASSERT_EQ(vrksMulC_32f16s_Sfs(src, 1.0f, d, 8, -200), vrkStatusOk);  // 2^127
  EXPECT_EQ(d[0], 32767);
  // The Low form converts under the caller's rounding mode.
  const float low[] = {1e10f / 3.0f, 40000.0f / 3.0f, 2.5f / 3.0f, -2.5f / 3.0f, NAN};
  ASSERT_EQ(vrksMulC_Low_32f16s(low, 3.0f, d, 5), vrkStatusOk);
  EXPECT_EQ(std::vector<int>(d, d + 5), (std::vector<int>{-32768, 32767, 2, -2, -32768}));
  const unsigned csr = _mm_getcsr();
  _mm_setcsr((csr & ~0x6000u) | 0x2000u);  // toward minus infinity
  ASSERT_EQ(vrksMulC_Low_32f16s(low, 3.0f, d, 4), vrkStatusOk);
  _mm_setcsr(csr);
  EXPECT_EQ(d[2], 2);
  EXPECT_EQ(d[3], -3);
}

std::vector<int64_t> samples64(int n, uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::vector<int64_t> v = {0, 1, -1, 5, -5, 3, INT64_MAX, INT64_MIN, INT64_MIN + 1};
  while (int(v.size()) < n) v.push_back(int64_t(rng()) >> (rng() % 64));
  return v;
}

TEST(Special, SixtyFourBitConstants) {
  const auto x = samples64(200, 6);
  std::vector<int64_t> io;
  for (int64_t value : samples64(40, 7)) {
    for (int s : {-130, -64, -63, -62, -40, -1, 0, 1, 2, 31, 63, 64, 65, 100, 126, 127, 300}) {
      io = x;
      ASSERT_EQ(vrksMulC_64s_ISfs(value, io.data(), Vrk32u(io.size()), s), vrkStatusOk);
      for (size_t i = 0; i < x.size(); ++i)
        ASSERT_EQ(io[i], int64_t(vt::reference_scale(i128(x[i]) * value, s, INT64_MIN, INT64_MAX)))
            << x[i] << " * " << value << " scale " << s;
    }
  }
  // A double constant is an integer mantissa times a power of two: the
  // product is exact and rounded once.
  std::mt19937_64 rng(8);
  for (int k = 0; k < 300; ++k) {
    const double value = std::ldexp(double(int64_t(rng())) / 9.0, int(rng() % 120) - 60);
    const int s = int(rng() % 80) - 40;
    int e;
    const double f = std::frexp(value, &e);  // value = f * 2^e, 0.5 <= |f| < 1
    const i128 mantissa = i128(std::ldexp(f, 53));
    io = x;
    ASSERT_EQ(vrksMulC_64f64s_ISfs(value, io.data(), Vrk32u(io.size()), s), vrkStatusOk);
    for (size_t i = 0; i < x.size(); ++i)
      ASSERT_EQ(io[i], int64_t(vt::reference_scale(i128(x[i]) * mantissa, s - e + 53, INT64_MIN, INT64_MAX)))
          << x[i] << " * " << value << " scale " << s;
  }
  int64_t v[] = {3, 5, -7, 0};
  ASSERT_EQ(vrksMulC_64f64s_ISfs(0.5, v, 4, 0), vrkStatusOk);
  EXPECT_EQ(std::vector<int64_t>(v, v + 4), (std::vector<int64_t>{2, 2, -4, 0}));
  int64_t w[] = {3, -3, 0};
  ASSERT_EQ(vrksMulC_64f64s_ISfs(-INFINITY, w, 3, 5), vrkStatusOk);
  EXPECT_EQ(std::vector<int64_t>(w, w + 3), (std::vector<int64_t>{INT64_MIN, INT64_MAX, 0}));
  ASSERT_EQ(vrksMulC_64f64s_ISfs(INFINITY, w, 3, 5), vrkStatusOk);
  EXPECT_EQ(std::vector<int64_t>(w, w + 3), (std::vector<int64_t>{INT64_MIN, INT64_MAX, INT64_MIN}));
  ASSERT_EQ(vrksMulC_64f64s_ISfs(std::bit_cast<double>(~0ull), w, 3, 5), vrkStatusOk);
  EXPECT_EQ(std::vector<int64_t>(w, w + 3), (std::vector<int64_t>(3, INT64_MIN)));
  int64_t m1[] = {-5, INT64_MIN};
  ASSERT_EQ(vrksMulC_64s_ISfs(-1, m1, 2, 0), vrkStatusOk);
  EXPECT_EQ(m1[0], 5);
  EXPECT_EQ(m1[1], INT64_MAX);
  // These two take an unsigned length and reject only 0.
  EXPECT_EQ(vrksMulC_64s_ISfs(2, m1, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksMulC_64f64s_ISfs(2.0, nullptr, 0, 0), vrkStatusNullPointer);
}

// Check order: pointers, then length; the complex sums and differences test
// the length first; the 16-bit unsigned forms take their all-zero road (and
// MulC its zero constant, AddC its fill) before the checks of their source.
TEST(Special, CheckOrder) {
  Vrk16u d16[4] = {1, 2, 3, 4};
  EXPECT_EQ(vrksAdd_16u_Sfs(nullptr, nullptr, d16, 4, 18), vrkStatusOk);
  EXPECT_EQ(d16[3], 0);
  EXPECT_EQ(vrksSub_16u_Sfs(nullptr, d16, nullptr, 4, 17), vrkStatusNullPointer);
  EXPECT_EQ(vrksMulC_16u_Sfs(nullptr, 0, d16, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksAddC_16u_ISfs(7, d16, 4, -16), vrkStatusOk);
  EXPECT_EQ(d16[0], 65535);
  EXPECT_EQ(vrksAddC_16u_Sfs(nullptr, 7, d16, 4, -16), vrkStatusOk);
  EXPECT_EQ(vrksAddC_16u_Sfs(nullptr, 7, d16, 4, -15), vrkStatusNullPointer);
  EXPECT_EQ(vrksMul_16u_ISfs(nullptr, d16, 4, 33), vrkStatusOk);
  Vrk16sc c[2] = {};
  EXPECT_EQ(vrksAdd_16sc_Sfs(nullptr, c, c, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksSub_32sc_ISfs(nullptr, nullptr, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksMul_16sc_Sfs(nullptr, c, c, 0, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksAddC_16sc_Sfs(nullptr, Vrk16sc{}, c, 0, 0), vrkStatusNullPointer);
  Vrk32f f[1] = {};
  EXPECT_EQ(vrksAdd_32f(nullptr, f, f, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksAdd_32fc(nullptr, nullptr, nullptr, 0), vrkStatusSizeError);
  vt::check_errors(vt::BinaryRow<Vrk16s, Vrk16s, Vrk16s>{"Mul_16s_Sfs",
      [](auto a, auto b, auto d, int n) { return vrksMul_16s_Sfs(a, b, d, n, 3); }, nullptr,
      [](auto a, auto d, int n) { return vrksMul_16s_ISfs(a, d, n, 3); }});
  vt::check_errors(vt::BinaryRow<Vrk32sc, Vrk32sc, Vrk32sc>{"Add_32sc_Sfs",
      [](auto a, auto b, auto d, int n) { return vrksAdd_32sc_Sfs(a, b, d, n, 3); }, nullptr,
      [](auto a, auto d, int n) { return vrksAdd_32sc_ISfs(a, d, n, 3); }}, vt::Order::LengthFirst);
  vt::check_errors(vt::BinaryRow<Vrk16s, Vrk16s, Vrk32s>{"AddProduct_16s32s_Sfs",
      [](auto a, auto b, auto d, int n) { return vrksAddProduct_16s32s_Sfs(a, b, d, n, 3); }, nullptr});
  vt::check_errors(vt::UnaryRow<Vrk8u, Vrk8u>{"SubCRev_8u_Sfs",
      [](auto s, auto d, int n) { return vrksSubCRev_8u_Sfs(s, 9, d, n, -2); }, nullptr,
      [](auto d, int n) { return vrksSubCRev_8u_ISfs(9, d, n, -2); }});
}

// Values that pin decisions the reference tests above leave open.
TEST(Special, PinnedValues) {
  Vrk64s big = INT64_MIN, sum;
  ASSERT_EQ(vrksAdd_64s_Sfs(&big, &big, &sum, 1, 1), vrkStatusOk);
  EXPECT_EQ(sum, INT64_MIN);
  ASSERT_EQ(vrksAdd_64s_Sfs(&big, &big, &sum, 1, 64), vrkStatusOk);
  EXPECT_EQ(sum, 0);  // cleared from scale 64 on, though the exact rule gives -1
  Vrk32s m = INT32_MAX, mm;
  ASSERT_EQ(vrksMul_32s_Sfs(&m, &m, &mm, 1, 31), vrkStatusOk);
  EXPECT_EQ(mm, 2147483646);  // no clamp is reached at scale 31
  Vrk16sc z{-32768, -32768}, zz;
  ASSERT_EQ(vrksMul_16sc_Sfs(&z, &z, &zz, 1, 0), vrkStatusOk);
  EXPECT_EQ(zz.re, 0);
  EXPECT_EQ(zz.im, 32767);  // 2^31 saturates
}

}  // namespace
