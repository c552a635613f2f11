// The shared harness of the element-wise tests.
//
// A row names an export, the shape of its arguments and a reference. run()
// drives it over lengths from 0 past every vector width, over the
// misalignments 0..63 bytes that the element type allows, out of place and in
// place, serially and on the threaded road (bit-equal), with guard bytes
// around every array proving that nothing outside the destination is written
// and that the sources stay as they were. check_errors() proves the statuses
// in check order and that an error writes nothing.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <algorithm>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "vrks.h"
#include "vrkcore.h"

namespace vt {

// ---- guarded arrays ----------------------------------------------------------

class Guarded {
 public:
  static constexpr size_t kGuard = 64;
  static constexpr uint8_t kFill = 0xA5;

  Guarded(size_t bytes, size_t misalign) : bytes_(bytes), raw_(bytes + 2 * kGuard + 128) {
    auto base = reinterpret_cast<uintptr_t>(raw_.data()) + kGuard;
    offset_ = ((base + 63) & ~uintptr_t(63)) + misalign - reinterpret_cast<uintptr_t>(raw_.data());
    std::memset(raw_.data(), kFill, raw_.size());
  }
  uint8_t* data() { return raw_.data() + offset_; }
  size_t size() const { return bytes_; }
  template <class T>
  T* as() { return reinterpret_cast<T*>(data()); }
  // True when every byte outside [data, data + size) still holds the fill.
  bool guards_intact() const {
    for (size_t i = 0; i < raw_.size(); ++i)
      if ((i < offset_ || i >= offset_ + bytes_) && raw_[i] != kFill) return false;
    return true;
  }
  std::vector<uint8_t> bytes() const {
    return {raw_.begin() + offset_, raw_.begin() + offset_ + bytes_};
  }
  void fill_random(std::mt19937_64& rng) {
    for (size_t i = 0; i < bytes_; ++i) data()[i] = uint8_t(rng());
  }

 private:
  size_t bytes_;
  std::vector<uint8_t> raw_;
  size_t offset_;
};

// A value the compiler must treat as unknown: references launder products
// with it so that no pattern fuses them into a single-rounding operation.
template <class T>
[[gnu::always_inline]] inline T keep(T x) {
  __asm__("" : "+x"(x));
  return x;
}

// ---- sweeps -------------------------------------------------------------------

// 0..70 one by one, then lengths around 128, 256, 512 and 1 Ki elements and a
// few long ones that reach the streaming and threaded roads.
const std::vector<int>& lengths();
// A few lengths across every kernel width, for rows run at many parameters.
const std::vector<int>& short_lengths();
// Lengths long enough to reach threaded roads, for serial/threaded comparison.
const std::vector<int>& long_lengths();

// Misalignments 0..63 of the first array in steps of `step` bytes; the other
// arrays get other offsets derived from it, so every residue is met.
std::vector<size_t> misalignments(size_t step);
inline size_t partner_offset(size_t m, int array, size_t step) {
  return ((m * (5 + 2 * array) + 16 * array + 3 * step) % 64) / step * step;
}

// Runs f() with the core reporting `threads` threads, and restores the count.
template <class F>
auto with_threads(int threads, F&& f) {
  const int32_t previous = vrkSetNumThreads(threads);
  struct Restore {
    int32_t n;
    ~Restore() { vrkSetNumThreads(n); }
  } restore{previous};
  return f();
}

// ---- rows ---------------------------------------------------------------------

// One export of shape (const S* src, D* dst, int length), optionally with an
// in-place twin (D* srcDst, int length) when S and D are alike. `reference`
// writes the expected dst for a source.
template <class S, class D>
struct UnaryRow {
  std::string name;
  std::function<VrkStatus(const S*, D*, int)> fn;
  std::function<void(const S*, D*, int)> reference;
  std::function<VrkStatus(D*, int)> in_place = nullptr;
  // Computed floating results: any NaN matches any NaN. Copies keep false:
  // their NaN payloads must arrive bit for bit.
  bool any_nan = false;
};

// One export of shape (D* dst, int length) that writes every element, such as
// a fill with a fixed value; `reference` writes the expected dst.
template <class D>
struct FillRow {
  std::string name;
  std::function<VrkStatus(D*, int)> fn;
  std::function<void(D*, int)> reference;
};

template <class T>
constexpr size_t step_of() {
  return alignof(T) < 8 ? alignof(T) : 8;  // 16-byte complex types lie on 8
}

// Destination bytes compared element by element: floating parts must match
// bit for bit, except that any NaN matches any NaN (which operand's payload
// an IEEE operation passes on is the processor's choice).
template <class D>
bool same_result(const std::vector<uint8_t>& got, const std::vector<uint8_t>& want) {
  if (got.size() != want.size()) return false;
  if constexpr (std::is_floating_point_v<D> || std::is_same_v<D, Vrk32fc> || std::is_same_v<D, Vrk64fc>) {
    using P = std::conditional_t<std::is_same_v<D, Vrk32fc> || std::is_same_v<D, Vrk32f>, float, double>;
    for (size_t i = 0; i < got.size(); i += sizeof(P)) {
      P g, w;
      std::memcpy(&g, got.data() + i, sizeof g);
      std::memcpy(&w, want.data() + i, sizeof w);
      if (g != g && w != w) continue;
      if (std::memcmp(&g, &w, sizeof g) != 0) return false;
    }
    return true;
  } else {
    return got == want;
  }
}

#define VT_EXPECT_SAME(D, got, want, what)                                        \
  do {                                                                            \
    if (!same_result<D>((got), (want))) {                                         \
      ADD_FAILURE() << what << ": results differ";                                \
      return;                                                                     \
    }                                                                             \
  } while (0)

#define VT_EXPECT_BYTES_EQ(got, want, what)                                       \
  do {                                                                            \
    const auto& g_ = (got);                                                       \
    const auto& w_ = (want);                                                      \
    if (g_ != w_) {                                                               \
      size_t at_ = 0;                                                             \
      while (at_ < g_.size() && g_[at_] == w_[at_]) ++at_;                        \
      ADD_FAILURE() << what << ": first differing byte " << at_;                  \
      return;                                                                     \
    }                                                                             \
  } while (0)

template <class S, class D>
void run(const UnaryRow<S, D>& row) {
  SCOPED_TRACE(row.name);
  std::mt19937_64 rng(0x5eed);
  for (int n : lengths()) {
    for (size_t m : misalignments(step_of<S>())) {
      const size_t n_ = size_t(n);
      Guarded src(n_ * sizeof(S), m), dst(n_ * sizeof(D), partner_offset(m, 1, step_of<D>()));
      src.fill_random(rng);
      const auto src_before = src.bytes();
      std::vector<uint8_t> want(n_ * sizeof(D));
      if (n > 0) row.reference(src.as<S>(), reinterpret_cast<D*>(want.data()), n);
      const std::string what = row.name + " length " + std::to_string(n) + " misalignment " +
                               std::to_string(m);
      const VrkStatus st = row.fn(src.as<S>(), dst.as<D>(), n);
      if (n == 0) {
        EXPECT_EQ(st, vrkStatusSizeError) << what;
        EXPECT_TRUE(dst.guards_intact()) << what;
        continue;
      }
      EXPECT_EQ(st, vrkStatusOk) << what;
      if (row.any_nan) VT_EXPECT_SAME(D, dst.bytes(), want, what);
      else VT_EXPECT_BYTES_EQ(dst.bytes(), want, what);
      EXPECT_TRUE(dst.guards_intact()) << what;
      EXPECT_TRUE(src.guards_intact() && src.bytes() == src_before) << what << ": source changed";
      if constexpr (sizeof(S) == sizeof(D)) {
        if (row.in_place) {
          Guarded io(n_ * sizeof(D), m);
          std::memcpy(io.data(), src_before.data(), src_before.size());
          EXPECT_EQ(row.in_place(io.as<D>(), n), vrkStatusOk) << what;
          if (row.any_nan) VT_EXPECT_SAME(D, io.bytes(), want, what + " in place");
          else VT_EXPECT_BYTES_EQ(io.bytes(), want, what + " in place");
          EXPECT_TRUE(io.guards_intact()) << what << " in place";
        }
      }
    }
  }
  // Serial and threaded roads agree bit for bit.
  for (int n : long_lengths()) {
    Guarded src(size_t(n) * sizeof(S), 0), one(size_t(n) * sizeof(D), step_of<D>()),
        two(size_t(n) * sizeof(D), step_of<D>());
    src.fill_random(rng);
    const VrkStatus s1 = with_threads(1, [&] { return row.fn(src.as<S>(), one.as<D>(), n); });
    const VrkStatus s2 = with_threads(2, [&] { return row.fn(src.as<S>(), two.as<D>(), n); });
    EXPECT_EQ(s1, s2) << row.name << " length " << n;
    VT_EXPECT_BYTES_EQ(one.bytes(), two.bytes(), row.name + " serial against threaded");
  }
}

template <class D>
void run(const FillRow<D>& row) {
  SCOPED_TRACE(row.name);
  for (int n : lengths()) {
    for (size_t m : misalignments(step_of<D>())) {
      Guarded dst(size_t(n) * sizeof(D), m);
      std::vector<uint8_t> want(size_t(n) * sizeof(D));
      if (n > 0) row.reference(reinterpret_cast<D*>(want.data()), n);
      const std::string what = row.name + " length " + std::to_string(n) + " misalignment " +
                               std::to_string(m);
      const VrkStatus st = row.fn(dst.as<D>(), n);
      EXPECT_EQ(st, n == 0 ? vrkStatusSizeError : vrkStatusOk) << what;
      if (n > 0) VT_EXPECT_BYTES_EQ(dst.bytes(), want, what);
      EXPECT_TRUE(dst.guards_intact()) << what;
    }
  }
}

// One export of shape (const X* src1, const Y* src2, D* dst, int length),
// optionally with an in-place twin (const X* src, D* srcDst, int length)
// whose srcDst holds src2 on entry. `reference` writes the expected dst.
template <class X, class Y, class D>
struct BinaryRow {
  std::string name;
  std::function<VrkStatus(const X*, const Y*, D*, int)> fn;
  std::function<void(const X*, const Y*, D*, int)> reference;
  std::function<VrkStatus(const X*, D*, int)> in_place = nullptr;
};

// Random contents for a source: random bytes, with the extremes of an
// integer part type planted now and then so that saturation is met often.
template <class T>
void fill_source(Guarded& g, std::mt19937_64& rng) {
  g.fill_random(rng);
  using P = std::conditional_t<(sizeof(T) > 8), uint64_t, T>;
  if constexpr (std::is_integral_v<P> && sizeof(T) == sizeof(P)) {
    auto* p = g.as<T>();
    const size_t n = g.size() / sizeof(T);
    for (size_t i = 0; i < n; i += 1 + rng() % 5) {
      const unsigned pick = unsigned(rng() % 4);
      p[i] = pick == 0 ? std::numeric_limits<T>::max() : pick == 1 ? std::numeric_limits<T>::min()
           : pick == 2 ? T(0) : T(1);
    }
  }
}

// `light` runs a few misalignments only, for rows repeated at many parameters.
template <class X, class Y, class D>
void run(const BinaryRow<X, Y, D>& row, bool light = false) {
  SCOPED_TRACE(row.name);
  std::mt19937_64 rng(0xb1);
  const size_t step = std::max(step_of<X>(), step_of<D>());
  const std::vector<size_t> few = {0, step, 32 - step, 32 + step};
  for (int n : light ? short_lengths() : lengths()) {
    for (size_t m : light ? few : misalignments(step)) {
      const size_t n_ = size_t(n);
      Guarded a(n_ * sizeof(X), m), b(n_ * sizeof(Y), partner_offset(m, 1, step_of<Y>())),
          dst(n_ * sizeof(D), partner_offset(m, 2, step_of<D>()));
      fill_source<X>(a, rng);
      fill_source<Y>(b, rng);
      const auto a_before = a.bytes(), b_before = b.bytes();
      std::vector<uint8_t> want(n_ * sizeof(D));
      if (n > 0) row.reference(a.as<X>(), b.as<Y>(), reinterpret_cast<D*>(want.data()), n);
      const std::string what = row.name + " length " + std::to_string(n) + " misalignment " + std::to_string(m);
      const VrkStatus st = row.fn(a.as<X>(), b.as<Y>(), dst.as<D>(), n);
      EXPECT_EQ(st, n == 0 ? vrkStatusSizeError : vrkStatusOk) << what;
      if (n > 0) VT_EXPECT_SAME(D, dst.bytes(), want, what);
      EXPECT_TRUE(dst.guards_intact()) << what;
      EXPECT_TRUE(a.bytes() == a_before && b.bytes() == b_before) << what << ": source changed";
      if constexpr (sizeof(Y) == sizeof(D)) {
        if (row.in_place && n > 0) {
          Guarded io(n_ * sizeof(D), partner_offset(m, 2, step_of<D>()));
          std::memcpy(io.data(), b_before.data(), b_before.size());
          EXPECT_EQ(row.in_place(a.as<X>(), io.as<D>(), n), vrkStatusOk) << what;
          VT_EXPECT_SAME(D, io.bytes(), want, what + " in place");
          EXPECT_TRUE(io.guards_intact()) << what << " in place";
        }
      }
    }
  }
}


// The exact scale-factor rule, independent of the library's: r * 2^-scale
// rounded to nearest with ties to even, clamped to [lo, hi].
__int128 reference_scale(__int128 r, int scale, __int128 lo, __int128 hi);

// ---- error paths ----------------------------------------------------------------

// Which check comes first.
enum class Order { PointersFirst, LengthFirst };

// `call(nulls, length)` runs the export on guarded arrays with the pointer
// arguments whose bit is set in `nulls` replaced by null, and returns the
// status; `untouched()` says whether every array is as it was. Proves:
// each null pointer alone gives vrkStatusNullPointer, lengths 0 and -1 give
// vrkStatusSizeError, a null with a bad length gives the status of whichever
// check comes first, and no error writes anything.
void check_errors(const std::string& name, int pointers, Order order,
                  const std::function<VrkStatus(unsigned nulls, int length)>& call,
                  const std::function<bool()>& untouched);

}  // namespace vt

namespace vt {

// The error paths of a row, with pointers checked first.
template <class S, class D>
void check_errors(const UnaryRow<S, D>& row, Order order = Order::PointersFirst) {
  Guarded src(64 * sizeof(S), 0), dst(64 * sizeof(D), 0);
  std::mt19937_64 rng(7);
  src.fill_random(rng);
  const auto src_before = src.bytes();
  const auto dst_before = dst.bytes();
  auto untouched = [&] { return src.bytes() == src_before && dst.bytes() == dst_before; };
  check_errors(row.name, 2, order, [&](unsigned nulls, int n) {
    return row.fn(nulls & 1 ? nullptr : src.as<S>(), nulls & 2 ? nullptr : dst.as<D>(), n);
  }, untouched);
  if (row.in_place)
    check_errors(row.name + " in place", 1, order, [&](unsigned nulls, int n) {
      return row.in_place(nulls & 1 ? nullptr : dst.as<D>(), n);
    }, untouched);
}

template <class X, class Y, class D>
void check_errors(const BinaryRow<X, Y, D>& row, Order order = Order::PointersFirst) {
  Guarded a(64 * sizeof(X), 0), b(64 * sizeof(Y), 0), dst(64 * sizeof(D), 0);
  std::mt19937_64 rng(9);
  a.fill_random(rng);
  b.fill_random(rng);
  const auto before = std::make_tuple(a.bytes(), b.bytes(), dst.bytes());
  auto untouched = [&] { return std::make_tuple(a.bytes(), b.bytes(), dst.bytes()) == before; };
  check_errors(row.name, 3, order, [&](unsigned nulls, int n) {
    return row.fn(nulls & 1 ? nullptr : a.as<X>(), nulls & 2 ? nullptr : b.as<Y>(),
                  nulls & 4 ? nullptr : dst.as<D>(), n);
  }, untouched);
  if (row.in_place)
    check_errors(row.name + " in place", 2, order, [&](unsigned nulls, int n) {
      return row.in_place(nulls & 1 ? nullptr : a.as<X>(), nulls & 2 ? nullptr : dst.as<D>(), n);
    }, untouched);
}

template <class D>
void check_errors(const FillRow<D>& row, Order order = Order::PointersFirst) {
  Guarded dst(64 * sizeof(D), 0);
  const auto before = dst.bytes();
  check_errors(row.name, 1, order, [&](unsigned nulls, int n) {
    return row.fn(nulls & 1 ? nullptr : dst.as<D>(), n);
  }, [&] { return dst.bytes() == before; });
}

}  // namespace vt
