// The scale-factor rule against an exact reference: exhaustive over 16-bit
// results, random over 32-, 64- and 65-bit results, and every road of a set
// of family bands.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <random>

#include "frame/scale.h"

namespace {

using vrks::int128;

// r * 2^-scale rounded to nearest even by the x87 unit (r up to 64 bits is
// exact in long double), clamped to [lo, hi].
int64_t reference(int64_t r, int scale, int64_t lo, int64_t hi) {
  long double q = std::rint(std::ldexp(static_cast<long double>(r), -scale));
  if (q > static_cast<long double>(hi)) return hi;
  if (q < static_cast<long double>(lo)) return lo;
  return static_cast<int64_t>(q);
}

// The same in integers, for 128-bit r: truncating division, then the
// remainder decides (ties to even).
int128 reference128(int128 r, int s) {
  if (s >= 127) return 0;
  const int128 d = int128(1) << s;
  int128 q = r / d, rem = r % d;
  if (rem < 0) rem = -rem;
  const int128 twice = 2 * rem;
  if (twice > d || (twice == d && (q & 1))) q += r < 0 ? -1 : 1;
  return q;
}

template <class D>
constexpr int64_t lo() { return int64_t(vrks::int_min<D>()); }
template <class D>
constexpr int64_t hi() { return int64_t(vrks::int_max<D>()); }

TEST(ScaleRule, ExhaustiveOver16BitResults) {
  ASSERT_EQ(std::fegetround(), FE_TONEAREST);
  for (int s = -40; s <= 40; ++s) {
    for (int32_t r = -65536; r <= 131071; ++r) {
      const int64_t q = reference(r, s, INT64_MIN, INT64_MAX);
      auto clamp = [q](int64_t l, int64_t h) { return q < l ? l : q > h ? h : q; };
      ASSERT_EQ(vrks::scale_exact<int16_t>(r, s), clamp(lo<int16_t>(), hi<int16_t>())) << r << " " << s;
      ASSERT_EQ(vrks::scale_exact<uint16_t>(r, s), clamp(0, 65535)) << r << " " << s;
      ASSERT_EQ(vrks::scale_exact<int32_t>(int64_t(r), s), clamp(INT32_MIN, INT32_MAX)) << r << " " << s;
      if (r >= -32768 && r <= 65535) {
        ASSERT_EQ(vrks::scale_exact<int8_t>(r, s), clamp(-128, 127)) << r << " " << s;
        ASSERT_EQ(vrks::scale_exact<uint8_t>(r, s), clamp(0, 255)) << r << " " << s;
      }
    }
  }
}

// Random results with every bit length from 0 to 64, signs mixed, and the
// values next to the type limits.
std::vector<int64_t> wide_samples() {
  std::mt19937_64 rng(42);
  std::vector<int64_t> v = {0, 1, -1, INT64_MAX, INT64_MIN, INT64_MAX - 1, INT64_MIN + 1,
                            INT32_MAX, INT32_MIN, int64_t(INT32_MAX) + 1, int64_t(INT32_MIN) - 1};
  for (int bits = 1; bits <= 64; ++bits)
    for (int k = 0; k < 300; ++k) {
      uint64_t x = rng() >> (64 - bits);
      v.push_back(k & 1 ? int64_t(x) : int64_t(0 - x));
    }
  return v;
}

TEST(ScaleRule, Random32And64BitResults) {
  for (int64_t r : wide_samples()) {
    for (int s = -70; s <= 70; ++s) {
      ASSERT_EQ(vrks::scale_exact<int32_t>(r, s), reference(r, s, lo<int32_t>(), hi<int32_t>())) << r << " " << s;
      ASSERT_EQ(vrks::scale_exact<uint32_t>(r, s), reference(r, s, 0, hi<uint32_t>())) << r << " " << s;
      ASSERT_EQ(vrks::scale_exact<int64_t>(r, s), reference(r, s, INT64_MIN, INT64_MAX)) << r << " " << s;
    }
  }
}

TEST(ScaleRule, Random65BitSumsIn128Bits) {
  const auto v = wide_samples();
  for (size_t i = 0; i + 1 < v.size(); i += 2) {
    const int128 r = int128(v[i]) + int128(v[i + 1]);
    for (int s = 1; s <= 130; ++s) {
      int128 want = reference128(r, s);
      want = want > INT64_MAX ? INT64_MAX : want < INT64_MIN ? INT64_MIN : want;
      ASSERT_EQ(vrks::scale_exact<int64_t>(r, s), int64_t(want)) << s;
    }
  }
}

// The kernels' formula (r + 2^(s-1) - 1 + ((r >> s) & 1)) >> s.
TEST(ScaleRule, KernelFormulaRoundsToNearestEven) {
  for (int64_t r : wide_samples()) {
    if (r > (int64_t(1) << 52) || r < -(int64_t(1) << 52)) continue;
    for (int s = 1; s <= 10; ++s)
      ASSERT_EQ(vrks::round_shift(r, s), reference(r, s, INT64_MIN, INT64_MAX)) << r << " " << s;
  }
}

// For each set of bands, every road chosen for every scale gives the rule's
// result over the family's whole range of r: the short cuts change nothing.
struct Bands {
  const char* family;
  int64_t r_min, r_max;
  vrks::ScaleBands bands;
};

template <class D, class W>
void check_roads(const Bands& b, const std::vector<int64_t>& rs) {
  SCOPED_TRACE(b.family);
  for (int s = -45; s <= 70; ++s) {
    for (int64_t r : rs) {
      const D got = vrks::with_scale_road(s, b.bands, [&]<vrks::ScaleRoad R>() {
        return vrks::scale_on_road<R, D>(W(r), s);
      });
      ASSERT_EQ(int64_t(got), reference(r, s, lo<D>(), hi<D>())) << "r " << r << " scale " << s;
    }
  }
}

std::vector<int64_t> span(int64_t a, int64_t b) {
  std::vector<int64_t> v;
  const int64_t step = (b - a) / 200000 + 1;
  for (int64_t r = a; r <= b; r += step) v.push_back(r);
  for (int64_t r = b - 300; r <= b; ++r) v.push_back(r);
  return v;
}

TEST(ScaleRule, RoadsOfFamilyBands) {
  // 8-bit and 16-bit sums and differences, 16-bit products, 32-bit sums.
  const Bands add8u{"8u sums", 0, 510, {9, -7}};
  const Bands sub8u{"8u differences", -255, 255, {8, -7}};
  const Bands add16u{"16u sums", 0, 131070, {17, -15}};
  const Bands add16s{"16s sums", -65536, 65534, {16, -15}};
  const Bands mul16s{"16s products", -1073709056, 1073741824, {30, -15}};
  const Bands add32s{"32s sums", -(int64_t(1) << 32), (int64_t(1) << 32) - 2, {32, -30}};
  check_roads<uint8_t, int32_t>(add8u, span(add8u.r_min, add8u.r_max));
  check_roads<uint8_t, int32_t>(sub8u, span(sub8u.r_min, sub8u.r_max));
  check_roads<uint16_t, int32_t>(add16u, span(add16u.r_min, add16u.r_max));
  check_roads<int16_t, int32_t>(add16s, span(add16s.r_min, add16s.r_max));
  check_roads<int16_t, int64_t>(mul16s, span(mul16s.r_min, mul16s.r_max));
  check_roads<int32_t, int64_t>(add32s, span(add32s.r_min, add32s.r_max));
}

}  // namespace
