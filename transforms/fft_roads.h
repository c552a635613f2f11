// The FFT kernels of one instruction-set road, as a table. The AVX2 road is
// the baseline; processors with AVX-512 run the same code compiled with its
// wider register file. Both compute the same operations in the same order.
#pragma once

#include <cstddef>

#include "frame/check.h"
#include "frame/state.h"
#include "transforms/fft_state.h"

namespace vrks::fft {

template <class T>
struct TypeRoads {
  // [inverse] transform of order n with the tables of the state
  void (*interleaved[2])(const FloatState<T>*, int n, const T* src, T* dst, T* work, bool scaled, T factor);
  void (*split[2])(const FloatState<T>*, int n, const T* sre, const T* sim, T* dre, T* dim, T* work,
                   bool scaled, T factor);
  void (*split_step)(T* x, size_t M, const T* A, const T* B);
  void (*merge_step)(T* x, size_t M, const T* U, const T* V);
};

struct Roads {
  TypeRoads<float> f32;
  TypeRoads<double> f64;
};

const Roads& roads_avx2();
const Roads& roads_avx512();
// The road of this processor, chosen once.
const Roads& roads();

template <class T>
const TypeRoads<T>& roads_of() {
  if constexpr (sizeof(T) == 4) return roads().f32;
  else return roads().f64;
}

// The entry of every floating transform: the state and its tag, then the data
// pointers, then the work buffer (caller's, or allocated when it is null).
template <class T, class... P>
VrkStatus begin_transform(const void* state, uint32_t tag, Vrk8u* buffer, WorkBuffer& work,
                          const FloatState<T>*& st, P... data) {
  VRKS_CHECK(check_state(state, tag));
  if (any_null(data...)) return vrkStatusNullPointer;
  st = static_cast<const FloatState<T>*>(state);
  return work.acquire(buffer, st->bufferSize);
}

}  // namespace vrks::fft
