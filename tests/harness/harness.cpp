#include "harness.h"

namespace vt {

const std::vector<int>& lengths() {
  static const std::vector<int> v = [] {
    std::vector<int> l;
    for (int n = 0; n <= 70; ++n) l.push_back(n);
    for (int n : {95, 96, 97, 127, 128, 129, 255, 256, 257, 511, 512, 513, 1023, 1024, 1025, 4099})
      l.push_back(n);
    return l;
  }();
  return v;
}

const std::vector<int>& long_lengths() {
  static const std::vector<int> v = {1, 2, 3, 4095, 4096, 65537, 300001};
  return v;
}

const std::vector<int>& short_lengths() {
  static const std::vector<int> v = {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 100, 257, 1000};
  return v;
}

__int128 reference_scale(__int128 r, int scale, __int128 lo, __int128 hi) {
  __int128 q = r;
  if (scale > 0) {
    if (scale >= 127) {
      q = 0;
    } else {
      const __int128 d = __int128(1) << scale;
      __int128 rem = r % d;
      q = r / d;  // truncated
      if (rem < 0) rem = -rem;
      if (2 * rem > d || (2 * rem == d && (q & 1) != 0)) q += r < 0 ? -1 : 1;
    }
  } else if (scale < 0) {
    for (int k = 0; k < -scale && q != 0 && q > lo && q < hi; ++k) q *= 2;
  }
  return q < lo ? lo : q > hi ? hi : q;
}

std::vector<size_t> misalignments(size_t step) {
  std::vector<size_t> m;
  for (size_t i = 0; i < 64; i += step) m.push_back(i);
  return m;
}

void check_errors(const std::string& name, int pointers, Order order,
                  const std::function<VrkStatus(unsigned, int)>& call,
                  const std::function<bool()>& untouched) {
  SCOPED_TRACE(name);
  const VrkStatus null_first = order == Order::PointersFirst ? vrkStatusNullPointer : vrkStatusSizeError;
  for (int n : {0, -1, -2147483647 - 1}) {
    EXPECT_EQ(call(0, n), vrkStatusSizeError) << "length " << n;
    EXPECT_TRUE(untouched()) << "length " << n;
  }
  for (unsigned nulls = 1; nulls < (1u << pointers); ++nulls) {
    EXPECT_EQ(call(nulls, 16), vrkStatusNullPointer) << "null mask " << nulls;
    EXPECT_EQ(call(nulls, 0), null_first) << "null mask " << nulls << " with length 0";
    EXPECT_TRUE(untouched()) << "null mask " << nulls;
  }
}

}  // namespace vt
