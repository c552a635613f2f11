// Power-of-two FFTs: vrks next to FFTW 3, in the same process.
//
// Cases are named <kind>/<implementation>/<order>, N = 2^order, order 4 to 20:
//   kind            c32, c64  complex interleaved 32f / 64f (vrksFFTFwd_CToC_*)
//                   r32, r64  real input (vrksFFTFwd_RToPerm_*; FFTW r2c)
//   implementation  vrks      state from InitAlloc with vrkFFTScaleNone, work
//                             buffer of GetBufSize bytes allocated once
//                   measure   FFTW plan made with FFTW_MEASURE
//                   estimate  FFTW plan made with FFTW_ESTIMATE
// Every case is forward and out of place on 64-byte aligned arrays (FFTW's
// from fftw_malloc) holding random data. Only the transform runs in the
// timed loop; the input stays valid since the output goes elsewhere.
//
// The counter "mflops" is 5 N log2 N (complex) or 2.5 N log2 N (real) per
// transform over the time in microseconds. Before timing, each vrks case
// checks its result against FFTW once and fails the case if they disagree.
// Run: vrks_bench_fft --benchmark_format=json | bench/ratios.py
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "vrks.h"

namespace {

constexpr int kMinOrder = 4;
constexpr int kMaxOrder = 20;

// ---- the library side ------------------------------------------------------

template <class R, bool Complex>
struct Vrks;

#define VRKS_KIND(R, C, kind, Vt, fwd)                                                           \
  template <>                                                                                    \
  struct Vrks<R, C> {                                                                            \
    using State = VrksFFTState_##kind;                                                           \
    static VrkStatus init(State** s, int order) {                                                \
      return vrksFFTInitAlloc_##kind(s, order, vrkFFTScaleNone, 0);                              \
    }                                                                                            \
    static VrkStatus bufSize(const State* s, int* size) { return vrksFFTGetBufSize_##kind(s, size); } \
    static VrkStatus forward(const R* src, R* dst, const State* s, Vrk8u* buf) {                 \
      return fwd(reinterpret_cast<const Vt*>(src), reinterpret_cast<Vt*>(dst), s, buf);          \
    }                                                                                            \
    static void release(State* s) { vrksFFTFree_##kind(s); }                                     \
  };
VRKS_KIND(float, true, C_32fc, Vrk32fc, vrksFFTFwd_CToC_32fc)
VRKS_KIND(double, true, C_64fc, Vrk64fc, vrksFFTFwd_CToC_64fc)
VRKS_KIND(float, false, R_32f, Vrk32f, vrksFFTFwd_RToPerm_32f)
VRKS_KIND(double, false, R_64f, Vrk64f, vrksFFTFwd_RToPerm_64f)
#undef VRKS_KIND

struct VrksDeleter {
  void operator()(void* p) const { vrksFree(p); }
};
template <class T>
using VrksArray = std::unique_ptr<T[], VrksDeleter>;

// ---- the FFTW side ---------------------------------------------------------

template <class R>
struct Fftw;

#define FFTW_KIND(R, X)                                                                          \
  template <>                                                                                    \
  struct Fftw<R> {                                                                               \
    using Plan = X##_plan;                                                                       \
    static R* alloc(size_t n) { return static_cast<R*>(X##_malloc(n * sizeof(R))); }             \
    static void release(R* p) { X##_free(p); }                                                   \
    static Plan plan(bool complex, int n, R* in, R* out, unsigned flags) {                       \
      auto* o = reinterpret_cast<X##_complex*>(out);                                             \
      return complex ? X##_plan_dft_1d(n, reinterpret_cast<X##_complex*>(in), o, FFTW_FORWARD, flags) \
                     : X##_plan_dft_r2c_1d(n, in, o, flags);                                     \
    }                                                                                            \
    static void execute(Plan p) { X##_execute(p); }                                              \
    static void destroy(Plan p) { X##_destroy_plan(p); }                                         \
    static void forgetWisdom() { X##_forget_wisdom(); }                                          \
  };
FFTW_KIND(float, fftwf)
FFTW_KIND(double, fftw)
#undef FFTW_KIND

// Reals in the input and output arrays of a transform of N points: N complex
// points in and out, or N reals in and N/2 + 1 complex points out (r2c; the
// Perm layout of vrks needs only N of them).
inline size_t inReals(bool complex, size_t n) { return complex ? 2 * n : n; }
inline size_t outReals(bool complex, size_t n) { return complex ? 2 * n : n + 2; }

template <class R>
void fillRandom(R* p, size_t count, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<R> dist(R(-1), R(1));
  for (size_t i = 0; i < count; ++i) p[i] = dist(rng);
}

// An FFTW plan with its own arrays. Google Benchmark calls a case's function
// several times while it settles on an iteration count, so the last plan is
// kept until another case asks for a different one; measuring is thereby
// paid once per case, and only one case's arrays are alive at a time.
template <class R>
struct Planned {
  std::string key;
  typename Fftw<R>::Plan plan = nullptr;
  R* in = nullptr;
  R* out = nullptr;

  void clear() {
    if (plan) Fftw<R>::destroy(plan);
    Fftw<R>::release(in);
    Fftw<R>::release(out);
    *this = Planned{};
  }
};

template <class R>
Planned<R>& planFor(bool complex, int order, unsigned flags) {
  static Planned<R> slot;
  const std::string key =
      std::to_string(complex) + "/" + std::to_string(order) + "/" + std::to_string(flags);
  if (slot.key == key && slot.plan) return slot;
  slot.clear();
  const size_t n = size_t(1) << order;
  slot.in = Fftw<R>::alloc(inReals(complex, n));
  slot.out = Fftw<R>::alloc(outReals(complex, n));
  if (!slot.in || !slot.out) return slot;
  // Wisdom left by an earlier FFTW_MEASURE plan would serve an
  // FFTW_ESTIMATE plan too, which would then be no estimate at all.
  if (flags & FFTW_ESTIMATE) Fftw<R>::forgetWisdom();
  // Measuring overwrites the arrays, so they are filled after planning.
  slot.plan = Fftw<R>::plan(complex, int(n), slot.in, slot.out, flags);
  fillRandom(slot.in, inReals(complex, n), unsigned(order));
  slot.key = key;
  return slot;
}

void setMflops(benchmark::State& st, bool complex, int order) {
  const double n = double(int64_t(1) << order);
  const double flops = (complex ? 5.0 : 2.5) * n * order;
  st.counters["mflops"] = benchmark::Counter(flops / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

template <class R, bool Complex>
void runFftw(benchmark::State& st, int order, unsigned flags) {
  Planned<R>& p = planFor<R>(Complex, order, flags);
  if (!p.plan) return st.SkipWithError("FFTW planning or allocation failed");
  for (auto _ : st) {
    Fftw<R>::execute(p.plan);
    benchmark::DoNotOptimize(p.out);
    benchmark::ClobberMemory();
  }
  setMflops(st, Complex, order);
}

// The largest deviation of the vrks result from FFTW's, relative to the
// largest magnitude of FFTW's spectrum. The real case unpacks Perm:
// R0 R(N/2) R1 I1 ... R(N/2-1) I(N/2-1).
template <class R, bool Complex>
double deviation(const R* src, const R* got, int order) {
  const size_t n = size_t(1) << order;
  R* in = Fftw<R>::alloc(inReals(Complex, n));
  R* ref = Fftw<R>::alloc(outReals(Complex, n));
  double worst = INFINITY;
  auto plan = in && ref ? Fftw<R>::plan(Complex, int(n), in, ref, FFTW_ESTIMATE) : nullptr;
  if (plan) {
    std::copy(src, src + inReals(Complex, n), in);
    Fftw<R>::execute(plan);
    Fftw<R>::destroy(plan);
    double err = 0, top = 0;
    auto at = [&](size_t k, size_t part) -> double {  // vrks value of ref[2k + part]
      if (Complex || (k > 0 && k < n / 2)) return got[2 * k + part];
      if (part == 1) return 0.0;
      return got[k == 0 ? 0 : 1];
    };
    const size_t points = Complex ? n : n / 2 + 1;
    for (size_t k = 0; k < points; ++k)
      for (size_t part = 0; part < 2; ++part) {
        err = std::max(err, std::fabs(at(k, part) - double(ref[2 * k + part])));
        top = std::max(top, std::fabs(double(ref[2 * k + part])));
      }
    worst = err / std::max(top, 1e-300);
  }
  Fftw<R>::release(in);
  Fftw<R>::release(ref);
  return worst;
}

template <class R, bool Complex>
void runVrks(benchmark::State& st, int order) {
  using V = Vrks<R, Complex>;
  const size_t n = size_t(1) << order;
  typename V::State* raw = nullptr;
  if (V::init(&raw, order) != 0 || !raw) return st.SkipWithError("state initialisation failed");
  std::unique_ptr<typename V::State, void (*)(typename V::State*)> state(raw, V::release);
  int bufBytes = 0;
  if (V::bufSize(state.get(), &bufBytes) != 0) return st.SkipWithError("GetBufSize failed");
  VrksArray<R> src(reinterpret_cast<R*>(vrksMalloc_8u(int(inReals(Complex, n) * sizeof(R)))));
  VrksArray<R> dst(reinterpret_cast<R*>(vrksMalloc_8u(int(outReals(Complex, n) * sizeof(R)))));
  // Never NULL, which would make each call allocate a buffer of its own.
  VrksArray<Vrk8u> buf(vrksMalloc_8u(std::max(bufBytes, 64)));
  if (!src || !dst || !buf) return st.SkipWithError("allocation failed");
  fillRandom(src.get(), inReals(Complex, n), unsigned(order));

  if (V::forward(src.get(), dst.get(), state.get(), buf.get()) != 0)
    return st.SkipWithError("transform returned an error");
  const double tolerance = sizeof(R) == 4 ? 1e-4 : 1e-12;
  if (!(deviation<R, Complex>(src.get(), dst.get(), order) <= tolerance))
    return st.SkipWithError("result differs from FFTW");

  for (auto _ : st) {
    V::forward(src.get(), dst.get(), state.get(), buf.get());
    benchmark::DoNotOptimize(dst.get());
    benchmark::ClobberMemory();
  }
  setMflops(st, Complex, order);
}

std::string caseName(const char* kind, const char* impl, int order) {
  std::string name(kind);
  name.append("/").append(impl).append("/").append(std::to_string(order));
  return name;
}

template <class R, bool Complex>
void registerKind(const char* kind) {
  for (int order = kMinOrder; order <= kMaxOrder; ++order) {
    benchmark::RegisterBenchmark(caseName(kind, "vrks", order).c_str(),
                                 [order](benchmark::State& st) { runVrks<R, Complex>(st, order); });
    benchmark::RegisterBenchmark(caseName(kind, "measure", order).c_str(), [order](benchmark::State& st) {
      runFftw<R, Complex>(st, order, FFTW_MEASURE);
    });
    benchmark::RegisterBenchmark(caseName(kind, "estimate", order).c_str(), [order](benchmark::State& st) {
      runFftw<R, Complex>(st, order, FFTW_ESTIMATE);
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  registerKind<float, true>("c32");
  registerKind<double, true>("c64");
  registerKind<float, false>("r32");
  registerKind<double, false>("r64");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
