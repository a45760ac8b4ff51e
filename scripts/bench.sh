#!/usr/bin/env bash
# scripts/bench.sh [--quick] [FAMILY]: runs the benchmarks, prints their medians and writes them to
# docs/benchmarks.md; a family alone (fileutil names its four), or a quick look at fewer and shorter
# runs, writes nothing.
set -euo pipefail
cd "$(dirname "$0")/.."
repetitions=9 least_seconds=0.05 quick=
if [ "${1:-}" = --quick ]; then
  repetitions=3 least_seconds=0.005 quick=yes
  shift
fi
case ${1:-} in
  "") wanted='*' ;;
  fileutil) wanted='directories files identifiers text' ;;
  *) wanted=$1 ;;
esac
programs=$(set -f; for name in $wanted; do
  find build/bench/benchmarks -maxdepth 1 -type f -perm -u+x -name "${name}_benchmark"
done | sort)
[ -n "$programs" ] || { echo "bench: there is no family '$1'" >&2; exit 2; }
results=build/bench/${quick:+quick_}results
mkdir -p "$results"
for program in $programs; do
  name=$(basename "$program" _benchmark)
  echo "== $name" >&2
  "$program" --benchmark_repetitions="$repetitions" --benchmark_report_aggregates_only=true \
    --benchmark_min_time="$least_seconds" --benchmark_enable_random_interleaving=true \
    --benchmark_out="$results/$name.json" --benchmark_out_format=json >&2
done
pages=()
for program in $programs; do pages+=("$results/$(basename "$program" _benchmark).json"); done
if [ -n "${1:-}$quick" ]; then
  python3 scripts/bench_table.py "${pages[@]}"
else
  python3 scripts/bench_table.py "${pages[@]}" | tee docs/benchmarks.md
fi
