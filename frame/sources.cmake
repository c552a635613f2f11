list(APPEND VRKS_SOURCES
  frame/version.cpp
  frame/cpu.cpp
  frame/bytes.cpp
  frame/memory.cpp
  frame/reorder.cpp
  frame/copy_bits.cpp
)
