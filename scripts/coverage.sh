#!/usr/bin/env bash
# scripts/coverage.sh: the table of lines and branches that the tests ran in build/coverage; fails
# below 98 % of the lines or 90 % of the branches. Files as arguments: what was not run of those.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage
llvm-profdata merge -sparse -o $build/counts.profdata $build/counts/*.profraw
# The objects of the library as it is, and of the macOS sources.
llvm-cov export -skip-functions -instr-profile=$build/counts.profdata $build/liborbcommon.so \
  -object $build/tests/darwin/darwin_test >$build/coverage.json
exec scripts/coverage_table.py $build/coverage.json 98 90 "$@"
