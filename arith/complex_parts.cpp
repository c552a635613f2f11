// Real and imaginary parts: extraction, merging and conjugation.
#include "frame/check.h"
#include "frame/types.h"

namespace vrks {
namespace {

// -x; the 16-bit part saturates (-(-32768) is 32767), floating parts have
// their sign bit flipped, NaN included.
template <class P>
constexpr P negate(P x) {
  if constexpr (std::is_same_v<P, Vrk16s>) return x == INT16_MIN ? INT16_MAX : P(-x);
  else return -x;
}

template <class C>
VrkStatus conj(const C* src, C* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  for (int i = 0; i < length; ++i) dst[i] = C{src[i].re, negate(src[i].im)};
  return vrkStatusOk;
}

template <class C>
VrkStatus conj_in_place(C* srcDst, int length) {
  VRKS_CHECK(check_vector(length, srcDst));
  for (int i = 0; i < length; ++i) srcDst[i].im = negate(srcDst[i].im);
  return vrkStatusOk;
}

template <class C>
VrkStatus real(const C* src, part_t<C>* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  for (int i = 0; i < length; ++i) dst[i] = src[i].re;
  return vrkStatusOk;
}

template <class C>
VrkStatus imag(const C* src, part_t<C>* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  for (int i = 0; i < length; ++i) dst[i] = src[i].im;
  return vrkStatusOk;
}

template <class C>
VrkStatus to_real(const C* src, part_t<C>* re, part_t<C>* im, int length) {
  VRKS_CHECK(check_vector(length, src, re, im));
  for (int i = 0; i < length; ++i) {
    re[i] = src[i].re;
    im[i] = src[i].im;
  }
  return vrkStatusOk;
}

// One null source is allowed: that part of every element becomes 0.
template <class C>
VrkStatus to_complex(const part_t<C>* re, const part_t<C>* im, C* dst, int length) {
  VRKS_CHECK(check_vector(length, dst));
  using P = part_t<C>;
  if (re == nullptr && im == nullptr) return vrkStatusNullPointer;
  if (re == nullptr)
    for (int i = 0; i < length; ++i) dst[i] = C{P(0), im[i]};
  else if (im == nullptr)
    for (int i = 0; i < length; ++i) dst[i] = C{re[i], P(0)};
  else
    for (int i = 0; i < length; ++i) dst[i] = C{re[i], im[i]};
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks

#define VRKS_COMPLEX_PARTS(code, P)                                                                  \
  VrkStatus vrksConj_##code##c(const Vrk##code##c* src, Vrk##code##c* dst, int length) {             \
    return vrks::conj(src, dst, length);                                                             \
  }                                                                                                  \
  VrkStatus vrksConj_##code##c_I(Vrk##code##c* srcDst, int length) {                                 \
    return vrks::conj_in_place(srcDst, length);                                                      \
  }                                                                                                  \
  VrkStatus vrksReal_##code##c(const Vrk##code##c* src, P* dst, int length) {                        \
    return vrks::real(src, dst, length);                                                             \
  }                                                                                                  \
  VrkStatus vrksImag_##code##c(const Vrk##code##c* src, P* dst, int length) {                        \
    return vrks::imag(src, dst, length);                                                             \
  }                                                                                                  \
  VrkStatus vrksCplxToReal_##code##c(const Vrk##code##c* src, P* dstRe, P* dstIm, int length) {      \
    return vrks::to_real(src, dstRe, dstIm, length);                                                 \
  }                                                                                                  \
  VrkStatus vrksRealToCplx_##code(const P* srcRe, const P* srcIm, Vrk##code##c* dst, int length) {   \
    return vrks::to_complex(srcRe, srcIm, dst, length);                                              \
  }
VRKS_COMPLEX_PARTS(16s, Vrk16s)
VRKS_COMPLEX_PARTS(32f, Vrk32f)
VRKS_COMPLEX_PARTS(64f, Vrk64f)
