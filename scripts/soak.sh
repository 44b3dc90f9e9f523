#!/usr/bin/env bash
# soak.sh MINUTES [asan|tsan|release] [SEED]: builds that preset (asan) and drives instances of the
# module with their editors in an X server of its own. Prints one line; fails on any finding: of the
# sanitizers, a sample that is not finite, a stall, or more memory, threads or descriptors at the
# end than at the start.
set -euo pipefail
cd "$(dirname "$0")/.."

minutes=${1:?usage: soak.sh MINUTES [asan|tsan|release] [SEED]}
preset=${2:-asan}
seed=${3:-$(date +%s)}
scripts/install-packages.sh build test
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target Soak >/dev/null

# Freed memory that the sanitizer holds back is bounded, since instances come and go for hours.
export ASAN_OPTIONS=quarantine_size_mb=64
export LSAN_OPTIONS=suppressions=$PWD/tests/support/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1
run=("build/$preset/checks/Soak" --minutes "$minutes" --rounds 4 --seed "$seed")
# The thread sanitizer's shadow memory does not fit every layout that the kernel may draw.
if [[ $preset == tsan ]] && setarch -R true 2>/dev/null; then
  run=(setarch -R "${run[@]}")
fi
exec xvfb-run -a -s '-screen 0 1280x1024x24' "${run[@]}"
