#!/usr/bin/env bash
# fuzz.sh BUILD_DIR [SECONDS]: runs every fuzz target of a build for its share of SECONDS (60 in
# all), starting from its seeds. Findings are kept in BUILD_DIR/fuzz/findings; any fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:?usage: fuzz.sh BUILD_DIR [SECONDS]}
seconds=${2:-60}
targets=("$build"/fuzz/*Fuzz)
[[ -x ${targets[0]} ]] || { echo "fuzz.sh: no fuzz targets in $build/fuzz" >&2; exit 1; }

export UBSAN_OPTIONS=print_stacktrace=1
share=$(((seconds + ${#targets[@]} - 1) / ${#targets[@]}))
findings=$build/fuzz/findings
failed=()
for target in "${targets[@]}"; do
  name=$(basename "$target" Fuzz)
  # New inputs go to the build's own corpus, which later runs start from too.
  work=$build/fuzz/corpus/$name
  mkdir -p "$work" "$findings"
  seeds=("$work")
  [[ -d fuzz/corpus/$name ]] && seeds+=("fuzz/corpus/$name")
  log=$build/fuzz/$name.log
  if "$target" -seed=1 -runs=2000000 -max_total_time="$share" -timeout=10 -rss_limit_mb=2048 \
      -print_final_stats=1 -artifact_prefix="$findings/$name-" "${seeds[@]}" >"$log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    printf '%-20s %9d runs, no finding\n' "$name" "$runs"
  else
    tail -n 40 "$log" >&2
    failed+=("$name")
  fi
done
if ((${#failed[@]} > 0)); then
  echo "fuzz.sh: findings in ${failed[*]}, inputs in $findings" >&2
  exit 1
fi
