// Element-wise arithmetic: vrks next to the plain loop a user would write,
// compiled at -O3 for the same processor.
//
// Cases are named <operation>/<implementation>/<elements> with the
// implementation "vrks" or "loop"; bytes processed count every byte read and
// written, so that the long vectors can be set against copy bandwidth
// (vrks_bench_memory). Run: vrks_bench_arith --benchmark_format=json |
// bench/ratios.py --elements
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "vrks.h"

namespace {

// Both sides are called through pointers the compiler can't see through.
template <class F>
F opaque(F f) {
  volatile F p = f;
  return p;
}

template <class T>
struct Data {
  std::vector<T> a, b, d;
  explicit Data(size_t n) : a(n), b(n), d(n) {
    std::mt19937 rng(1);
    auto fill = [&](std::vector<T>& v) {
      for (auto& e : v) {
        if constexpr (std::is_integral_v<T>) e = T(rng());
        else if constexpr (std::is_floating_point_v<T>) e = T(int(rng() % 2001) - 1000) / T(64);
        else e = {decltype(e.re)(int(rng() % 2001) - 1000) / 64, decltype(e.re)(int(rng() % 2001) - 1000) / 64};
      }
    };
    fill(a), fill(b), fill(d);
  }
};

template <class T, class K>
void add(const std::string& op, const char* impl, size_t n, K kernel) {
  benchmark::RegisterBenchmark((op + "/" + impl + "/" + std::to_string(n)).c_str(), [=](benchmark::State& st) {
    Data<T> data(n);
    for (auto _ : st) {
      kernel(data.a.data(), data.b.data(), data.d.data(), int(n));
      benchmark::DoNotOptimize(data.d.data());
      benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(n) * 3 * int64_t(sizeof(T)));
  });
}

// The plain loops, kept out of line so that each is compiled once, as a
// user's own function would be.
#define LOOP(name, T, body)                                                        \
  [[gnu::noinline]] void name(const T* a, [[maybe_unused]] const T* b, T* d, int n) {               \
    for (int i = 0; i < n; ++i) body;                                              \
  }
LOOP(add_32f, float, d[i] = a[i] + b[i])
LOOP(mul_32f, float, d[i] = a[i] * b[i])
LOOP(add_64f, double, d[i] = a[i] + b[i])
LOOP(mul_64f, double, d[i] = a[i] * b[i])
LOOP(mulc_32f, float, d[i] = a[i] * 1.5f)
LOOP(add_32fc, Vrk32fc, (d[i] = Vrk32fc{a[i].re + b[i].re, a[i].im + b[i].im}))
LOOP(mul_32fc, Vrk32fc, (d[i] = Vrk32fc{a[i].re * b[i].re - a[i].im * b[i].im, a[i].im * b[i].re + a[i].re * b[i].im}))
LOOP(mul_64fc, Vrk64fc, (d[i] = Vrk64fc{a[i].re * b[i].re - a[i].im * b[i].im, a[i].im * b[i].re + a[i].re * b[i].im}))
LOOP(addproduct_32f, float, d[i] = d[i] + a[i] * b[i])
inline int16_t sat16(int32_t r) { return int16_t(r < -32768 ? -32768 : r > 32767 ? 32767 : r); }
inline int32_t sat32(int64_t r) { return int32_t(r < INT32_MIN ? INT32_MIN : r > INT32_MAX ? INT32_MAX : r); }
inline uint8_t sat8u(int32_t r) { return uint8_t(r < 0 ? 0 : r > 255 ? 255 : r); }
// r / 2^s to nearest, ties to even. The scale reaches the loops at run time,
// as it reaches the library.
template <class W>
inline W rne(W r, int s) { return (r + (W(1) << (s - 1)) - 1 + ((r >> s) & 1)) >> s; }
volatile int g_scale[17] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
LOOP(add_16s, int16_t, d[i] = sat16(int32_t(a[i]) + b[i]))
[[gnu::noinline]] void add_16s_sfs1(const int16_t* a, const int16_t* b, int16_t* d, int n) {
  const int s = g_scale[1];
  for (int i = 0; i < n; ++i) d[i] = sat16(rne(int32_t(a[i]) + b[i], s));
}
[[gnu::noinline]] void add_16s_sfs4(const int16_t* a, const int16_t* b, int16_t* d, int n) {
  const int s = g_scale[4];
  for (int i = 0; i < n; ++i) d[i] = sat16(rne(int32_t(a[i]) + b[i], s));
}
[[gnu::noinline]] void sub_16s_sfs4(const int16_t* a, const int16_t* b, int16_t* d, int n) {
  const int s = g_scale[4];
  for (int i = 0; i < n; ++i) d[i] = sat16(rne(int32_t(b[i]) - a[i], s));
}
[[gnu::noinline]] void mul_16s_sfs8(const int16_t* a, const int16_t* b, int16_t* d, int n) {
  const int s = g_scale[8];
  for (int i = 0; i < n; ++i) d[i] = sat16(rne(int32_t(a[i]) * b[i], s));
}
[[gnu::noinline]] void add_8u_sfs1(const uint8_t* a, const uint8_t* b, uint8_t* d, int n) {
  const int s = g_scale[1];
  for (int i = 0; i < n; ++i) d[i] = sat8u(rne(int32_t(a[i]) + b[i], s));
}
[[gnu::noinline]] void mul_8u_sfs4(const uint8_t* a, const uint8_t* b, uint8_t* d, int n) {
  const int s = g_scale[4];
  for (int i = 0; i < n; ++i) d[i] = sat8u(rne(int32_t(a[i]) * b[i], s));
}
[[gnu::noinline]] void add_32s_sfs2(const int32_t* a, const int32_t* b, int32_t* d, int n) {
  const int s = g_scale[2];
  for (int i = 0; i < n; ++i) d[i] = sat32(rne(int64_t(a[i]) + b[i], s));
}
[[gnu::noinline]] void mulc_32s_sfs4(const int32_t* a, [[maybe_unused]] const int32_t* b, int32_t* d, int n) {
  const int s = g_scale[4];
  for (int i = 0; i < n; ++i) d[i] = sat32(rne(int64_t(a[i]) * 12345, s));
}

template <class T>
using K = void (*)(const T*, const T*, T*, int);

void register_size(size_t n) {
#define PAIR(op, T, vrks_call, loop)                                                                     \
  {                                                                                                      \
    static const auto f = opaque(loop);                                                                 \
    add<T>(op, "vrks", n, [](const T* a, [[maybe_unused]] const T* b, T* d, int len) { vrks_call; });                     \
    add<T>(op, "loop", n, [](const T* a, const T* b, T* d, int len) { f(a, b, d, len); });              \
  }
  static const auto v_add32f = opaque(&vrksAdd_32f);
  static const auto v_mul32f = opaque(&vrksMul_32f);
  static const auto v_add64f = opaque(&vrksAdd_64f);
  static const auto v_mul64f = opaque(&vrksMul_64f);
  static const auto v_mulc32f = opaque(&vrksMulC_32f);
  static const auto v_add32fc = opaque(&vrksAdd_32fc);
  static const auto v_mul32fc = opaque(&vrksMul_32fc);
  static const auto v_mul64fc = opaque(&vrksMul_64fc);
  static const auto v_ap32f = opaque(&vrksAddProduct_32f);
  static const auto v_add16s = opaque(&vrksAdd_16s);
  static const auto v_add16s_sfs = opaque(&vrksAdd_16s_Sfs);
  static const auto v_sub16s_sfs = opaque(&vrksSub_16s_Sfs);
  static const auto v_mul16s_sfs = opaque(&vrksMul_16s_Sfs);
  static const auto v_add8u_sfs = opaque(&vrksAdd_8u_Sfs);
  static const auto v_mul8u_sfs = opaque(&vrksMul_8u_Sfs);
  static const auto v_add32s_sfs = opaque(&vrksAdd_32s_Sfs);
  static const auto v_mulc32s_sfs = opaque(&vrksMulC_32s_Sfs);
  PAIR("Add_32f", float, v_add32f(a, b, d, len), &add_32f)
  PAIR("Mul_32f", float, v_mul32f(a, b, d, len), &mul_32f)
  PAIR("MulC_32f", float, v_mulc32f(a, 1.5f, d, len), &mulc_32f)
  PAIR("AddProduct_32f", float, v_ap32f(a, b, d, len), &addproduct_32f)
  PAIR("Add_64f", double, v_add64f(a, b, d, len), &add_64f)
  PAIR("Mul_64f", double, v_mul64f(a, b, d, len), &mul_64f)
  PAIR("Add_32fc", Vrk32fc, v_add32fc(a, b, d, len), &add_32fc)
  PAIR("Mul_32fc", Vrk32fc, v_mul32fc(a, b, d, len), &mul_32fc)
  PAIR("Mul_64fc", Vrk64fc, v_mul64fc(a, b, d, len), &mul_64fc)
  PAIR("Add_16s", int16_t, v_add16s(a, b, d, len), &add_16s)
  PAIR("Add_16s_Sfs1", int16_t, v_add16s_sfs(a, b, d, len, 1), &add_16s_sfs1)
  PAIR("Add_16s_Sfs4", int16_t, v_add16s_sfs(a, b, d, len, 4), &add_16s_sfs4)
  PAIR("Sub_16s_Sfs4", int16_t, v_sub16s_sfs(a, b, d, len, 4), &sub_16s_sfs4)
  PAIR("Mul_16s_Sfs8", int16_t, v_mul16s_sfs(a, b, d, len, 8), &mul_16s_sfs8)
  PAIR("Add_8u_Sfs1", uint8_t, v_add8u_sfs(a, b, d, len, 1), &add_8u_sfs1)
  PAIR("Mul_8u_Sfs4", uint8_t, v_mul8u_sfs(a, b, d, len, 4), &mul_8u_sfs4)
  PAIR("Add_32s_Sfs2", int32_t, v_add32s_sfs(a, b, d, len, 2), &add_32s_sfs2)
  PAIR("MulC_32s_Sfs4", int32_t, v_mulc32s_sfs(a, 12345, d, len, 4), &mulc_32s_sfs4)
#undef PAIR
}

}  // namespace

int main(int argc, char** argv) {
  for (size_t n : {size_t(1024), size_t(65536), size_t(16) << 20}) register_size(n);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
