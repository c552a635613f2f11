// Complex forward and inverse transforms, interleaved and split.
#include "frame/check.h"
#include "frame/state.h"
#include "transforms/fft_roads.h"

namespace vrks::fft {
namespace {

template <class T>
bool scaled_for(const FloatState<T>* st, bool inv) {
  return (inv ? st->invScaled : st->fwdScaled) != 0;
}

template <class T, bool Inv>
VrkStatus interleaved(const void* state, uint32_t tag, const T* src, T* dst, Vrk8u* buffer) {
  const FloatState<T>* st;
  WorkBuffer work;
  VRKS_CHECK(begin_transform(state, tag, buffer, work, st, src, dst));
  roads_of<T>().interleaved[Inv](st, st->order, src, dst, work.data<T>(), scaled_for(st, Inv), st->scaleFactor);
  return vrkStatusOk;
}

template <class T, bool Inv>
VrkStatus split(const void* state, uint32_t tag, const T* sre, const T* sim, T* dre, T* dim,
                Vrk8u* buffer) {
  const FloatState<T>* st;
  WorkBuffer work;
  VRKS_CHECK(begin_transform(state, tag, buffer, work, st, sre, sim, dre, dim));
  roads_of<T>().split[Inv](st, st->order, sre, sim, dre, dim, work.data<T>(), scaled_for(st, Inv), st->scaleFactor);
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::fft

using namespace vrks;
using namespace vrks::fft;

#define VRKS_FFT_SPLIT(DIR, INV, T, TS, TAGS)                                                       \
  VrkStatus vrksFFT##DIR##_CToC_##TS(const Vrk##TS* srcRe, const Vrk##TS* srcIm, Vrk##TS* dstRe,  \
                                     Vrk##TS* dstIm, const VrksFFTState_C_##TS* state,             \
                                     Vrk8u* buffer) {                                              \
    return split<T, INV>(state, TAGS, srcRe, srcIm, dstRe, dstIm, buffer);                        \
  }                                                                                                \
  VrkStatus vrksFFT##DIR##_CToC_##TS##_I(Vrk##TS* srcDstRe, Vrk##TS* srcDstIm,                    \
                                         const VrksFFTState_C_##TS* state, Vrk8u* buffer) {       \
    return split<T, INV>(state, TAGS, srcDstRe, srcDstIm, srcDstRe, srcDstIm, buffer);            \
  }

#define VRKS_FFT_COMPLEX_I(DIR, INV, T, TC, TAGC)                                                   \
  VrkStatus vrksFFT##DIR##_CToC_##TC(const Vrk##TC* src, Vrk##TC* dst,                            \
                                     const VrksFFTState_C_##TC* state, Vrk8u* buffer) {           \
    return interleaved<T, INV>(state, TAGC, reinterpret_cast<const T*>(src),                      \
                               reinterpret_cast<T*>(dst), buffer);                                 \
  }                                                                                                \
  VrkStatus vrksFFT##DIR##_CToC_##TC##_I(Vrk##TC* srcDst, const VrksFFTState_C_##TC* state,       \
                                         Vrk8u* buffer) {                                          \
    return interleaved<T, INV>(state, TAGC, reinterpret_cast<const T*>(srcDst),                   \
                               reinterpret_cast<T*>(srcDst), buffer);                              \
  }

VRKS_FFT_COMPLEX_I(Fwd, false, float, 32fc, kTagC32fc)
VRKS_FFT_COMPLEX_I(Inv, true, float, 32fc, kTagC32fc)
VRKS_FFT_COMPLEX_I(Fwd, false, double, 64fc, kTagC64fc)
VRKS_FFT_COMPLEX_I(Inv, true, double, 64fc, kTagC64fc)
VRKS_FFT_SPLIT(Fwd, false, float, 32f, kTagC32f)
VRKS_FFT_SPLIT(Inv, true, float, 32f, kTagC32f)
VRKS_FFT_SPLIT(Fwd, false, double, 64f, kTagC64f)
VRKS_FFT_SPLIT(Inv, true, double, 64f, kTagC64f)
