#!/usr/bin/env bash
# tests/contract/exports_test.sh LIBRARY UNLIMITED LIST: LIBRARY exports what LIST names, and what
# carries the mark of an export in the sources, as UNLIMITED shows it, is what LIST names.
#
# UNLIMITED is the library without its version script: the visibility of its symbols is all that
# limits it, as on macOS. The C++ library's own templates are visible in it too.
set -euo pipefail
library=$1 unlimited=$2 list=$3
names="$(dirname "$0")/../../scripts/exported_names.sh"
bad=0

[ "$(grep -vc '^#' "$list")" -gt 0 ] || { echo "$list names nothing"; exit 1; }
"$names" "$library" | diff -u --label "$list" --label "exported by the library" "$list" - || bad=1
"$names" "$unlimited" | grep -vE '^(void )?std::' |
  diff -u --label "$list" --label "marked in the sources" "$list" - || bad=1
exit $bad
