#define VRKS_ROADS_NS roads512
#define VRKS_ROADS_V V512
#include "bytes_roads_impl.inc"
