// Type conversion against exact references: exhaustive over 16-bit and half
// sources, dense sweeps around the rounding and saturation boundaries of
// floating sources in every rounding mode and over a spread of scales; the
// shared harness for lengths, misalignments, guard bytes and error paths.
#include <gtest/gtest.h>
#include <immintrin.h>

#include <algorithm>
#include <cfenv>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "arith/convert.h"
#include "harness.h"

namespace {

using ld = long double;
using i128 = __int128;
struct U24 {
  uint8_t b[3];
};

template <class T>
uint64_t bits(T x) {
  uint64_t b = 0;
  std::memcpy(&b, &x, sizeof x);
  return b;
}
template <class T>
T from_bits(uint64_t b) {
  T x;
  std::memcpy(&x, &b, sizeof x);
  return x;
}
int32_t of24s(U24 p) { return int32_t(uint32_t(p.b[0]) << 8 | uint32_t(p.b[1]) << 16 | uint32_t(p.b[2]) << 24) >> 8; }
uint32_t of24u(U24 p) { return p.b[0] | p.b[1] << 8 | uint32_t(p.b[2]) << 16; }
U24 to24(int64_t v) { return U24{{uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16)}}; }
template <class T>
auto bytes(T* p) { return reinterpret_cast<std::conditional_t<std::is_const_v<T>, const Vrk8u*, Vrk8u*>>(p); }

template <class S, class D>
using Fn = std::function<VrkStatus(const S*, D*, int)>;

// The harness over one element-wise export, with a reference of one element.
template <class S, class D>
void row(const std::string& name, Fn<S, D> fn, std::function<D(S)> ref, bool errors = true) {
  const vt::UnaryRow<S, D> r{name, fn, [ref](const S* s, D* d, int n) {
                               for (int i = 0; i < n; ++i) d[i] = ref(s[i]);
                             }};
  vt::run(r);
  if (errors) vt::check_errors(r);
}

// One call over all of `in`, compared element by element.
template <class S, class D>
void sweep(const std::string& name, Fn<S, D> fn, const std::vector<S>& in, std::function<D(S)> ref) {
  std::vector<D> out(in.size());
  ASSERT_EQ(fn(in.data(), out.data(), int(in.size())), vrkStatusOk) << name;
  for (size_t i = 0; i < in.size(); ++i) {
    const D want = ref(in[i]);
    if (std::memcmp(&out[i], &want, sizeof(D)) != 0) {
      ADD_FAILURE() << name << ": source bits 0x" << std::hex << bits(in[i]) << " gave 0x" << bits(out[i])
                    << ", want 0x" << bits(want);
      return;
    }
  }
}

// An export with `rounding` and `scale` (either may be ignored), and its
// reference of one element at a mode and a scale.
template <class S, class D>
struct Member {
  std::string name;
  std::function<VrkStatus(const S*, D*, int, int, int)> fn;
  std::function<D(S, int, int)> ref;
  bool signed_length = true;
};
#define MODE_SCALE(f) [](auto s, auto d, int n, int r, int k) { return f(s, d, n, r, k); }
#define SCALE(f) [](auto s, auto d, int n, int, int k) { return f(s, d, n, k); }
#define TO_24(f) [](auto s, auto d, int n, int, int k) { return f(s, bytes(d), n, k); }
#define UNSIGNED(f) [](auto s, auto d, int n, int r, int k) { return f(s, d, uint32_t(n), r, k); }

// Sweeps every mode and scale over inputs(scale), and runs the harness at the
// (mode, scale) pairs of `roads`.
template <class S, class D>
void check(const Member<S, D>& m, std::function<std::vector<S>(int)> inputs, std::vector<int> modes,
           std::vector<int> scales, std::vector<std::pair<int, int>> roads) {
  auto fn = [&](int r, int k) -> Fn<S, D> { return [=](const S* s, D* d, int n) { return m.fn(s, d, n, r, k); }; };
  auto ref = [&](int r, int k) -> std::function<D(S)> { return [=](S x) { return m.ref(x, r, k); }; };
  for (int k : scales) {
    const auto in = inputs(k);
    for (int r : modes) sweep(m.name + " mode " + std::to_string(r) + " scale " + std::to_string(k), fn(r, k), in, ref(r, k));
  }
  for (auto [r, k] : roads) row(m.name, fn(r, k), ref(r, k), m.signed_length);
}

std::vector<uint16_t> all16() {
  std::vector<uint16_t> v(65536);
  std::iota(v.begin(), v.end(), 0);
  return v;
}
template <class T>
std::vector<T> every16(int = 0) {
  const auto v = all16();
  return std::vector<T>(reinterpret_cast<const T*>(v.data()), reinterpret_cast<const T*>(v.data()) + v.size());
}

// ---- exact references ------------------------------------------------------------

template <class D>
D clamp_to(ld v, ld lo = ld(std::numeric_limits<D>::min()), ld hi = ld(std::numeric_limits<D>::max())) {
  return v <= lo ? D(lo) : v >= hi ? D(hi) : D(v);
}

// x * 2^-scale as the conversions form it: exact, then rounded once to F. A
// multiplier that underflowed to 0 (scale > least) or overflowed to infinity
// (scale < most) follows IEEE: 0 * inf is the processor's NaN, sign bit set.
template <class F>
F product(F x, int scale, int least = 149, int most = -127) {
  if (scale == 0 || std::isnan(x)) return x;
  if (scale > least) return std::isinf(x) ? -std::numeric_limits<F>::quiet_NaN() : std::copysign(F(0), x);
  if (scale < most) return x == 0 ? -std::numeric_limits<F>::quiet_NaN() : std::copysign(F(INFINITY), x);
  return F(std::ldexp(ld(x), -scale));
}

// Mode 0 truncates, 1 rounds to nearest even, any other value adds one half
// to the magnitude in F's precision (one rounding of the exact sum) and
// truncates.
template <class F>
ld round_by(F y, int mode) {
  if (mode == 0) return std::trunc(ld(y));
  if (mode == 1) return std::nearbyint(ld(y));
  return std::copysign(std::trunc(ld(F(std::fabs(ld(y)) + 0.5L))), ld(y));
}

template <class D, class F>
D to_int(F y, int mode, D nan) {
  return std::isnan(y) ? nan : clamp_to<D>(round_by(y, mode));
}

// r * 2^-s rounded by mode (0 toward zero, 1 nearest even, else half away).
i128 shift(i128 r, int s, int mode) {
  if (s <= 0) return r * (i128(1) << -s);
  const i128 d = i128(1) << s, q = r / d, rem = r % d < 0 ? -(r % d) : r % d;
  const bool up = mode == 0 ? false : mode == 1 ? (2 * rem > d || (2 * rem == d && (q & 1))) : 2 * rem >= d;
  return up ? q + (r < 0 ? -1 : 1) : q;
}

// Floating sources around every boundary: halves near 0, the edges of every
// integer type, 2^23, 2^24, 2^31, 2^52, 2^63, specials and random bits; at a
// scale, the same again multiplied by 2^scale, so that the products meet the
// boundaries.
template <class F>
std::vector<F> boundaries(int scale = 0) {
  std::vector<F> v = {0, -0.0, INFINITY, -INFINITY, NAN, -NAN, std::numeric_limits<F>::signaling_NaN(),
                      std::numeric_limits<F>::denorm_min(), std::numeric_limits<F>::max(), 0.49999997f,
                      F(0.49999999999999994)};
  auto near = [&](F c) {
    for (F s : {F(1), F(-1)})
      for (F x = s * c, y = x, k = 0; k < 4; ++k, x = std::nextafter(x, F(0)), y = std::nextafter(y, s * F(INFINITY)))
        v.insert(v.end(), {x, y});
  };
  for (int k = 0; k <= 1200; ++k) near(F(k) / 2);
  for (F c : {127, 128, 255, 256, 32767, 32768, 65535, 65536, 8388607, 8388608, 16777215, 16777216})
    for (F d : {F(-1), F(-0.5), F(0), F(0.5), F(1)}) near(c + d);
  for (int e : {31, 52, 53, 62, 63, 64}) near(std::ldexp(F(1), e));
  std::mt19937_64 rng(5);
  for (int k = 0; k < 20000; ++k) v.push_back(from_bits<F>(rng()));
  const size_t base = v.size();
  for (size_t i = 0; i < base && scale != 0; ++i)
    v.push_back(std::isnan(v[i]) ? v[i] : F(std::ldexp(ld(v[i]), std::clamp(scale, -200, 200))));
  return v;
}

const std::vector<int> kModes = {0, 1, 2, 3, -1};
const std::vector<int> kScales = {0, 1, 3, -2, -7, 24, 126, 127, 149, 150, -126, -127, -128, 1022, 1075, -1024, INT_MAX, INT_MIN};
const std::vector<std::pair<int, int>> kRoads = {{1, 0}, {2, -3}, {0, 5}};

// ---- floating to integer ------------------------------------------------------------

TEST(Convert, FloatToInteger) {
  const auto f = [](int k) { return boundaries<float>(k); };
  const auto d = [](int k) {
    auto v = boundaries<double>(k);
    const auto w = boundaries<float>(k);
    v.insert(v.end(), w.begin(), w.end());
    return v;
  };
  // Float sources: the product, then rounding, with the target's NaN result.
  auto from = [](auto nan) {
    return [=](float x, int r, int k) { return to_int<decltype(nan)>(product(x, k), r, nan); };
  };
  check<float, Vrk8s>({"32f8s", MODE_SCALE(vrksConvert_32f8s_Sfs), from(Vrk8s(127))}, f, kModes, kScales, kRoads);
  check<float, Vrk8u>({"32f8u", MODE_SCALE(vrksConvert_32f8u_Sfs), from(Vrk8u(255))}, f, kModes, kScales, kRoads);
  check<float, Vrk16s>({"32f16s", MODE_SCALE(vrksConvert_32f16s_Sfs), from(Vrk16s(32767))}, f, kModes, kScales, kRoads);
  check<float, Vrk16u>({"32f16u", MODE_SCALE(vrksConvert_32f16u_Sfs), from(Vrk16u(0))}, f, kModes, kScales, kRoads);
  check<float, Vrk32s>({"32f32s", MODE_SCALE(vrksConvert_32f32s_Sfs),
                        [](float x, int r, int k) {
                          const float y = product(x, k);  // NaN by its sign bit
                          return to_int<Vrk32s>(y, r, std::signbit(y) ? INT32_MIN : INT32_MAX);
                        }},
                       f, kModes, kScales, kRoads);
  check<double, Vrk16s>({"64f16s", MODE_SCALE(vrksConvert_64f16s_Sfs),
                         [](double x, int r, int k) {
                           return to_int<Vrk16s>(product(x, std::clamp(k, -1008, 1022), 2000, -2000), r, 32767);
                         }},
                        d, kModes, kScales, kRoads);
  check<double, Vrk32s>({"64f32s", MODE_SCALE(vrksConvert_64f32s_Sfs),
                         [](double x, int r, int k) { return to_int<Vrk32s>(product(x, k), r, INT32_MAX); }},
                        d, kModes, kScales, kRoads);
  check<double, Vrk64s>({"64f64s", UNSIGNED(vrksConvert_64f64s_Sfs),
                         [](double x, int r, int k) -> Vrk64s {  // with the two short cuts
                           const ld a = std::fabs(ld(x));
                           if (k > 0 && (k > 1074 ? a <= INFINITY : a <= std::ldexp(ld(DBL_MIN), k))) return 0;
                           if (k < 0 && (k < -1023 ? a >= 0 : a >= std::ldexp(ld(DBL_MAX), k)))
                             return std::signbit(x) ? INT64_MIN : INT64_MAX;
                           return to_int<Vrk64s>(product(x, k, 1074, -1023), r, INT64_MIN);
                         }, false},
                        d, kModes, kScales, kRoads);
}

// ---- widening, and integer to floating with scale ---------------------------------------

TEST(Convert, Widening) {
  row<float, double>("32f64f", vrksConvert_32f64f, [](float x) {  // NaN: payload moved up, quiet bit set
    return std::isnan(x) ? from_bits<double>(bits(x) >> 31 << 63 | 0x7FF8000000000000 | (bits(x) & 0x3FFFFF) << 29) : double(x);
  });
  row<double, float>("64f32f", vrksConvert_64f32f, [](double x) {
    return std::isnan(x) ? FLT_MAX : float(std::clamp(x, -3.402823466e+38, 3.402823466e+38));
  });
  row<Vrk8s, Vrk16s>("8s16s", vrksConvert_8s16s, [](Vrk8s x) { return Vrk16s(x); });
  row<Vrk8s, float>("8s32f", vrksConvert_8s32f, [](Vrk8s x) { return float(x); });
  row<Vrk8u, float>("8u32f", vrksConvert_8u32f, [](Vrk8u x) { return float(x); });
  row<Vrk16s, Vrk32s>("16s32s", vrksConvert_16s32s, [](Vrk16s x) { return Vrk32s(x); });
  row<Vrk16s, float>("16s32f", vrksConvert_16s32f, [](Vrk16s x) { return float(x); });
  row<Vrk16u, float>("16u32f", vrksConvert_16u32f, [](Vrk16u x) { return float(x); });
  row<Vrk32s, float>("32s32f", vrksConvert_32s32f, [](Vrk32s x) { return float(ld(x)); });
  row<Vrk32s, double>("32s64f", vrksConvert_32s64f, [](Vrk32s x) { return double(x); });
  row<Vrk32s, Vrk16s>("32s16s", vrksConvert_32s16s, [](Vrk32s x) { return clamp_to<Vrk16s>(x); });
  row<Vrk64s, double>("64s64f", [](auto s, auto d, int n) { return vrksConvert_64s64f(s, d, uint32_t(n)); },
                      [](Vrk64s x) { return double(ld(x)); }, false);
  row<U24, float>("24s32f", [](auto s, auto d, int n) { return vrksConvert_24s32f(bytes(s), d, n); },
                  [](U24 x) { return float(of24s(x)); });
  row<U24, Vrk32s>("24s32s", [](auto s, auto d, int n) { return vrksConvert_24s32s(bytes(s), d, n); }, of24s);
  row<U24, float>("24u32f", [](auto s, auto d, int n) { return vrksConvert_24u32f(bytes(s), d, n); },
                  [](U24 x) { return float(of24u(x)); });
  row<U24, Vrk32u>("24u32u", [](auto s, auto d, int n) { return vrksConvert_24u32u(bytes(s), d, n); }, of24u);

  auto int32s = [](int) {
    const auto s16 = every16<Vrk16s>();
    std::vector<Vrk32s> v(s16.begin(), s16.end());
    for (int e = 0; e < 31; ++e)
      for (int d : {-1, 0, 1, 77}) v.insert(v.end(), {(1 << e) + d, -(1 << e) - d});
    v.insert(v.end(), {INT32_MIN, INT32_MAX, 16777217, -16777219});
    return v;
  };
  const std::vector<int> scales = {0, 1, -1, 20, -96, -97, -112, -113, 126, 127, -992, -1008, -1009, 1022, 1023, INT_MAX, INT_MIN};
  const std::vector<std::pair<int, int>> roads = {{0, 3}, {0, -3}};
  check<Vrk16s, float>({"16s32f_Sfs", SCALE(vrksConvert_16s32f_Sfs),
                        [](Vrk16s x, int, int k) { return float(std::ldexp(ld(x), -std::clamp(k, -112, 126))); }},
                       every16<Vrk16s>, {0}, scales, roads);
  check<Vrk16s, double>({"16s64f_Sfs", SCALE(vrksConvert_16s64f_Sfs),
                         [](Vrk16s x, int, int k) { return double(std::ldexp(ld(x), -std::clamp(k, -1008, 1022))); }},
                        every16<Vrk16s>, {0}, scales, roads);
  check<Vrk32s, float>({"32s32f_Sfs", SCALE(vrksConvert_32s32f_Sfs),
                        [](Vrk32s x, int, int k) { return float(std::ldexp(ld(float(ld(x))), -std::clamp(k, -96, 126))); }},
                       int32s, {0}, scales, roads);
  check<Vrk32s, double>({"32s64f_Sfs", SCALE(vrksConvert_32s64f_Sfs),
                         [](Vrk32s x, int, int k) { return double(std::ldexp(ld(x), -std::clamp(k, -992, 1022))); }},
                        int32s, {0}, scales, roads);
}

// Runs long enough to store past the cache give the bytes of runs below the
// threshold; so does a destination off its element alignment (one byte).
template <class S, class D>
void long_run(const std::string& name, Fn<S, D> fn) {
  const size_t n = vrks::conv::stream_from() / (sizeof(S) + sizeof(D)) + 4099, piece = 65536;
  vt::Guarded src(n * sizeof(S), 0), dst(n * sizeof(D), sizeof(D)), odd(n * sizeof(D), 1), want(n * sizeof(D), 0);
  std::mt19937_64 rng(1);
  src.fill_random(rng);
  for (size_t i = 0; i < n; i += piece) fn(src.as<S>() + i, want.as<D>() + i, int(std::min(piece, n - i)));
  for (vt::Guarded* g : {&dst, &odd}) {
    ASSERT_EQ(fn(src.as<S>(), g->as<D>(), int(n)), vrkStatusOk);
    EXPECT_TRUE(g->bytes() == want.bytes() && g->guards_intact()) << name << (g == &odd ? " at an odd address" : "");
  }
}

TEST(Convert, LongRunsStorePastTheCache) {
  long_run<float, Vrk16s>("32f16s", [](auto s, auto d, int n) { return vrksConvert_32f16s_Sfs(s, d, n, 1, 2); });
  long_run<float, Vrk8u>("32f8u", [](auto s, auto d, int n) { return vrksConvert_32f8u_Sfs(s, d, n, 2, -1); });
  long_run<Vrk16s, float>("16s32f", vrksConvert_16s32f);
  long_run<float, double>("32f64f", vrksConvert_32f64f);
  long_run<double, float>("64f32f", vrksConvert_64f32f);
  long_run<float, Vrk16f>("32f16f", [](auto s, auto d, int n) { return vrksConvert_32f16f(s, d, n, 1); });
  long_run<U24, float>("24s32f", [](auto s, auto d, int n) { return vrksConvert_24s32f(bytes(s), d, n); });
  long_run<float, U24>("32f24s", [](auto s, auto d, int n) { return vrksConvert_32f24s_Sfs(s, bytes(d), n, -20); });
  long_run<Vrk16f, float>("16f32f", vrksConvert_16f32f);
}

// ---- 24-bit results and integer narrowing ------------------------------------------------

TEST(Convert, NarrowingTo24BitsAndIntegers) {
  auto pack = [](float y, ld lo, ld hi) { return to24(std::isnan(y) ? int64_t(lo) : int64_t(std::nearbyint(std::clamp(ld(y), lo, hi)))); };
  const std::vector<int> scales24 = {0, 2, -3, 23, 126, 127, 128, -127, -128, INT_MIN};
  check<float, U24>({"32f24s", TO_24(vrksConvert_32f24s_Sfs),
                     [=](float x, int, int k) { return pack(product(x, std::clamp(k, -127, 127), 126), -8388608, 8388607); }},
                    boundaries<float>, {0}, scales24, {{0, 2}, {0, -3}});
  check<float, U24>({"32f24u", TO_24(vrksConvert_32f24u_Sfs),
                     [=](float x, int, int k) { return pack(product(x, std::clamp(k, -127, 127), 126), 0, 16777215); }},
                    boundaries<float>, {0}, scales24, {{0, 2}, {0, -3}});

  std::vector<Vrk64s> wide = {0, INT64_MIN, INT64_MAX, INT64_MIN + 1, INT64_MAX - 1};
  for (int e = 0; e < 63; ++e)
    for (int64_t d : {-1, 0, 1, 3}) wide.insert(wide.end(), {(int64_t(1) << e) + d, -(int64_t(1) << e) - d});
  std::mt19937_64 rng(9);
  for (int k = 0; k < 2000; ++k) wide.push_back(int64_t(rng()) >> (rng() % 64));
  const std::vector<Vrk32s> int32s(wide.begin(), wide.end());
  const std::vector<Vrk32u> uint32s(wide.begin(), wide.end());
  std::vector<int> scales(111), near_zero(31);
  std::iota(scales.begin(), scales.end(), -40);
  std::iota(near_zero.begin(), near_zero.end(), -10);
  check<Vrk32s, Vrk16s>({"32s16s_Sfs", SCALE(vrksConvert_32s16s_Sfs),
                         [](Vrk32s x, int, int k) { return clamp_to<Vrk16s>(ld(shift(x, std::clamp(k, -15, 31), 1))); }},
                        [&](int) { return int32s; }, {1}, scales, {{1, 1}, {1, 7}, {1, -3}});
  check<Vrk32s, U24>({"32s24s_Sfs", TO_24(vrksConvert_32s24s_Sfs),
                      [](Vrk32s x, int, int k) { return to24(clamp_to<int32_t>(ld(shift(x, std::clamp(k, -31, 31), 1)), -8388608, 8388607)); }},
                     [&](int) { return int32s; }, {1}, scales, {{1, 4}});
  check<Vrk32u, U24>({"32u24u_Sfs", TO_24(vrksConvert_32u24u_Sfs),
                      [](Vrk32u x, int, int k) { return to24(clamp_to<int32_t>(ld(shift(x, std::clamp(k, -31, 31), 1)), 0, 16777215)); }},
                     [&](int) { return uint32s; }, {1}, scales, {{1, -2}});
  check<Vrk64s, Vrk32s>({"64s32s_Sfs", UNSIGNED(vrksConvert_64s32s_Sfs),
                         [](Vrk64s x, int r, int k) { return clamp_to<Vrk32s>(ld(shift(x, std::clamp(k, -31, 63), r))); }, false},
                        [&](int) { return wide; }, kModes, scales, {{0, 33}, {2, 5}});
  check<Vrk16s, Vrk8s>({"16s8s_Sfs", UNSIGNED(vrksConvert_16s8s_Sfs),
                        [](Vrk16s x, int r, int k) {  // the magnitude is rounded, the sign put back
                          const i128 q = shift(x < 0 ? -x : x, std::max(k, -20), r);
                          return clamp_to<Vrk8s>(ld(x < 0 ? -q : q));
                        }, false},
                       every16<Vrk16s>, kModes, near_zero, {{2, 3}});
  // The forms with an unsigned length refuse only 0, after the pointers.
  Vrk16s a16[2] = {1, 2};
  Vrk8s b8[2] = {9, 9};
  Vrk64s a64[2] = {1, 2};
  Vrk64f f64[2] = {1, 2};
  EXPECT_EQ(vrksConvert_16s8s_Sfs(nullptr, b8, 0, 1, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksConvert_16s8s_Sfs(a16, b8, 0, 1, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksConvert_64s32s_Sfs(a64, nullptr, 0, 1, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksConvert_64f64s_Sfs(f64, a64, 0, 1, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksConvert_64s64f(nullptr, f64, 3), vrkStatusNullPointer);
  EXPECT_EQ(vrksConvert_64s64f(a64, f64, 0), vrkStatusSizeError);
  EXPECT_TRUE(b8[0] == 9 && a64[0] == 1 && f64[0] == 1);
}

// ---- half precision --------------------------------------------------------------------

// To half, in the terms of the definition: the magnitude clamped, rebased by
// a float multiplication by 2^-112 in the rounding mode of the call, then
// rounded (to nearest) or truncated by the bits.
uint16_t ref_half(float x, bool nearest) {
  const uint16_t sign = uint16_t(bits(x) >> 16 & 0x8000);
  if (std::isnan(x)) return sign | 0x7FFF;
  const float a = std::fabs(x);
  volatile float c = nearest ? std::min(65536.0f, a) : std::isinf(a) ? 65536.0f : std::min(a, std::nextafter(65536.0f, 0.0f));
  std::fesetround(nearest ? FE_TONEAREST : FE_TOWARDZERO);
  volatile float t = c * 0x1p-112f;
  std::fesetround(FE_TONEAREST);
  const uint32_t b = uint32_t(bits(float(t)));
  return sign | uint16_t(nearest ? (b + 0x0FFF + ((b >> 13) & 1)) >> 13 : b >> 13);
}
float ref_from_half(uint16_t h) {
  const int e = h >> 10 & 31, f = h & 1023;
  if (e == 31) return from_bits<float>(uint32_t(h & 0x8000) << 16 | 0x7F800000 | uint32_t(f) << 13);
  const float v = e ? std::ldexp(float(1024 + f), e - 25) : std::ldexp(float(f), -24);
  return h & 0x8000 ? -v : v;
}

TEST(Convert, HalfPrecision) {
  sweep<Vrk16f, float>("16f32f", vrksConvert_16f32f, all16(), ref_from_half);
  row<Vrk16f, float>("16f32f", vrksConvert_16f32f, ref_from_half);
  // Every float whose low 13 bits take one of a few patterns, and random
  // magnitudes where the two roundings of half-subnormal results meet.
  std::vector<float> in;
  std::mt19937 rng(3);
  for (uint32_t hi = 0; hi < (1u << 19); ++hi)
    for (uint32_t lo : {0u, 1u, 0xFFFu, 0x1000u, 0x1001u, 0x1FFFu, uint32_t(rng() & 0x1FFF)}) in.push_back(from_bits<float>(hi << 13 | lo));
  for (int k = 0; k < 300000; ++k) in.push_back(std::ldexp(1.0f + float(rng() & 0x7FFFFF) * 0x1p-23f, -26 + int(rng() % 12)));
  const std::vector<int> modes = {0, 1, 3, -7};
  check<float, Vrk16f>({"32f16f", [](auto s, auto d, int n, int r, int) { return vrksConvert_32f16f(s, d, n, r); },
                        [](float x, int r, int) { return ref_half(x, r == 1); }},
                       [&](int) { return in; }, {0, 1}, {0}, {{0, 0}, {1, 0}, {3, 0}});
  check<Vrk16s, Vrk16f>({"16s16f", [](auto s, auto d, int n, int r, int) { return vrksConvert_16s16f(s, d, n, r); },
                         [](Vrk16s x, int r, int) { return ref_half(float(x), r == 1); }},
                        every16<Vrk16s>, modes, {0}, {{1, 0}});
  check<Vrk16f, Vrk16s>({"16f16s_Sfs", MODE_SCALE(vrksConvert_16f16s_Sfs),
                         [](Vrk16f x, int r, int k) -> Vrk16s {
                           const ld y = std::ldexp(ld(ref_from_half(x)), -std::clamp(k, -100, 100));
                           return std::isnan(y) ? 0 : clamp_to<Vrk16s>(r == 1 ? std::nearbyint(y) : std::trunc(y));
                         }},
                        every16<Vrk16f>, modes, {0, 1, -1, 5, -14, -15, -17, 10, 24, 25, 26, 40, -40, INT_MAX, INT_MIN},
                        {{1, 3}, {0, -2}});
  // Where the double rounding differs from one IEEE rounding, and the edges.
  const float x[] = {0x1p-25f * (1 + 0x1p-23f), 65504.0f, 65520.0f, -INFINITY, 0x1p-24f};
  Vrk16f y[5];
  ASSERT_EQ(vrksConvert_32f16f(x, y, 5, 1), vrkStatusOk);
  EXPECT_EQ(std::vector<int>(y, y + 5), (std::vector<int>{0, 0x7BFF, 0x7C00, 0xFC00, 1}));
  ASSERT_EQ(vrksConvert_32f16f(x, y, 5, 3), vrkStatusOk);
  EXPECT_EQ(std::vector<int>(y, y + 5), (std::vector<int>{0, 0x7BFF, 0x7BFF, 0xFC00, 1}));
  // Rounding 2 is refused after the pointers and the length; nothing is written.
  Vrk16s s16[2] = {1, 2};
  y[0] = 0x1234;
  EXPECT_EQ(vrksConvert_32f16f(nullptr, y, 0, 2), vrkStatusNullPointer);
  EXPECT_EQ(vrksConvert_32f16f(x, y, 0, 2), vrkStatusSizeError);
  EXPECT_EQ(vrksConvert_32f16f(x, y, 5, 2), vrkStatusRoundMode);
  EXPECT_EQ(vrksConvert_16s16f(s16, y, 2, 2), vrkStatusRoundMode);
  EXPECT_EQ(vrksConvert_16f16s_Sfs(y, s16, 2, 2, 0), vrkStatusRoundMode);
  EXPECT_TRUE(y[0] == 0x1234 && s16[0] == 1);
}

// ---- channels -----------------------------------------------------------------------------

// Joins over 1 to 9 channels against the per-sample definition, then split
// and join again, which gives back every sample.
TEST(Channels, JoinAndSplit) {
  std::mt19937_64 rng(21);
  auto q16 = [](float x) { return to_int<Vrk16s>(x, 1, 32767); };
  auto s16 = [&](float x) { return q16(std::isnan(x) ? x : std::clamp(x, -1.0f, 1.0f) * 32767.5f + -0.5f); };
  auto s24 = [](float x) { return std::isnan(x) ? -8388608 : int32_t(std::nearbyint(std::clamp(double(x), -1.0, 1.0) * 8388607.5 - 0.5)); };
  for (int channels = 1; channels <= 9; ++channels) {
    for (int n : {1, 9, 255, 256, 257, 1000}) {
      const size_t total = size_t(n) * channels;
      std::vector<std::vector<float>> src(channels, std::vector<float>(n));
      std::vector<const float*> in;
      std::vector<float*> out;
      for (auto& c : src) {
        for (float& x : c) x = rng() % 8 ? float(int64_t(rng() % 140000) - 70000) / 32768.0f : float(int(rng() % 65536) - 32768);
        in.push_back(c.data());
        out.push_back(c.data());
      }
      src[0][0] = NAN;
      auto x = [&](size_t i) { return src[i % channels][i / channels]; };
      vt::Guarded g16(total * 2, 2), g24(total * 3, 1);
      Vrk16s* j16 = g16.as<Vrk16s>();
      const U24* j24 = g24.as<U24>();
      ASSERT_EQ(vrksJoin_32f16s_D2L(in.data(), channels, n, j16), vrkStatusOk);
      for (size_t i = 0; i < total; ++i) ASSERT_EQ(j16[i], q16(x(i))) << i;
      ASSERT_EQ(vrksJoinScaled_32f16s_D2L(in.data(), channels, n, j16), vrkStatusOk);
      for (size_t i = 0; i < total; ++i) ASSERT_EQ(j16[i], s16(x(i))) << i;
      ASSERT_EQ(vrksJoinScaled_32f24s_D2L(in.data(), channels, n, g24.data()), vrkStatusOk);
      for (size_t i = 0; i < total; ++i) ASSERT_EQ(of24s(j24[i]), s24(x(i))) << i;
      EXPECT_TRUE(g16.guards_intact() && g24.guards_intact());
      std::vector<uint8_t> back(total * 3);
      ASSERT_EQ(vrksSplitScaled_16s32f_D2L(j16, out.data(), channels, n), vrkStatusOk);
      for (size_t i = 0; i < total; ++i) ASSERT_EQ(x(i), float(j16[i]) * 3.051804378628731e-05f + 1.5259021893143654e-05f);
      ASSERT_EQ(vrksJoinScaled_32f16s_D2L(in.data(), channels, n, reinterpret_cast<Vrk16s*>(back.data())), vrkStatusOk);
      EXPECT_EQ(std::memcmp(back.data(), j16, total * 2), 0);
      ASSERT_EQ(vrksSplitScaled_24s32f_D2L(g24.data(), out.data(), channels, n), vrkStatusOk);
      for (size_t i = 0; i < total; ++i) ASSERT_EQ(x(i), float(of24s(j24[i]) * 1.19209296656209e-07 + 5.96046483281045e-08));
      ASSERT_EQ(vrksJoinScaled_32f24s_D2L(in.data(), channels, n, back.data()), vrkStatusOk);
      EXPECT_EQ(std::memcmp(back.data(), j24, total * 3), 0);
    }
  }
  // Every 16-bit and every 24-bit sample goes through split and join unchanged.
  std::vector<U24> v24(1 << 24), back24(1 << 24);
  for (int i = 0; i < (1 << 24); ++i) v24[i] = to24(i);
  std::vector<float> f(v24.size());
  float* pf = f.data();
  const float* cf = f.data();
  const auto v16 = every16<Vrk16s>();
  std::vector<Vrk16s> back16(v16.size());
  ASSERT_EQ(vrksSplitScaled_16s32f_D2L(v16.data(), &pf, 1, int(v16.size())), vrkStatusOk);
  EXPECT_TRUE(f[32768] == -1.0f && f[32767] == 1.0f);
  ASSERT_EQ(vrksJoinScaled_32f16s_D2L(&cf, 1, int(v16.size()), back16.data()), vrkStatusOk);
  EXPECT_EQ(back16, v16);
  ASSERT_EQ(vrksSplitScaled_24s32f_D2L(bytes(v24.data()), &pf, 1, int(v24.size())), vrkStatusOk);
  ASSERT_EQ(vrksJoinScaled_32f24s_D2L(&cf, 1, int(f.size()), bytes(back24.data())), vrkStatusOk);
  EXPECT_EQ(std::memcmp(v24.data(), back24.data(), v24.size() * 3), 0);
  // 1.0 to the maximum, -1.0 to the minimum, 0.0 (-0.5 to even) to 0.
  const float unit[] = {1.0f, -1.0f, 0.0f};
  const float* pu = unit;
  ASSERT_EQ(vrksJoinScaled_32f16s_D2L(&pu, 1, 3, back16.data()), vrkStatusOk);
  EXPECT_TRUE(back16[0] == 32767 && back16[1] == -32768 && back16[2] == 0);
}

TEST(Channels, CheckOrder) {
  float a[4] = {}, b[4] = {};
  Vrk16s i16[8] = {5, 5, 5, 5, 5, 5, 5, 5};
  const float* srcs[2] = {a, b};
  const float* holed[2] = {a, nullptr};
  float* dsts[2] = {a, nullptr};
  EXPECT_EQ(vrksJoin_32f16s_D2L(srcs, 2, 4, nullptr), vrkStatusNullPointer);
  EXPECT_EQ(vrksJoin_32f16s_D2L(nullptr, 2, 0, i16), vrkStatusSizeError);
  EXPECT_EQ(vrksJoinScaled_32f16s_D2L(nullptr, 0, 4, i16), vrkStatusSizeError);
  EXPECT_EQ(vrksJoinScaled_32f24s_D2L(nullptr, 2, 4, bytes(i16)), vrkStatusNullPointer);
  EXPECT_EQ(vrksJoin_32f16s_D2L(holed, 2, 4, i16), vrkStatusNullPointer);
  EXPECT_EQ(i16[0], 5);
  EXPECT_EQ(vrksJoin_32f16s_D2L(holed, 1, 4, i16), vrkStatusOk);  // only `channels` entries count
  EXPECT_EQ(vrksSplitScaled_16s32f_D2L(nullptr, nullptr, 0, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksSplitScaled_16s32f_D2L(i16, nullptr, 2, -1), vrkStatusSizeError);
  EXPECT_EQ(vrksSplitScaled_24s32f_D2L(bytes(i16), dsts, 2, 2), vrkStatusNullPointer);
  EXPECT_EQ(a[0], 0.0f);
}

// ---- normalisation and bit packing -------------------------------------------------------------

TEST(Normalize, FloatingAndScaledForms) {
  const float r32 = 1.0f / 3.0f;
  const double r64 = 1.0 / -0.75;
  row<float, float>("Normalize_32f", [](auto s, auto d, int n) { return vrksNormalize_32f(s, d, n, 1.5f, 3.0f); },
                    [=](float x) { return (x - 1.5f) * r32; });
  row<double, double>("Normalize_64f", [](auto s, auto d, int n) { return vrksNormalize_64f(s, d, n, -2.0, -0.75); },
                      [=](double x) { return (x + 2.0) * r64; });
  row<Vrk32fc, Vrk32fc>("Normalize_32fc", [](auto s, auto d, int n) { return vrksNormalize_32fc(s, d, n, {1.5f, -1}, 3.0f); },
                        [=](Vrk32fc x) { return Vrk32fc{(x.re - 1.5f) * r32, (x.im + 1) * r32}; });
  row<Vrk64fc, Vrk64fc>("Normalize_64fc", [](auto s, auto d, int n) { return vrksNormalize_64fc(s, d, n, {-2.0, 0.5}, -0.75); },
                        [=](Vrk64fc x) { return Vrk64fc{(x.re + 2.0) * r64, (x.im - 0.5) * r64}; });
  // 16-bit: 2^-scale from the low seven bits of |scale|; 127 gives 0.
  auto m = [](int k) {
    const int low = int((k < 0 ? 0u - unsigned(k) : unsigned(k)) & 127);
    return k >= 0 && low == 127 ? 0.0f : std::ldexp(1.0f, k < 0 ? low : -low);
  };
  for (int divisor : {1, -3, 7, 32767, 1 << 30, INT_MIN}) {
    const float r = 1.0f / float(divisor);
    auto one = [=](int x, int sub, int k) { return to_int<Vrk16s>(float(x - sub) * r * m(k), 1, 32767); };
    check<Vrk16s, Vrk16s>({"Normalize_16s", [=](auto s, auto d, int n, int, int k) { return vrksNormalize_16s_Sfs(s, d, n, -5, divisor, k); },
                           [=](Vrk16s x, int, int k) { return one(x, -5, k); }},
                          every16<Vrk16s>, {0}, {0, 3, -3, 126, 127, 128, 131, -127, -200, INT_MIN},
                          divisor == 7 ? std::vector<std::pair<int, int>>{{0, -3}} : std::vector<std::pair<int, int>>{});
    if (divisor == 7)
      row<Vrk16sc, Vrk16sc>("Normalize_16sc", [](auto s, auto d, int n) { return vrksNormalize_16sc_Sfs(s, d, n, {-5, 9}, 7, -3); },
                            [=](Vrk16sc x) { return Vrk16sc{one(x.re, -5, -3), one(x.im, 9, -3)}; });
  }
  // The divisor is checked last.
  float f = 1, g = 2;
  double d = 1, e = 2;
  Vrk16s h = 3;
  EXPECT_EQ(vrksNormalize_32f(&f, &g, 1, 0, 1e-39f), vrkStatusDivideByZero);
  EXPECT_EQ(vrksNormalize_32f(&f, nullptr, 1, 0, 0), vrkStatusNullPointer);
  EXPECT_EQ(vrksNormalize_32f(&f, &g, 0, 0, 0), vrkStatusSizeError);
  EXPECT_EQ(vrksNormalize_64f(&d, &e, 1, 0, -2e-308), vrkStatusDivideByZero);
  EXPECT_EQ(vrksNormalize_16s_Sfs(&h, &h, 1, 0, 0, 0), vrkStatusDivideByZero);
  EXPECT_TRUE(g == 2 && e == 2 && h == 3);
  EXPECT_EQ(vrksNormalize_32f(&f, &g, 1, 0, NAN), vrkStatusOk);
}

TEST(PackBits, AgainstABitModel) {
  std::mt19937_64 rng(13);
  for (int n : {1, 2, 3, 7, 33, 200}) {
    for (int offset : {0, 1, 5, 7, 8, 13}) {
      std::vector<Vrk32u> src(n);
      std::vector<Vrk32s> counts(n);
      bool warn = false;
      int64_t total = 0;
      for (int i = 0; i < n; ++i) {
        src[i] = Vrk32u(rng());
        counts[i] = rng() % 16 == 0 ? int(rng() % 80) - 40 : int(rng() % 33);
        warn |= counts[i] < 0 || counts[i] > 32;
        total += std::clamp(counts[i], 0, 32);
      }
      vt::Guarded dst(size_t(total + 14) / 8 + 1, 3);
      dst.fill_random(rng);
      std::vector<uint8_t> want = dst.bytes();
      for (int i = 0, at = offset & 7; i < n; ++i)
        for (int b = std::clamp(counts[i], 0, 32) - 1; b >= 0; --b, ++at)
          want[size_t(at >> 3)] = uint8_t((want[size_t(at >> 3)] & ~(0x80 >> (at & 7))) | (src[i] >> b & 1) << (7 - (at & 7)));
      int packed = -1;
      ASSERT_EQ(vrksPackBits_32u8u(src.data(), counts.data(), n, dst.data(), offset, &packed),
                warn ? vrkStatusWarnBitCount : vrkStatusOk);
      EXPECT_EQ(packed, total);
      ASSERT_EQ(dst.bytes(), want) << "length " << n << " offset " << offset;
      EXPECT_TRUE(dst.guards_intact());
    }
  }
  const Vrk32u v[2] = {5, 17};
  const Vrk32s c[2] = {3, 5};
  Vrk8u out = 0;
  int packed = 0;
  ASSERT_EQ(vrksPackBits_32u8u(v, c, 2, &out, 0, &packed), vrkStatusOk);
  EXPECT_EQ(out, 0xB1);
  EXPECT_EQ(vrksPackBits_32u8u(v, c, 2, &out, -1, &packed), vrkStatusSizeError);
  EXPECT_EQ(vrksPackBits_32u8u(v, c, 0, nullptr, -1, &packed), vrkStatusNullPointer);
  EXPECT_EQ(vrksPackBits_32u8u(v, c, 0, &out, 0, &packed), vrkStatusSizeError);
}

// ---- complex parts ------------------------------------------------------------------------------

template <class C, class P>
void complex_parts(const std::string& code, VrkStatus (*re)(const C*, P*, int), VrkStatus (*im)(const C*, P*, int),
                   VrkStatus (*conj)(const C*, C*, int), VrkStatus (*conj_i)(C*, int),
                   VrkStatus (*to_c)(const P*, const P*, C*, int), VrkStatus (*to_r)(const C*, P*, P*, int)) {
  row<C, P>("Real_" + code, re, [](C x) { return x.re; });
  row<C, P>("Imag_" + code, im, [](C x) { return x.im; });
  const vt::UnaryRow<C, C> cj{"Conj_" + code, conj, [](const C* s, C* d, int n) {
                                for (int i = 0; i < n; ++i)  // 16-bit parts saturate
                                  d[i] = C{s[i].re, std::is_floating_point_v<P> ? P(-s[i].im) : s[i].im == -32768 ? P(32767) : P(-s[i].im)};
                              }, conj_i};
  vt::run(cj);
  vt::check_errors(cj);
  // CplxToReal, and RealToCplx with both, either or no source.
  std::mt19937_64 rng(17);
  std::vector<C> src(300), back(300);
  for (auto& x : src) x = C{P(int(rng() % 65536) - 32768), P(int(rng() % 65536) - 32768)};
  std::vector<P> r(300), i(300);
  ASSERT_EQ(to_r(src.data(), r.data(), i.data(), 300), vrkStatusOk);
  ASSERT_EQ(to_c(r.data(), i.data(), back.data(), 300), vrkStatusOk);
  EXPECT_EQ(std::memcmp(back.data(), src.data(), sizeof(C) * 300), 0);
  ASSERT_EQ(to_c(nullptr, i.data(), back.data(), 300), vrkStatusOk);
  EXPECT_TRUE(back[7].re == 0 && back[7].im == src[7].im);
  ASSERT_EQ(to_c(r.data(), nullptr, back.data(), 300), vrkStatusOk);
  EXPECT_TRUE(back[7].re == src[7].re && back[7].im == 0);
  EXPECT_EQ(to_c(nullptr, nullptr, back.data(), 3), vrkStatusNullPointer);
  EXPECT_EQ(to_c(nullptr, nullptr, back.data(), 0), vrkStatusSizeError);
  EXPECT_EQ(to_c(r.data(), i.data(), nullptr, 0), vrkStatusNullPointer);
  EXPECT_EQ(to_r(src.data(), r.data(), nullptr, 3), vrkStatusNullPointer);
  EXPECT_EQ(to_r(src.data(), r.data(), i.data(), 0), vrkStatusSizeError);
}

TEST(ComplexParts, EveryType) {
  complex_parts<Vrk16sc, Vrk16s>("16sc", vrksReal_16sc, vrksImag_16sc, vrksConj_16sc, vrksConj_16sc_I,
                                 vrksRealToCplx_16s, vrksCplxToReal_16sc);
  complex_parts<Vrk32fc, Vrk32f>("32fc", vrksReal_32fc, vrksImag_32fc, vrksConj_32fc, vrksConj_32fc_I,
                                 vrksRealToCplx_32f, vrksCplxToReal_32fc);
  complex_parts<Vrk64fc, Vrk64f>("64fc", vrksReal_64fc, vrksImag_64fc, vrksConj_64fc, vrksConj_64fc_I,
                                 vrksRealToCplx_64f, vrksCplxToReal_64fc);
}

// ---- the floating-point environment ----------------------------------------------------------

// Under rounding upward, flush-to-zero, denormals-are-zero and every
// exception unmasked, results are those of the default environment, and the
// caller's control word comes back unchanged.
TEST(Convert, CallerEnvironmentChangesNothing) {
  const auto f = boundaries<float>(-3);
  const auto d = boundaries<double>(-3);
  const auto h = all16();
  std::vector<Vrk32s> i32(f.size());
  std::memcpy(i32.data(), f.data(), f.size() * 4);
  const int n = int(f.size()), m = int(d.size());
  const float* pf = f.data();
  auto call = [](auto fn, size_t count, auto type) {
    return std::function<std::vector<uint8_t>()>([=] {
      std::vector<decltype(type)> o(count);
      fn(o.data());
      return std::vector<uint8_t>(bytes(o.data()), bytes(o.data()) + count * sizeof(type));
    });
  };
  const std::function<std::vector<uint8_t>()> calls[] = {
      call([&](Vrk16s* o) { vrksConvert_32f16s_Sfs(f.data(), o, n, 2, -130); }, f.size(), Vrk16s()),
      call([&](Vrk32s* o) { vrksConvert_32f32s_Sfs(f.data(), o, n, 1, 140); }, f.size(), Vrk32s()),
      call([&](Vrk8u* o) { vrksConvert_32f8u_Sfs(f.data(), o, n, 0, 3); }, f.size(), Vrk8u()),
      call([&](float* o) { vrksConvert_32s32f(i32.data(), o, n); }, f.size(), 0.0f),
      call([&](double* o) { vrksConvert_32f64f(f.data(), o, n); }, f.size(), 0.0),
      call([&](float* o) { vrksConvert_64f32f(d.data(), o, m); }, d.size(), 0.0f),
      call([&](Vrk64s* o) { vrksConvert_64f64s_Sfs(d.data(), o, uint32_t(m), 2, 1070); }, d.size(), Vrk64s()),
      call([&](Vrk16f* o) { vrksConvert_32f16f(f.data(), o, n, 1); }, f.size(), Vrk16f()),
      call([&](Vrk16f* o) { vrksConvert_32f16f(f.data(), o, n, 0); }, f.size(), Vrk16f()),
      call([&](float* o) { vrksConvert_16f32f(h.data(), o, 65536); }, 65536, 0.0f),
      call([&](float* o) { vrksNormalize_32f(f.data(), o, n, 0.1f, 3.0f); }, f.size(), 0.0f),
      call([&](Vrk16s* o) { vrksJoinScaled_32f16s_D2L(&pf, 1, n, o); }, f.size(), Vrk16s()),
      call([&](Vrk8u* o) { vrksJoinScaled_32f24s_D2L(&pf, 1, n, o); }, f.size() * 3, Vrk8u()),
  };
  const unsigned saved = _mm_getcsr();
  for (size_t k = 0; k < std::size(calls); ++k) {
    const auto want = calls[k]();
    const unsigned odd = (saved & ~0xFFFFu) | 0x4000u | 0x8000u | 0x0040u;  // up, FTZ, DAZ, nothing masked
    _mm_setcsr(odd);
    const auto got = calls[k]();
    const unsigned after = _mm_getcsr();
    _mm_setcsr(saved);
    EXPECT_EQ(after, odd) << k;
    EXPECT_TRUE(got == want) << "call " << k;
  }
}

}  // namespace
