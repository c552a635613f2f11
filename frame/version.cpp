#include "vrks.h"

namespace {
constexpr VrkLibraryVersion kVersion = {
    6, 1, 137, 811, {'e', '9', 0, 0}, "vrkse9-6.1.dll", "6.1 build 137.20", "Jun 10 2009",
};
}  // namespace

const VrkLibraryVersion* vrksGetLibVersion(void) { return &kVersion; }
