// The complex and real power-of-two transforms against a plain radix-2
// reference in higher precision, at every flag and orders 0 to 20, out of
// place and in place, at odd addresses, with the caller's buffer or none; the
// order of the checks; one object shared by threads; and the largest orders.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "fft_reference.h"
#include "standin_core.h"
#include "vrks.h"

namespace {

using fftref::Block;
using fftref::cld;

const int kFlags[] = {vrkFFTScaleFwdByN, vrkFFTScaleInvByN, vrkFFTScaleBySqrtN, vrkFFTScaleNone};

// Error bounds in units of the type's rounding unit times log2 N + 2 (a
// rounding a stage, the scaling and the store): the RMS of the error, and its
// largest element, both relative to the RMS of the result. The engine stays
// below 0.3 of the RMS bound from order 2 on, below half of it at order 1.
constexpr double kRms = 1.0, kMax = 2.0;

template <class T>
double tolerance_unit(int order) {
  return double(std::numeric_limits<T>::epsilon()) / 2 * (order + 2);
}

// The arithmetic of the reference: a 32-bit kind needs no more than double.
template <class T>
using Ref = std::conditional_t<sizeof(T) == 4, double, long double>;

long double factor(int flag, bool inverse, int order) {
  const long double n = ldexpl(1.0L, order);
  switch (flag) {
    case vrkFFTScaleFwdByN: return inverse ? 1 : 1 / n;
    case vrkFFTScaleInvByN: return inverse ? 1 / n : 1;
    case vrkFFTScaleBySqrtN: return 1 / sqrtl(n);
    default: return 1;
  }
}

// Under the sanitizers the orders above 16 run one flag each.
bool light(int order, int flag_index) { return fftref::kSanitized && order > 16 && flag_index != order % 4; }

// The worst error seen, in units of tolerance_unit, printed at the end.
struct Worst {
  double rms = 0, max = 0;
  std::string where;
  void note(const fftref::Error& e, double unit, const std::string& what) {
    if (e.rms / unit > rms) rms = e.rms / unit, where = what;
    max = std::max(max, e.max / unit);
  }
  void print(const char* name) const {
    std::printf("[ worst    ] %s: RMS %.3f, largest element %.3f units (RMS at %s)\n", name, rms, max,
                where.c_str());
  }
};

#define EXPECT_WITHIN(e, unit, what)                                                               \
  do {                                                                                             \
    EXPECT_LE((e).rms, kRms * (unit)) << (what) << ": relative RMS error " << (e).rms;             \
    EXPECT_LE((e).max, kMax * (unit)) << (what) << ": largest element error " << (e).max;          \
  } while (0)

// ---- complex kinds ----------------------------------------------------------------

// A complex kind through untyped pointers: `a` is the interleaved array or the
// real parts, `b` the imaginary parts of the split layout.
struct ComplexKind {
  const char* name;
  bool split, wide;
  VrkStatus (*get_size)(int, int, int, int*, int*, int*);
  VrkStatus (*init)(void**, int, int, Vrk8u*, Vrk8u*);
  VrkStatus (*init_alloc)(void**, int, int);
  VrkStatus (*free)(void*);
  VrkStatus (*buf_size)(const void*, int*);
  VrkStatus (*run)(bool inverse, const void* sa, const void* sb, void* da, void* db, const void* state, Vrk8u* buffer);
  VrkStatus (*run_i)(bool inverse, void* a, void* b, const void* state, Vrk8u* buffer);
};

#define STATE_FNS(K)                                                                               \
  vrksFFTGetSize_##K,                                                                              \
      [](void** s, int o, int f, Vrk8u* m, Vrk8u* b) {                                             \
        return vrksFFTInit_##K(reinterpret_cast<VrksFFTState_##K**>(s), o, f, 0, m, b);            \
      },                                                                                           \
      [](void** s, int o, int f) { return vrksFFTInitAlloc_##K(reinterpret_cast<VrksFFTState_##K**>(s), o, f, 0); }, \
      [](void* s) { return vrksFFTFree_##K(static_cast<VrksFFTState_##K*>(s)); },                  \
      [](const void* s, int* n) { return vrksFFTGetBufSize_##K(static_cast<const VrksFFTState_##K*>(s), n); }

#define INTERLEAVED(t, wide)                                                                       \
  ComplexKind {                                                                                    \
    "CToC_" #t, false, wide, STATE_FNS(C_##t),                                                     \
        [](bool inv, const void* sa, const void*, void* da, void*, const void* s, Vrk8u* b) {      \
          auto* st = static_cast<const VrksFFTState_C_##t*>(s);                                    \
          auto* src = static_cast<const Vrk##t*>(sa);                                              \
          auto* dst = static_cast<Vrk##t*>(da);                                                    \
          return inv ? vrksFFTInv_CToC_##t(src, dst, st, b) : vrksFFTFwd_CToC_##t(src, dst, st, b); \
        },                                                                                         \
        [](bool inv, void* a, void*, const void* s, Vrk8u* b) {                                    \
          auto* st = static_cast<const VrksFFTState_C_##t*>(s);                                    \
          auto* io = static_cast<Vrk##t*>(a);                                                      \
          return inv ? vrksFFTInv_CToC_##t##_I(io, st, b) : vrksFFTFwd_CToC_##t##_I(io, st, b);    \
        }                                                                                          \
  }

#define SPLIT(t, wide)                                                                             \
  ComplexKind {                                                                                    \
    "CToC_" #t, true, wide, STATE_FNS(C_##t),                                                      \
        [](bool inv, const void* sa, const void* sb, void* da, void* db, const void* s, Vrk8u* b) { \
          auto* st = static_cast<const VrksFFTState_C_##t*>(s);                                    \
          auto *sr = static_cast<const Vrk##t*>(sa), *si = static_cast<const Vrk##t*>(sb);         \
          auto *dr = static_cast<Vrk##t*>(da), *di = static_cast<Vrk##t*>(db);                     \
          return inv ? vrksFFTInv_CToC_##t(sr, si, dr, di, st, b) : vrksFFTFwd_CToC_##t(sr, si, dr, di, st, b); \
        },                                                                                         \
        [](bool inv, void* a, void* c, const void* s, Vrk8u* b) {                                  \
          auto* st = static_cast<const VrksFFTState_C_##t*>(s);                                    \
          auto *re = static_cast<Vrk##t*>(a), *im = static_cast<Vrk##t*>(c);                       \
          return inv ? vrksFFTInv_CToC_##t##_I(re, im, st, b) : vrksFFTFwd_CToC_##t##_I(re, im, st, b); \
        }                                                                                          \
  }

// Siblings of one precision stand next to each other: kind ^ 1 is the other layout.
const ComplexKind kComplex[] = {INTERLEAVED(32fc, false), SPLIT(32f, false), INTERLEAVED(64fc, true),
                                SPLIT(64f, true)};

// N complex values in a kind's layout, at chosen misalignments of its arrays.
template <class T>
struct CData {
  bool split;
  size_t n;
  Block a, b;
  CData(bool split_, size_t n_, size_t ma = 0, size_t mb = 0)
      : split(split_), n(n_), a((split_ ? 1 : 2) * n_ * sizeof(T), ma), b(split_ ? n_ * sizeof(T) : 0, mb) {}
  T& at(size_t k, int part) { return split ? (part ? b.as<T>() : a.as<T>())[k] : a.as<T>()[2 * k + part]; }
  cld get(size_t k) { return {at(k, 0), at(k, 1)}; }
  void set(size_t k, cld v) { at(k, 0) = T(v.real()), at(k, 1) = T(v.imag()); }
  void clear() {  // NaN everywhere
    std::memset(a.data(), 0xFF, a.size());
    std::memset(b.data(), 0xFF, b.size());
  }
  void copy(CData& from) {
    std::memcpy(a.data(), from.a.data(), a.size());
    std::memcpy(b.data(), from.b.data(), b.size());
  }
  void* pa() { return a.data(); }
  void* pb() { return split ? b.data() : nullptr; }
  bool guards() const { return a.guards_intact() && b.guards_intact(); }
  bool same(const CData& o) const { return a.same(o.a) && b.same(o.b); }
};

template <class T>
void fill_random(CData<T>& d, std::mt19937_64& rng) {
  std::uniform_real_distribution<double> u(-1, 1);
  for (size_t k = 0; k < d.n; ++k) d.set(k, cld(u(rng), u(rng)));
}

// Out of place into a 64-byte aligned destination with the caller's buffer,
// against the reference; the scaled flags there and back; and one more way to
// call, which must give the same bits: in place, at odd multiples of 8 bytes
// with the buffer at an odd address, with no buffer, or (split) with only the
// real parts in place. Both layouts of a precision transform the same input.
template <class T>
void complex_against_reference(const ComplexKind* layouts, Worst* worst) {
  std::mt19937_64 rng(1234);
  std::uniform_real_distribution<double> u(-1, 1);
  for (int order = 0; order <= 20; ++order) {
    const size_t n = size_t(1) << order;
    std::vector<cld> x(n);
    for (auto& v : x) v = cld(T(u(rng)), T(u(rng)));
    const std::vector<cld> ref = fftref::dft<Ref<T>>(x, -1);  // the inverse is ref[-k]
    for (int l = 0; l < 2; ++l) {
      const ComplexKind& k = layouts[l];
      CData<T> src(k.split, n, 0, 32), src_before(k.split, n), dst(k.split, n), out(k.split, n, 8, 40),
          other(k.split, n, 24), moved(k.split, n, 40, 8);
      for (size_t i = 0; i < n; ++i) src.set(i, x[i]);
      src_before.copy(src);
      for (int fi = 0; fi < 4; ++fi) {
        if (light(order, fi)) continue;
        void* st = nullptr;
        ASSERT_EQ(k.init_alloc(&st, order, kFlags[fi]), vrkStatusOk) << k.name << " order " << order;
        int bs = -1;
        ASSERT_EQ(k.buf_size(st, &bs), vrkStatusOk);
        for (int inv = 0; inv < 2; ++inv) {
          const std::string what = std::string(k.name) + (inv ? " inverse" : " forward") + " order " +
                                   std::to_string(order) + " flag " + std::to_string(kFlags[fi]);
          const long double f = factor(kFlags[fi], inv, order);
          Block buf{size_t(bs)};
          const int way = (order + fi + inv) % 4;
          dst.clear(), (way == 3 ? other : out).clear();
          ASSERT_EQ(k.run(inv, src.pa(), src.pb(), dst.pa(), dst.pb(), st, buf.data()), vrkStatusOk) << what;
          EXPECT_TRUE(dst.guards() && buf.guards_intact()) << what << ": written outside";
          EXPECT_TRUE(src.same(src_before)) << what << ": source changed";
          const auto e = fftref::error(n, [&](size_t i) { return dst.get(i); },
                                       [&](size_t i) { return f * ref[inv ? (n - i) & (n - 1) : i]; });
          const double unit = tolerance_unit<T>(order);
          worst[l].note(e, unit, what);
          EXPECT_WITHIN(e, unit, what);
          if (!inv && kFlags[fi] != vrkFFTScaleInvByN && kFlags[fi] != vrkFFTScaleNone) {
            // There and back gives the input; by 1/sqrt(N) each way keeps the energy.
            ASSERT_EQ(k.run(true, dst.pa(), dst.pb(), moved.pa(), moved.pb(), st, nullptr), vrkStatusOk) << what;
            EXPECT_WITHIN(fftref::error(n, [&](size_t i) { return moved.get(i); }, [&](size_t i) { return x[i]; }),
                          2 * unit, what + " and back");
            long double ex = 0, ey = 0;
            for (size_t i = 0; i < n; ++i) ex += std::norm(x[i]), ey += std::norm(dst.get(i));
            if (kFlags[fi] == vrkFFTScaleBySqrtN) {
              EXPECT_LE(fabsl(ey / ex - 1), 2 * kRms * unit) << what << ": energy";
            }
          }

          const int64_t live = standin::live_blocks();
          Block odd_buf(size_t(bs), 1 + 2 * size_t(way));
          bool same = false;
          if (way == 0) {  // in place
            out.copy(src);
            EXPECT_EQ(k.run_i(inv, out.pa(), out.pb(), st, odd_buf.data()), vrkStatusOk) << what;
            same = out.same(dst);
          } else if (way == 1) {  // odd multiples of 8 bytes, buffer at an odd address
            moved.copy(src);
            EXPECT_EQ(k.run(inv, moved.pa(), moved.pb(), out.pa(), out.pb(), st, odd_buf.data()), vrkStatusOk) << what;
            same = out.same(dst);
          } else if (way == 2) {  // no buffer
            EXPECT_EQ(k.run(inv, src.pa(), src.pb(), out.pa(), out.pb(), st, nullptr), vrkStatusOk) << what;
            same = out.same(dst);
          } else if (!k.split) {  // in place at 24 bytes, no buffer
            other.copy(src);
            EXPECT_EQ(k.run_i(inv, other.pa(), nullptr, st, nullptr), vrkStatusOk) << what;
            same = other.same(dst);
          } else {  // srcRe == dstRe, srcIm != dstIm
            out.copy(src);
            EXPECT_EQ(k.run(inv, out.pa(), out.pb(), out.pa(), other.pb(), st, odd_buf.data()), vrkStatusOk) << what;
            same = out.a.same(dst.a) && other.b.same(dst.b) && out.b.same(src.b);
          }
          EXPECT_TRUE(same) << what << ": way " << way << " differs from the plain call";
          EXPECT_TRUE(out.guards() && other.guards() && odd_buf.guards_intact()) << what << ": way " << way;
          EXPECT_EQ(standin::live_blocks(), live) << what;
        }
        ASSERT_EQ(k.free(st), vrkStatusOk);
      }
    }
  }
}

TEST(FFTComplex, AgainstReference) {
  for (int wide = 0; wide < 2; ++wide) {
    Worst worst[2];
    if (wide) complex_against_reference<double>(kComplex + 2, worst);
    else complex_against_reference<float>(kComplex, worst);
    worst[0].print(kComplex[2 * wide].name), worst[1].print(kComplex[2 * wide + 1].name);
  }
}

// ---- real kinds -------------------------------------------------------------------

enum Format { Perm, Pack, CCS };
const char* const kFormatNames[] = {"Perm", "Pack", "CCS"};

using RealFn = VrkStatus (*)(const void*, void*, const void*, Vrk8u*);
using RealFnI = VrkStatus (*)(void*, const void*, Vrk8u*);

struct RealKind {
  const char* name;
  bool wide;
  VrkStatus (*get_size)(int, int, int, int*, int*, int*);
  VrkStatus (*init)(void**, int, int, Vrk8u*, Vrk8u*);
  VrkStatus (*init_alloc)(void**, int, int);
  VrkStatus (*free)(void*);
  VrkStatus (*buf_size)(const void*, int*);
  RealFn fwd[3], inv[3];
  RealFnI fwd_i[3], inv_i[3];
};

#define RFN(name, p)                                                                               \
  [](const void* s, void* d, const void* st, Vrk8u* b) {                                           \
    return vrksFFT##name##_##p(static_cast<const Vrk##p*>(s), static_cast<Vrk##p*>(d),             \
                               static_cast<const VrksFFTState_R_##p*>(st), b);                     \
  }
#define RFN_I(name, p)                                                                             \
  [](void* io, const void* st, Vrk8u* b) {                                                         \
    return vrksFFT##name##_##p##_I(static_cast<Vrk##p*>(io), static_cast<const VrksFFTState_R_##p*>(st), b); \
  }
#define REAL(p, wide)                                                                              \
  RealKind {                                                                                       \
    "R_" #p, wide, STATE_FNS(R_##p), {RFN(Fwd_RToPerm, p), RFN(Fwd_RToPack, p), RFN(Fwd_RToCCS, p)}, \
        {RFN(Inv_PermToR, p), RFN(Inv_PackToR, p), RFN(Inv_CCSToR, p)},                            \
        {RFN_I(Fwd_RToPerm, p), RFN_I(Fwd_RToPack, p), RFN_I(Fwd_RToCCS, p)},                      \
        {RFN_I(Inv_PermToR, p), RFN_I(Inv_PackToR, p), RFN_I(Inv_CCSToR, p)}                       \
  }

const RealKind kReal[] = {REAL(32f, false), REAL(64f, true)};

size_t packed_length(Format f, size_t n) { return f == CCS ? 2 * (n / 2) + 2 : n; }

// The Perm form of a spectrum of N points.
std::vector<long double> to_perm(const std::vector<cld>& X) {
  const size_t n = X.size();
  std::vector<long double> p(n);
  p[0] = X[0].real();
  if (n > 1) p[1] = X[n / 2].real();
  for (size_t k = 1; k < n / 2; ++k) p[2 * k] = X[k].real(), p[2 * k + 1] = X[k].imag();
  return p;
}

// The whole conjugate-symmetric spectrum that a Perm form stands for.
std::vector<cld> from_perm(const std::vector<long double>& p) {
  const size_t n = p.size();
  std::vector<cld> X(n);
  X[0] = p[0];
  if (n > 1) X[n / 2] = p[1];
  for (size_t k = 1; k < n / 2; ++k) X[k] = cld(p[2 * k], p[2 * k + 1]), X[n - k] = std::conj(X[k]);
  return X;
}

// Pack and CCS from Perm by moving elements, exactly as the layouts say.
template <class T>
std::vector<T> repack(const T* perm, size_t n, Format f) {
  std::vector<T> out(packed_length(f, n), T(0));
  out[0] = perm[0];
  if (f == Perm) std::copy(perm, perm + n, out.begin());
  if (f == Pack && n > 1) std::copy(perm + 2, perm + n, out.begin() + 1), out[n - 1] = perm[1];
  if (f == CCS && n > 1) std::copy(perm + 2, perm + n, out.begin() + 2), out[n] = perm[1];
  return out;
}

template <class T>
bool same_bits(const T* a, const std::vector<T>& b) {
  return std::memcmp(a, b.data(), b.size() * sizeof(T)) == 0;
}

// The bytes of a cleared block from `from` on were not written.
bool untouched_from(const Block& b, size_t from) {
  for (size_t i = from; i < b.size(); ++i)
    if (b.data()[i] != 0xFF) return false;
  return true;
}

// All six transforms and their in-place forms, orders 0 to 20, every flag.
// RToPerm and PermToR meet the reference; the other forms give the same bits,
// moved as their layout says (CCSToR never reads its two zero slots, which
// hold NaN here). Out of place Perm runs aligned with the caller's buffer,
// Pack and CCS at odd multiples of 8 bytes with none, the in-place forms at
// 24 bytes with the buffer at an odd address.
template <class T>
void real_against_reference(const RealKind& r, Worst& worst) {
  std::mt19937_64 rng(4321);
  std::uniform_real_distribution<double> u(-1, 1);
  const T nan = std::numeric_limits<T>::quiet_NaN();
  for (int order = 0; order <= 20; ++order) {
    const size_t n = size_t(1) << order, bytes = n * sizeof(T), ccs = packed_length(CCS, n) * sizeof(T);
    Block x(bytes), x_before(bytes), perm(bytes), y(bytes), z(bytes), out(ccs, 8), io(ccs, 24);
    std::vector<long double> spectrum(n);
    for (size_t i = 0; i < n; ++i) x.as<T>()[i] = T(u(rng)), spectrum[i] = T(u(rng));
    std::memcpy(x_before.data(), x.data(), bytes);
    std::vector<cld> fwd_ref(n);
    for (size_t i = 0; i < n; ++i) fwd_ref[i] = x.as<T>()[i];
    fwd_ref = fftref::dft<Ref<T>>(fwd_ref, -1);
    const auto inv_ref = fftref::dft<Ref<T>>(from_perm(spectrum), +1);
    const auto want_perm = to_perm(fwd_ref);
    std::vector<T> spectra[3];  // the inverse's input in each layout
    for (int f = 0; f < 3; ++f) {
      std::vector<T> p(spectrum.begin(), spectrum.end());
      spectra[f] = repack(p.data(), n, Format(f));
    }
    spectra[CCS][1] = nan, spectra[CCS].back() = nan;
    const std::vector<std::vector<T>> spectra_before(spectra, spectra + 3);
    auto clear = [](Block& b) { std::memset(b.data(), 0xFF, b.size()); };
    for (int fi = 0; fi < 4; ++fi) {
      if (light(order, fi)) continue;
      const int flag = kFlags[fi];
      const std::string what =
          std::string(r.name) + " order " + std::to_string(order) + " flag " + std::to_string(flag);
      void* st = nullptr;
      ASSERT_EQ(r.init_alloc(&st, order, flag), vrkStatusOk) << what;
      int bs = -1;
      ASSERT_EQ(r.buf_size(st, &bs), vrkStatusOk);
      Block buf{size_t(bs)}, odd_buf{size_t(bs), 3};
      const double unit = tolerance_unit<T>(order);
      const int64_t live = standin::live_blocks();

      // Forward.
      const long double ff = factor(flag, false, order), fb = factor(flag, true, order);
      clear(perm);
      ASSERT_EQ(r.fwd[Perm](x.data(), perm.data(), st, buf.data()), vrkStatusOk) << what;
      const auto e = fftref::error(n, [&](size_t i) { return perm.as<T>()[i]; },
                                   [&](size_t i) { return ff * want_perm[i]; });
      worst.note(e, unit, what + " RToPerm");
      EXPECT_WITHIN(e, unit, what + " RToPerm");
      for (int f = 0; f < 3; ++f) {
        const auto expected = repack(perm.as<T>(), n, Format(f));
        clear(out), clear(io);
        std::memcpy(io.data(), x.data(), bytes);
        if (f != Perm) {
          EXPECT_EQ(r.fwd[f](x.data(), out.data(), st, nullptr), vrkStatusOk) << what;
        }
        EXPECT_EQ(r.fwd_i[f](io.data(), st, odd_buf.data()), vrkStatusOk) << what;
        EXPECT_TRUE((f == Perm || same_bits(out.as<T>(), expected)) && same_bits(io.as<T>(), expected))
            << what << " RTo" << kFormatNames[f] << ": not the Perm result moved";
        EXPECT_TRUE(untouched_from(out, f == Perm ? 0 : expected.size() * sizeof(T)) &&
                    untouched_from(io, expected.size() * sizeof(T)))
            << what << " RTo" << kFormatNames[f] << ": written past the end";
      }
      EXPECT_TRUE(x.same(x_before)) << what << ": source changed";

      // Inverse.
      clear(y);
      ASSERT_EQ(r.inv[Perm](spectra[Perm].data(), y.data(), st, buf.data()), vrkStatusOk) << what;
      const auto ei = fftref::error(n, [&](size_t i) { return y.as<T>()[i]; },
                                    [&](size_t i) { return fb * inv_ref[i].real(); });
      worst.note(ei, unit, what + " PermToR");
      EXPECT_WITHIN(ei, unit, what + " PermToR");
      const std::vector<T> yv(y.as<T>(), y.as<T>() + n);
      for (int f = 0; f < 3; ++f) {
        clear(out), clear(io);
        std::memcpy(io.data(), spectra[f].data(), spectra[f].size() * sizeof(T));
        if (f != Perm) {
          EXPECT_EQ(r.inv[f](spectra[f].data(), out.data(), st, nullptr), vrkStatusOk) << what;
        }
        EXPECT_EQ(r.inv_i[f](io.data(), st, odd_buf.data()), vrkStatusOk) << what;
        EXPECT_TRUE((f == Perm || same_bits(out.as<T>(), yv)) && same_bits(io.as<T>(), yv))
            << what << " " << kFormatNames[f] << "ToR: not the PermToR result";
        EXPECT_TRUE(untouched_from(out, f == Perm ? 0 : bytes) && (f == CCS || untouched_from(io, bytes)))
            << what << " " << kFormatNames[f] << "ToR: written past the end";
        EXPECT_EQ(std::memcmp(spectra_before[f].data(), spectra[f].data(), spectra[f].size() * sizeof(T)), 0)
            << what << ": source changed";
      }

      // There and back.
      clear(z);
      ASSERT_EQ(r.inv[Perm](perm.data(), z.data(), st, nullptr), vrkStatusOk) << what;
      const long double gain = ff * fb * (long double)n;
      EXPECT_WITHIN(fftref::error(n, [&](size_t i) { return z.as<T>()[i]; },
                                  [&](size_t i) { return gain * x.as<T>()[i]; }),
                    2 * unit, what + " round trip");
      for (const Block* b : {&x, &perm, &y, &z, &out, &io, &buf, &odd_buf})
        EXPECT_TRUE(b->guards_intact()) << what << ": written outside";
      EXPECT_EQ(standin::live_blocks(), live) << what;
      ASSERT_EQ(r.free(st), vrkStatusOk);
    }
  }
}

TEST(FFTReal, AgainstReference) {
  for (const RealKind& r : kReal) {
    Worst worst;
    if (r.wide) real_against_reference<double>(r, worst);
    else real_against_reference<float>(r, worst);
    worst.print(r.name);
  }
}

// ---- checks -----------------------------------------------------------------------

// The state first (null, then its tag), then the data pointers, then a failed
// allocation of a missing buffer; nothing is written on any of them. Orders
// up to 5 have no work buffer and never allocate. A freed object is refused.
template <class T>
void complex_checks(const ComplexKind& k, const ComplexKind& sibling) {
  for (int order : {0, 5, 6}) {
    SCOPED_TRACE(std::string(k.name) + " order " + std::to_string(order));
    const size_t n = size_t(1) << order;
    std::mt19937_64 rng(5);
    CData<T> src(k.split, n), dst(k.split, n), dst_before(k.split, n);
    fill_random(src, rng);
    fill_random(dst, rng);
    dst_before.copy(dst);
    void *st = nullptr, *foreign = nullptr;
    ASSERT_EQ(k.init_alloc(&st, order, vrkFFTScaleNone), vrkStatusOk);
    ASSERT_EQ(sibling.init_alloc(&foreign, order, vrkFFTScaleNone), vrkStatusOk);
    const int pointers = k.split ? 4 : 2;
    for (int inv = 0; inv < 2; ++inv) {
      auto call = [&](unsigned nulls, const void* state, Vrk8u* buffer) {
        auto pick = [&](int bit, void* p) { return nulls >> bit & 1 ? nullptr : p; };
        if (k.split)
          return k.run(inv, pick(0, src.pa()), pick(1, src.pb()), pick(2, dst.pa()), pick(3, dst.pb()), state, buffer);
        return k.run(inv, pick(0, src.pa()), nullptr, pick(1, dst.pa()), nullptr, state, buffer);
      };
      auto call_i = [&](unsigned nulls, const void* state, Vrk8u* buffer) {
        return k.run_i(inv, nulls & 1 ? nullptr : dst.pa(), nulls & 2 ? nullptr : dst.pb(), state, buffer);
      };
      const unsigned all = (1u << pointers) - 1, all_i = k.split ? 3 : 1;
      EXPECT_EQ(call(all, nullptr, nullptr), vrkStatusNullPointer);
      EXPECT_EQ(call(all, foreign, nullptr), vrkStatusContextMismatch);
      EXPECT_EQ(call_i(all_i, nullptr, nullptr), vrkStatusNullPointer);
      EXPECT_EQ(call_i(all_i, foreign, nullptr), vrkStatusContextMismatch);
      for (unsigned nulls = 1; nulls <= all; ++nulls) {
        EXPECT_EQ(call(nulls, st, nullptr), vrkStatusNullPointer) << nulls;
        if (nulls <= all_i) {
          EXPECT_EQ(call_i(nulls, st, nullptr), vrkStatusNullPointer) << nulls;
        }
      }
      const int64_t attempts = standin::allocation_attempts(), live = standin::live_blocks();
      standin::fail_allocations_after(0);
      if (order == 6) {
        EXPECT_EQ(call(0, st, nullptr), vrkStatusMemoryAllocation);
        EXPECT_EQ(call_i(0, st, nullptr), vrkStatusMemoryAllocation);
      } else {
        CData<T> out(k.split, n);
        EXPECT_EQ(k.run(inv, src.pa(), src.pb(), out.pa(), out.pb(), st, nullptr), vrkStatusOk);
        EXPECT_EQ(standin::allocation_attempts(), attempts) << "allocated without a work buffer";
      }
      standin::fail_allocations_after(-1);
      EXPECT_EQ(standin::live_blocks(), live);
      EXPECT_TRUE(dst.same(dst_before) && dst.guards()) << "written on an error";
    }
    int s = 0, i = 0, b = 0;
    ASSERT_EQ(k.get_size(order, vrkFFTScaleNone, 0, &s, &i, &b), vrkStatusOk);
    Block mem(size_t(s), 9);
    void* freed = nullptr;
    ASSERT_EQ(k.init(&freed, order, vrkFFTScaleNone, mem.data(), nullptr), vrkStatusOk);
    ASSERT_EQ(k.free(freed), vrkStatusOk);
    for (int inv = 0; inv < 2; ++inv) {
      EXPECT_EQ(k.run(inv, src.pa(), src.pb(), dst.pa(), dst.pb(), freed, nullptr), vrkStatusContextMismatch);
      EXPECT_EQ(k.run_i(inv, dst.pa(), dst.pb(), freed, nullptr), vrkStatusContextMismatch);
    }
    EXPECT_TRUE(dst.same(dst_before));
    EXPECT_EQ(k.free(st), vrkStatusOk);
    EXPECT_EQ(sibling.free(foreign), vrkStatusOk);
  }
}

TEST(FFTChecks, ComplexTransforms) {
  for (size_t i = 0; i < std::size(kComplex); ++i) {
    if (kComplex[i].wide) complex_checks<double>(kComplex[i], kComplex[i ^ 1]);
    else complex_checks<float>(kComplex[i], kComplex[i ^ 1]);
  }
}

TEST(FFTChecks, RealTransforms) {
  for (const RealKind& r : kReal)
    for (int order : {6, 7}) {  // a work buffer from order 7 on
      SCOPED_TRACE(std::string(r.name) + " order " + std::to_string(order));
      const size_t n = size_t(1) << order, elem = r.wide ? 8 : 4;
      Block src((n + 2) * elem), dst((n + 2) * elem);
      std::mt19937_64 rng(3);
      for (size_t i = 0; i < n + 2; ++i) src.as<float>()[i] = float(i % 7), dst.as<uint8_t>()[i] = uint8_t(rng());
      const Block src_before = src, dst_before = dst;
      void *st = nullptr, *foreign = nullptr, *freed = nullptr;
      ASSERT_EQ(r.init_alloc(&st, order, vrkFFTScaleNone), vrkStatusOk);
      ASSERT_EQ(kComplex[r.wide ? 2 : 0].init_alloc(&foreign, order, vrkFFTScaleNone), vrkStatusOk);
      int s = 0, i = 0, b = 0;
      ASSERT_EQ(r.get_size(order, vrkFFTScaleNone, 0, &s, &i, &b), vrkStatusOk);
      Block mem(size_t(s), 17);
      ASSERT_EQ(r.init(&freed, order, vrkFFTScaleNone, mem.data(), nullptr), vrkStatusOk);
      ASSERT_EQ(r.free(freed), vrkStatusOk);
      for (int f = 0; f < 3; ++f)
        for (int inv = 0; inv < 2; ++inv) {
          const RealFn fn = inv ? r.inv[f] : r.fwd[f];
          const RealFnI fn_i = inv ? r.inv_i[f] : r.fwd_i[f];
          const std::string what = std::string(inv ? "inverse " : "forward ") + kFormatNames[f];
          EXPECT_EQ(fn(nullptr, nullptr, nullptr, nullptr), vrkStatusNullPointer) << what;
          EXPECT_EQ(fn(nullptr, nullptr, foreign, nullptr), vrkStatusContextMismatch) << what;
          EXPECT_EQ(fn(src.data(), dst.data(), freed, nullptr), vrkStatusContextMismatch) << what;
          EXPECT_EQ(fn(nullptr, dst.data(), st, nullptr), vrkStatusNullPointer) << what;
          EXPECT_EQ(fn(src.data(), nullptr, st, nullptr), vrkStatusNullPointer) << what;
          EXPECT_EQ(fn_i(nullptr, nullptr, nullptr), vrkStatusNullPointer) << what;
          EXPECT_EQ(fn_i(nullptr, foreign, nullptr), vrkStatusContextMismatch) << what;
          EXPECT_EQ(fn_i(dst.data(), freed, nullptr), vrkStatusContextMismatch) << what;
          EXPECT_EQ(fn_i(nullptr, st, nullptr), vrkStatusNullPointer) << what;
          const int64_t attempts = standin::allocation_attempts(), live = standin::live_blocks();
          standin::fail_allocations_after(0);
          if (order == 7) {
            EXPECT_EQ(fn(src.data(), dst.data(), st, nullptr), vrkStatusMemoryAllocation) << what;
            EXPECT_EQ(fn_i(dst.data(), st, nullptr), vrkStatusMemoryAllocation) << what;
          } else {
            Block out((n + 2) * elem);
            EXPECT_EQ(fn(src.data(), out.data(), st, nullptr), vrkStatusOk) << what;
            EXPECT_EQ(standin::allocation_attempts(), attempts) << what << ": allocated at order 6";
          }
          standin::fail_allocations_after(-1);
          EXPECT_EQ(standin::live_blocks(), live) << what;
          EXPECT_TRUE(dst.same(dst_before) && src.same(src_before)) << what << ": written on an error";
        }
      EXPECT_EQ(r.free(st), vrkStatusOk);
      EXPECT_EQ(kComplex[r.wide ? 2 : 0].free(foreign), vrkStatusOk);
    }
}

// ---- one object, many threads ---------------------------------------------------

// Orders 10 and 16 of one kind, each object shared by four threads, half of
// them with a buffer of their own and half with none: the serial results.
TEST(FFTThreads, OneObjectServesConcurrentCalls) {
  const ComplexKind& k = kComplex[0];
  std::mt19937_64 rng(77);
  void* states[2] = {};
  std::vector<CData<float>> src, want;
  src.reserve(2), want.reserve(2);
  int bs[2] = {};
  for (int c = 0; c < 2; ++c) {
    const size_t n = size_t(1) << (c ? 16 : 10);
    src.emplace_back(false, n), want.emplace_back(false, n);
    fill_random(src[c], rng);
    ASSERT_EQ(k.init_alloc(&states[c], c ? 16 : 10, vrkFFTScaleBySqrtN), vrkStatusOk);
    ASSERT_EQ(k.buf_size(states[c], &bs[c]), vrkStatusOk);
    ASSERT_EQ(k.run(false, src[c].pa(), nullptr, want[c].pa(), nullptr, states[c], nullptr), vrkStatusOk);
  }
  std::atomic<int> wrong{0};
  std::vector<std::thread> team;
  for (int t = 0; t < 8; ++t)
    team.emplace_back([&, t] {
      const int c = t & 1;
      Block buf{size_t(bs[c]), size_t(t) * 5};
      CData<float> out(false, src[c].n);
      for (int round = 0; round < 6; ++round)
        wrong += k.run(false, src[c].pa(), nullptr, out.pa(), nullptr, states[c], t & 2 ? nullptr : buf.data()) !=
                     vrkStatusOk ||
                 !out.same(want[c]);
    });
  for (auto& th : team) th.join();
  EXPECT_EQ(wrong.load(), 0);
  for (void* st : states) EXPECT_EQ(k.free(st), vrkStatusOk);
}

// ---- the largest orders -----------------------------------------------------------

// Memory of many megabytes, in huge pages where the system offers them.
std::unique_ptr<uint8_t, void (*)(void*)> huge_block(size_t bytes) {
  bytes = (bytes + (size_t(2) << 20) - 1) & ~((size_t(2) << 20) - 1);
  void* p = std::aligned_alloc(size_t(2) << 20, bytes);
  if (p != nullptr) madvise(p, bytes, MADV_HUGEPAGE);
  return {static_cast<uint8_t*>(p), std::free};
}

// At order 27 (32-bit) and 26 (64-bit), in place, one kind of each layout:
// an object built in the caller's memory answers GetSize; a unit impulse
// gives all ones; a tone at an odd bin gives one peak of N and nothing else;
// the inverse brings the tone back multiplied by N. They need gigabytes, so
// the sanitizer builds leave them out.
template <class T>
void largest_order(const ComplexKind& k) {
  const int order = k.wide ? 26 : 27;
  const size_t n = size_t(1) << order;
  SCOPED_TRACE(std::string(k.name) + " order " + std::to_string(order));
  int s = 0, i = 0, b = 0;
  ASSERT_EQ(k.get_size(order, vrkFFTScaleNone, 0, &s, &i, &b), vrkStatusOk);
  auto mem = huge_block(size_t(s)), init = huge_block(size_t(i)), buf = huge_block(size_t(b)),
       data = huge_block(2 * n * sizeof(T));
  ASSERT_TRUE(mem && init && buf && data);
  void* st = nullptr;
  ASSERT_EQ(k.init(&st, order, vrkFFTScaleNone, mem.get(), init.get()), vrkStatusOk);
  init.reset();
  int bs = -1;
  ASSERT_EQ(k.buf_size(st, &bs), vrkStatusOk);
  EXPECT_EQ(bs, b);
  T *re = reinterpret_cast<T*>(data.get()), *im = k.split ? re + n : re + 1;
  const size_t step = k.split ? 1 : 2;
  std::fill(re, re + 2 * n, T(0));
  re[0] = 1;
  ASSERT_EQ(k.run_i(false, re, k.split ? im : nullptr, st, buf.get()), vrkStatusOk);
  size_t off = 0;
  for (size_t j = 0; j < n; ++j) off += re[j * step] != T(1) || im[j * step] != T(0);
  EXPECT_EQ(off, 0u) << "impulse: elements other than 1";

  // The tone e^(2 pi i k0 j/N) from two tables of e^(2 pi i m/N).
  const size_t k0 = 12345, lo_bits = 14;
  std::vector<cld> lo(size_t(1) << lo_bits), hi(n >> lo_bits);
  for (size_t m = 0; m < lo.size(); ++m) lo[m] = std::polar(1.0L, 2 * fftref::kPi * m / n);
  for (size_t m = 0; m < hi.size(); ++m) hi[m] = std::polar(1.0L, 2 * fftref::kPi * (m << lo_bits) / n);
  auto tone = [&](size_t j) {
    const size_t m = (k0 * j) & (n - 1);
    return hi[m >> lo_bits] * lo[m & (lo.size() - 1)];
  };
  for (size_t j = 0; j < n; ++j) {
    const cld v = tone(j);
    re[j * step] = T(v.real()), im[j * step] = T(v.imag());
  }
  ASSERT_EQ(k.run_i(false, re, k.split ? im : nullptr, st, nullptr), vrkStatusOk);
  long double err = 0;
  for (size_t j = 0; j < n; ++j) err += std::norm(cld(re[j * step], im[j * step]) - (j == k0 ? (long double)n : 0.0L));
  const double unit = tolerance_unit<T>(order);
  EXPECT_LE(double(sqrtl(err) / n), kRms * unit) << "tone, forward";
  ASSERT_EQ(k.run_i(true, re, k.split ? im : nullptr, st, buf.get()), vrkStatusOk);
  err = 0;
  for (size_t j = 0; j < n; ++j) err += std::norm(cld(re[j * step], im[j * step]) - (long double)n * tone(j));
  EXPECT_LE(double(sqrtl(err / n) / n), kRms * unit) << "tone, inverse";
  EXPECT_EQ(k.free(st), vrkStatusOk);
}

TEST(FFTLarge, LargestOrders) {
  if (fftref::kSanitized) GTEST_SKIP() << "needs gigabytes";
  largest_order<float>(kComplex[0]);
  largest_order<double>(kComplex[3]);
}

}  // namespace
