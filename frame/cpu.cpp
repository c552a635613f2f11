#include "frame/cpu.h"

#include <cpuid.h>

namespace vrks {

bool cpu_has_fast_strings() {
  static const bool has = [] {
    unsigned a, b, c, d;
    if (__get_cpuid_max(0, nullptr) < 7) return false;
    __cpuid_count(7, 0, a, b, c, d);
    return (b & (1u << 9)) != 0 && (d & (1u << 4)) != 0;  // ERMS and FSRM
  }();
  return has;
}

namespace {

// Walks the deterministic cache-parameter leaf (4 on one vendor's parts,
// 0x8000001D on the other's) and returns the size of the highest-level data
// or unified cache.
int64_t query_outer_cache() {
  unsigned a, b, c, d;
  if (!__get_cpuid(0, &a, &b, &c, &d)) return 0;
  const unsigned max_basic = a;
  unsigned leaf = 0;
  if (max_basic >= 4) leaf = 4;
  unsigned max_ext = __get_cpuid_max(0x80000000u, nullptr);
  // The extended leaf exists where topology extensions are reported.
  if (max_ext >= 0x8000001Du) {
    __cpuid(0x80000001u, a, b, c, d);
    if (c & (1u << 22)) leaf = 0x8000001Du;
  }
  int best_level = 0;
  int64_t best = 0;
  for (unsigned sub = 0; leaf != 0 && sub < 16; ++sub) {
    __cpuid_count(leaf, sub, a, b, c, d);
    const unsigned type = a & 31;
    if (type == 0) break;
    if (type != 1 && type != 3) continue;  // data or unified
    const int level = int((a >> 5) & 7);
    const int64_t ways = ((b >> 22) & 1023) + 1;
    const int64_t partitions = ((b >> 12) & 1023) + 1;
    const int64_t line = (b & 4095) + 1;
    const int64_t sets = int64_t(c) + 1;
    const int64_t size = ways * partitions * line * sets;
    if (level > best_level || (level == best_level && size > best)) {
      best_level = level;
      best = size;
    }
  }
  // Without the deterministic leaf, the extended leaf that reports the
  // third-level cache in 512 KiB units.
  if (best == 0 && max_ext >= 0x80000006u) {
    __cpuid(0x80000006u, a, b, c, d);
    best = int64_t(d >> 18) * 512 * 1024;
  }
  return best;
}

}  // namespace

int64_t outer_cache_bytes() {
  static const int64_t size = query_outer_cache();
  return size;
}

}  // namespace vrks
