#!/usr/bin/env bash
# Installs the Debian packages that building (and, with --tests, testing and
# benchmarking) vrks needs, if any is missing.
set -euo pipefail
packages=(cmake ninja-build g++ pkg-config)
if [ "${1:-}" = "--tests" ]; then
  packages+=(libgtest-dev libbenchmark-dev libfftw3-dev)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo=sudo
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
