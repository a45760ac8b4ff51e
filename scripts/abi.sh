#!/usr/bin/env bash
# scripts/abi.sh check|record LIBRARY: compares the binary interface of a built library (symbols,
# versions, prototypes, layouts of what is exported) with the one kept in abi/, or keeps it anew.
# The library must carry debug information. Types of the standard library are left out: they are the
# compiler's affair.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=$1 library=$2
machine=$(uname -m)
kept=abi/orbcommon-$machine.abi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf '[suppress_type]\n  name_regexp = ^(std|__gnu_cxx)::\n  drop = yes\n' >"$work/left_out"

for header in $(scripts/list_sources.sh ORB_PUBLIC_HEADERS); do
  install -D -m 644 "$header" "$work/headers/$header"
done
abidw --exported-interfaces-only --headers-dir "$work/headers" --drop-private-types \
  --no-corpus-path --no-comp-dir-path --no-show-locs --suppressions "$work/left_out" "$library" |
  sed "s,path='$PWD/,path='," >"$work/now.abi"

if [ "$mode" = record ]; then
  cp "$work/now.abi" "$kept"
  echo "$kept"
elif [ ! -e "$kept" ]; then
  echo "no interface is kept for $machine: left out"
else
  abidiff --suppressions "$work/left_out" "$kept" "$work/now.abi" || {
    echo "the binary interface differs from $kept; if that is wanted, raise the version as needed and"
    echo "run scripts/abi.sh record $library"
    exit 1
  }
  echo "as kept in $kept"
fi
