list(APPEND VRKS_SOURCES
  frame/version.cpp
  frame/cpu.cpp
  frame/bytes.cpp
  frame/bytes_avx512.cpp
  frame/memory.cpp
  frame/memory_avx512.cpp
  frame/reorder.cpp
  frame/copy_bits.cpp
)
# Roads chosen at run time on processors with AVX-512.
set_source_files_properties(frame/bytes_avx512.cpp frame/memory_avx512.cpp PROPERTIES
  COMPILE_OPTIONS "-mavx512f;-mavx512bw;-mavx512dq;-mavx512vl")
