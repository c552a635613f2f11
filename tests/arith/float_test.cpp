// Floating sums, differences and products: every member against one IEEE
// operation per part, the constants' short cuts, and accumulation order.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "harness.h"

namespace {

template <class T>
constexpr bool is_complex = requires(T t) { t.re; };

// x (op) y, one IEEE operation per part; products (ac - bd) + i(bc + ad).
template <class X, class Y>
auto ieee(char op, const X& x, const Y& y) {
  if constexpr (!is_complex<X> && !is_complex<Y>) {
    return op == '+' ? x + y : op == '-' ? x - y : x * y;
  } else if constexpr (!is_complex<X>) {
    return Y{x * y.re, x * y.im};
  } else if constexpr (!is_complex<Y>) {
    return X{x.re * y, x.im * y};
  } else if (op == '*') {
    const auto ac = vt::keep(x.re * y.re), bd = vt::keep(x.im * y.im), bc = vt::keep(x.im * y.re),
               ad = vt::keep(x.re * y.im);
    return X{ac - bd, bc + ad};
  } else {
    return X{ieee(op, x.re, y.re), ieee(op, x.im, y.im)};
  }
}

template <class T>
using Arrays = VrkStatus (*)(const T*, const T*, T*, int);
template <class T>
using ArraysI = VrkStatus (*)(const T*, T*, int);
template <class T>
using Const = VrkStatus (*)(const T*, T, T*, int);
template <class T>
using ConstI = VrkStatus (*)(T, T*, int);

template <class T>
struct Members {
  const char* code;
  Arrays<T> add, sub, mul, add_product;
  ArraysI<T> add_i, sub_i, mul_i;
  Const<T> addc, subc, subcrev, mulc;
  ConstI<T> addc_i, subc_i, subcrev_i, mulc_i;
};
#define MEMBERS(code)                                                                              \
  Members<Vrk##code> {                                                                             \
    #code, vrksAdd_##code, vrksSub_##code, vrksMul_##code, vrksAddProduct_##code, vrksAdd_##code##_I, \
        vrksSub_##code##_I, vrksMul_##code##_I, vrksAddC_##code, vrksSubC_##code, vrksSubCRev_##code,  \
        vrksMulC_##code, vrksAddC_##code##_I, vrksSubC_##code##_I, vrksSubCRev_##code##_I,            \
        vrksMulC_##code##_I                                                                        \
  }

template <class T>
bool is_real_zero(const T& v) {
  if constexpr (is_complex<T>) return false;
  else return v == 0;
}
template <class T>
bool is_real_one(const T& v) {
  if constexpr (is_complex<T>) return false;
  else return v == 1;
}

template <class T>
void check_members(const Members<T>& m, const std::vector<T>& values) {
  const std::string c = std::string("_") + m.code;
  // The complex sums and differences run on the real form and test the
  // length first; every other member tests its pointers first.
  const vt::Order sums = is_complex<T> ? vt::Order::LengthFirst : vt::Order::PointersFirst;
  auto arrays = [&](const char* name, char op, bool swap, Arrays<T> fn, ArraysI<T> fn_i, vt::Order order) {
    const vt::BinaryRow<T, T, T> row{name + c, fn, [=](const T* a, const T* b, T* d, int n) {
      for (int i = 0; i < n; ++i) d[i] = swap ? ieee(op, b[i], a[i]) : ieee(op, a[i], b[i]);
    }, fn_i};
    vt::run(row);
    vt::check_errors(row, order);
  };
  arrays("Add", '+', false, m.add, m.add_i, sums);
  arrays("Sub", '-', true, m.sub, m.sub_i, sums);
  arrays("Mul", '*', false, m.mul, m.mul_i, vt::Order::PointersFirst);
  for (const T& v : values) {
    // Real constants 0.0 (AddC, SubC) and 1.0 (MulC) copy the source bit for
    // bit; MulC by 0.0 clears.
    auto constant = [&](const char* name, char op, bool rev, Const<T> fn, ConstI<T> fn_i) {
      const vt::UnaryRow<T, T> row{name + c, [=](const T* s, T* d, int n) { return fn(s, v, d, n); },
                                   [=](const T* s, T* d, int n) {
        const bool copies = op == '*' ? is_real_one(v) : (!rev && is_real_zero(v));
        for (int i = 0; i < n; ++i) {
          if (copies) std::memcpy(&d[i], &s[i], sizeof(T));
          else if (op == '*' && is_real_zero(v)) std::memset(&d[i], 0, sizeof(T));
          else d[i] = rev ? ieee(op, v, s[i]) : ieee(op, s[i], v);
        }
      }, [=](T* io, int n) { return fn_i(v, io, n); }, true};
      vt::run(row);
      vt::check_errors(row);
    };
    constant("AddC", '+', false, m.addc, m.addc_i);
    constant("SubC", '-', false, m.subc, m.subc_i);
    constant("SubCRev", '-', true, m.subcrev, m.subcrev_i);
    constant("MulC", '*', false, m.mulc, m.mulc_i);
  }
  // srcDst += src1 * src2: real ((ab) + acc); complex ((ac) + acc) - bd and
  // ((bc) + acc) + ad, in that order.
  const vt::BinaryRow<T, T, T> product{"AddProduct" + c, [=](const T* a, const T* b, T* d, int n) {
    std::vector<T> acc(size_t(n > 0 ? n : 0));
    for (int i = 0; i < n; ++i) acc[size_t(i)] = a[i];  // accumulate onto a copy of src1
    const VrkStatus s = m.add_product(a, b, n > 0 ? acc.data() : d, n);
    if (n > 0) std::memcpy(d, acc.data(), sizeof(T) * size_t(n));
    return s;
  }, [](const T* a, const T* b, T* d, int n) {
    for (int i = 0; i < n; ++i) {
      if constexpr (is_complex<T>) {
        const auto ac = vt::keep(a[i].re * b[i].re), bd = vt::keep(a[i].im * b[i].im),
                   bc = vt::keep(a[i].im * b[i].re), ad = vt::keep(a[i].re * b[i].im);
        d[i] = T{(ac + a[i].re) - bd, (bc + a[i].im) + ad};
      } else {
        d[i] = a[i] + vt::keep(a[i] * b[i]);
      }
    }
  }};
  vt::run(product);
}

TEST(Float, Members32f) { check_members(MEMBERS(32f), {2.5f, -0.0f, 0.0f, 1.0f, NAN, -INFINITY}); }
TEST(Float, Members64f) { check_members(MEMBERS(64f), {-3.25, 0.0, -0.0, 1.0, INFINITY}); }
TEST(Float, Members32fc) { check_members(MEMBERS(32fc), {{1.5f, -2.0f}, {0.0f, 0.0f}, {1.0f, 0.0f}}); }
TEST(Float, Members64fc) { check_members(MEMBERS(64fc), {{-0.5, 3.0}, {0.0, -0.0}, {NAN, 1.0}}); }

TEST(Float, MixedForms) {
  vt::run(vt::BinaryRow<Vrk32f, Vrk32fc, Vrk32fc>{"Mul_32f32fc", vrksMul_32f32fc, [](auto a, auto b, auto d, int n) {
    for (int i = 0; i < n; ++i) d[i] = ieee('*', a[i], b[i]);
  }, vrksMul_32f32fc_I});
  for (float v : {0.75f, 0.0f, -1.0f}) {
    vt::run(vt::BinaryRow<Vrk32f, Vrk32f, Vrk32f>{"AddProductC_32f",
        [v](const Vrk32f* a, const Vrk32f* b, Vrk32f* d, int n) {
          if (n > 0) std::memcpy(d, b, sizeof(float) * size_t(n));
          return vrksAddProductC_32f(a, v, d, n);
        },
        [v](auto a, auto b, auto d, int n) { for (int i = 0; i < n; ++i) d[i] = b[i] + v * a[i]; }});
  }
}

TEST(Float, ShortCutsAndSignedZero) {
  const float src[3] = {-0.0f, NAN, INFINITY};
  float dst[3];
  ASSERT_EQ(vrksAddC_32f(src, -0.0f, dst, 3), vrkStatusOk);
  EXPECT_TRUE(std::signbit(dst[0]) && dst[0] == 0.0f);  // copied, not -0 + -0... or +0
  ASSERT_EQ(vrksMulC_32f(src, 0.0f, dst, 3), vrkStatusOk);
  for (float x : dst) EXPECT_TRUE(x == 0.0f && !std::signbit(x));
  const Vrk32fc c[1] = {{NAN, 1.0f}};
  Vrk32fc cd[1];
  ASSERT_EQ(vrksMulC_32fc(c, Vrk32fc{0.0f, 0.0f}, cd, 1), vrkStatusOk);
  EXPECT_TRUE(std::isnan(cd[0].re));  // no short cut for complex constants
}

// An accumulator that overlaps a source one element further on takes the
// elements one at a time in rising order, each reading what the one before
// it wrote.
TEST(Float, AddProductOverlapIsSequential) {
  std::vector<float> buf(65), other(64, 2.0f), want;
  for (size_t i = 0; i < buf.size(); ++i) buf[i] = float(i % 7) - 3.0f;
  want = buf;
  for (int i = 0; i < 64; ++i) want[size_t(i) + 1] = want[size_t(i) + 1] + want[size_t(i)] * 2.0f;
  ASSERT_EQ(vrksAddProduct_32f(buf.data(), other.data(), buf.data() + 1, 64), vrkStatusOk);
  EXPECT_EQ(buf, want);
}

}  // namespace
