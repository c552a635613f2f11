// Copy, move, fill and clear: vrks next to the C library's routines.
//
// Every case is named <operation>/<implementation>/<bytes>:
//   copy        vrksCopy_8u        vs  memcpy
//   move        vrksMove_8u        vs  memmove, dst = src + 64 in one buffer
//   move_apart  vrksMove_8u        vs  memmove, separate buffers
//   set         vrksSet_8u(0x5A)   vs  memset(0x5A)
//   zero        vrksZero_8u        vs  memset(0)
//   set_32fc    vrksSet_32fc       vs  a plain loop storing one Vrk32fc
// <implementation> is "vrks" or the reference's name; ratios.py pairs the two
// by operation and size. <bytes> is the block size; set_32fc fills
// floor(bytes / 8) elements. Bytes processed are the bytes written.
//
// Cases are registered size by size, so every pair runs back to back on the
// same buffers: allocated with vrksMalloc_8u when the size changes and written
// once before timing, so that no page fault lands inside the loop.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "vrks.h"

namespace {

constexpr size_t kOverlap = 64;  // distance between src and dst in `move`

struct Buffers {
  size_t bytes = 0;
  uint8_t* a = nullptr;  // bytes + kOverlap: the source, or the whole overlapping span
  uint8_t* b = nullptr;  // the destination of non-overlapping cases
  ~Buffers() {
    vrksFree(a);
    vrksFree(b);
  }
};

Buffers& buffers(size_t bytes) {
  static Buffers buf;
  if (buf.bytes != bytes) {
    vrksFree(buf.a);
    vrksFree(buf.b);
    const int length = int(bytes + kOverlap);
    buf.a = vrksMalloc_8u(length);
    buf.b = vrksMalloc_8u(length);
    buf.bytes = 0;
    if (!buf.a || !buf.b) return buf;
    for (int i = 0; i < length; ++i) buf.a[i] = uint8_t(i * 131 + 7);
    std::memset(buf.b, 0, size_t(length));
    buf.bytes = bytes;
  }
  return buf;
}

enum class Layout { Apart, Overlap };

// Kernels take (dst, src, n) and return a status, 0 for success; each is its
// own lambda type, so the call inlines into the timing loop.
template <class Kernel>
void run(benchmark::State& state, Kernel kernel, size_t bytes, size_t unit, Layout layout) {
  Buffers& buf = buffers(bytes);
  if (buf.bytes != bytes) return state.SkipWithError("allocation failed");
  const uint8_t* src = buf.a;
  uint8_t* dst = layout == Layout::Overlap ? buf.a + kOverlap : buf.b;
  const size_t n = bytes - bytes % unit;
  if (kernel(dst, src, n) != 0) return state.SkipWithError("kernel returned an error");
  for (auto _ : state) {
    benchmark::DoNotOptimize(dst);
    benchmark::DoNotOptimize(kernel(dst, src, n));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(n));
}

struct Case {
  const char* op;
  const char* impl;
  size_t unit;
  Layout layout;
};

template <class Kernel>
void add(size_t bytes, Case c, Kernel kernel) {
  const std::string name = std::string(c.op) + "/" + c.impl + "/" + std::to_string(bytes);
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    run(state, kernel, bytes, c.unit, c.layout);
  });
}

// Every routine on both sides is called through a pointer the compiler can't
// see through, as a program calls it across a library boundary; otherwise the
// C library's routines could be specialised at the call site.
template <class F>
F opaque(F f) {
  volatile F p = f;
  return p;
}
const auto memcpy_ = opaque(&std::memcpy);
const auto memmove_ = opaque(&std::memmove);
const auto memset_ = opaque(&std::memset);
const auto copy_8u = opaque(&vrksCopy_8u);
const auto move_8u = opaque(&vrksMove_8u);
const auto set_8u = opaque(&vrksSet_8u);
const auto zero_8u = opaque(&vrksZero_8u);
const auto set_32fc = opaque(&vrksSet_32fc);

constexpr Vrk8u kByte = 0x5A;
constexpr Vrk32fc kComplex = {1.5f, -2.25f};

void register_size(size_t bytes) {
  using L = Layout;
  add(bytes, {"copy", "vrks", 1, L::Apart},
      [](uint8_t* d, const uint8_t* s, size_t n) { return copy_8u(s, d, int(n)); });
  add(bytes, {"copy", "memcpy", 1, L::Apart},
      [](uint8_t* d, const uint8_t* s, size_t n) { memcpy_(d, s, n); return 0; });
  for (L layout : {L::Overlap, L::Apart}) {
    const char* op = layout == L::Overlap ? "move" : "move_apart";
    add(bytes, {op, "vrks", 1, layout},
        [](uint8_t* d, const uint8_t* s, size_t n) { return move_8u(s, d, int(n)); });
    add(bytes, {op, "memmove", 1, layout},
        [](uint8_t* d, const uint8_t* s, size_t n) { memmove_(d, s, n); return 0; });
  }
  add(bytes, {"set", "vrks", 1, L::Apart},
      [](uint8_t* d, const uint8_t*, size_t n) { return set_8u(kByte, d, int(n)); });
  add(bytes, {"set", "memset", 1, L::Apart},
      [](uint8_t* d, const uint8_t*, size_t n) { memset_(d, kByte, n); return 0; });
  add(bytes, {"zero", "vrks", 1, L::Apart},
      [](uint8_t* d, const uint8_t*, size_t n) { return zero_8u(d, int(n)); });
  add(bytes, {"zero", "memset", 1, L::Apart},
      [](uint8_t* d, const uint8_t*, size_t n) { memset_(d, 0, n); return 0; });
  add(bytes, {"set_32fc", "vrks", sizeof(Vrk32fc), L::Apart},
      [](uint8_t* d, const uint8_t*, size_t n) {
        return set_32fc(kComplex, reinterpret_cast<Vrk32fc*>(d), int(n / sizeof(Vrk32fc)));
      });
  add(bytes, {"set_32fc", "loop", sizeof(Vrk32fc), L::Apart},
      [](uint8_t* d, const uint8_t*, size_t n) {
        auto* p = reinterpret_cast<Vrk32fc*>(d);
        for (size_t i = 0, m = n / sizeof(Vrk32fc); i < m; ++i) p[i] = kComplex;
        return 0;
      });
}

}  // namespace

int main(int argc, char** argv) {
  // Powers of two from 64 B to 64 MiB, with sizes that leave a tail in between.
  for (size_t bytes = 64; bytes <= (size_t(64) << 20); bytes *= 2) {
    register_size(bytes);
    if (bytes == 64) register_size(100);
    if (bytes == 512) register_size(1000);
    if (bytes == 4096) register_size(5000);
    if (bytes == (size_t(512) << 10)) register_size(1000000);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
