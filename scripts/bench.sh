#!/usr/bin/env bash
# scripts/bench.sh: runs the benchmarks, prints their medians and writes them to docs/benchmarks.md;
# with a name, runs that family alone and writes nothing.
set -euo pipefail
cd "$(dirname "$0")/.."
family=${1:-}
programs=$(find build/bench/benchmarks -maxdepth 1 -type f -perm -u+x -name "${family:-*}_benchmark" |
  sort)
[ -n "$programs" ] || { echo "bench: there is no family '$family'" >&2; exit 2; }
mkdir -p build/bench/results
for program in $programs; do
  name=$(basename "$program" _benchmark)
  echo "== $name" >&2
  "$program" --benchmark_repetitions=9 --benchmark_report_aggregates_only=true \
    --benchmark_min_time=0.05 --benchmark_enable_random_interleaving=true \
    --benchmark_out="build/bench/results/$name.json" --benchmark_out_format=json >&2
done
if [ -n "$family" ]; then
  python3 scripts/bench_table.py "build/bench/results/$family.json"
else
  python3 scripts/bench_table.py build/bench/results/*.json | tee docs/benchmarks.md
fi
