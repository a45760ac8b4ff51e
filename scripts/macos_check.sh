#!/usr/bin/env bash
# scripts/macos_check.sh: cross-builds for both kinds of Mac and looks at what was linked.
#
# Per architecture the library must define every name of abi/exports.txt, need nothing but the
# system's own libraries, and be found by run path under its major version, which is also what it
# says it is compatible with. One line sums up each. Exit status 1 when a build or a check fails.
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

# The names of the list, or those that a library has beyond its own: the C++ library that the cross
# build links into it leaves its allocation operators visible.
names() {
  grep -vE '^(#|$|operator (new|delete)\b)' | LC_ALL=C sort -u
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

# check_names PRESET LIBRARY: what is listed must be defined, and nothing else.
check_names() {
  local listed defined missing surplus
  listed=$(names <"$list" || true)
  defined=$(scripts/exported_names.sh "$2" | names || true)
  missing=$(LC_ALL=C comm -23 <(echo "$listed") <(echo "$defined"))
  surplus=$(LC_ALL=C comm -13 <(echo "$listed") <(echo "$defined"))
  names_summary="$(count "$listed") names listed, $(count "$missing") missing,"
  names_summary+=" $(count "$surplus") beyond them"
  if [ -z "$listed" ]; then
    echo "$1: $list names nothing: no export was checked" >&2
    return 1
  fi
  [ -z "$missing" ] || printf '%s: not defined:\n%s\n' "$1" "$missing" >&2
  [ -z "$surplus" ] || printf '%s: defined, but not listed:\n%s\n' "$1" "$surplus" >&2
  [ -z "$missing$surplus" ]
}

# check_needs PRESET FILE...: each may need libraries of the system and ours.
check_needs() {
  local preset=$1 file path bad=0 used=()
  shift
  for file in "$@"; do
    while read -r path; do
      if is_of_the_system "$path"; then
        used+=("$(basename "$path")")
      elif [ "$(basename "$path")" != liborbcommon.1.dylib ]; then
        echo "$preset: $file needs $path" >&2
        bad=1
      fi
    done < <(needed_libraries "$file")
  done
  needs_summary="needs $(printf '%s\n' "${used[@]}" | sort -u | paste -sd ' ')"
  return $bad
}

# check_identity PRESET LIBRARY: what programs that are linked with it look for.
check_identity() {
  local version wanted
  version=$(sed -nE 's/^project\(orbcommon VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
  wanted="@rpath/liborbcommon.${version%%.*}.dylib, current $version, compatible ${version%%.*}.0.0"
  identity_summary=$(llvm-objdump --macho --private-headers "$2" | awk '
    $1 == "cmd" { inside = $2 == "LC_ID_DYLIB" }
    inside && $1 == "name" { name = $2 }
    inside && $2 == "version" { version[$1] = $3 }
    END { print name ", current " version["current"] ", compatible " version["compatibility"] }')
  [ "$identity_summary" = "$wanted" ] || {
    echo "$1: the library is $identity_summary; it should be $wanted" >&2
    return 1
  }
}

# check PRESET: the library and the tool of one build; prints what is wrong, then the summary.
check() {
  local library=build/$1/liborbcommon.1.dylib tool=build/$1/tools/orbprops/orbprops
  local bad=0 names_summary='' needs_summary='' identity_summary=''
  check_names "$1" "$library" || bad=1
  check_needs "$1" "$library" "$tool" || bad=1
  check_identity "$1" "$library" || bad=1
  echo "$1: $(file_kind "$library"), $names_summary; tool $(file_kind "$tool"); $needs_summary;" \
    "$identity_summary"
  return $bad
}

count() { sed '/^$/d' <<<"$1" | wc -l; }

file_kind() { llvm-objdump --macho --private-header "$1" | awk 'END { print $2, $5 }'; }

status=0
for preset in macos-arm64 macos-x86_64; do
  build "$preset" && check "$preset" || status=1
done
exit $status
