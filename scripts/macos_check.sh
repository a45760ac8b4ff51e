#!/usr/bin/env bash
# scripts/macos_check.sh: cross-builds for both kinds of Mac and looks at what was linked.
#
# Per architecture the library must define every name of abi/exports.txt and need nothing but the
# system's own libraries. One line sums up each. Exit status 1 when a build or a check fails.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=${JOBS:-2}
list=abi/exports.txt

# build PRESET: configures and builds; the log is shown when it fails.
build() {
  local log=build/$1.log
  mkdir -p build
  if ! { cmake --preset "$1" && cmake --build "build/$1" -j "$jobs"; } >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "macos_check: building '$1' failed; the whole log is $log" >&2
    return 1
  fi
}

# The names in the form of the list: without the standard libraries' inline name spaces and tags.
plain_names() {
  sed -E 's/std::(__cxx11|__1)::/std::/g; s/\[abi:[A-Za-z0-9]+\]//g' | LC_ALL=C sort -u
}

# Every symbol carries an underscore of its own on macOS.
defined_names() {
  llvm-nm --extern-only --defined-only --format=just-symbols "$1" | sed 's/^_//' | c++filt |
    plain_names
}

needed_libraries() {
  llvm-objdump --macho --dylibs-used "$1" | sed -nE 's/^[[:space:]]+(.*) \(compat.*/\1/p'
}

is_of_the_system() {
  case $1 in
    /usr/lib/libSystem.B.dylib | /usr/lib/libc++.1.dylib) ;;
    /System/Library/Frameworks/CoreServices.framework/Versions/A/CoreServices) ;;
    /System/Library/Frameworks/CoreFoundation.framework/Versions/A/CoreFoundation) ;;
    *) return 1 ;;
  esac
}

# check PRESET: the library and the tool of one build; prints what is wrong, then the summary.
check() {
  local library=build/$1/liborbcommon.1.dylib tool=build/$1/tools/orbprops/orbprops
  local bad=0 wanted missing file path used=()
  wanted=$(grep -vE '^(#|$)' "$list" | plain_names || true)
  missing=$(LC_ALL=C comm -23 <(echo "$wanted") <(defined_names "$library") | sed '/^$/d')
  if [ -z "$wanted" ]; then
    echo "$1: $list names nothing: no export was checked" >&2
    bad=1
  elif [ -n "$missing" ]; then
    echo "$1: not defined:"$'\n'"$missing" >&2
    bad=1
  fi
  for file in "$library" "$tool"; do
    [ "$file" != "$tool" ] || [ -d tools/orbprops ] || continue
    while read -r path; do
      if is_of_the_system "$path"; then
        used+=("$(basename "$path")")
      elif [ "$(basename "$path")" != "$(basename "$library")" ]; then
        echo "$1: $file needs $path" >&2
        bad=1
      fi
    done < <(needed_libraries "$file")
  done
  echo "$1: $(file_kind "$library"), $(count "$wanted") names listed, $(count "$missing") missing," \
    "needs $(printf '%s\n' "${used[@]}" | sort -u | paste -sd ' ')"
  return $bad
}

count() { sed '/^$/d' <<<"$1" | wc -l; }

file_kind() { llvm-objdump --macho --private-header "$1" | awk 'END { print $2, $5 }'; }

status=0
for preset in macos-arm64 macos-x86_64; do
  build "$preset" && check "$preset" || status=1
done
exit $status
