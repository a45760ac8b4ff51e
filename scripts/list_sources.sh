#!/usr/bin/env bash
# scripts/list_sources.sh: prints the entries of one list of cmake/sources.cmake.
awk -v list="$1" '$0 ~ "^set\\(" list "$" {on = 1; next} /^\)/ {on = 0} on {print $1}' \
  "$(dirname "$0")/../cmake/sources.cmake"
