#!/usr/bin/env bash
# Installs the build tree into a scratch prefix, then builds a C99 client
# against it twice: with pkg-config, and as a CMake project with
# find_package(vrks) (shared and static).
set -euo pipefail
build=$1 here=$2 cmake=$3
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
"$cmake" --install "$build" --prefix "$tmp/prefix" > /dev/null
pc=$(dirname "$(find "$tmp/prefix" -name vrks.pc)")
libdir=$(dirname "$(find "$tmp/prefix" -name 'libvrks.so' | head -n 1)")
export PKG_CONFIG_PATH=$pc
cc -std=c99 -pedantic -Wall -Werror "$here/client.c" -o "$tmp/client" $(pkg-config --cflags --libs vrks)
LD_LIBRARY_PATH=$libdir "$tmp/client"
"$cmake" -S "$here" -B "$tmp/cmake-client" -G Ninja -DCMAKE_PREFIX_PATH="$tmp/prefix" > /dev/null
"$cmake" --build "$tmp/cmake-client" > /dev/null
LD_LIBRARY_PATH=$libdir "$tmp/cmake-client/client"
"$tmp/cmake-client/client_static"
echo "installed client builds and runs"
