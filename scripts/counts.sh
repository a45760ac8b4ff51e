#!/usr/bin/env bash
# scripts/counts.sh: records the instruction counts of the release build anew.
set -euo pipefail
cd "$(dirname "$0")/.."
cache() { sed -n "s/^$1:[A-Z]*=//p" build/release/CMakeCache.txt; }
tests/instructions/compare.py --record build/release/tests/instructions/instructions_test \
  "$(cache CMAKE_CXX_COMPILER)" "$(cache CMAKE_BUILD_TYPE)"
git --no-pager diff --stat tests/instructions/recorded.json
