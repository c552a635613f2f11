// What the FFT tests share: a plain radix-2 transform in long double (or
// double) with twiddles from cosl/sinl, error measures, and guarded byte
// blocks cheap enough for arrays of many megabytes.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace fftref {

// The sanitizer builds run the long sweeps lighter.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

using cld = std::complex<long double>;
constexpr long double kPi = 3.141592653589793238462643383279502884L;

// The unscaled transform of x, whose length is a power of two: sign -1
// gives sum x[n] e^(-2 pi i nk/N), sign +1 the same with +. The arithmetic
// is that of R: long double for the 64-bit kinds, double suffices for the
// 32-bit ones. Plain arrays and no sanitizers in the loops.
template <class R>
[[gnu::no_sanitize_address, gnu::no_sanitize_undefined]] void dft_arrays(R* re, R* im, const R* c, const R* s,
                                                                          size_t n) {
  for (size_t i = 1, j = 0; i < n; ++i) {
    size_t bit = n >> 1;
    for (; j & bit; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) {
      const R r = re[i], m = im[i];
      re[i] = re[j], im[i] = im[j], re[j] = r, im[j] = m;
    }
  }
  for (size_t len = 2; len <= n; len <<= 1) {
    const size_t half = len / 2, step = n / len;
    for (size_t i = 0; i < n; i += len)
      for (size_t k = 0; k < half; ++k) {
        const R wr = c[k * step], wi = s[k * step];
        const size_t a = i + k, b = a + half;
        const R tr = re[b] * wr - im[b] * wi, ti = re[b] * wi + im[b] * wr;
        re[b] = re[a] - tr, im[b] = im[a] - ti;
        re[a] += tr, im[a] += ti;
      }
  }
}

template <class R = long double>
std::vector<cld> dft(const std::vector<cld>& x, int sign) {
  // cos and sin of 2 pi k / M for k < M/2, kept for the longest M so far.
  static std::vector<long double> c, s;
  const size_t n = x.size();
  if (c.size() < n / 2) {
    c.resize(n / 2), s.resize(n / 2);
    for (size_t k = 0; k < n / 2; ++k) {
      const long double a = 2 * kPi * (long double)k / (long double)n;
      c[k] = cosl(a), s[k] = sinl(a);
    }
  }
  const size_t stride = n > 1 ? 2 * c.size() / n : 1;
  static std::vector<R> re, im, cn, sn;  // scratch, kept to spare the allocator
  re.resize(n), im.resize(n), cn.resize(n / 2), sn.resize(n / 2);
  for (size_t i = 0; i < n; ++i) re[i] = R(x[i].real()), im[i] = R(x[i].imag());
  for (size_t k = 0; k < n / 2; ++k) cn[k] = R(c[k * stride]), sn[k] = R(sign * s[k * stride]);
  dft_arrays(re.data(), im.data(), cn.data(), sn.data(), n);
  std::vector<cld> out(n);
  for (size_t i = 0; i < n; ++i) out[i] = cld(re[i], im[i]);
  return out;
}

// Error of got(i) against want(i), i < n, relative to the RMS magnitude of
// the wanted values: the RMS of the error and its largest single element.
struct Error {
  double rms = 0, max = 0;
};
template <class Got, class Want>
Error error(size_t n, Got&& got, Want&& want) {
  long double e2 = 0, w2 = 0, emax = 0;
  for (size_t i = 0; i < n; ++i) {
    const cld w = want(i);
    const long double d = std::norm(cld(got(i)) - w);
    e2 += d;
    w2 += std::norm(w);
    emax = std::max(emax, d);
  }
  if (w2 == 0) return {double(sqrtl(e2)), double(sqrtl(emax))};
  return {double(sqrtl(e2 / w2)), double(sqrtl(emax * (long double)n / w2))};
}

// A block of bytes at `misalign` bytes past a 64-byte boundary, with guard
// bytes on both sides that must keep their fill. The contents start unset.
class Block {
 public:
  static constexpr size_t kGuard = 96;
  static constexpr uint8_t kFill = 0xC3;
  explicit Block(size_t bytes, size_t misalign = 0)
      : bytes_(bytes), total_(bytes + 2 * kGuard + 128), raw_(new uint8_t[total_]) {
    const auto base = reinterpret_cast<uintptr_t>(raw_.get()) + kGuard;
    offset_ = size_t(((base + 63) & ~uintptr_t(63)) + misalign - reinterpret_cast<uintptr_t>(raw_.get()));
    std::memset(raw_.get(), kFill, offset_);
    std::memset(raw_.get() + offset_ + bytes_, kFill, total_ - offset_ - bytes_);
  }
  Block(const Block& other) : Block(other.bytes_, reinterpret_cast<uintptr_t>(other.data()) % 64) {
    std::memcpy(data(), other.data(), bytes_);
  }
  uint8_t* data() { return raw_.get() + offset_; }
  const uint8_t* data() const { return raw_.get() + offset_; }
  template <class T>
  T* as() { return reinterpret_cast<T*>(data()); }
  size_t size() const { return bytes_; }
  bool guards_intact() const {
    auto fill = [&](size_t from, size_t to) {
      for (size_t i = from; i < to; ++i)
        if (raw_[i] != kFill) return false;
      return true;
    };
    return fill(0, offset_) && fill(offset_ + bytes_, total_);
  }
  bool same(const Block& other) const {
    return bytes_ == other.bytes_ && std::memcmp(data(), other.data(), bytes_) == 0;
  }

 private:
  size_t bytes_, total_;
  std::unique_ptr<uint8_t[]> raw_;
  size_t offset_ = 0;
};

}  // namespace fftref
