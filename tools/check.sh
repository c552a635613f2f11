#!/usr/bin/env bash
# Builds vrks and runs the whole suite twice: optimised, then under
# AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/deps.sh --tests
jobs=$(nproc)

echo "== optimised build"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DVRKS_BUILD_BENCH=ON > /dev/null
cmake --build build
ctest --test-dir build --output-on-failure -j "$jobs"

echo "== AddressSanitizer + UndefinedBehaviorSanitizer build"
cmake -S . -B build-sanitize -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVRKS_SANITIZE=ON > /dev/null
cmake --build build-sanitize
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build-sanitize --output-on-failure -j "$jobs"
