// Integer sums, differences and products against the exact scale-factor
// rule: every member and type, scales across every band, exhaustive over all
// 8-bit operand pairs, and the forms with roads of their own.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "harness.h"

namespace {

using i128 = __int128;

template <class T>
constexpr bool is_complex = requires(T t) { t.re; };

template <class P>
P rule(i128 r, int scale) {
  return P(vt::reference_scale(r, scale, std::numeric_limits<P>::min(), std::numeric_limits<P>::max()));
}

// x (op) y under the rule, part by part; '*' of two complex numbers is
// (ac - bd) + i(ad + bc).
template <class T>
T reference(char op, const T& x, const T& y, int s) {
  auto f = [op](i128 a, i128 b) { return op == '+' ? a + b : op == '-' ? a - b : a * b; };
  if constexpr (!is_complex<T>) {
    return rule<T>(f(x, y), s);
  } else {
    using P = decltype(x.re);
    const i128 a = x.re, b = x.im, c = y.re, d = y.im;
    if (op == '*') return T{rule<P>(a * c - b * d, s), rule<P>(a * d + b * c, s)};
    return T{rule<P>(f(a, c), s), rule<P>(f(b, d), s)};
  }
}

template <class T>
using Arrays = VrkStatus (*)(const T*, const T*, T*, int, int);
template <class T>
using ArraysI = VrkStatus (*)(const T*, T*, int, int);
template <class T>
using Const = VrkStatus (*)(const T*, T, T*, int, int);
template <class T>
using ConstI = VrkStatus (*)(T, T*, int, int);

// One element type's scaled members.
template <class T>
struct Members {
  const char* code;
  Arrays<T> add, sub, mul;
  ArraysI<T> add_i, sub_i, mul_i;
  Const<T> addc, subc, subcrev, mulc;
  ConstI<T> addc_i, subc_i, subcrev_i, mulc_i;
};
#define MEMBERS(code, mul, mul_i)                                                                 \
  Members<Vrk##code> {                                                                            \
    #code, vrksAdd_##code##_Sfs, vrksSub_##code##_Sfs, mul, vrksAdd_##code##_ISfs,                \
        vrksSub_##code##_ISfs, mul_i, vrksAddC_##code##_Sfs, vrksSubC_##code##_Sfs,               \
        vrksSubCRev_##code##_Sfs, vrksMulC_##code##_Sfs, vrksAddC_##code##_ISfs,                  \
        vrksSubC_##code##_ISfs, vrksSubCRev_##code##_ISfs, vrksMulC_##code##_ISfs                 \
  }
#define MEMBERS_STD(code) MEMBERS(code, vrksMul_##code##_Sfs, vrksMul_##code##_ISfs)

template <class T>
T pick_value(int k) {
  T v{};
  std::mt19937_64 rng(uint64_t(k) * 77 + 1);
  for (auto* p = reinterpret_cast<uint8_t*>(&v); p < reinterpret_cast<uint8_t*>(&v + 1); ++p) *p = uint8_t(rng());
  if (k == 0) std::memset(&v, 0, sizeof v);
  if (k == 1) std::memset(&v, 0xFF, sizeof v);
  return v;
}

// Every member at `scale`, with arrays and constants, against the rule.
template <class T>
void check_members(const Members<T>& m, int scale, bool light) {
  const std::string at = std::string("_") + m.code + " scale " + std::to_string(scale);
  auto arrays = [&](const char* name, char op, bool swap, Arrays<T> fn, ArraysI<T> fn_i) {
    if (fn == nullptr) return;
    vt::BinaryRow<T, T, T> row{
        name + at, [=](const T* a, const T* b, T* d, int n) { return fn(a, b, d, n, scale); },
        [=](const T* a, const T* b, T* d, int n) {
          for (int i = 0; i < n; ++i) d[i] = swap ? reference(op, b[i], a[i], scale) : reference(op, a[i], b[i], scale);
        },
        [=](const T* a, T* io, int n) { return fn_i(a, io, n, scale); }};
    vt::run(row, light);
  };
  arrays("Add", '+', false, m.add, m.add_i);
  arrays("Sub", '-', true, m.sub, m.sub_i);  // the second source minus the first
  arrays("Mul", '*', false, m.mul, m.mul_i);
  for (int k = 0; k < (light ? 2 : 4); ++k) {
    const T v = pick_value<T>(k);
    auto constant = [&](const char* name, char op, bool rev, Const<T> fn, ConstI<T> fn_i) {
      vt::UnaryRow<T, T> row{
          name + at + " value " + std::to_string(k), [=](const T* s, T* d, int n) { return fn(s, v, d, n, scale); },
          [=](const T* s, T* d, int n) {
            for (int i = 0; i < n; ++i) d[i] = rev ? reference(op, v, s[i], scale) : reference(op, s[i], v, scale);
          },
          [=](T* io, int n) { return fn_i(v, io, n, scale); }};
      vt::run(row);
    };
    if (light) {  // constants at every scale: a single pass over a long vector
      for (auto [name, op, rev, fn] : {std::tuple{"AddC", '+', false, m.addc}, {"SubC", '-', false, m.subc},
                                        {"SubCRev", '-', true, m.subcrev}, {"MulC", '*', false, m.mulc}}) {
        std::vector<T> src(1000), got(1000), want(1000);
        std::mt19937_64 rng(uint64_t(scale + 100));
        for (auto& e : src) for (auto* p = reinterpret_cast<uint8_t*>(&e); p < reinterpret_cast<uint8_t*>(&e + 1); ++p) *p = uint8_t(rng());
        for (int i = 0; i < 1000; ++i) want[size_t(i)] = rev ? reference(op, v, src[size_t(i)], scale) : reference(op, src[size_t(i)], v, scale);
        ASSERT_EQ(fn(src.data(), v, got.data(), 1000, scale), vrkStatusOk);
        ASSERT_EQ(std::memcmp(got.data(), want.data(), sizeof(T) * 1000), 0) << name << at << " value " << k;
      }
    } else {
      constant("AddC", '+', false, m.addc, m.addc_i);
      constant("SubC", '-', false, m.subc, m.subc_i);
      constant("SubCRev", '-', true, m.subcrev, m.subcrev_i);
      constant("MulC", '*', false, m.mulc, m.mulc_i);
    }
  }
}

const int kScales[] = {-70, -63, -62, -33, -32, -31, -30, -17, -16, -15, -14, -9, -8, -7, -2, -1, 0,
                       1,   2,   3,   7,   8,   9,   10,  15,  16,  17,  18,  29, 30, 31, 32, 33, 61,
                       62,  63,  64,  126, 127};

template <class T>
void check_type(const Members<T>& m) {
  for (int s : {0, 1, 5, -3}) check_members(m, s, false);
  for (int s : kScales) check_members(m, s, true);
}

TEST(Scaled, Members8u) { check_type(MEMBERS_STD(8u)); }
TEST(Scaled, Members16u) { check_type(MEMBERS_STD(16u)); }
TEST(Scaled, Members16s) { check_type(MEMBERS_STD(16s)); }
TEST(Scaled, Members16sc) { check_type(MEMBERS_STD(16sc)); }
// The 32-bit products of two vectors take a road of their own (below).
TEST(Scaled, Members32s) { check_type(MEMBERS(32s, nullptr, nullptr)); }
TEST(Scaled, Members32sc) { check_type(MEMBERS_STD(32sc)); }

// Every pair of 8-bit operands at every scale that can change a result.
TEST(Scaled, Exhaustive8u) {
  std::vector<Vrk8u> a(65536), b(65536), got(65536);
  for (int i = 0; i < 65536; ++i) a[size_t(i)] = Vrk8u(i >> 8), b[size_t(i)] = Vrk8u(i);
  for (int s = -10; s <= 20; ++s) {
    for (auto [op, fn] : {std::pair{'+', &vrksAdd_8u_Sfs}, {'-', &vrksSub_8u_Sfs}, {'*', &vrksMul_8u_Sfs}}) {
      ASSERT_EQ(fn(a.data(), b.data(), got.data(), 65536, s), vrkStatusOk);
      for (int i = 0; i < 65536; ++i) {
        const Vrk8u want = op == '-' ? reference(op, b[size_t(i)], a[size_t(i)], s) : reference(op, a[size_t(i)], b[size_t(i)], s);
        ASSERT_EQ(got[size_t(i)], want) << op << " " << int(a[size_t(i)]) << " " << int(b[size_t(i)]) << " scale " << s;
      }
    }
    for (int v = 0; v < 256; ++v) {
      for (auto [op, rev, fn] : {std::tuple{'+', false, &vrksAddC_8u_Sfs}, {'-', false, &vrksSubC_8u_Sfs},
                                 {'-', true, &vrksSubCRev_8u_Sfs}, {'*', false, &vrksMulC_8u_Sfs}}) {
        ASSERT_EQ(fn(b.data(), Vrk8u(v), got.data(), 256, s), vrkStatusOk);
        for (int i = 0; i < 256; ++i)
          ASSERT_EQ(got[size_t(i)], rev ? reference(op, Vrk8u(v), b[size_t(i)], s) : reference(op, b[size_t(i)], Vrk8u(v), s))
              << op << rev << " value " << v << " element " << i << " scale " << s;
      }
    }
  }
}

// Mixed types and forms without a scale.
TEST(Scaled, MixedAndUnscaledForms) {
  using B16 = vt::BinaryRow<Vrk16s, Vrk16s, Vrk16s>;
  auto ref16 = [](char op, bool swap) {
    return [=](const Vrk16s* a, const Vrk16s* b, Vrk16s* d, int n) {
      for (int i = 0; i < n; ++i) d[i] = swap ? reference(op, b[i], a[i], 0) : reference(op, a[i], b[i], 0);
    };
  };
  vt::run(B16{"Add_16s", vrksAdd_16s, ref16('+', false), vrksAdd_16s_I});
  vt::run(B16{"Sub_16s", vrksSub_16s, ref16('-', true), vrksSub_16s_I});
  vt::run(B16{"Mul_16s", vrksMul_16s, ref16('*', false), vrksMul_16s_I});
  vt::run(vt::BinaryRow<Vrk16u, Vrk16u, Vrk16u>{"Add_16u", vrksAdd_16u, [](auto a, auto b, auto d, int n) {
    for (int i = 0; i < n; ++i) d[i] = reference('+', a[i], b[i], 0);
  }});
  vt::run(vt::BinaryRow<Vrk32u, Vrk32u, Vrk32u>{"Add_32u", vrksAdd_32u, [](auto a, auto b, auto d, int n) {
    for (int i = 0; i < n; ++i) d[i] = reference('+', a[i], b[i], 0);
  }});
  vt::run(vt::BinaryRow<Vrk8u, Vrk8u, Vrk16u>{"Add_8u16u", vrksAdd_8u16u, [](auto a, auto b, auto d, int n) {
    for (int i = 0; i < n; ++i) d[i] = Vrk16u(a[i] + b[i]);
  }});
  vt::run(vt::BinaryRow<Vrk8u, Vrk8u, Vrk16u>{"Mul_8u16u", vrksMul_8u16u, [](auto a, auto b, auto d, int n) {
    for (int i = 0; i < n; ++i) d[i] = Vrk16u(a[i] * b[i]);
  }});
  for (auto [name, op, fn] : {std::tuple{"Add_16s32f", '+', &vrksAdd_16s32f}, {"Sub_16s32f", '-', &vrksSub_16s32f},
                              {"Mul_16s32f", '*', &vrksMul_16s32f}}) {
    vt::run(vt::BinaryRow<Vrk16s, Vrk16s, Vrk32f>{name, fn, [op = op](auto a, auto b, auto d, int n) {
      for (int i = 0; i < n; ++i)
        d[i] = Vrk32f(op == '+' ? a[i] + b[i] : op == '-' ? b[i] - a[i] : int32_t(a[i]) * b[i]);
    }});
  }
  // The 32-bit accumulator form, run through a copy of the second source.
  vt::run(vt::BinaryRow<Vrk16s, Vrk32s, Vrk32s>{"Add_16s32s_I",
      [](const Vrk16s* a, const Vrk32s* b, Vrk32s* d, int n) {
        if (n > 0) std::memcpy(d, b, size_t(n) * sizeof *d);
        return vrksAdd_16s32s_I(a, d, n);
      },
      [](auto a, auto b, auto d, int n) { for (int i = 0; i < n; ++i) d[i] = rule<Vrk32s>(i128(a[i]) + b[i], 0); },
      vrksAdd_16s32s_I});
  for (int s : kScales) {
    const std::string at = " scale " + std::to_string(s);
    vt::run(vt::BinaryRow<Vrk16s, Vrk16s, Vrk32s>{"Mul_16s32s_Sfs" + at,
        [s](auto a, auto b, auto d, int n) { return vrksMul_16s32s_Sfs(a, b, d, n, s); },
        [s](auto a, auto b, auto d, int n) { for (int i = 0; i < n; ++i) d[i] = rule<Vrk32s>(i128(a[i]) * b[i], s); }}, true);
    vt::run(vt::BinaryRow<Vrk16u, Vrk16s, Vrk16s>{"Mul_16u16s_Sfs" + at,
        [s](auto a, auto b, auto d, int n) { return vrksMul_16u16s_Sfs(a, b, d, n, s); },
        [s](auto a, auto b, auto d, int n) { for (int i = 0; i < n; ++i) d[i] = rule<Vrk16s>(i128(a[i]) * b[i], s); }}, true);
    vt::run(vt::BinaryRow<Vrk32s, Vrk32sc, Vrk32sc>{"Mul_32s32sc_Sfs" + at,
        [s](auto a, auto b, auto d, int n) { return vrksMul_32s32sc_Sfs(a, b, d, n, s); },
        [s](auto a, auto b, auto d, int n) {
          for (int i = 0; i < n; ++i) d[i] = {rule<Vrk32s>(i128(a[i]) * b[i].re, s), rule<Vrk32s>(i128(a[i]) * b[i].im, s)};
        },
        [s](auto a, auto io, int n) { return vrksMul_32s32sc_ISfs(a, io, n, s); }}, true);
    vt::run(vt::BinaryRow<Vrk64s, Vrk64s, Vrk64s>{"Add_64s_Sfs" + at,
        [s](auto a, auto b, auto d, int n) { return vrksAdd_64s_Sfs(a, b, d, n, s); },
        [s](auto a, auto b, auto d, int n) {
          // At 64 and above the destination is cleared, though a sum beyond
          // 2^63 would round to +-1 there.
          for (int i = 0; i < n; ++i) d[i] = s >= 64 ? 0 : rule<Vrk64s>(i128(a[i]) + b[i], s);
        }}, true);
  }
}

}  // namespace
