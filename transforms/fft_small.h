// Transforms of up to 32 points: straight radix-2 code with constant
// twiddles, no tables and no work buffer. They read all of their input
// before they store, so they work in place.
#pragma once

#include <cstddef>
#include <type_traits>

#include "transforms/fft_engine.h"

namespace vrks::fft {
// Each instruction-set road compiles its own copy.
namespace {

// sin(2 pi k / 32), k = 0..8: the quarter wave of the 32-point circle.
template <class T>
inline constexpr T kSine32[9] = {
    T(0), T(0.195090322016128267848284868477022240L), T(0.382683432365089771728459984030398866L),
    T(0.555570233019602224742830813948532874L), T(0.707106781186547524400844362104849039L),
    T(0.831469612302545237078788377617905756L), T(0.923879532511286756128183189396788933L),
    T(0.980785280403230449126182236134239036L), T(1)};

// The split (A, B) and merge (U, V) tables of the real orders up to 5, as
// build_real_tables would make them, fixed at compile time.
template <class T, int order>
struct SmallRealTables {
  T a[8]{}, b[8]{}, u[8]{}, v[8]{};
  constexpr SmallRealTables() {
    const size_t quarter = order >= 2 ? size_t(1) << (order - 2) : 0;
    const Sine<T> sine{kSine32<T>, 8};
    for (size_t k = 1; k <= quarter; ++k) {
      T c{}, sn{};
      sine.at(k << (5 - order), c, sn);
      a[k - 1] = T(0.5) * c;
      b[k - 1] = T(0.5 - 0.5 * double(sn));
      u[k - 1] = c;
      v[k - 1] = -sn;
    }
  }
};
template <class T, int order>
inline constexpr SmallRealTables<T, order> kSmallReal{};

// ---- 16 to 128 points as rows of one register ------------------------------------

// sin(2 pi k / 256), k = 0..64: the quarter wave of the 256-point circle.
template <class T>
inline constexpr T kSine256[65] = {
    T(0L),
    T(0.0245412285229122881236L),
    T(0.0490676743274180149346L),
    T(0.073564563599667426308L),
    T(0.0980171403295606036288L),
    T(0.122410675199216195663L),
    T(0.146730474455361747932L),
    T(0.170961888760301217172L),
    T(0.195090322016128248084L),
    T(0.219101240156869797593L),
    T(0.242980179903263870944L),
    T(0.266712757474898365384L),
    T(0.290284677254462331053L),
    T(0.313681740398891517607L),
    T(0.336889853392220051109L),
    T(0.359895036534988110866L),
    T(0.382683432365089781779L),
    T(0.405241314004989860997L),
    T(0.42755509343028208491L),
    T(0.449611329654606539652L),
    T(0.47139673682599764204L),
    T(0.492898192229784037899L),
    T(0.514102744193221661284L),
    T(0.534997619887097153324L),
    T(0.555570233019602177649L),
    T(0.575808191417845338655L),
    T(0.595699304492433356906L),
    T(0.615231590580626819253L),
    T(0.634393284163645487794L),
    T(0.653172842953776755515L),
    T(0.671558954847018330092L),
    T(0.689540544737066829484L),
    T(0.707106781186547461715L),
    T(0.724247082951466891743L),
    T(0.740951125354959105884L),
    T(0.757208846506484456462L),
    T(0.773010453362736993377L),
    T(0.788346427626606227612L),
    T(0.803207531480644831845L),
    T(0.817584813151583711388L),
    T(0.831469612302545235671L),
    T(0.844853565249707005869L),
    T(0.857728610000272118086L),
    T(0.870086991108711349519L),
    T(0.881921264348354938534L),
    T(0.893224301195515324459L),
    T(0.903989293123443338196L),
    T(0.914209755703530690951L),
    T(0.923879532511286738483L),
    T(0.93299279883473884567L),
    T(0.941544065183020806309L),
    T(0.94952818059303667475L),
    T(0.956940335732208935404L),
    T(0.963776065795439840223L),
    T(0.970031253194543974239L),
    T(0.975702130038528570033L),
    T(0.980785280403230430579L),
    T(0.985277642388941221618L),
    T(0.989176509964781014439L),
    T(0.992479534598709967064L),
    T(0.995184726672196817709L),
    T(0.997290456678690206971L),
    T(0.998795456205172405006L),
    T(0.999698818696204249967L),
    T(1L)};

// W_N^(b k1) for the rows k1 = 0 .. N/W - 1 of a kernel on the lanes of X:
// W cosines, then W negated sines; lane l holds b = kPerm[l] of the
// deinterleaving loads when `Permuted`, else b = l.
template <class X, class T, int N, bool Permuted>
struct RowTwiddles {
  static constexpr int W = Simd<X>::W, R = N / W;
  alignas(32) T v[R][2][W];
  constexpr RowTwiddles() : v{} {
    const Sine<T> sine{kSine256<T>, 64};
    for (int k1 = 0; k1 < R; ++k1)
      for (int l = 0; l < W; ++l) {
        const int b = Permuted ? Simd<X>::kPerm[l] : l;
        T c{}, sn{};
        sine.at(size_t(b * k1 * (256 / N)) % 256, c, sn);
        v[k1][0][l] = c;
        v[k1][1][l] = -sn;
      }
  }
};
template <class X, class T, int N, bool Permuted>
inline constexpr RowTwiddles<X, T, N, Permuted> kRowTwiddles{};

// N = R W points as R rows of one register (W lanes): DFTs of length R down
// the rows, twiddles, then DFTs of length W across each row after a W x W
// transpose. `load(r)` gives row r (elements rW .. rW + W-1, lanes in kPerm
// order when `Permuted`); `store(e, v)` writes W outputs from element e.
template <class X, class T, int N, bool Permuted, class Load, class Store>
[[gnu::always_inline]] inline void small_rows(Load&& load, Store&& store) {
  using S = Simd<X>;
  constexpr int W = S::W, R = N / W;
  CV<X> a[R];
  for (int r = 0; r < R; ++r) a[r] = load(r);
  if constexpr (R == 4) dft4(a);
  else if constexpr (R == 8) dft8(a);
  else dft16(a);
  const auto& tw = kRowTwiddles<X, T, N, Permuted>;
  for (int k1 = 1; k1 < R; ++k1) a[k1] = cmul(a[k1], S::load(tw.v[k1][0]), S::load(tw.v[k1][1]));
  for (int c = 0; c < R / W; ++c) {
    typename S::V re[W], im[W];
    for (int u = 0; u < W; ++u) re[u] = a[W * c + u].re, im[u] = a[W * c + u].im;
    S::transpose(re);
    S::transpose(im);
    CV<X> z[W];
    for (int v = 0; v < W; ++v) z[Permuted ? S::kPerm[v] : v] = CV<X>{re[v], im[v]};
    if constexpr (W == 4) dft4(z);
    else dft8(z);
    for (int k2 = 0; k2 < W; ++k2) store(size_t(R * k2 + W * c), z[k2]);
  }
}

// N = R C points as R rows of C (C a multiple of W), through a scratch
// held in registers and the first-level cache: DFTs of length R down each
// block of W columns, twiddles W_N^(c k1), then for each block of W values
// of k1 the columns transposed into lanes and DFTs of length C across.
template <class X, class T, int R, int C, bool Permuted>
struct GridTwiddles {
  static constexpr int W = Simd<X>::W, N = R * C;
  alignas(32) T v[R][C / W][2][W];
  constexpr GridTwiddles() : v{} {
    const Sine<T> sine{kSine256<T>, 64};
    for (int k1 = 0; k1 < R; ++k1)
      for (int cb = 0; cb < C / W; ++cb)
        for (int l = 0; l < W; ++l) {
          const int c = cb * W + (Permuted ? Simd<X>::kPerm[l] : l);
          T cs{}, sn{};
          sine.at(size_t(c * k1 * (256 / N)) % 256, cs, sn);
          v[k1][cb][0][l] = cs;
          v[k1][cb][1][l] = -sn;
        }
  }
};
template <class X, class T, int R, int C, bool Permuted>
inline constexpr GridTwiddles<X, T, R, C, Permuted> kGridTwiddles{};

template <class X, class T, int R, int C, bool Permuted, class Load, class Store>
[[gnu::always_inline]] inline void small_grid(Load&& load, Store&& store) {
  using S = Simd<X>;
  constexpr int W = S::W, CB = C / W;
  const auto& tw = kGridTwiddles<X, T, R, C, Permuted>;
  CV<X> y[R][CB];
  for (int cb = 0; cb < CB; ++cb) {
    CV<X> a[R];
    for (int r = 0; r < R; ++r) a[r] = load(r * C + cb * W);
    dft<R>(a);
    for (int k1 = 0; k1 < R; ++k1)
      y[k1][cb] = k1 == 0 ? a[0] : cmul(a[k1], S::load(tw.v[k1][cb][0]), S::load(tw.v[k1][cb][1]));
  }
  for (int kb = 0; kb < R / W; ++kb) {
    CV<X> z[C];
    for (int cb = 0; cb < CB; ++cb) {
      typename S::V re[W], im[W];
      for (int u = 0; u < W; ++u) re[u] = y[kb * W + u][cb].re, im[u] = y[kb * W + u][cb].im;
      S::transpose(re);
      S::transpose(im);
      for (int v = 0; v < W; ++v) z[cb * W + (Permuted ? S::kPerm[v] : v)] = CV<X>{re[v], im[v]};
    }
    dft<C>(z);
    for (int k2 = 0; k2 < C; ++k2) store(size_t(R * k2 + W * kb), z[k2]);
  }
}

// The lanes of each length: SSE floats up to 32 points, AVX floats from 64,
// AVX doubles (four) for all.
template <class T, int N> struct RowLanes { using X = T; };
template <> struct RowLanes<float, 16> { using X = F4; };
template <> struct RowLanes<float, 32> { using X = F4; };
// The longest length with a kernel of its own.
template <class T> constexpr int kRowsMaxOrder = 8;

template <class T, int N, bool Inv>
void small_interleaved(const T* src, T* dst, bool scaled, T factor) {
  using X = typename RowLanes<T, N>::X;
  using S = Simd<X>;
  constexpr int W = S::W;
  const auto f = S::set1(factor);
  const auto store = [&](size_t e, CV<X> v) {
    if (scaled) v = {S::mul(v.re, f), S::mul(v.im, f)};
    if (Inv) S::store_c(dst + 2 * e, v.im, v.re);
    else S::store_c(dst + 2 * e, v.re, v.im);
  };
  constexpr bool permuted = !std::is_same_v<X, F4>;
  if constexpr (N == 256 || (N == 128 && W == 4)) {
    small_grid<X, T, 16, N / 16, permuted>(
        [&](size_t e) {
          CV<X> v;
          if (Inv) S::load_c(src + 2 * e, v.im, v.re);
          else S::load_c(src + 2 * e, v.re, v.im);
          return v;
        },
        store);
  } else {
    small_rows<X, T, N, permuted>(
        [&](int r) {
          CV<X> v;
          if (Inv) S::load_c(src + 2 * W * r, v.im, v.re);
          else S::load_c(src + 2 * W * r, v.re, v.im);
          return v;
        },
        store);
  }
}

template <class T, int N>
void small_split(const T* sre, const T* sim, T* dre, T* dim, bool scaled, T factor) {
  using X = typename RowLanes<T, N>::X;
  using S = Simd<X>;
  constexpr int W = S::W;
  const auto f = S::set1(factor);
  const auto store = [&](size_t e, CV<X> v) {
    if (scaled) v = {S::mul(v.re, f), S::mul(v.im, f)};
    S::store(dre + e, v.re);
    S::store(dim + e, v.im);
  };
  if constexpr (N == 256 || (N == 128 && W == 4))
    small_grid<X, T, 16, N / 16, false>([&](size_t e) { return CV<X>{S::load(sre + e), S::load(sim + e)}; }, store);
  else
    small_rows<X, T, N, false>([&](int r) { return CV<X>{S::load(sre + W * r), S::load(sim + W * r)}; }, store);
}

// ---- up to 8 points, one value at a time ------------------------------------------

template <class T> struct One {};
template <class T>
struct Simd<One<T>> {
  using V = T;
  static constexpr int W = 1;
  static V set1(double x) { return T(x); }
  static V add(V a, V b) { return a + b; }
  static V sub(V a, V b) { return a - b; }
  static V mul(V a, V b) { return a * b; }
  static V fmadd(V a, V b, V c) { return a * b + c; }
  static V fmsub(V a, V b, V c) { return a * b - c; }
};

template <class T, int N>
[[gnu::always_inline]] inline void tiny_dft(CV<One<T>>* a) {
  if constexpr (N == 2) {
    const CV<One<T>> s = cadd(a[0], a[1]), d = csub(a[0], a[1]);
    a[0] = s, a[1] = d;
  } else if constexpr (N == 4) {
    dft4(a);
  } else if constexpr (N == 8) {
    dft8(a);
  }
}

// Orders 0 to 3 between interleaved arrays; `Inv` exchanges real and
// imaginary parts on the way in and out. All loads come before the stores.
template <class T, int N, bool Inv>
void tiny_interleaved(const T* src, T* dst, bool scaled, T f) {
  CV<One<T>> a[N];
  for (int i = 0; i < N; ++i) a[i] = Inv ? CV<One<T>>{src[2 * i + 1], src[2 * i]} : CV<One<T>>{src[2 * i], src[2 * i + 1]};
  tiny_dft<T, N>(a);
  for (int i = 0; i < N; ++i) {
    T re = a[i].re, im = a[i].im;
    if (scaled) re = re * f, im = im * f;
    dst[2 * i] = Inv ? im : re;
    dst[2 * i + 1] = Inv ? re : im;
  }
}

template <class T, int N>
void tiny_split(const T* sre, const T* sim, T* dre, T* dim, bool scaled, T f) {
  CV<One<T>> a[N];
  for (int i = 0; i < N; ++i) a[i] = CV<One<T>>{sre[i], sim[i]};
  tiny_dft<T, N>(a);
  for (int i = 0; i < N; ++i) {
    dre[i] = scaled ? a[i].re * f : a[i].re;
    dim[i] = scaled ? a[i].im * f : a[i].im;
  }
}

// The straight road: orders 0 to kRowsMaxOrder without tables.
template <class T, bool Inv>
void straight_interleaved(int n, const T* src, T* dst, bool scaled, T f) {
  switch (n) {
    case 0: return tiny_interleaved<T, 1, Inv>(src, dst, scaled, f);
    case 1: return tiny_interleaved<T, 2, Inv>(src, dst, scaled, f);
    case 2: return tiny_interleaved<T, 4, Inv>(src, dst, scaled, f);
    case 3: return tiny_interleaved<T, 8, Inv>(src, dst, scaled, f);
    case 4: return small_interleaved<T, 16, Inv>(src, dst, scaled, f);
    case 5: return small_interleaved<T, 32, Inv>(src, dst, scaled, f);
    case 6: return small_interleaved<T, 64, Inv>(src, dst, scaled, f);
    case 7: return small_interleaved<T, 128, Inv>(src, dst, scaled, f);
    default: return small_interleaved<T, 256, Inv>(src, dst, scaled, f);
  }
}
template <class T>
void straight_split(int n, const T* sre, const T* sim, T* dre, T* dim, bool scaled, T f) {
  switch (n) {
    case 0: return tiny_split<T, 1>(sre, sim, dre, dim, scaled, f);
    case 1: return tiny_split<T, 2>(sre, sim, dre, dim, scaled, f);
    case 2: return tiny_split<T, 4>(sre, sim, dre, dim, scaled, f);
    case 3: return tiny_split<T, 8>(sre, sim, dre, dim, scaled, f);
    case 4: return small_split<T, 16>(sre, sim, dre, dim, scaled, f);
    case 5: return small_split<T, 32>(sre, sim, dre, dim, scaled, f);
    case 6: return small_split<T, 64>(sre, sim, dre, dim, scaled, f);
    case 7: return small_split<T, 128>(sre, sim, dre, dim, scaled, f);
    default: return small_split<T, 256>(sre, sim, dre, dim, scaled, f);
  }
}

}  // namespace
}  // namespace vrks::fft
