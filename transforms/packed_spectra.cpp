// Helpers of the packed real spectra (Pack, Perm and CCS layouts):
// expansion to the full complex spectrum (ConjPack, ConjPerm, ConjCcs),
// reversed conjugation (ConjFlip), and products of two spectra without
// unpacking them (MulPack, MulPerm, MulPackConj).
//
// A real sequence of length L keeps X[0..H], H = L/2; the upper half follows
// from X[L-k] = conj X[k]. Every layout stores X[1], X[2], ... as adjacent
// (re, im) pairs from some start index, so an expansion is one copy of the
// lower half, a few single entries, and a reversed conjugating copy of the
// pairs into the upper half.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "arith/float_kernels.h"
#include "frame/bytes.h"
#include "frame/check.h"
#include "frame/saturate.h"
#include "frame/scale.h"
#include "frame/types.h"

namespace vrks::spectra {
namespace {

using arith::keep;
using arith::Lanes;

enum class Layout { Pack, Perm, Ccs };

// How a conjugate negates a floating part: by flipping the sign bit (+0
// becomes -0), or as 0 - x (+0 stays +0). 16-bit parts saturate either way.
enum class Neg { SignBit, FromZero };

template <Neg N, class P>
inline P negate(P x) {
  if constexpr (std::is_same_v<P, Vrk16s>) return x == INT16_MIN ? INT16_MAX : P(-x);
  else if constexpr (N == Neg::FromZero) return P(0) - x;
  else return -x;
}

// ---- reversed conjugating copy ------------------------------------------------

// One register of complex values in reversed order with the imaginary parts
// negated; W complex values a register.
template <Neg N, class P>
struct FlipVec;
template <Neg N>
struct FlipVec<N, float> {
  static constexpr size_t W = 4;
  static void run(const float* a, float* d) {
    __m256 v = _mm256_loadu_ps(a);
    v = _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(v), 0x1B));
    if constexpr (N == Neg::SignBit)
      v = _mm256_xor_ps(v, _mm256_setr_ps(0, -0.0f, 0, -0.0f, 0, -0.0f, 0, -0.0f));
    else
      v = _mm256_blend_ps(v, _mm256_sub_ps(_mm256_setzero_ps(), v), 0xAA);
    _mm256_storeu_ps(d, v);
  }
};
template <Neg N>
struct FlipVec<N, double> {
  static constexpr size_t W = 2;
  static void run(const double* a, double* d) {
    __m256d v = _mm256_permute4x64_pd(_mm256_loadu_pd(a), 0x4E);
    if constexpr (N == Neg::SignBit)
      v = _mm256_xor_pd(v, _mm256_setr_pd(0, -0.0, 0, -0.0));
    else
      v = _mm256_blend_pd(v, _mm256_sub_pd(_mm256_setzero_pd(), v), 0xA);
    _mm256_storeu_pd(d, v);
  }
};
template <Neg N>
struct FlipVec<N, Vrk16s> {
  static constexpr size_t W = 8;
  static void run(const Vrk16s* a, Vrk16s* d) {
    __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(a));
    v = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0));
    v = _mm256_blend_epi16(v, _mm256_subs_epi16(_mm256_setzero_si256(), v), 0xAA);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), v);
  }
};

// Complex values given by their parts: d[n-1-j] = conj a[j] for j in [0, n).
// The arrays must not overlap.
template <Neg N, class P>
void flip_conj(const P* a, P* d, size_t n) {
  using V = FlipVec<N, P>;
  size_t j = 0;
  for (; j + V::W <= n; j += V::W) V::run(a + 2 * j, d + 2 * (n - j - V::W));
  for (; j < n; ++j) {
    d[2 * (n - 1 - j)] = a[2 * j];
    d[2 * (n - 1 - j) + 1] = negate<N>(a[2 * j + 1]);
  }
}

// ---- expansion ------------------------------------------------------------------

// The part index of X[1], where the complex pairs start: 1 in Pack and
// odd-length Perm, 2 in even-length Perm and in CCS.
template <Layout F>
constexpr int first_pair(int length) {
  if constexpr (F == Layout::Pack) return 1;
  else if constexpr (F == Layout::Perm) return length % 2 == 0 ? 2 : 1;
  else return 2;
}

// The upper half X[H+1..L-1] from the pairs X[1..L-H-1]; `p` are the parts of
// the full spectrum. Returns the pair count, which is also the count of
// pairs in the lower half after X[0] (without X[H] for even L).
template <Neg N, class P>
size_t upper_half(const P* x1, P* p, int length) {
  const int h = length / 2;
  const size_t m = size_t(length - h - 1);
  flip_conj<N>(x1, p + 2 * (h + 1), m);
  return m;
}

// Full spectrum from a packed one in a separate array.
template <Layout F, class P, class C>
void expand(const P* s, C* d, int length) {
  const int h = length / 2;
  P* p = reinterpret_cast<P*>(d);
  const P* x1 = s + first_pair<F>(length);
  const size_t m = upper_half<Neg::SignBit>(x1, p, length);
  if constexpr (F == Layout::Ccs) {
    copy_bytes(d, s, size_t(h + 1) * sizeof(C));  // X[0] and X[H] as they stand
  } else {
    d[0] = C{s[0], P(0)};
    copy_bytes(p + 2, x1, 2 * m * sizeof(P));
    if (length % 2 == 0) d[h] = C{F == Layout::Pack ? s[length - 1] : s[1], P(0)};
  }
}

// The same in place: the packed form lies at the start of the array. The
// upper half lies beyond the packed parts, so it is written first; then the
// lower half moves up from the high end.
template <Layout F, class C>
void expand_in_place(C* sd, int length) {
  using P = part_t<C>;
  const int h = length / 2;
  P* p = reinterpret_cast<P*>(sd);
  const P* x1 = p + first_pair<F>(length);
  if constexpr (F == Layout::Ccs) {
    upper_half<Neg::SignBit>(x1, p, length);
  } else {
    const size_t m = upper_half<Neg::FromZero>(x1, p, length);
    const bool even = length % 2 == 0;
    const P last = even ? p[F == Layout::Pack ? length - 1 : 1] : P(0);
    if (x1 != p + 2) move_bytes(p + 2, x1, 2 * m * sizeof(P));
    if (even) sd[h] = C{last, P(0)};
    p[1] = P(0);
  }
}

template <Layout F, class P, class C>
VrkStatus conj_packed(const P* src, C* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  expand<F>(src, dst, length);
  return vrkStatusOk;
}

template <Layout F, class C>
VrkStatus conj_packed_in_place(C* srcDst, int length) {
  VRKS_CHECK(check_vector(length, srcDst));
  expand_in_place<F>(srcDst, length);
  return vrkStatusOk;
}

template <class C>
VrkStatus conj_flip(const C* src, C* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  using P = part_t<C>;
  flip_conj<Neg::SignBit>(reinterpret_cast<const P*>(src), reinterpret_cast<P*>(dst), size_t(length));
  return vrkStatusOk;
}

// ---- products -------------------------------------------------------------------

inline __m256 flip_signs(__m256 v) { return _mm256_xor_ps(v, _mm256_set1_ps(-0.0f)); }
inline __m256d flip_signs(__m256d v) { return _mm256_xor_pd(v, _mm256_set1_pd(-0.0)); }

// Pairs (c, d) of x by (e, f) of y: (ce - df, cf + de), or with `Conj` x by
// the conjugate of y: (ce + df, de - cf). Every product rounded by itself.
template <bool Conj, class P>
void mul_pairs(const P* x, const P* y, P* d, size_t n) {
  using L = Lanes<P>;
  auto body = [&](size_t i) {
    const auto a = L::ld(x + i), b = L::ld(y + i);
    const auto t1 = L::mul(a, L::dup_re(b));           // ce, de
    auto t2 = L::mul(L::swap_parts(a), L::dup_im(b));  // df, cf
    if constexpr (Conj) t2 = flip_signs(t2);  // a - (-b) is a + b exactly
    return L::addsub(t1, t2);
  };
  auto tail = [&](size_t k) {
    const P c = x[2 * k], dd = x[2 * k + 1], e = y[2 * k], f = y[2 * k + 1];
    const P ce = keep(c * e), df = keep(dd * f), cf = keep(c * f), de = keep(dd * e);
    if constexpr (Conj) {
      d[2 * k] = ce + df;
      d[2 * k + 1] = de - cf;
    } else {
      d[2 * k] = ce - df;
      d[2 * k + 1] = cf + de;
    }
  };
  arith::run_parts(d, n, 2, d != x && d != y, body, tail);
}

// The index of the second real entry of a layout (-1: none).
template <Layout F>
constexpr int second_real(int length) {
  if (length % 2 != 0) return -1;
  return F == Layout::Perm ? 1 : length - 1;
}

template <Layout F, bool Conj, class P>
void mul_float(const P* a, const P* b, P* d, int length) {
  const int r1 = second_real<F>(length);
  const int j = first_pair<F>(length);
  d[0] = a[0] * b[0];
  if (r1 >= 0) d[r1] = a[r1] * b[r1];
  mul_pairs<Conj>(a + j, b + j, d + j, size_t(length - 1) / 2);
}

// The 16-bit product rule: at scale s > 0 the exact result shifted right by
// s (toward minus infinity; s above 31 shifts by 31), then saturated; at 0
// saturated; at s < 0 saturated, shifted left by -s and saturated again.
struct RightShift {
  int s;
  Vrk16s operator()(int64_t r) const { return saturate<Vrk16s>(r >> s); }
};
struct LeftShift {
  int k;
  Vrk16s operator()(int64_t r) const {
    return shift_left_saturate<Vrk16s>(int32_t(saturate<Vrk16s>(r)), k);
  }
};

template <Layout F, class Rule>
void mul_16s(const Vrk16s* a, const Vrk16s* b, Vrk16s* d, int length, Rule rule) {
  const int r1 = second_real<F>(length);
  const int j = first_pair<F>(length);
  d[0] = rule(int64_t(a[0]) * b[0]);
  if (r1 >= 0) d[r1] = rule(int64_t(a[r1]) * b[r1]);
  for (int i = j; i + 1 < length; i += 2) {
    const int32_t c = a[i], dd = a[i + 1], e = b[i], f = b[i + 1];
    // c e - d f lies within 32 bits; c f + d e reaches 2^31 at four -32768.
    d[i] = rule(int64_t(c * e - dd * f));
    d[i + 1] = rule(int64_t(c * f) + int64_t(dd * e));
  }
}

template <Layout F, class P>
VrkStatus mul_packed(const P* src1, const P* src2, P* dst, int length) {
  VRKS_CHECK(check_vector(length, src1, src2, dst));
  mul_float<F, false>(src1, src2, dst, length);
  return vrkStatusOk;
}

template <class P>
VrkStatus mul_pack_conj(const P* src, P* srcDst, int length) {
  VRKS_CHECK(check_vector(length, src, srcDst));
  mul_float<Layout::Pack, true>(src, srcDst, srcDst, length);
  return vrkStatusOk;
}

template <Layout F>
VrkStatus mul_packed_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale) {
  VRKS_CHECK(check_vector(length, src1, src2, dst));
  if (scale >= 0) mul_16s<F>(src1, src2, dst, length, RightShift{scale < 31 ? scale : 31});
  else mul_16s<F>(src1, src2, dst, length, LeftShift{scale > -16 ? -scale : 16});
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::spectra

namespace s = vrks::spectra;
using s::Layout;

#define VRKS_CONJ_MEMBERS(code, P)                                                                   \
  VrkStatus vrksConjPack_##code##c(const P* src, Vrk##code##c* dst, int length) {                   \
    return s::conj_packed<Layout::Pack>(src, dst, length);                                           \
  }                                                                                                  \
  VrkStatus vrksConjPack_##code##c_I(Vrk##code##c* srcDst, int length) {                             \
    return s::conj_packed_in_place<Layout::Pack>(srcDst, length);                                    \
  }                                                                                                  \
  VrkStatus vrksConjPerm_##code##c(const P* src, Vrk##code##c* dst, int length) {                   \
    return s::conj_packed<Layout::Perm>(src, dst, length);                                           \
  }                                                                                                  \
  VrkStatus vrksConjPerm_##code##c_I(Vrk##code##c* srcDst, int length) {                             \
    return s::conj_packed_in_place<Layout::Perm>(srcDst, length);                                    \
  }                                                                                                  \
  VrkStatus vrksConjCcs_##code##c(const P* src, Vrk##code##c* dst, int length) {                    \
    return s::conj_packed<Layout::Ccs>(src, dst, length);                                            \
  }                                                                                                  \
  VrkStatus vrksConjCcs_##code##c_I(Vrk##code##c* srcDst, int length) {                              \
    return s::conj_packed_in_place<Layout::Ccs>(srcDst, length);                                     \
  }                                                                                                  \
  VrkStatus vrksConjFlip_##code##c(const Vrk##code##c* src, Vrk##code##c* dst, int length) {        \
    return s::conj_flip(src, dst, length);                                                           \
  }
VRKS_CONJ_MEMBERS(16s, Vrk16s)
VRKS_CONJ_MEMBERS(32f, Vrk32f)
VRKS_CONJ_MEMBERS(64f, Vrk64f)

#define VRKS_MUL_MEMBERS(code, P)                                                                    \
  VrkStatus vrksMulPack_##code(const P* src1, const P* src2, P* dst, int length) {                   \
    return s::mul_packed<Layout::Pack>(src1, src2, dst, length);                                     \
  }                                                                                                  \
  VrkStatus vrksMulPack_##code##_I(const P* src, P* srcDst, int length) {                            \
    return s::mul_packed<Layout::Pack>(src, srcDst, srcDst, length);                                 \
  }                                                                                                  \
  VrkStatus vrksMulPerm_##code(const P* src1, const P* src2, P* dst, int length) {                   \
    return s::mul_packed<Layout::Perm>(src1, src2, dst, length);                                     \
  }                                                                                                  \
  VrkStatus vrksMulPerm_##code##_I(const P* src, P* srcDst, int length) {                            \
    return s::mul_packed<Layout::Perm>(src, srcDst, srcDst, length);                                 \
  }                                                                                                  \
  VrkStatus vrksMulPackConj_##code##_I(const P* src, P* srcDst, int length) {                        \
    return s::mul_pack_conj(src, srcDst, length);                                                    \
  }
VRKS_MUL_MEMBERS(32f, Vrk32f)
VRKS_MUL_MEMBERS(64f, Vrk64f)

VrkStatus vrksMulPack_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale) {
  return s::mul_packed_16s<Layout::Pack>(src1, src2, dst, length, scale);
}
VrkStatus vrksMulPack_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale) {
  return s::mul_packed_16s<Layout::Pack>(src, srcDst, srcDst, length, scale);
}
VrkStatus vrksMulPerm_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale) {
  return s::mul_packed_16s<Layout::Perm>(src1, src2, dst, length, scale);
}
VrkStatus vrksMulPerm_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale) {
  return s::mul_packed_16s<Layout::Perm>(src, srcDst, srcDst, length, scale);
}
