// Entry points to the byte kernels' roads for each vector width; each set is
// built in its own translation unit with its instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

#define VRKS_ROADS(ns)                                                              \
  namespace ns {                                                                    \
  bool available();                                                                 \
  void forward(uint8_t* d, const uint8_t* s, size_t n);                             \
  void stream(uint8_t* d, const uint8_t* s, size_t n);                              \
  void string(uint8_t* d, const uint8_t* s, size_t n);                              \
  void move(uint8_t* d, const uint8_t* s, size_t n);                                \
  void fill(uint8_t* d, const uint8_t* pattern, size_t width, size_t n);            \
  void stream_fill(uint8_t* d, const uint8_t* pattern, size_t width, size_t n);     \
  /* The whole kernels, every size: */                                              \
  void copy_any(uint8_t* d, const uint8_t* s, size_t n);                            \
  void move_any(uint8_t* d, const uint8_t* s, size_t n);                            \
  void fill_any(uint8_t* d, const uint8_t* pattern, size_t width, size_t n);        \
  }
VRKS_ROADS(roads256)
VRKS_ROADS(roads512)
#undef VRKS_ROADS
