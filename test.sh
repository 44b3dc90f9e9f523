#!/usr/bin/env bash
# test.sh [release|debug|scalar|asan|tsan|cocoa|fuzz]: installs what is missing, builds that preset
# with warnings as errors and runs all tests in it. Without a name: release.
set -euo pipefail
cd "$(dirname "$0")"

preset=${1:-release}
case $preset in
  release | debug | scalar | asan | tsan) packages=(build test) ;;
  cocoa) packages=(build test cocoa) ;;
  fuzz) packages=(build test fuzz) ;;
  *)
    sed -n '2,3s/^# //p' "$0" >&2
    exit 2
    ;;
esac

scripts/install-packages.sh "${packages[@]}"
scripts/check-layers
scripts/check-format
cmake --preset "$preset" -DTOLMARA_WERROR=ON >/dev/null
if [[ $preset == fuzz ]]; then
  cmake --build --preset fuzz --target fuzzers
  exec scripts/fuzz.sh "build/$preset"
fi
screen=(xvfb-run -a -s '-screen 0 1280x1024x24')
if [[ $preset == cocoa ]]; then
  cmake --build --preset cocoa --target graphics_mac_tests mac_module_tests
  for program in graphics_mac_tests mac_module_tests; do
    "${screen[@]}" "build/cocoa/tests/$program"
  done
  exit
fi
cmake --build --preset "$preset"
scripts/check-promises "build/$preset"

export UBSAN_OPTIONS=print_stacktrace=1
run=(ctest --test-dir "build/$preset" --output-on-failure -j2)
# The thread sanitizer's shadow memory does not fit every layout that the kernel may draw.
if [[ $preset == tsan ]] && setarch -R true 2>/dev/null; then
  run=(setarch -R "${run[@]}")
fi
exec "${screen[@]}" "${run[@]}"
