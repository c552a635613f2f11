// The hot conversions: vrks next to a plain loop compiled at -O3 for the same
// processor, and next to a copy of the same traffic.
//
// Every case is named <pair>/<implementation>/<elements>:
//   <pair>            the conversion, e.g. 32f16s_r1 (rounding 1) or 16s32f_s3
//                     (scale 3); see register_pairs() for the list
//   <implementation>  "vrks", "loop" (the plain loop), or "copy": vrksCopy_8u
//                     of as many bytes as the conversion reads and writes
//                     together, halved (so the same traffic), registered for
//                     the long runs only
//   <elements>        1024 (hot in the cache) or 16777216 (memory-bound)
// Bytes processed are the bytes read plus the bytes written, for every
// implementation, so GB/s figures compare directly with each other and with
// copy's (for vrks_bench_memory, whose figures count bytes written only,
// double them).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "vrks.h"

namespace {

constexpr size_t kLong = size_t(1) << 24;

// Every routine is called through a pointer the compiler can't see through,
// as across a library boundary; the plain loops are noinline for the same
// reason.
template <class F>
F opaque(F f) {
  volatile F p = f;
  return p;
}

// One source and one destination per pair, allocated and written once before
// timing so that no page fault lands inside the loop.
template <class S, class D>
struct Arrays {
  S* src = nullptr;
  D* dst = nullptr;
  size_t n = 0;
};

template <class S>
void fill(S* s, size_t n, double lo, double hi) {
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> u(lo, hi);
  for (size_t i = 0; i < n; ++i) {
    const double v = u(rng);
    if constexpr (std::is_floating_point_v<S>) s[i] = S(v);
    else s[i] = S(std::llround(v));
  }
}

// Both arrays hold max(source, destination) bytes an element, so that the
// copy of the same traffic fits too.
template <class S, class D>
Arrays<S, D>& arrays(size_t n, double lo, double hi, size_t src_bytes, size_t dst_bytes) {
  static Arrays<S, D> a;  // the cases of a pair run back to back
  static double range[2] = {0, 0};
  if (a.n != n || range[0] != lo || range[1] != hi) {
    vrksFree(a.src);
    vrksFree(a.dst);
    const size_t bytes = n * std::max(src_bytes, dst_bytes) + 64;
    a.src = reinterpret_cast<S*>(vrksMalloc_8u(int(bytes)));
    a.dst = reinterpret_cast<D*>(vrksMalloc_8u(int(bytes)));
    a.n = 0;
    if (!a.src || !a.dst) return a;
    std::memset(a.dst, 0, bytes);
    if constexpr (std::is_same_v<S, uint8_t>) {  // packed 24-bit samples
      std::mt19937_64 rng(42);
      for (size_t i = 0; i < bytes; ++i) a.src[i] = uint8_t(rng());
    } else {
      fill(a.src, bytes / sizeof(S), lo, hi);
    }
    a.n = n;
    range[0] = lo;
    range[1] = hi;
  }
  return a;
}

// A pair: its source type and range, the bytes a source and a destination
// element take, and the vrks call and the plain loop.
template <class S, class D, class V, class L>
void add_pair(const std::string& pair, double lo, double hi, size_t src_bytes, size_t dst_bytes, V vrks, L loop) {
  for (size_t n : {size_t(1024), kLong}) {
    const std::string size = std::to_string(n);
    const int64_t traffic = int64_t(n * (src_bytes + dst_bytes));
    auto timed = [=](benchmark::State& state, auto kernel) {
      auto& a = arrays<S, D>(n, lo, hi, src_bytes, dst_bytes);
      if (a.n != n) return state.SkipWithError("allocation failed");
      for (auto _ : state) {
        benchmark::DoNotOptimize(a.dst);
        kernel(a.src, a.dst, n);
        benchmark::ClobberMemory();
      }
      state.SetBytesProcessed(int64_t(state.iterations()) * traffic);
    };
    benchmark::RegisterBenchmark((pair + "/vrks/" + size).c_str(), [=](benchmark::State& s) {
      timed(s, [=](const S* x, D* y, size_t m) {
        if (vrks(x, y, int(m)) != 0) std::abort();
      });
    });
    benchmark::RegisterBenchmark((pair + "/loop/" + size).c_str(), [=](benchmark::State& s) { timed(s, loop); });
    if (n == kLong) {
      static const auto copy_8u = opaque(&vrksCopy_8u);
      benchmark::RegisterBenchmark((pair + "/copy/" + size).c_str(), [=](benchmark::State& s) {
        timed(s, [=](const S* x, D* y, size_t) {
          copy_8u(reinterpret_cast<const Vrk8u*>(x), reinterpret_cast<Vrk8u*>(y), int(traffic / 2));
        });
      });
    }
  }
}

template <class D, class F>
D clamp_cast(F v) {
  const F lo = F(std::numeric_limits<D>::min()), hi = F(std::numeric_limits<D>::max());
  return v != v ? D(hi) : v < lo ? D(lo) : v > hi ? D(hi) : D(v);
}

// ---- plain loops -----------------------------------------------------------------

template <class S, class D>
[[gnu::noinline]] void cast_loop(const S* s, D* d, size_t n) {
  for (size_t i = 0; i < n; ++i) d[i] = D(s[i]);
}
[[gnu::noinline]] void scaled_loop(const int16_t* s, float* d, size_t n) {
  for (size_t i = 0; i < n; ++i) d[i] = float(s[i]) * 0.125f;
}
// Float to integer, scaled, to nearest, saturated (NaN to the maximum).
template <class D, int Mode>
[[gnu::noinline]] void round_loop(const float* s, D* d, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const float y = s[i] * 0.25f;
    const float r = Mode == 0 ? std::trunc(y) : Mode == 1 ? std::nearbyint(y) : std::round(y);
    d[i] = clamp_cast<D>(r);
  }
}
[[gnu::noinline]] void narrow_loop(const double* s, float* d, size_t n) {
  for (size_t i = 0; i < n; ++i) d[i] = s[i] != s[i] ? FLT_MAX : float(std::clamp(s[i], -double(FLT_MAX), double(FLT_MAX)));
}
[[gnu::noinline]] void read24_loop(const uint8_t* s, float* d, size_t n) {
  for (size_t i = 0; i < n; ++i, s += 3) d[i] = float(int32_t(uint32_t(s[0]) << 8 | uint32_t(s[1]) << 16 | uint32_t(s[2]) << 24) >> 8);
}
[[gnu::noinline]] void write24_loop(const float* s, uint8_t* d, size_t n) {
  for (size_t i = 0; i < n; ++i, d += 3) {
    const float y = s[i] != s[i] ? -8388608.0f : std::clamp(s[i], -8388608.0f, 8388607.0f);
    const int32_t v = int32_t(std::nearbyint(y));
    d[0] = uint8_t(v);
    d[1] = uint8_t(v >> 8);
    d[2] = uint8_t(v >> 16);
  }
}
[[gnu::noinline]] void half_to_float_loop(const uint16_t* s, float* d, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint32_t w = s[i] & 0x7FFFu, sign = uint32_t(s[i] & 0x8000u) << 16;
    uint32_t b;
    if (w >= 0x7C00) b = sign | 0x7F800000 | (w & 0x3FF) << 13;
    else if (w >= 0x400) b = sign | ((w << 13) + 0x38000000);
    else {
      const float f = float(w) * 0x1p-24f;
      std::memcpy(&b, &f, 4);
      b |= sign;
    }
    std::memcpy(d + i, &b, 4);
  }
}
// Float to half, to nearest even on the bits (no NaN payloads, no double
// rounding: the plain form a user would write).
[[gnu::noinline]] void float_to_half_loop(const float* s, uint16_t* d, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    uint32_t b;
    std::memcpy(&b, s + i, 4);
    const uint32_t sign = (b >> 16) & 0x8000, a = b & 0x7FFFFFFF;
    uint32_t h;
    if (a > 0x7F800000) h = 0x7FFF;
    else if (a >= 0x47800000) h = 0x7C00;
    else if (a >= 0x38800000) h = (a - 0x38000000 + 0x0FFF + ((a >> 13) & 1)) >> 13;
    else h = uint32_t(std::nearbyint(std::ldexp(double(std::bit_cast<float>(a)), 24)));
    d[i] = uint16_t(h | sign);
  }
}

void register_pairs() {
  using F = float;
  // The forms with rounding and scale, bound to fixed arguments.
  auto bind = [](auto fn, auto... extra) {
    return [f = opaque(fn), extra...](auto s, auto d, int n) { return f(s, d, n, extra...); };
  };
  add_pair<int16_t, F>("16s32f", -32768, 32767, 2, 4, opaque(&vrksConvert_16s32f), cast_loop<int16_t, F>);
  add_pair<int16_t, F>("16s32f_s3", -32768, 32767, 2, 4, bind(&vrksConvert_16s32f_Sfs, 3), scaled_loop);
  add_pair<F, int16_t>("32f16s_r1_s2", -140000, 140000, 4, 2, bind(&vrksConvert_32f16s_Sfs, 1, 2),
                       round_loop<int16_t, 1>);
  add_pair<F, int16_t>("32f16s_r2_s2", -140000, 140000, 4, 2, bind(&vrksConvert_32f16s_Sfs, 2, 2),
                       round_loop<int16_t, 2>);
  add_pair<F, uint8_t>("32f8u_r1_s2", -200, 1200, 4, 1, bind(&vrksConvert_32f8u_Sfs, 1, 2), round_loop<uint8_t, 1>);
  add_pair<F, int32_t>("32f32s_r0_s2", -1e10, 1e10, 4, 4, bind(&vrksConvert_32f32s_Sfs, 0, 2),
                       round_loop<int32_t, 0>);
  add_pair<int32_t, F>("32s32f", -2e9, 2e9, 4, 4, opaque(&vrksConvert_32s32f), cast_loop<int32_t, F>);
  add_pair<F, double>("32f64f", -1e6, 1e6, 4, 8, opaque(&vrksConvert_32f64f), cast_loop<F, double>);
  add_pair<double, F>("64f32f", -1e39, 1e39, 8, 4, opaque(&vrksConvert_64f32f), narrow_loop);
  add_pair<uint8_t, F>("24s32f", 0, 0, 3, 4, opaque(&vrksConvert_24s32f), read24_loop);
  add_pair<F, uint8_t>("32f24s", -9e6, 9e6, 4, 3, bind(&vrksConvert_32f24s_Sfs, 0), write24_loop);
  add_pair<uint16_t, F>("16f32f", 0, 65535, 2, 4, opaque(&vrksConvert_16f32f), half_to_float_loop);
  add_pair<F, uint16_t>("32f16f_r1", -70000, 70000, 4, 2, bind(&vrksConvert_32f16f, 1), float_to_half_loop);
}

}  // namespace

int main(int argc, char** argv) {
  register_pairs();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
