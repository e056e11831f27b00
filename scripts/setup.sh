#!/usr/bin/env bash
# Installs the Debian packages that the build and the tests need (only those missing),
# then configures and builds one build tree.
#   scripts/setup.sh BUILD_DIR [extra cmake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake pkg-config clang libclang-rt-14-dev
  libfftw3-dev liblapack-dev libblas-dev zlib1g-dev libminizip-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  python3 python3-dev pybind11-dev python3-numpy python3-scipy python3-pytest
  python3-olefile libgsf-1-dev python3-gi gir1.2-gsf-1
  libcairo2-dev python3-pil
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}"
fi

build_dir=${1:-build}
shift || true
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$build_dir" -j "$(nproc)"
