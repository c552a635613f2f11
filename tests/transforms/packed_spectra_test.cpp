// Packed real spectra: expansion to the full spectrum and products in packed
// form, against the layouts written out element by element.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <limits>

#include "harness.h"

namespace {

using vt::same_result;  // for VT_EXPECT_SAME

enum Layout { Pack, Perm, Ccs };

// Where X[k] = (re, im) of a length-L spectrum lies in a layout; an
// imaginary index of -1 is a zero the layout doesn't store.
std::pair<int, int> slot(Layout f, int L, int k) {
  if (f == Ccs) return {2 * k, 2 * k + 1};
  if (k == 0) return {0, -1};
  if (L % 2 == 0 && k == L / 2) return {f == Pack ? L - 1 : 1, -1};
  return f == Perm && L % 2 == 0 ? std::pair{2 * k, 2 * k + 1} : std::pair{2 * k - 1, 2 * k};
}

template <class P>
P negated(P x, bool from_zero) {
  if constexpr (std::is_same_v<P, Vrk16s>) return P(std::min(-int(x), 32767));
  else return from_zero ? P(0) - x : -x;
}

// The full spectrum: X[k] as stored for k <= L/2, the conjugates above.
template <class P, class C>
void expand(Layout f, const P* s, C* d, int L, bool from_zero) {
  for (int k = 0; k <= L / 2; ++k) {
    const auto [r, i] = slot(f, L, k);
    d[k] = C{s[r], i < 0 ? P(0) : s[i]};
    if (L - k > L / 2 && k > 0) d[L - k] = C{s[r], negated(s[i], from_zero)};
  }
}

// Out of place the conjugate flips the sign bit; in place ConjPack and
// ConjPerm compute 0 - x, and ConjCcs writes the upper half only.
template <class P, class C>
void run_conj(const std::string& name, Layout f, VrkStatus (*fn)(const P*, C*, int), VrkStatus (*fn_i)(C*, int)) {
  std::mt19937_64 rng(3);
  for (int n : vt::lengths()) {
    const size_t parts = f == Ccs ? size_t(n / 2 * 2 + 2) : size_t(n), bytes = size_t(n) * sizeof(C);
    for (size_t m : vt::misalignments(sizeof(P))) {
      if (n == 0) break;  // the error paths are checked below
      vt::Guarded src(parts * sizeof(P), m), dst(bytes, vt::partner_offset(m, 1, sizeof(P))),
          io(bytes, vt::partner_offset(m, 2, sizeof(P)));
      src.fill_random(rng);
      for (size_t i = 0; i < parts; i += 1 + rng() % 4)  // zeros and the most negative value
        src.as<P>()[i] = rng() % 2 ? P(0) : std::numeric_limits<P>::lowest();
      io.fill_random(rng);
      std::memcpy(io.data(), src.data(), src.size());
      const auto before = src.bytes();
      std::vector<uint8_t> want(bytes), want_io(bytes);
      expand(f, src.as<P>(), reinterpret_cast<C*>(want.data()), n, false);
      expand(f, src.as<P>(), reinterpret_cast<C*>(want_io.data()), n, f != Ccs);
      const std::string what = name + " length " + std::to_string(n) + " misalignment " + std::to_string(m);
      EXPECT_TRUE(fn(src.as<P>(), dst.as<C>(), n) == vrkStatusOk && fn_i(io.as<C>(), n) == vrkStatusOk) << what;
      VT_EXPECT_SAME(C, dst.bytes(), want, what);
      VT_EXPECT_SAME(C, io.bytes(), want_io, what + " in place");
      EXPECT_TRUE(src.bytes() == before && src.guards_intact() && dst.guards_intact() && io.guards_intact()) << what;
    }
  }
  vt::check_errors(vt::UnaryRow<P, C>{name, fn, nullptr, fn_i});
}

template <class P, class C>
void conj_members(const char* code, std::array<VrkStatus (*)(const P*, C*, int), 3> fn,
                  std::array<VrkStatus (*)(C*, int), 3> fn_i, VrkStatus (*flip)(const C*, C*, int)) {
  const char* names[] = {"ConjPack_", "ConjPerm_", "ConjCcs_"};
  for (int f = 0; f < 3; ++f) run_conj(names[f] + std::string(code), Layout(f), fn[f], fn_i[f]);
  const vt::UnaryRow<C, C> row{std::string("ConjFlip_") + code, flip, [](const C* s, C* d, int n) {
    for (int j = 0; j < n; ++j) d[j] = C{s[n - 1 - j].re, negated(s[n - 1 - j].im, false)};
  }};
  vt::run(row);
  vt::check_errors(row);
}
#define CONJ(p, c)                                                                         \
  conj_members<Vrk##p, Vrk##c>(#c, {vrksConjPack_##c, vrksConjPerm_##c, vrksConjCcs_##c}, \
                               {vrksConjPack_##c##_I, vrksConjPerm_##c##_I, vrksConjCcs_##c##_I}, vrksConjFlip_##c)

TEST(PackedSpectra, Conj16sc) { CONJ(16s, 16sc); }
TEST(PackedSpectra, Conj32fc) { CONJ(32f, 32fc); }
TEST(PackedSpectra, Conj64fc) { CONJ(64f, 64fc); }

// ---- products ------------------------------------------------------------------

// Real entries times each other, pairs (c, d) by (e, f) as complex numbers,
// or with `conj` by the conjugate of (e, f). Products in W, every floating
// one rounded by itself; `out` turns a result into an element.
template <class W, class P, class Out>
void multiply(Layout f, bool conj, const P* a, const P* b, P* d, int L, Out out) {
  auto mul = [](P x, P y) {
    if constexpr (std::is_floating_point_v<W>) return vt::keep(x * y);
    else return W(x) * W(y);
  };
  for (int k = 0; k <= L / 2; ++k) {
    const auto [r, i] = slot(f, L, k);
    if (i < 0) {
      d[r] = out(mul(a[r], b[r]));
      continue;
    }
    const W ce = mul(a[r], b[r]), df = mul(a[i], b[i]), cf = mul(a[r], b[i]), de = mul(a[i], b[r]);
    d[r] = out(conj ? ce + df : ce - df);
    d[i] = out(conj ? de - cf : cf + de);
  }
}

// One product row against `multiply` in W, with `out` turning results into elements.
template <class P, class W = P, class Fn, class FnI, class Out>
void run_mul(const std::string& name, Layout f, bool conj, Fn fn, FnI fn_i, Out out, bool light = false) {
  const vt::BinaryRow<P, P, P> row{name, fn, [=](const P* a, const P* b, P* d, int n) {
    multiply<W>(f, conj, a, b, d, n, out);
  }, fn_i};
  vt::run(row, light);
  vt::check_errors(row);
}

// The in-place MulPackConj on a copy of the second source, as a separate form.
template <class P>
auto on_copy(VrkStatus (*fn_i)(const P*, P*, int)) {
  return [=](const P* a, const P* b, P* d, int n) {
    if (a && b && d && n > 0) std::memcpy(d, b, size_t(n) * sizeof(P));
    return fn_i(a, b ? d : nullptr, n);
  };
}

#define MUL(t)                                                                                                   \
  const auto same = [](Vrk##t v) { return v; };                                                                  \
  run_mul<Vrk##t>("MulPack_" #t, Pack, false, vrksMulPack_##t, vrksMulPack_##t##_I, same);                       \
  run_mul<Vrk##t>("MulPerm_" #t, Perm, false, vrksMulPerm_##t, vrksMulPerm_##t##_I, same);                       \
  run_mul<Vrk##t>("MulPackConj_" #t, Pack, true, on_copy(vrksMulPackConj_##t##_I), vrksMulPackConj_##t##_I, same)

TEST(PackedSpectra, Mul32f) { MUL(32f); }
TEST(PackedSpectra, Mul64f) { MUL(64f); }

// The 16-bit rule on the exact result: floor(r / 2^min(scale, 31)) saturated,
// or at scale < 0 saturated, times 2^-scale, saturated again.
Vrk16s rule16(int64_t r, int scale) {
  auto sat = [](__int128 v) { return std::clamp<__int128>(v, -32768, 32767); };
  if (scale < 0) return Vrk16s(sat(sat(r) * (__int128(1) << std::min<int64_t>(-int64_t(scale), 40))));
  const int64_t d = int64_t(1) << std::min(scale, 31), q = r / d;
  return Vrk16s(sat(q * d > r ? q - 1 : q));
}

TEST(PackedSpectra, Mul16s) {
  using Fn = VrkStatus (*)(const Vrk16s*, const Vrk16s*, Vrk16s*, int, int);
  using FnI = VrkStatus (*)(const Vrk16s*, Vrk16s*, int, int);
  const Fn fn[] = {vrksMulPack_16s_Sfs, vrksMulPerm_16s_Sfs};
  const FnI fn_i[] = {vrksMulPack_16s_ISfs, vrksMulPerm_16s_ISfs};
  std::vector<int> scales = {INT_MIN, -40, -17, -16, 40, INT_MAX};
  for (int s = -3; s <= 33; ++s) scales.push_back(s);
  for (int scale : scales) {
    for (Layout f : {Pack, Perm}) {
      const std::string name = (f == Pack ? "MulPack_16s_Sfs scale " : "MulPerm_16s_Sfs scale ") + std::to_string(scale);
      run_mul<Vrk16s, int64_t>(name, f, false, [=](auto a, auto b, auto d, int n) { return fn[f](a, b, d, n, scale); },
          [=](auto a, auto d, int n) { return fn_i[f](a, d, n, scale); },
          [=](int64_t r) { return rule16(r, scale); }, scale != 0 && scale != 5);
      // All four parts -32768: the imaginary sum is exactly 2^31.
      const std::vector<Vrk16s> m(9, -32768);
      for (int n : {8, 9}) {
        std::vector<Vrk16s> got(9);
        ASSERT_EQ(fn[f](m.data(), m.data(), got.data(), n, scale), vrkStatusOk);
        EXPECT_EQ(got[size_t(slot(f, n, 1).second)], rule16(int64_t(1) << 31, scale)) << name << " length " << n;
      }
    }
  }
}

}  // namespace
