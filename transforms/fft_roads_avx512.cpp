// The FFT kernels compiled for processors with AVX-512 (32 vector registers).
#define VRKS_FFT_ROADS roads_avx512
#include "transforms/fft_roads.inc"
