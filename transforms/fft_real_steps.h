// The split step behind a half-length complex transform and the merge step
// ahead of the inverse one.
#pragma once

#include "transforms/fft_simd.h"

namespace vrks::fft {
namespace {

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

}  // namespace
}  // namespace vrks::fft
