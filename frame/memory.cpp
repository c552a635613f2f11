// Aligned allocation, copy, move, fill and clear on every element type.
//
// The copy, move, fill and clear exports are bound once, when the library is
// loaded, to the instantiation for the processor's instruction set (32- or
// 64-byte vectors), so that a call costs no dispatch; both write the same
// bytes.
#include <cstdint>

#include "frame/memory_entries.h"
#include "vrkcore.h"

namespace vrks {
namespace {

template <class T>
T* allocate(int length) {
  if (length < 1) return nullptr;
  return static_cast<T*>(vrkMalloc(uint64_t(int64_t(length)) * sizeof(T)));
}

// Chooses an instantiation while the library is being loaded. It runs before
// any other code of the process (sanitizer runtimes included), so it calls
// nothing and is never instrumented.
#define VRKS_LOADER_CODE __attribute__((no_sanitize("address", "undefined"), always_inline))
template <class F>
VRKS_LOADER_CODE inline F choose(F avx2, F avx512) {
  __builtin_cpu_init();
  return VRKS_CPU_HAS_AVX512() ? avx512 : avx2;
}

}  // namespace

namespace avx512 {
#define VRKS_DECLARE(code)                                            \
  VrkStatus copy_##code(const Vrk##code* s, Vrk##code* d, int n);     \
  VrkStatus move_##code(const Vrk##code* s, Vrk##code* d, int n);     \
  VrkStatus set_##code(Vrk##code v, Vrk##code* d, int n);             \
  VrkStatus zero_##code(Vrk##code* d, int n);
VRKS_MEMORY_CODES(VRKS_DECLARE)
}  // namespace avx512

}  // namespace vrks

#define VRKS_MALLOC(code) \
  Vrk##code* vrksMalloc_##code(int length) { return vrks::allocate<Vrk##code>(length); }
VRKS_MALLOC(8u)
VRKS_MALLOC(8s)
VRKS_MALLOC(8sc)
VRKS_MALLOC(16u)
VRKS_MALLOC(16s)
VRKS_MALLOC(16sc)
VRKS_MALLOC(32u)
VRKS_MALLOC(32s)
VRKS_MALLOC(32sc)
VRKS_MALLOC(32f)
VRKS_MALLOC(32fc)
VRKS_MALLOC(64s)
VRKS_MALLOC(64sc)
VRKS_MALLOC(64f)
VRKS_MALLOC(64fc)

void vrksFree(void* pointer) { vrkFree(pointer); }

// One export bound by its resolver to one of the two instantiations.
#define VRKS_BOUND(name, entry, code)                                                           \
  extern "C" {                                                                                 \
  __attribute__((no_sanitize("address", "undefined"))) static decltype(&vrks##name##_##code)   \
  vrks_resolve_##name##_##code() {                       \
    return vrks::choose(&vrks::entry##_entry<vrks::V256, Vrk##code>, &vrks::avx512::entry##_##code); \
  }                                                                                            \
  }                                                                                            \
  decltype(vrks##name##_##code) vrks##name##_##code __attribute__((ifunc("vrks_resolve_" #name "_" #code)));

#define VRKS_MEMORY_FAMILY(code)   \
  VRKS_BOUND(Copy, copy, code)     \
  VRKS_BOUND(Move, move, code)     \
  VRKS_BOUND(Set, set, code)       \
  VRKS_BOUND(Zero, zero, code)
VRKS_MEMORY_CODES(VRKS_MEMORY_FAMILY)
