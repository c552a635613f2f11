// The AVX2 road of the FFT kernels, and the choice of road.
#define VRKS_FFT_ROADS roads_avx2
#include "transforms/fft_roads.inc"

#include "frame/cpu.h"

namespace vrks::fft {

const Roads& roads() {
  static const Roads& chosen = cpu_has_avx512() ? roads_avx512() : roads_avx2();
  return chosen;
}

}  // namespace vrks::fft
