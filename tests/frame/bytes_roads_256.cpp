#define VRKS_ROADS_NS roads256
#define VRKS_ROADS_V V256
#include "bytes_roads_impl.inc"
bool roads256::available() { return true; }
bool roads512::available() { return vrks::cpu_has_avx512(); }
