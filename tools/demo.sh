#!/usr/bin/env bash
# Builds the library and runs the demonstration program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/deps.sh
cmake -S . -B build-demo -G Ninja -DCMAKE_BUILD_TYPE=Release -DVRKS_BUILD_TESTS=OFF > /dev/null
cmake --build build-demo
./build-demo/examples/vrks_demo
