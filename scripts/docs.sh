#!/usr/bin/env bash
# scripts/docs.sh: the interface reference from the public headers, into build/docs/html; fails when
# anything public is undocumented.
set -euo pipefail
cd "$(dirname "$0")/.."
mkdir -p build
rm -rf build/docs
{
  cat docs/Doxyfile
  echo "INPUT = $(scripts/list_sources.sh ORB_PUBLIC_HEADERS | tr '\n' ' ')"
} | doxygen -
echo "build/docs/html/index.html"
