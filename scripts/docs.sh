#!/usr/bin/env bash
# scripts/docs.sh: the interface reference from the public headers, into build/docs/html; fails when
# anything public is undocumented.
set -euo pipefail
cd "$(dirname "$0")/.."
mkdir -p build
rm -rf build/docs
headers=$(scripts/list_sources.sh ORB_PUBLIC_HEADERS | tr '\n' ' ')
{  # the first page: each header and its sentence
  echo "# Interface reference {#mainpage}"
  echo
  # shellcheck disable=SC2086
  awk 'FNR == 1 { file = $2; sub(/:$/, "", file); sub(/^[^:]*: /, ""); text = "" }
       FNR > 1 { sub(/^\/\//, "") }
       { text = text $0 }
       text ~ /\.$/ { printf "- @ref %s \"%s\": %s\n", file, file, text; nextfile }' $headers
} >build/reference.md
{
  cat docs/Doxyfile
  echo "INPUT = build/reference.md $headers"
} | doxygen -
echo "build/docs/html/index.html"
