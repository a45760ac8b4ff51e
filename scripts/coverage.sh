#!/usr/bin/env bash
# scripts/coverage.sh: the table of lines and branches that the tests ran in build/coverage; fails
# below 98 % of the lines or 90 % of the branches. Arguments go to gcovr on top of it.
#
# A branch that only an exception takes, one behind each call that may throw, is no decision of the
# source, nor is one that the compiler knows to be impossible: neither is counted.
set -euo pipefail
cd "$(dirname "$0")/.."
exec gcovr --root . --object-directory build/coverage \
  --exclude '(tests|tools|examples|benchmarks|fuzz)/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --fail-under-line 98 --fail-under-branch 90 --print-summary "$@"
