// Joining channels into one interleaved integer stream, and splitting one
// into channels: dst[i * channels + c] comes from srcs[c][i].
//
// The joins convert each channel a block at a time with the vector kernels
// into a small buffer on the stack and interleave from there; one channel
// converts straight into the destination.
#include <algorithm>

#include "arith/convert.h"

namespace vrks::conv {
namespace {

constexpr size_t kBlock = 256;

// [-1, 1] onto the whole 16-bit range: clamped, times 32767.5, plus -0.5,
// each rounded in float, then to nearest even. A NaN passes the clamp and
// gives 32767, as in Convert_32f16s_Sfs.
struct Scaled16 {
  int16_t operator()(float x) const {
    const float c = x != x ? x : std::clamp(x, -1.0f, 1.0f);
    return float_to_int<int16_t, Rounding::NearestEven>(c * 32767.5f + -0.5f);
  }
  static V lanes(const float* p) {
    // max and min return their second operand for a NaN: it passes through.
    VF y = _mm256_min_ps(_mm256_set1_ps(1.0f), _mm256_max_ps(_mm256_set1_ps(-1.0f), _mm256_loadu_ps(p)));
    y = _mm256_add_ps(_mm256_mul_ps(y, _mm256_set1_ps(32767.5f)), _mm256_set1_ps(-0.5f));
    return round_lanes<Rounding::NearestEven>(_mm256_min_ps(y, _mm256_set1_ps(32767.0f)));
  }
  V vec(const float* p) const { return pack2<int16_t>(lanes(p), lanes(p + 8)); }
};

// [-1, 1] onto the whole 24-bit range, in double: clamped, times 8388607.5,
// plus -0.5 (both exact), then to nearest even. A NaN gives -8388608, as in
// Convert_32f24s_Sfs.
struct Scaled24 {
  P24 operator()(float x) const {
    if (x != x) return write24(uint32_t(kMin24s));
    const double y = std::clamp(double(x), -1.0, 1.0) * 8388607.5 + -0.5;
    return write24(uint32_t(int32_t(__builtin_roundeven(y))));
  }
  static __m128i quarter(__m128 x) {
    VD y = _mm256_min_pd(_mm256_max_pd(_mm256_cvtps_pd(x), _mm256_set1_pd(-1.0)), _mm256_set1_pd(1.0));
    y = _mm256_add_pd(_mm256_mul_pd(y, _mm256_set1_pd(8388607.5)), _mm256_set1_pd(-0.5));
    return _mm256_cvtpd_epi32(_mm256_round_pd(y, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC));
  }
  V lanes24(const float* s) const { return _mm256_set_m128i(quarter(_mm_loadu_ps(s + 4)), quarter(_mm_loadu_ps(s))); }
};

// The inverses: 16s as float times 2/65535 plus 1/65535, in float; 24s as
// double times 1.19209296656209e-07 plus 5.96046483281045e-08, narrowed to
// float.
struct Unscale16 {
  static constexpr float kMul = 3.051804378628731e-05f, kAdd = 1.5259021893143654e-05f;
  float operator()(int16_t x) const { return float(x) * kMul + kAdd; }
  V vec(const int16_t* p) const {
    const VF y = _mm256_mul_ps(_mm256_cvtepi32_ps(int_lanes(p)), _mm256_set1_ps(kMul));
    return _mm256_castps_si256(_mm256_add_ps(y, _mm256_set1_ps(kAdd)));
  }
};

struct Unscale24 {
  static constexpr double kMul = 1.19209296656209e-07, kAdd = 5.96046483281045e-08;
  float operator()(P24 x) const { return float(double(read24s(x)) * kMul + kAdd); }
  static __m128 quarter(__m128i v) {
    const VD y = _mm256_mul_pd(_mm256_cvtepi32_pd(v), _mm256_set1_pd(kMul));
    return _mm256_cvtpd_ps(_mm256_add_pd(y, _mm256_set1_pd(kAdd)));
  }
  static constexpr size_t kSlack = kSlack24;
  V vec(const P24* s) const {
    const V v = load24<true>(s);
    const __m128 lo = quarter(_mm256_castsi256_si128(v)), hi = quarter(_mm256_extracti128_si256(v, 1));
    return _mm256_castps_si256(_mm256_set_m128(hi, lo));
  }
};

// The D2L forms check the interleaved array, then channels and length, then
// the pointer array and each of its entries.
template <class P, class Q>
VrkStatus check_channels(const P* interleaved, Q* const* channel, int channels, int length) {
  if (interleaved == nullptr) return vrkStatusNullPointer;
  if (channels < 1 || length < 1) return vrkStatusSizeError;
  if (channel == nullptr) return vrkStatusNullPointer;
  for (int c = 0; c < channels; ++c)
    if (channel[c] == nullptr) return vrkStatusNullPointer;
  return vrkStatusOk;
}

template <class D, class Op>
VrkStatus join(const float* const* srcs, int channels, int length, D* dst, const Op& op) {
  VRKS_CHECK(check_channels(dst, srcs, channels, length));
  IeeeDefaultGuard guard;
  const size_t n = size_t(length), step = size_t(channels);
  if (channels == 1) {
    map(srcs[0], dst, n, op);
    return vrkStatusOk;
  }
  D block[kBlock];
  for (size_t i0 = 0; i0 < n; i0 += kBlock) {
    const size_t b = std::min(kBlock, n - i0);
    for (size_t c = 0; c < step; ++c) {
      map(srcs[c] + i0, block, b, op);
      D* d = dst + i0 * step + c;
      for (size_t k = 0; k < b; ++k) d[k * step] = block[k];
    }
  }
  return vrkStatusOk;
}

template <class S, class Op>
VrkStatus split(const S* src, float* const* dsts, int channels, int length, const Op& op) {
  VRKS_CHECK(check_channels(src, dsts, channels, length));
  IeeeDefaultGuard guard;
  const size_t n = size_t(length), step = size_t(channels);
  if (channels == 1) {
    map(src, dsts[0], n, op);
    return vrkStatusOk;
  }
  S block[kBlock];
  for (size_t i0 = 0; i0 < n; i0 += kBlock) {
    const size_t b = std::min(kBlock, n - i0);
    for (size_t c = 0; c < step; ++c) {
      const S* s = src + i0 * step + c;
      for (size_t k = 0; k < b; ++k) block[k] = s[k * step];
      map(block, dsts[c] + i0, b, op);
    }
  }
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::conv

using namespace vrks;
using namespace vrks::conv;

VrkStatus vrksJoin_32f16s_D2L(const Vrk32f* const* srcs, int channels, int length, Vrk16s* dst) {
  return join(srcs, channels, length, dst, FloatToInt<int16_t, Rounding::NearestEven, false>{});
}
VrkStatus vrksJoinScaled_32f16s_D2L(const Vrk32f* const* srcs, int channels, int length, Vrk16s* dst) {
  return join(srcs, channels, length, dst, Scaled16{});
}
VrkStatus vrksJoinScaled_32f24s_D2L(const Vrk32f* const* srcs, int channels, int length, Vrk8u* dst) {
  return join(srcs, channels, length, reinterpret_cast<P24*>(dst), Scaled24{});
}
VrkStatus vrksSplitScaled_16s32f_D2L(const Vrk16s* src, Vrk32f* const* dsts, int channels, int length) {
  return split(src, dsts, channels, length, Unscale16{});
}
VrkStatus vrksSplitScaled_24s32f_D2L(const Vrk8u* src, Vrk32f* const* dsts, int channels, int length) {
  return split(reinterpret_cast<const P24*>(src), dsts, channels, length, Unscale24{});
}
