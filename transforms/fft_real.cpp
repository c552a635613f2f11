// Real transforms: a complex transform of half the length on the samples
// read as complex pairs, and a split step behind it (forward) or a merge step
// ahead of it (inverse). The spectrum comes in three packed layouts.
#include <cstring>

#include "frame/check.h"
#include "transforms/fft_complex.h"
#include "transforms/fft_tables.h"

namespace vrks::fft {
namespace {

enum class Format { Pack, Perm, CCS };

// The split (A, B) and merge (U, V) tables of a real order: the object's
// own, or for the short orders without tables, built from the constants.
template <class T>
struct RealTables {
  const T *a, *b, *u, *v;
  T own[32];
  RealTables(const FloatState<T>* st, int order) {
    const size_t quarter = order >= 2 ? size_t(1) << (order - 2) : 0;
    if (st->realSplitTable != nullptr) {
      a = st->realSplitTable, b = a + quarter;
      u = st->realMergeTable, v = u + quarter;
      return;
    }
    if (quarter > 0) build_real_tables(small_sine<T>(), 5, order, own, own + 16);
    a = own, b = own + quarter, u = own + 16, v = own + 16 + quarter;
  }
};

// Z (M complex values at x) to the Perm form of the real spectrum, in place.
// Pairs k and M - k meet in one step; whole registers of k from the front
// and of M - k from the back (reversed in registers), the rest one by one.
template <class T>
void split_step(T* x, size_t M, const T* A, const T* B) {
  using S = Simd<T>;
  constexpr size_t W = S::W;
  const T a = x[0], b = x[1];
  x[0] = a + b;
  x[1] = a - b;
  size_t k = 1;
  for (; k + W <= M / 2; k += W) {
    T* front = x + 2 * k;
    T* back = x + 2 * (M - k - W + 1);
    typename S::V fr, fi, br, bi;
    S::load_c(front, fr, fi);
    S::load_c(back, br, bi);
    br = S::reverse(br), bi = S::reverse(bi);
    const auto ak = S::permute(S::load(A + k - 1)), bk = S::permute(S::load(B + k - 1));
    const auto dr = S::sub(fr, br), si = S::add(fi, bi);
    const auto p = S::sub(S::mul(bk, si), S::mul(ak, dr)), q = S::add(S::mul(ak, si), S::mul(bk, dr));
    S::store_perm(front, S::add(br, q), S::sub(p, bi));
    S::store_perm(back, S::reverse(S::sub(fr, q)), S::reverse(S::sub(p, fi)));
  }
  for (; k < M / 2; ++k) {
    T* zk = x + 2 * k;
    T* zm = x + 2 * (M - k);
    const T ak = A[k - 1], bk = B[k - 1];
    const T dr = zk[0] - zm[0], si = zk[1] + zm[1];
    const T p = bk * si - ak * dr, q = ak * si + bk * dr;
    const T rk = zk[0], ik = zk[1], rm = zm[0], im = zm[1];
    zk[0] = rm + q, zk[1] = p - im;
    zm[0] = rk - q, zm[1] = p - ik;
  }
  if (M >= 2) x[M + 1] = -x[M + 1];
}

// The Perm form to Y = 2 Z, M complex values, in place.
template <class T>
void merge_step(T* x, size_t M, const T* U, const T* V) {
  using S = Simd<T>;
  constexpr size_t W = S::W;
  const T x0 = x[0], x1 = x[1];
  x[0] = x0 + x1;
  x[1] = x0 - x1;
  if (M < 2) return;
  x[M] = T(2) * x[M];
  x[M + 1] = T(-2) * x[M + 1];
  size_t k = 1;
  for (; k + W <= M / 2; k += W) {
    T* front = x + 2 * k;
    T* back = x + 2 * (M - k - W + 1);
    typename S::V fr, fi, br, bi;
    S::load_c(front, fr, fi);
    S::load_c(back, br, bi);
    br = S::reverse(br), bi = S::reverse(bi);
    const auto uk = S::permute(S::load(U + k - 1)), vk = S::permute(S::load(V + k - 1));
    const auto dr = S::sub(fr, br), sr = S::add(fr, br), si = S::add(fi, bi), di = S::sub(fi, bi);
    const auto p = S::add(S::mul(vk, si), S::mul(uk, dr)), q = S::sub(S::mul(vk, dr), S::mul(uk, si));
    S::store_perm(front, S::add(sr, q), S::add(di, p));
    S::store_perm(back, S::reverse(S::sub(sr, q)), S::reverse(S::sub(p, di)));
  }
  for (; k < M / 2; ++k) {
    T* xk = x + 2 * k;
    T* xm = x + 2 * (M - k);
    const T uk = U[k - 1], vk = V[k - 1];
    const T dr = xk[0] - xm[0], sr = xk[0] + xm[0], si = xk[1] + xm[1], di = xk[1] - xm[1];
    const T p = vk * si + uk * dr, q = vk * dr - uk * si;
    xk[0] = sr + q, xm[0] = sr - q;
    xk[1] = di + p, xm[1] = p - di;
  }
}

template <class T>
VrkStatus forward(const void* state, uint32_t tag, const T* src, T* dst, Vrk8u* buffer, Format f) {
  VRKS_CHECK(check_state(state, tag));
  if (any_null(src, dst)) return vrkStatusNullPointer;
  auto* st = static_cast<const FloatState<T>*>(state);
  WorkBuffer work;
  VRKS_CHECK(work.acquire(buffer, st->bufferSize));
  const int n = st->order;
  const size_t N = size_t(1) << n;
  const bool scaled = st->fwdScaled != 0;
  if (n == 0) {
    dst[0] = scaled ? src[0] * st->scaleFactor : src[0];
  } else {
    complex_interleaved<T, false>(st, n - 1, src, dst, work.data<T>(), scaled, st->scaleFactor);
    const RealTables<T> t(st, n);
    split_step(dst, N / 2, t.a, t.b);
  }
  if (f == Format::Pack && N > 2) {
    const T e = dst[1];
    std::memmove(dst + 1, dst + 2, (N - 2) * sizeof(T));
    dst[N - 1] = e;
  } else if (f == Format::CCS) {
    if (N > 1) dst[N] = dst[1], dst[N + 1] = T(0);
    dst[1] = T(0);
  }
  return vrkStatusOk;
}

template <class T>
VrkStatus inverse(const void* state, uint32_t tag, const T* src, T* dst, Vrk8u* buffer, Format f) {
  VRKS_CHECK(check_state(state, tag));
  if (any_null(src, dst)) return vrkStatusNullPointer;
  auto* st = static_cast<const FloatState<T>*>(state);
  WorkBuffer work;
  VRKS_CHECK(work.acquire(buffer, st->bufferSize));
  const int n = st->order;
  const size_t N = size_t(1) << n;
  // to the Perm form in dst
  if (f == Format::Perm) {
    if (src != dst) std::memcpy(dst, src, N * sizeof(T));
  } else if (f == Format::Pack) {
    const T e = src[N - 1];
    if (N > 2) std::memmove(dst + 2, src + 1, (N - 2) * sizeof(T));
    dst[0] = src[0];
    if (N > 1) dst[1] = e;
  } else {
    dst[0] = src[0];
    if (N > 1) {
      const T e = src[N];
      if (src != dst && N > 2) std::memcpy(dst + 2, src + 2, (N - 2) * sizeof(T));
      dst[1] = e;
    }
  }
  const bool scaled = st->invScaled != 0;
  if (n == 0) {
    if (scaled) dst[0] = dst[0] * st->scaleFactor;
    return vrkStatusOk;
  }
  const RealTables<T> t(st, n);
  merge_step(dst, N / 2, t.u, t.v);
  complex_interleaved<T, true>(st, n - 1, dst, dst, work.data<T>(), scaled, st->scaleFactor);
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::fft

using namespace vrks;
using namespace vrks::fft;

#define VRKS_FFT_REAL(FMT, F, T, TS, TAG)                                                             \
  VrkStatus vrksFFTFwd_RTo##FMT##_##TS(const Vrk##TS* src, Vrk##TS* dst,                            \
                                       const VrksFFTState_R_##TS* state, Vrk8u* buffer) {           \
    return forward<T>(state, TAG, src, dst, buffer, F);                                              \
  }                                                                                                  \
  VrkStatus vrksFFTFwd_RTo##FMT##_##TS##_I(Vrk##TS* srcDst, const VrksFFTState_R_##TS* state,       \
                                           Vrk8u* buffer) {                                          \
    return forward<T>(state, TAG, srcDst, srcDst, buffer, F);                                        \
  }                                                                                                  \
  VrkStatus vrksFFTInv_##FMT##ToR_##TS(const Vrk##TS* src, Vrk##TS* dst,                            \
                                       const VrksFFTState_R_##TS* state, Vrk8u* buffer) {           \
    return inverse<T>(state, TAG, src, dst, buffer, F);                                              \
  }                                                                                                  \
  VrkStatus vrksFFTInv_##FMT##ToR_##TS##_I(Vrk##TS* srcDst, const VrksFFTState_R_##TS* state,       \
                                           Vrk8u* buffer) {                                          \
    return inverse<T>(state, TAG, srcDst, srcDst, buffer, F);                                        \
  }

VRKS_FFT_REAL(Pack, Format::Pack, float, 32f, kTagR32f)
VRKS_FFT_REAL(Perm, Format::Perm, float, 32f, kTagR32f)
VRKS_FFT_REAL(CCS, Format::CCS, float, 32f, kTagR32f)
VRKS_FFT_REAL(Pack, Format::Pack, double, 64f, kTagR64f)
VRKS_FFT_REAL(Perm, Format::Perm, double, 64f, kTagR64f)
VRKS_FFT_REAL(CCS, Format::CCS, double, 64f, kTagR64f)
