// Aligned allocation, copy, move, fill and clear on every element type.
#include <cstdint>

#include "frame/bytes.h"
#include "frame/check.h"
#include "vrkcore.h"

namespace vrks {
namespace {

template <class T>
T* allocate(int length) {
  if (length < 1) return nullptr;
  return static_cast<T*>(vrkMalloc(uint64_t(int64_t(length)) * sizeof(T)));
}

template <class T>
VrkStatus copy(const T* src, T* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  copy_bytes(dst, src, size_t(length) * sizeof(T));
  return vrkStatusOk;
}

template <class T>
VrkStatus move(const T* src, T* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  move_bytes(dst, src, size_t(length) * sizeof(T));
  return vrkStatusOk;
}

template <class T>
VrkStatus set(T value, T* dst, int length) {
  VRKS_CHECK(check_vector(length, dst));
  fill(dst, value, size_t(length));
  return vrkStatusOk;
}

template <class T>
VrkStatus zero(T* dst, int length) {
  VRKS_CHECK(check_vector(length, dst));
  fill(dst, uint8_t(0), size_t(length) * sizeof(T));
  return vrkStatusOk;
}

}  // namespace
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

#define VRKS_MEMORY_FAMILY(code)                                                                   \
  VrkStatus vrksCopy_##code(const Vrk##code* src, Vrk##code* dst, int length) {                   \
    return vrks::copy(src, dst, length);                                                          \
  }                                                                                               \
  VrkStatus vrksMove_##code(const Vrk##code* src, Vrk##code* dst, int length) {                   \
    return vrks::move(src, dst, length);                                                          \
  }                                                                                               \
  VrkStatus vrksSet_##code(Vrk##code value, Vrk##code* dst, int length) {                         \
    return vrks::set(value, dst, length);                                                         \
  }                                                                                               \
  VrkStatus vrksZero_##code(Vrk##code* dst, int length) { return vrks::zero(dst, length); }
VRKS_MEMORY_FAMILY(8u)
VRKS_MEMORY_FAMILY(16s)
VRKS_MEMORY_FAMILY(16sc)
VRKS_MEMORY_FAMILY(32s)
VRKS_MEMORY_FAMILY(32sc)
VRKS_MEMORY_FAMILY(32f)
VRKS_MEMORY_FAMILY(32fc)
VRKS_MEMORY_FAMILY(64s)
VRKS_MEMORY_FAMILY(64sc)
VRKS_MEMORY_FAMILY(64f)
VRKS_MEMORY_FAMILY(64fc)
