// Normalisation, dst = (src - subtrahend) / divisor, and bit packing.
#include <cmath>
#include <cstring>

#include "arith/convert.h"

namespace vrks::conv {
namespace {

// ---- normalisation --------------------------------------------------------------

template <class F>
inline constexpr F kLeastNormal = std::is_same_v<F, float> ? F(1.1754943508222875e-38) : F(2.2250738585072014e-308);

template <class T, class F>
inline T normalized(const T& x, const T& sub, F r) {
  if constexpr (is_complex_v<T>) return T{(x.re - sub.re) * r, (x.im - sub.im) * r};
  else return (x - sub) * r;
}

// Floating forms: one reciprocal of the divisor, then a subtraction and a
// multiplication per part. A divisor of magnitude below the least normal
// value is refused; a NaN divisor is not.
template <class T, class F>
VrkStatus normalize(const T* src, T* dst, int length, T sub, F divisor) {
  VRKS_CHECK(check_vector(length, src, dst));
  IeeeDefaultGuard guard;  // before the comparison, which may meet a NaN
  if (std::fabs(divisor) < kLeastNormal<F>) return vrkStatusDivideByZero;
  const F r = F(1) / divisor;
  for (int i = 0; i < length; ++i) dst[i] = normalized(src[i], sub, r);
  return vrkStatusOk;
}

// The 16-bit forms: the difference in 32-bit integers, as float, times the
// float reciprocal of the float divisor, times 2^-scale (the low seven bits
// of |scale| in the exponent field), to nearest even with saturation.
struct Normalize16 {
  int32_t sub;
  float r, m;
  int16_t operator()(int16_t x) const {
    return float_to_int<int16_t, Rounding::NearestEven>(float(int32_t(x) - sub) * r * m);
  }
};

inline float scale_multiplier(int scale) {
  const uint32_t magnitude = (scale < 0 ? 0u - uint32_t(scale) : uint32_t(scale)) & 0x7F;
  const uint32_t bits = (scale < 0 ? 127 + magnitude : 127 - magnitude) << 23;
  float m;
  std::memcpy(&m, &bits, sizeof m);
  return m;
}

template <class T, class S>
VrkStatus normalize16(const T* src, T* dst, int length, S sub, int divisor, int scale) {
  VRKS_CHECK(check_vector(length, src, dst));
  if (divisor == 0) return vrkStatusDivideByZero;
  IeeeDefaultGuard guard;
  const float r = 1.0f / float(divisor), m = scale_multiplier(scale);
  if constexpr (is_complex_v<T>) {
    const Normalize16 re{sub.re, r, m}, im{sub.im, r, m};
    for (int i = 0; i < length; ++i) dst[i] = T{re(src[i].re), im(src[i].im)};
  } else {
    map(src, dst, size_t(length), Normalize16{sub, r, m});
  }
  return vrkStatusOk;
}

// ---- bit packing --------------------------------------------------------------------

// The low count bits of each value, most significant first, from bit
// offset & 7 of dst[0] on. Bits of the first and last byte outside the packed
// range keep their values.
VrkStatus pack_bits(const Vrk32u* src, const Vrk32s* counts, int length, Vrk8u* dst, int offset, int* total) {
  VRKS_CHECK(check_vector(length, src, counts, dst, total));
  if (offset < 0) return vrkStatusSizeError;
  const int lead = offset & 7;
  bool corrected = false;
  uint64_t pending = lead ? uint64_t(dst[0] >> (8 - lead)) : 0;  // the low `have` bits wait
  int have = lead;
  size_t out = 0;
  int64_t bits = 0;
  for (int i = 0; i < length; ++i) {
    int c = counts[i];
    if (c < 0 || c > 32) {
      c = c < 0 ? 0 : 32;
      corrected = true;
    }
    const uint64_t v = uint64_t(src[i]) & ((uint64_t(1) << c) - 1);
    pending = (pending << c) | v;
    have += c;
    bits += c;
    for (; have >= 8; have -= 8) dst[out++] = uint8_t(pending >> (have - 8));
    pending &= (uint64_t(1) << have) - 1;
  }
  if (have > 0) dst[out] = uint8_t(pending << (8 - have)) | uint8_t(dst[out] & (0xFF >> have));
  *total = int(bits);
  return corrected ? vrkStatusWarnBitCount : vrkStatusOk;
}

}  // namespace
}  // namespace vrks::conv

using namespace vrks;
using namespace vrks::conv;

VrkStatus vrksNormalize_32f(const Vrk32f* src, Vrk32f* dst, int length, Vrk32f subtrahend, Vrk32f divisor) {
  return normalize(src, dst, length, subtrahend, divisor);
}
VrkStatus vrksNormalize_64f(const Vrk64f* src, Vrk64f* dst, int length, Vrk64f subtrahend, Vrk64f divisor) {
  return normalize(src, dst, length, subtrahend, divisor);
}
VrkStatus vrksNormalize_32fc(const Vrk32fc* src, Vrk32fc* dst, int length, Vrk32fc subtrahend, Vrk32f divisor) {
  return normalize(src, dst, length, subtrahend, divisor);
}
VrkStatus vrksNormalize_64fc(const Vrk64fc* src, Vrk64fc* dst, int length, Vrk64fc subtrahend, Vrk64f divisor) {
  return normalize(src, dst, length, subtrahend, divisor);
}
VrkStatus vrksNormalize_16s_Sfs(const Vrk16s* src, Vrk16s* dst, int length, Vrk16s subtrahend, int divisor,
                                int scale) {
  return normalize16(src, dst, length, subtrahend, divisor, scale);
}
VrkStatus vrksNormalize_16sc_Sfs(const Vrk16sc* src, Vrk16sc* dst, int length, Vrk16sc subtrahend, int divisor,
                                 int scale) {
  return normalize16(src, dst, length, subtrahend, divisor, scale);
}
VrkStatus vrksPackBits_32u8u(const Vrk32u* src, const Vrk32s* bitCounts, int length, Vrk8u* dst, int dstBitOffset,
                             int* dstBitCount) {
  return pack_bits(src, bitCounts, length, dst, dstBitOffset, dstBitCount);
}
