// State objects and work buffers: id tags, the InitAlloc recipe, Free rules,
// and the caller's scratch buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vrks.h"

namespace vrks {

// Every state object starts with its 32-bit id tag.
inline uint32_t state_tag(const void* state) {
  uint32_t tag;
  std::memcpy(&tag, state, sizeof tag);
  return tag;
}
inline void set_state_tag(void* state, uint32_t tag) { std::memcpy(state, &tag, sizeof tag); }

// Four characters held as one 32-bit tag, first character most significant.
constexpr uint32_t tag4(char a, char b, char c, char d) {
  return uint32_t(uint8_t(a)) << 24 | uint32_t(uint8_t(b)) << 16 | uint32_t(uint8_t(c)) << 8 |
         uint32_t(uint8_t(d));
}

// The state pointer is tested first (vrkStatusNullPointer), then its tag
// (vrkStatusContextMismatch).
inline VrkStatus check_state(const void* state, uint32_t tag) {
  if (state == nullptr) return vrkStatusNullPointer;
  if (state_tag(state) != tag) return vrkStatusContextMismatch;
  return vrkStatusOk;
}

template <class T = uint8_t>
inline T* align_up(void* p, size_t alignment) {
  auto a = reinterpret_cast<uintptr_t>(p);
  return reinterpret_cast<T*>(a + ((0 - a) & (alignment - 1)));
}

// ---- InitAlloc --------------------------------------------------------------

struct StateSizes {
  int state = 0;    // bytes of the state block
  int scratch = 0;  // bytes of scratch that Init needs, 0 for none
};

// The allocating initialiser of every family:
//   query(StateSizes&) -> VrkStatus       the family's size query
//   init(uint8_t* block, uint8_t* scratch, S** made) -> VrkStatus
//   mark_allocated(S*)                     sets the family's allocated flag
// A null `out` gives vrkStatusNullPointer; the query's failure is returned as
// it stands; a failed allocation gives vrkStatusMemoryAllocation. The scratch
// is released on every road, the block on every failure.
template <class S, class Query, class Init, class Mark>
VrkStatus init_alloc(S** out, Query&& query, Init&& init, Mark&& mark_allocated) {
  if (out == nullptr) return vrkStatusNullPointer;
  StateSizes sizes;
  if (VrkStatus s = query(sizes); s != vrkStatusOk) return s;
  Vrk8u* block = vrksMalloc_8u(sizes.state);
  if (block == nullptr) return vrkStatusMemoryAllocation;
  Vrk8u* scratch = nullptr;
  if (sizes.scratch > 0) {
    scratch = vrksMalloc_8u(sizes.scratch);
    if (scratch == nullptr) {
      vrksFree(block);
      return vrkStatusMemoryAllocation;
    }
  }
  S* made = nullptr;
  VrkStatus s = init(block, scratch, &made);
  if (scratch != nullptr) vrksFree(scratch);
  if (s != vrkStatusOk) {
    vrksFree(block);
    return s;
  }
  mark_allocated(made);
  *out = made;
  return vrkStatusOk;
}

// ---- Free -------------------------------------------------------------------

// What a family's Free does once the pointer and the tag have passed.
enum class FreeRule {
  ClearTagIfAllocated,  // tag set to 0; released only if it was allocated
  ReleaseIfAllocated,   // released only if allocated; the tag stays
  ReleaseAlways,        // released unconditionally; the tag stays
};

// `release_inner` frees what the object owns beyond its own block and returns
// a status; it runs only on the roads that release the object.
template <class S, class Inner>
VrkStatus free_state(S* state, uint32_t tag, FreeRule rule, bool allocated, Inner&& release_inner) {
  if (VrkStatus s = check_state(state, tag); s != vrkStatusOk) return s;
  if (rule == FreeRule::ClearTagIfAllocated) set_state_tag(state, 0);
  if (rule != FreeRule::ReleaseAlways && !allocated) return vrkStatusOk;
  if (VrkStatus s = release_inner(); s != vrkStatusOk) return s;
  vrksFree(state);
  return vrkStatusOk;
}

template <class S>
VrkStatus free_state(S* state, uint32_t tag, FreeRule rule, bool allocated) {
  return free_state(state, tag, rule, allocated, [] { return VrkStatus(vrkStatusOk); });
}

// ---- caller's work buffers --------------------------------------------------

// The size that GetBufSize reports for a stored scratch size: 32 bytes of
// margin pay for aligning a caller's buffer up inside.
constexpr int buffer_size_with_margin(int stored) { return stored > 0 ? stored + 32 : 0; }

// Scratch for one call: the caller's buffer aligned up to 32 bytes, or an own
// block of the stored size (64-byte aligned) released when the guard dies.
class WorkBuffer {
 public:
  WorkBuffer() = default;
  WorkBuffer(const WorkBuffer&) = delete;
  WorkBuffer& operator=(const WorkBuffer&) = delete;
  ~WorkBuffer() {
    if (own_ != nullptr) vrksFree(own_);
  }

  // `stored` is the scratch size the kernels need; 0 ignores `caller`.
  VrkStatus acquire(void* caller, int stored) {
    if (stored <= 0) return vrkStatusOk;
    if (caller != nullptr) {
      data_ = align_up(caller, 32);
      return vrkStatusOk;
    }
    own_ = vrksMalloc_8u(stored);
    if (own_ == nullptr) return vrkStatusMemoryAllocation;
    data_ = own_;
    return vrkStatusOk;
  }
  template <class T = uint8_t>
  T* data() const { return reinterpret_cast<T*>(data_); }

 private:
  Vrk8u* data_ = nullptr;
  Vrk8u* own_ = nullptr;
};

}  // namespace vrks
