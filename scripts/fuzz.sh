#!/usr/bin/env bash
# scripts/fuzz.sh: runs every fuzzer for SECONDS on its corpus, JOBS at a time.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=$1 jobs=$2
list() { find build/fuzz/fuzz -maxdepth 1 -type f -perm -u+x -name '*_fuzzer' | sort; }
[ -n "$(list)" ] || { echo "fuzz: no fuzzer was built" >&2; exit 1; }

run_one() {
  local fuzzer=$1 seconds=$2 name found
  name=$(basename "$fuzzer" _fuzzer)
  found=build/fuzz/found/$name
  mkdir -p "$found"
  if "$fuzzer" -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$found/" -timeout=10 \
    -rss_limit_mb=2048 "$found" ${2:+$([ -d "fuzz/corpus/$name" ] && echo "fuzz/corpus/$name")} \
    >"$found.log" 2>&1; then
    echo "$name: $(awk '/number_of_executed_units/ {print $2}' "$found.log") runs, no finding"
  else
    tail -n 40 "$found.log"
    echo "$name: FAILED, see $found.log"
    return 1
  fi
}
export -f run_one
# shellcheck disable=SC2016
list | xargs -P "$jobs" -I{} bash -c 'run_one "$1" "$2"' _ {} "$seconds"
