// Real transforms: a complex transform of half the length on the samples
// read as complex pairs, and a split step behind it (forward) or a merge step
// ahead of it (inverse). The spectrum comes in three packed layouts.
#include <cstring>

#include "frame/check.h"
#include "frame/state.h"
#include "transforms/fft_roads.h"
#include "transforms/fft_small.h"
#include "transforms/fft_tables.h"

namespace vrks::fft {
namespace {

enum class Format { Pack, Perm, CCS };

// The split (A, B) and merge (U, V) tables of a real order: the object's
// own, or for the short orders without tables, built from the constants.
template <class T>
struct RealTables {
  const T *a = nullptr, *b = nullptr, *u = nullptr, *v = nullptr;
  RealTables(const FloatState<T>* st, int order) {
    const size_t quarter = order >= 2 ? size_t(1) << (order - 2) : 0;
    if (st->realSplitTable != nullptr) {
      a = st->realSplitTable, b = a + quarter;
      u = st->realMergeTable, v = u + quarter;
      return;
    }
    switch (order) {
      case 2: take(kSmallReal<T, 2>); break;
      case 3: take(kSmallReal<T, 3>); break;
      case 4: take(kSmallReal<T, 4>); break;
      case 5: take(kSmallReal<T, 5>); break;
      default: break;
    }
  }
  template <class Tables>
  void take(const Tables& t) {
    a = t.a, b = t.b, u = t.u, v = t.v;
  }
};

template <class T>
VrkStatus forward(const void* state, uint32_t tag, const T* src, T* dst, Vrk8u* buffer, Format f) {
  const FloatState<T>* st;
  WorkBuffer work;
  VRKS_CHECK(begin_transform(state, tag, buffer, work, st, src, dst));
  const int n = st->order;
  const size_t N = size_t(1) << n;
  const bool scaled = st->fwdScaled != 0;
  if (n == 0) {
    dst[0] = scaled ? src[0] * st->scaleFactor : src[0];
  } else {
    roads_of<T>().interleaved[0](st, n - 1, src, dst, work.data<T>(), scaled, st->scaleFactor);
    const RealTables<T> t(st, n);
    roads_of<T>().split_step(dst, N / 2, t.a, t.b);
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
  const FloatState<T>* st;
  WorkBuffer work;
  VRKS_CHECK(begin_transform(state, tag, buffer, work, st, src, dst));
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
  roads_of<T>().merge_step(dst, N / 2, t.u, t.v);
  roads_of<T>().interleaved[1](st, n - 1, dst, dst, work.data<T>(), scaled, st->scaleFactor);
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
