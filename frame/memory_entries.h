// The bodies of the copy, move, fill and clear exports over a vector policy;
// instantiated once per instruction set (see memory.cpp).
#pragma once

#include "frame/bytes_kernels.h"
#include "frame/check.h"

namespace vrks {
namespace {

template <class T>
const uint8_t* bytes_of(const T* p) { return reinterpret_cast<const uint8_t*>(p); }
template <class T>
uint8_t* bytes_of(T* p) { return reinterpret_cast<uint8_t*>(p); }

template <class V, class T>
VrkStatus copy_entry(const T* src, T* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  copy<V>(bytes_of(dst), bytes_of(src), size_t(length) * sizeof(T));
  return vrkStatusOk;
}

template <class V, class T>
VrkStatus move_entry(const T* src, T* dst, int length) {
  VRKS_CHECK(check_vector(length, src, dst));
  move<V>(bytes_of(dst), bytes_of(src), size_t(length) * sizeof(T));
  return vrkStatusOk;
}

template <class V, class T>
VrkStatus set_entry(T value, T* dst, int length) {
  VRKS_CHECK(check_vector(length, dst));
  fill<V>(bytes_of(dst), pattern_of(value), sizeof(T), size_t(length) * sizeof(T));
  return vrkStatusOk;
}

template <class V, class T>
VrkStatus zero_entry(T* dst, int length) {
  VRKS_CHECK(check_vector(length, dst));
  fill<V>(bytes_of(dst), _mm256_setzero_si256(), 1, size_t(length) * sizeof(T));
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks

// The typed codes of the family, for X-macros.
#define VRKS_MEMORY_CODES(X) \
  X(8u) X(16s) X(16sc) X(32s) X(32sc) X(32f) X(32fc) X(64s) X(64sc) X(64f) X(64fc)
