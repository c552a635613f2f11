// Size queries, initialisation and release of the thirteen FFT state kinds.
#include <array>
#include <cmath>
#include <cstring>

#include "frame/check.h"
#include "frame/state.h"
#include "transforms/fft_engine.h"
#include "transforms/fft_state.h"
#include "transforms/fft_tables.h"

namespace vrks::fft {
namespace {

bool flag_ok(int flag) {
  return flag == vrkFFTScaleFwdByN || flag == vrkFFTScaleInvByN || flag == vrkFFTScaleBySqrtN ||
         flag == vrkFFTScaleNone;
}

enum class Kind { Complex, Real };

// ---- floating kinds -------------------------------------------------------------

template <class T, Kind K>
VrkStatus float_sizes(int order, int flag, Sizes& s) {
  if (order < 0 || order > kMaxOrder) return vrkStatusFFTOrder;
  if (!flag_ok(flag)) return vrkStatusFFTFlag;
  if (order > Limits<T>::max_order) return vrkStatusFFTOrder;
  s = K == Kind::Complex ? complex_sizes<T>(order) : real_sizes<T>(order);
  return vrkStatusOk;
}

template <class Sz>
VrkStatus get_size(int order, int* state, int* init, int* buffer, Sz&& sizes) {
  if (order < 0 || order > kMaxOrder) return vrkStatusFFTOrder;
  if (any_null(state, init, buffer)) return vrkStatusNullPointer;
  Sizes s;
  VRKS_CHECK(sizes(s));
  *state = s.state, *init = s.init, *buffer = s.buffer;
  return vrkStatusOk;
}

template <class T, Kind K>
VrkStatus float_get_size(int order, int flag, int* state, int* init, int* buffer) {
  return get_size(order, state, init, buffer, [&](Sizes& s) { return float_sizes<T, K>(order, flag, s); });
}

// Carves 32-byte aligned tables out of the object's block.
struct Cursor {
  uint8_t* p;
  template <class X>
  X* take(size_t bytes) {
    X* at = reinterpret_cast<X*>(p);
    p += (bytes + 31) & ~size_t(31);
    return at;
  }
};

// The complex tables of order n behind `cur`: gather table and stage twiddles.
template <class T>
void build_complex(FloatState<T>* st, int n, const Sine<T>& sine, int table_order, Cursor& cur) {
  st->plan = make_plan<T>(n);
  const size_t N = size_t(1) << n;
  st->bitRevTable = cur.take<uint32_t>((N / 8 / Simd<T>::W) * sizeof(uint32_t));
  build_gather_table<T>(st->plan, n, st->bitRevTable);
  st->twiddleTable = cur.take<T>(2 * (N - 8) * sizeof(T));
  build_twiddles<T>(st->plan, n, sine, table_order, st->twiddleTable);
  st->bufferSize = int(work_bytes<T>(n));
}

template <class T, Kind K>
VrkStatus float_init(FloatState<T>** out, int order, int flag, int hint, Vrk8u* memory,
                     Vrk8u* init_buffer, uint32_t tag) {
  if (out == nullptr) return vrkStatusNullPointer;
  if (order < 0 || order > Limits<T>::max_order) return vrkStatusFFTOrder;
  if (memory == nullptr) return vrkStatusNullPointer;
  auto* st = align_up<FloatState<T>>(memory, 32);
  if (!flag_ok(flag)) {
    st->idTag = 0;
    return vrkStatusFFTFlag;
  }
  if (order > 10 && init_buffer == nullptr) return vrkStatusNullPointer;
  std::memset(st, 0, sizeof *st);
  st->order = order;
  st->hint = hint;
  const double n_points = double(size_t(1) << order);
  switch (flag) {
    case vrkFFTScaleFwdByN: st->fwdScaled = 1; st->scaleFactor = T(1) / T(n_points); break;
    case vrkFFTScaleInvByN: st->invScaled = 1; st->scaleFactor = T(1) / T(n_points); break;
    case vrkFFTScaleBySqrtN:
      st->fwdScaled = st->invScaled = 1;
      st->scaleFactor = T(1.0 / std::sqrt(n_points));
      break;
    default: break;
  }
  Cursor cur{reinterpret_cast<uint8_t*>(st) + 128};
  // The quarter-wave table of this order: the prepared one up to order 10,
  // computed into the init buffer above.
  Sine<T> sine{prepared_sine<T>(), 256};
  int table_order = 10;
  if (order > 10) {
    T* s = align_up<T>(init_buffer, 32);
    fill_sine(s, order);
    sine = Sine<T>{s, size_t(1) << (order - 2)};
    table_order = order;
  }
  if constexpr (K == Kind::Complex) {
    if (order > Limits<T>::straight) build_complex(st, order, sine, table_order, cur);
  } else {
    if (order > Limits<T>::real_straight) {
      if (order - 1 > Limits<T>::straight) build_complex(st, order - 1, sine, table_order, cur);
      const size_t quarter = size_t(1) << (order - 2);
      st->realSplitTable = cur.take<T>(2 * quarter * sizeof(T));
      st->realMergeTable = cur.take<T>(2 * quarter * sizeof(T));
      build_real_tables(sine, table_order, order, st->realSplitTable, st->realMergeTable);
    }
  }
  st->idTag = tag;
  *out = st;
  return vrkStatusOk;
}

// ---- 16-bit kinds -----------------------------------------------------------------

enum class I16 { C16sc, C16s, R16s };

constexpr uint32_t tag_of(I16 k) { return k == I16::C16sc ? kTagC16sc : k == I16::C16s ? kTagC16s : kTagR16s; }

bool fixed_road(int order, int hint) { return order >= 1 && order <= 3 && (hint == 0 || hint == 1); }

template <I16 K>
VrkStatus int16_sizes(int order, int flag, int hint, Sizes& s) {
  if (order < 0 || order > kMaxOrder) return vrkStatusFFTOrder;
  if (!flag_ok(flag)) return vrkStatusFFTFlag;
  const long long N = 1LL << order;
  if (order == 0) {
    s = {104, 0, 0};
    return vrkStatusOk;
  }
  if (fixed_road(order, hint)) {
    const long long q = a32(N / 2 + 2) + 32;
    if (K == I16::R16s) s = {int(a32(4 * N) + a32(N / 2 + 4) + a32(8 * N) + 128), int(q), int(4 * (N + 2) + 32)};
    else s = {int(a32(8 * N) + a32(N + 4) + 128), int(q), int((K == I16::C16sc ? 8 : 12) * N + 32)};
    return vrkStatusOk;
  }
  Sizes f;
  if (K == I16::R16s) VRKS_CHECK((float_sizes<float, Kind::Real>(order, flag, f)));
  else VRKS_CHECK((float_sizes<float, Kind::Complex>(order, flag, f)));
  const long long area = K == I16::R16s ? 4 * N + 8 : 8 * N;
  s = {f.state + 128, f.init + 32, int(f.buffer + area + 32)};
  return vrkStatusOk;
}

template <I16 K>
VrkStatus int16_init(Int16State** out, int order, int flag, int hint, Vrk8u* memory, Vrk8u* init_buffer) {
  if (out == nullptr) return vrkStatusNullPointer;
  if (order < 0 || order > kMaxOrder) return vrkStatusFFTOrder;
  if (memory == nullptr) return vrkStatusNullPointer;
  auto* st = align_up<Int16State>(memory, 32);
  if (!flag_ok(flag)) {
    st->idTag = 0;
    return vrkStatusFFTFlag;
  }
  if (order > 0 && init_buffer == nullptr) return vrkStatusNullPointer;
  std::memset(st, 0, sizeof *st);
  st->order = order;
  st->hint = hint;
  switch (flag) {
    case vrkFFTScaleFwdByN: st->fwdShift = order; break;
    case vrkFFTScaleInvByN: st->invShift = order; break;
    case vrkFFTScaleBySqrtN: st->fwdShift = st->invShift = order >> 1, st->oddHalf = order & 1; break;
    default: break;
  }
  const size_t N = size_t(1) << order;
  Cursor cur{reinterpret_cast<uint8_t*>(st) + 96};
  if (order > 0 && fixed_road(order, hint)) {
    int16_t* q = align_up<int16_t>(init_buffer, 32);
    fill_q14(q, order);
    const int complex_order = K == I16::R16s ? order - 1 : order;
    st->bitRevTable = cur.take<uint32_t>(((size_t(1) << complex_order) + 4) * 1);
    build_pair_list(st->bitRevTable, complex_order);
    if (K == I16::R16s) {
      st->twiddleTable = cur.take<int16_t>(4 * N);
      build_q14_twiddles(q, order, complex_order, st->twiddleTable);
      st->splitTable = cur.take<int16_t>(8 * N);
      build_q14_twiddles(q, order, order, st->splitTable);
      st->bufferSize = int(4 * (N + 2));
    } else {
      st->twiddleTable = cur.take<int16_t>(8 * N);
      build_q14_twiddles(q, order, order, st->twiddleTable);
      st->bufferSize = int((K == I16::C16sc ? 8 : 12) * N);
    }
  } else if (order > 0) {
    st->useFloat = 1;
    Vrk8u* inner = reinterpret_cast<Vrk8u*>(st) + sizeof *st;
    VrkStatus s;
    int buf = 0;
    if (K == I16::R16s) {
      FloatState<float>* f = nullptr;
      s = float_init<float, Kind::Real>(&f, order, flag, 0, inner, init_buffer, kTagR32f);
      if (s == vrkStatusOk) st->floatState = f, buf = buffer_size_with_margin(f->bufferSize);
    } else {
      FloatState<float>* f = nullptr;
      s = float_init<float, Kind::Complex>(&f, order, flag, 0, inner, init_buffer,
                                            K == I16::C16sc ? kTagC32fc : kTagC32f);
      if (s == vrkStatusOk) st->floatState = f, buf = buffer_size_with_margin(f->bufferSize);
    }
    if (s != vrkStatusOk) {
      st->idTag = 0;
      return s;
    }
    st->bufferSize = int(buf + (K == I16::R16s ? 4 * N + 8 : 8 * N));
  }
  st->idTag = tag_of(K);
  *out = st;
  return vrkStatusOk;
}

// ---- 32-bit integer kinds -----------------------------------------------------------

enum class I32 { C32sc, C32s, R32s, R16s32s };

constexpr uint32_t tag_of(I32 k) {
  return k == I32::C32sc ? kTagC32sc : k == I32::C32s ? kTagC32s : k == I32::R32s ? kTagR32s : kTagR16s32s;
}

template <I32 K>
VrkStatus int32_inner_sizes(int order, int flag, Sizes& s) {
  switch (K) {
    case I32::C32sc:
    case I32::C32s: return float_sizes<double, Kind::Complex>(order, flag, s);
    case I32::R32s: return float_sizes<double, Kind::Real>(order, flag, s);
    default: return float_sizes<float, Kind::Real>(order, flag, s);
  }
}

template <I32 K>
long long int32_area(int order) {
  const long long N = 1LL << order;
  return K == I32::C32sc || K == I32::C32s ? 16 * N : K == I32::R32s ? 8 * N + 16 : 4 * N + 8;
}

template <I32 K>
VrkStatus int32_sizes(int order, int flag, Sizes& s) {
  if (order < 0 || order > kMaxOrder) return vrkStatusFFTOrder;
  if (!flag_ok(flag)) return vrkStatusFFTFlag;
  Sizes f;
  VRKS_CHECK(int32_inner_sizes<K>(order, flag, f));
  const long long buffer = f.buffer + int32_area<K>(order);
  s = {f.state + 64, f.init > 0 ? f.init + 32 : 0, int(buffer > 0 ? buffer + 32 : 0)};
  return vrkStatusOk;
}

template <I32 K>
VrkStatus int32_init(Int32State** out, int order, int flag, int hint, Vrk8u* memory, Vrk8u* init_buffer) {
  if (out == nullptr) return vrkStatusNullPointer;
  if (order < 0 || order > kMaxOrder) return vrkStatusFFTOrder;
  if (memory == nullptr) return vrkStatusNullPointer;
  auto* st = align_up<Int32State>(memory, 32);
  std::memset(st, 0, sizeof *st);
  st->order = order;
  st->hint = hint;
  Vrk8u* inner = reinterpret_cast<Vrk8u*>(st) + sizeof *st;
  VrkStatus s;
  int buf = 0;
  if constexpr (K == I32::R16s32s) {
    FloatState<float>* f = nullptr;
    s = float_init<float, Kind::Real>(&f, order, flag, 0, inner, init_buffer, kTagR32f);
    if (s == vrkStatusOk) st->floatState = f, buf = buffer_size_with_margin(f->bufferSize);
  } else {
    FloatState<double>* f = nullptr;
    if constexpr (K == I32::R32s) s = float_init<double, Kind::Real>(&f, order, flag, 0, inner, init_buffer, kTagR64f);
    else s = float_init<double, Kind::Complex>(&f, order, flag, 0, inner, init_buffer,
                                                K == I32::C32sc ? kTagC64fc : kTagC64f);
    if (s == vrkStatusOk) st->floatState = f, buf = buffer_size_with_margin(f->bufferSize);
  }
  if (s != vrkStatusOk) {
    st->idTag = 0;
    return s;
  }
  st->bufferSize = int(buf + int32_area<K>(order));
  st->idTag = tag_of(K);
  *out = st;
  return vrkStatusOk;
}

// ---- shared entry shapes ---------------------------------------------------------------

// InitAlloc: Init in a block of its own, marked allocated on success.
template <class S, class Sz, class In>
VrkStatus init_alloc_state(S** out, Sz&& sizes, In&& init) {
  return init_alloc(
      out,
      [&](StateSizes& z) {
        Sizes s;
        VRKS_CHECK(sizes(s));
        z.state = s.state;
        z.scratch = s.init;
        return VrkStatus(vrkStatusOk);
      },
      [&](uint8_t* block, uint8_t* scratch, S** made) { return init(block, scratch, made); },
      [](S* made) { made->allocated = 1; });
}

template <class S>
VrkStatus free_any(S* state, uint32_t tag) {
  if (VrkStatus s = check_state(state, tag); s != vrkStatusOk) return s;
  const bool allocated = state->allocated == 1;
  return free_state(state, tag, FreeRule::ClearTagIfAllocated, allocated);
}

template <class S>
VrkStatus buf_size(const S* state, int* size, uint32_t tag) {
  if (any_null(state, size)) return vrkStatusNullPointer;
  if (state_tag(state) != tag) return vrkStatusContextMismatch;
  *size = buffer_size_with_margin(state->bufferSize);
  return vrkStatusOk;
}

}  // namespace
}  // namespace vrks::fft

using namespace vrks;
using namespace vrks::fft;

// ---- exports ---------------------------------------------------------------------------

#define VRKS_FFT_FLOAT_KIND(KIND, T, K, TAG)                                                       \
  VrkStatus vrksFFTGetSize_##KIND(int order, int flag, int hint, int* stateSize, int* initSize,   \
                                  int* bufferSize) {                                               \
    return float_get_size<T, K>(order, flag, stateSize, initSize, bufferSize);                    \
  }                                                                                                \
  VrkStatus vrksFFTInit_##KIND(VrksFFTState_##KIND** stateOut, int order, int flag, int hint,     \
                               Vrk8u* stateMemory, Vrk8u* initBuffer) {                            \
    return float_init<T, K>(reinterpret_cast<FloatState<T>**>(stateOut), order, flag, hint,       \
                            stateMemory, initBuffer, TAG);                                         \
  }                                                                                                \
  VrkStatus vrksFFTInitAlloc_##KIND(VrksFFTState_##KIND** stateOut, int order, int flag, int hint) { \
    return init_alloc_state(                                                                       \
        reinterpret_cast<FloatState<T>**>(stateOut),                                               \
        [&](Sizes& s) { return float_sizes<T, K>(order, flag, s); },                               \
        [&](uint8_t* block, uint8_t* scratch, FloatState<T>** made) {                              \
          return float_init<T, K>(made, order, flag, hint, block, scratch, TAG);                   \
        });                                                                                        \
  }                                                                                                \
  VrkStatus vrksFFTFree_##KIND(VrksFFTState_##KIND* state) {                                      \
    return free_any(reinterpret_cast<FloatState<T>*>(state), TAG);                                \
  }                                                                                                \
  VrkStatus vrksFFTGetBufSize_##KIND(const VrksFFTState_##KIND* state, int* size) {               \
    return buf_size(reinterpret_cast<const FloatState<T>*>(state), size, TAG);                    \
  }

VRKS_FFT_FLOAT_KIND(C_32fc, float, Kind::Complex, kTagC32fc)
VRKS_FFT_FLOAT_KIND(C_32f, float, Kind::Complex, kTagC32f)
VRKS_FFT_FLOAT_KIND(R_32f, float, Kind::Real, kTagR32f)
VRKS_FFT_FLOAT_KIND(C_64fc, double, Kind::Complex, kTagC64fc)
VRKS_FFT_FLOAT_KIND(C_64f, double, Kind::Complex, kTagC64f)
VRKS_FFT_FLOAT_KIND(R_64f, double, Kind::Real, kTagR64f)

#define VRKS_FFT_INT_KIND(KIND, S, SIZES, INIT, TAG)                                               \
  VrkStatus vrksFFTGetSize_##KIND(int order, int flag, int hint, int* stateSize, int* initSize,   \
                                  int* bufferSize) {                                               \
    return get_size(order, stateSize, initSize, bufferSize,                                        \
                    [&](Sizes& s) { return SIZES; });                                              \
  }                                                                                                \
  VrkStatus vrksFFTInit_##KIND(VrksFFTState_##KIND** stateOut, int order, int flag, int hint,     \
                               Vrk8u* stateMemory, Vrk8u* initBuffer) {                            \
    return INIT(reinterpret_cast<S**>(stateOut), order, flag, hint, stateMemory, initBuffer);     \
  }                                                                                                \
  VrkStatus vrksFFTInitAlloc_##KIND(VrksFFTState_##KIND** stateOut, int order, int flag, int hint) { \
    return init_alloc_state(                                                                       \
        reinterpret_cast<S**>(stateOut), [&](Sizes& s) { return SIZES; },                          \
        [&](uint8_t* block, uint8_t* scratch, S** made) {                                          \
          return INIT(made, order, flag, hint, block, scratch);                                    \
        });                                                                                        \
  }                                                                                                \
  VrkStatus vrksFFTFree_##KIND(VrksFFTState_##KIND* state) {                                      \
    return free_any(reinterpret_cast<S*>(state), TAG);                                            \
  }                                                                                                \
  VrkStatus vrksFFTGetBufSize_##KIND(const VrksFFTState_##KIND* state, int* size) {               \
    return buf_size(reinterpret_cast<const S*>(state), size, TAG);                                \
  }

VRKS_FFT_INT_KIND(C_16sc, Int16State, (int16_sizes<I16::C16sc>(order, flag, hint, s)), int16_init<I16::C16sc>, kTagC16sc)
VRKS_FFT_INT_KIND(C_16s, Int16State, (int16_sizes<I16::C16s>(order, flag, hint, s)), int16_init<I16::C16s>, kTagC16s)
VRKS_FFT_INT_KIND(R_16s, Int16State, (int16_sizes<I16::R16s>(order, flag, hint, s)), int16_init<I16::R16s>, kTagR16s)
VRKS_FFT_INT_KIND(C_32sc, Int32State, (int32_sizes<I32::C32sc>(order, flag, s)), int32_init<I32::C32sc>, kTagC32sc)
VRKS_FFT_INT_KIND(C_32s, Int32State, (int32_sizes<I32::C32s>(order, flag, s)), int32_init<I32::C32s>, kTagC32s)
VRKS_FFT_INT_KIND(R_32s, Int32State, (int32_sizes<I32::R32s>(order, flag, s)), int32_init<I32::R32s>, kTagR32s)
VRKS_FFT_INT_KIND(R_16s32s, Int32State, (int32_sizes<I32::R16s32s>(order, flag, s)), int32_init<I32::R16s32s>, kTagR16s32s)
