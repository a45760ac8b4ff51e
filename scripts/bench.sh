#!/usr/bin/env bash
# scripts/bench.sh [--quick] [FAMILY]: runs the benchmarks, prints their medians and writes them to
# docs/benchmarks.md, with a plot for each family in docs/plots; a family alone (fileutil names its
# four), or a quick look at fewer and shorter runs of what is not large, writes nothing.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$PWD
# Passes of few short repetitions: the moods of a machine last longer than a pass, in which
# everybody sees the same one.
passes=7 repetitions=3 least_seconds=0.02 filter=. quick=
if [ "${1:-}" = --quick ]; then
  passes=1 least_seconds=0.002 quick=yes
  filter='-/(10000|100000|1000000|10000_files|100000_files|500_interfaces|8MiB|16MiB|64MiB|wake_[0-9]+)/'
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
pages=()
for program in $programs; do
  name=$(basename "$program" _benchmark)
  echo "== $name" >&2
  # Each repetition of a removal makes its tree anew.
  count=$passes
  [ "$name" != files ] || [ -n "$quick" ] || count=5
  for ((pass = 1; pass <= count; ++pass)); do
    page=$name.$pass.json
    # What a family writes to the disk it is run on stays out of the sources.
    (cd "$results" && "$top/$program" --benchmark_repetitions="$repetitions" \
      --benchmark_report_aggregates_only=true --benchmark_min_time="$least_seconds" \
      --benchmark_enable_random_interleaving=true --benchmark_filter="$filter" \
      --benchmark_out="$page" --benchmark_out_format=json) >"$results/$name.log" 2>&1 ||
      { cat "$results/$name.log" >&2; exit 1; }
    pages+=("$results/$page")
  done
done
if [ -n "${1:-}$quick" ]; then
  exec python3 scripts/bench_table.py "${pages[@]}"
fi
python3 scripts/bench_table.py --notes benchmarks/notes.md --plots plots "${pages[@]}" |
  tee docs/benchmarks.md
# The distribution's Python has its plotting library, whatever else is called python3 here.
plotter=python3
python3 -c 'import matplotlib' 2>/dev/null || plotter=/usr/bin/python3
"$plotter" scripts/bench_plot.py docs/plots "${pages[@]}"
