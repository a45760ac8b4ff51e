#!/usr/bin/env bash
# scripts/bench.sh [--quick] [FAMILY]: runs the benchmarks, prints their medians and writes them to
# docs/benchmarks.md; a family alone, or a quick look at fewer and shorter runs, writes nothing.
set -euo pipefail
cd "$(dirname "$0")/.."
repetitions=9 least_seconds=0.05 quick=
if [ "${1:-}" = --quick ]; then
  repetitions=3 least_seconds=0.005 quick=yes
  shift
fi
family=${1:-}
programs=$(find build/bench/benchmarks -maxdepth 1 -type f -perm -u+x -name "${family:-*}_benchmark" |
  sort)
[ -n "$programs" ] || { echo "bench: there is no family '$family'" >&2; exit 2; }
results=build/bench/${quick:+quick_}results
mkdir -p "$results"
for program in $programs; do
  name=$(basename "$program" _benchmark)
  echo "== $name" >&2
  "$program" --benchmark_repetitions="$repetitions" --benchmark_report_aggregates_only=true \
    --benchmark_min_time="$least_seconds" --benchmark_enable_random_interleaving=true \
    --benchmark_out="$results/$name.json" --benchmark_out_format=json >&2
done
if [ -n "$family" ]; then
  python3 scripts/bench_table.py "$results/$family.json"
elif [ -n "$quick" ]; then
  python3 scripts/bench_table.py "$results"/*.json
else
  python3 scripts/bench_table.py "$results"/*.json | tee docs/benchmarks.md
fi
