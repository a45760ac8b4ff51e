#!/usr/bin/env bash
# scripts/getting_started_check.sh: runs every command of docs/getting-started.md, in order, in an
# empty folder, with this checkout in the place of REPOSITORY; blocks that follow a file's name in
# backticks become that file.
set -euo pipefail
cd "$(dirname "$0")/.."
checkout=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
awk '
  /^`[^`]+`:$|, `[^`]+`:$/ { file = $0; sub(/`:$/, "", file); sub(/.*`/, "", file) }
  /^```./ { language = substr($0, 4); if (language != "sh") printf "cat >%s <<\047END_OF_FILE\047\n", file; next }
  /^```$/ { if (language != "sh") print "END_OF_FILE"; language = ""; next }
  language != "" { print }
' docs/getting-started.md | sed "s,REPOSITORY,$checkout," >"$work/commands"
cd "$work"
bash -euxo pipefail "$work/commands" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
echo "$(grep -c '^+ ' "$work/log") commands ran"
