#!/usr/bin/env bash
# install-packages.sh [build] [test] [cocoa] [tidy] [fuzz] [bench] [art] [valgrind]: installs what is
# missing of the Debian packages that building, testing, checking, fuzzing, measuring, drawing the
# editor's pictures or running under valgrind need. Asks nothing of the network when all are there.
set -euo pipefail

declare -A sets=(
  [build]="g++ cmake ninja-build pkg-config libpng-dev libfreetype-dev libfontconfig-dev
           libxcb1-dev libxcb-shm0-dev libxcb-randr0-dev libxcb-xtest0-dev libsndfile1-dev
           libcli11-dev nlohmann-json3-dev libgtest-dev fonts-dejavu-core gnuplot-nox"
  [test]="clang-format xvfb xauth"
  [cocoa]="gobjc++ libgnustep-gui-dev gnustep-back0.29-cairo gnustep-gui-runtime"
  [tidy]="clang clang-tidy"
  [fuzz]="clang libclang-rt-14-dev"
  [bench]="libbenchmark-dev libfftw3-dev libzita-convolver-dev"
  [art]="librsvg2-bin"
  [valgrind]="valgrind"
)

missing=()
for name in "${@:-build}"; do
  for package in ${sets[$name]:?no such set of packages}; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $status == installed ]] || missing+=("$package")
  done
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
  if ! command -v sudo >/dev/null; then
    echo "Please install as root: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -q -y --no-install-recommends "${missing[@]}"
