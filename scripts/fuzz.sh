#!/usr/bin/env bash
# scripts/fuzz.sh: runs the fuzzers on their corpora, JOBS at a time, each until LIMIT: "seconds N" or "runs N"; all of
# them, or those that are named. Fuzzers are taken from FUZZERS, the build's folder unless the environment names another.
set -euo pipefail
cd "$(dirname "$0")/.."
export kind=$1 limit=$2 jobs=$3 folder=${FUZZERS:-build/fuzz/fuzz}
shift 3

list() { find "$folder" -maxdepth 1 -type f -perm -u+x -name '*_fuzzer' | sort; }
named() {  # NAME...: the fuzzers of these names; all without one
  local name
  [ $# -gt 0 ] || list
  for name in "$@"; do
    [ -x "$folder/${name}_fuzzer" ] || { echo "fuzz: no fuzzer '$name'" >&2; return 1; }
    echo "$folder/${name}_fuzzer"
  done
}

# A search for a number of runs is for many short ones: inputs are bounded, and what the address sanitizer keeps of
# freed memory stays small enough for the processor's caches. Its time-out is long, for it runs beside other work.
limits() {  # NAME
  if [ "$kind" = seconds ]; then
    echo "-max_total_time=$limit -timeout=10"
  else
    echo "-runs=$limit -timeout=300 -max_len=$(awk -v name="$1" '$1 == name {print $2; found = 1} END {if (!found) print 96}' fuzz/lengths)"
  fi
}

run_one() {
  local fuzzer=$1 name found start
  name=$(basename "$fuzzer" _fuzzer)
  found=build/fuzz/found/$name
  mkdir -p "$found"
  start=$(date +%s)
  [ "$kind" = seconds ] || export ASAN_OPTIONS=quarantine_size_mb=4:malloc_context_size=4
  # shellcheck disable=SC2046
  if "$fuzzer" $(limits "$name") -print_final_stats=1 -artifact_prefix="$found/" -reload=0 \
    -rss_limit_mb=2048 "$found" $([ -d "fuzz/corpus/$name" ] && echo "fuzz/corpus/$name") \
    >"$found.log" 2>&1; then
    echo "$name: $(awk '/number_of_executed_units/ {print $2}' "$found.log") runs in $(($(date +%s) - start)) s, no finding"
  else
    tail -n 40 "$found.log"
    echo "$name: FAILED, see $found.log"
    return 1
  fi
}
export -f run_one limits
fuzzers=$(named "$@")
[ -n "$fuzzers" ] || { echo "fuzz: no fuzzer was built" >&2; exit 1; }
# shellcheck disable=SC2016
xargs -P "$jobs" -I{} bash -c 'run_one "$1"' _ {} <<<"$fuzzers"
