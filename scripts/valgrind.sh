#!/usr/bin/env bash
# valgrind.sh [memcheck|helgrind]...: runs the release module under valgrind's tools (both) from its
# loading to its closing, with a small room's render and an editor opened, used and closed in an X
# server of its own. Some minutes each. Fails on any error that checks/valgrind.supp does not name.
set -euo pipefail
cd "$(dirname "$0")/.."

tools=("$@")
((${#tools[@]})) || tools=(memcheck helgrind)
scripts/install-packages.sh build test valgrind
cmake --preset release >/dev/null
cmake --build --preset release --target Soak >/dev/null

declare -A options=(
  [memcheck]="--leak-check=full --errors-for-leak-kinds=definite,indirect,possible
              --show-leak-kinds=definite,indirect,possible"
  [helgrind]="--history-level=approx"
)
log=build/release/valgrind
failed=0
for tool in "${tools[@]}"; do
  # shellcheck disable=SC2086  # several options in a word
  if timeout 1200 xvfb-run -a -s '-screen 0 1280x1024x24' \
      valgrind --tool="$tool" ${options[$tool]:?no such tool} --error-exitcode=9 \
      --suppressions=checks/valgrind.supp --gen-suppressions=all \
      build/release/checks/Soak --tour >"$log-$tool.log" 2>&1; then
    echo "valgrind: $tool finds nothing"
  else
    cat "$log-$tool.log" >&2
    echo "valgrind: $tool fails, see above" >&2
    failed=1
  fi
done
exit $failed
