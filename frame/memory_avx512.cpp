// The copy, move, fill and clear exports on 64-byte vectors.
#include "frame/memory_entries.h"

namespace vrks::avx512 {

#define VRKS_ENTRIES(code)                                                                         \
  VrkStatus copy_##code(const Vrk##code* s, Vrk##code* d, int n) { return copy_entry<V512>(s, d, n); } \
  VrkStatus move_##code(const Vrk##code* s, Vrk##code* d, int n) { return move_entry<V512>(s, d, n); } \
  VrkStatus set_##code(Vrk##code v, Vrk##code* d, int n) { return set_entry<V512>(v, d, n); }          \
  VrkStatus zero_##code(Vrk##code* d, int n) { return zero_entry<V512>(d, n); }
VRKS_MEMORY_CODES(VRKS_ENTRIES)

}  // namespace vrks::avx512
