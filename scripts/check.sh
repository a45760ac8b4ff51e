#!/usr/bin/env bash
# scripts/check.sh: the checks beside the tests, one function a step; names of steps as arguments
# run those alone.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 2
jobs=${JOBS:-2}
mkdir -p build

sources() { git ls-files "$@" | grep -vE '^(tests/darwin/headers|cmake/macos)/'; }

step_format() {
  sources '*.h' '*.cpp' '*.c' | xargs clang-format --dry-run -Werror
}

# Rules of the house that no compiler knows.
step_style() {
  local bad=0 file
  while read -r file; do
    if ! head -n 1 "$file" | grep -qF "// $file: "; then
      echo "$file: its first line must be '// $file: one sentence'"
      bad=1
    fi
  done < <(sources '*.h' '*.cpp' '*.c')
  if sources '*.h' '*.cpp' | grep -vE '^(platform/|tests/darwin/)' |
    xargs grep -nE '^ *# *if(def|ndef)?\b' | grep -v __cplusplus; then
    echo "conditionals belong to platform/: is the seam missing a fact?"
    bad=1
  fi
  return $bad
}

step_shell() {
  git ls-files '*.sh' | xargs shellcheck -x dev .ci/run
}

# Every header compiles alone: all as C++20, public ones as C++17, those that serve C also as C11.
header_alone() {  # LANGUAGE STANDARD HEADER
  echo "#include \"$3\"" |
    clang -fsyntax-only -I. -Wall -Wextra -Wpedantic -Wno-pragma-once-outside-header \
      -Wno-empty-translation-unit -Werror -x "$1" -std="$2" - && return
  echo "$3 does not compile alone as $2"
  return 1
}
step_headers() {
  export -f header_alone
  # shellcheck disable=SC2016
  { sources '*.h' | grep -v '^tests/' | sed 's/^/c++ c++20 /'
    scripts/list_sources.sh ORB_PUBLIC_HEADERS | sed 's/^/c++ c++17 /'
    scripts/list_sources.sh ORB_C_HEADERS | sed 's/^/c c11 /'; } |
    xargs -P "$jobs" -L 1 bash -c 'header_alone "$@"' header_alone
}

step_tidy() {
  cmake --preset release >build/tidy.log || return 1
  sources '*.cpp' | grep -vE '^(tests|benchmarks|fuzz)/|/darwin_' |
    xargs -P "$jobs" -n 2 clang-tidy -p build/release --quiet 2>build/tidy.log
}

sanitized() {  # PRESET [AREA...]: builds and runs the tests, those of the areas alone when named
  local preset=$1 targets pattern
  shift
  targets=("${@/%/_test}")
  pattern="^($(IFS="|"; echo "$*"))\$"
  if ! { cmake --preset "$preset" &&
    cmake --build "build/$preset" -j "$jobs" ${1:+--target "${targets[@]}"}; } \
    >"build/$preset.log" 2>&1; then
    tail -n 40 "build/$preset.log"
    return 1
  fi
  ctest --test-dir "build/$preset" --output-on-failure -j "$jobs" ${1:+-R "$pattern"}
}
step_asan() { sanitized asan; }
# The areas whose tests start threads, without those tests that give pure functions millions of texts in one thread.
step_tsan() (
  export GTEST_FILTER='-WildcardPlain.*:BesideIconv.*:*.RandomTextsAgree*:*.AgreesWithThePlainRules:*.LongTextsTake*'
  sanitized tsan portability stress fileutil trees network session sysprops platform
)

# The shared library exports what abi/exports.txt lists, no more and no less.
step_exports() {
  ./scripts/exported_names.sh build/release/liborbcommon.so | diff -u abi/exports.txt - &&
    echo "$(grep -vc '^#' abi/exports.txt) names"
}

# The built library stops on a smashed stack or an overrun buffer, and nothing in it is both writable
# and executable or open to redirected jumps.
step_hardening() {
  local file=build/release/liborbcommon.so bad=0 headers dynamic symbols
  headers=$(readelf -lW "$file") dynamic=$(readelf -dW "$file") symbols=$(readelf -sW "$file")
  lacks() { echo "$file: $1"; bad=1; }
  grep -q GNU_RELRO <<<"$headers" || lacks "no read-only relocations"
  grep -qE 'BIND_NOW|FLAGS.*NOW' <<<"$dynamic" || lacks "jump table stays writable"
  grep -q 'GNU_STACK.* RW ' <<<"$headers" || lacks "executable stack"
  grep -q 'LOAD.*RWE' <<<"$headers" && lacks "a segment is writable and executable"
  grep -qE 'RPATH|RUNPATH|TEXTREL' <<<"$dynamic" && lacks "search path or text relocations"
  grep -q __stack_chk_fail <<<"$symbols" || lacks "no stack protector"
  grep -qE '__(memcpy|snprintf|vsnprintf|read|strncpy)_chk' <<<"$symbols" || lacks "no checked buffers"
  return $bad
}

# The binary interface is the one that was kept.
step_abi() { scripts/abi.sh check build/release/liborbcommon.so; }

# Programs of other projects against an installed copy.
step_install() { scripts/install_check.sh build/release; }

# A new user's first quarter of an hour.
step_start() { scripts/getting_started_check.sh; }

# The Debian package, made of the release build.
step_package() {
  rm -rf build/package
  cpack --config build/release/CPackConfig.cmake -B build/package >build/package.log 2>&1 ||
    { cat build/package.log; return 1; }
  scripts/package_check.sh build/package
}

step_docs() { scripts/docs.sh; }

step_macos() { ./dev macos; }

step_fuzz() { ./dev fuzz "${FUZZ_SECONDS:-8}"; }

all=(format style shell headers exports abi hardening docs install package start tidy asan tsan macos fuzz)
if [ "${1:-}" = list ]; then
  echo "${all[*]}"
  exit 0
fi
[ $# -gt 0 ] || set -- "${all[@]}"
passed=0 failed=()
for step in "$@"; do
  declare -F "step_$step" >/dev/null || { echo "check: no step '$step'; there are: ${all[*]}" >&2; exit 2; }
  echo "== $step"
  start=$SECONDS
  if "step_$step"; then
    echo "== $step passed in $((SECONDS - start)) s"
    passed=$((passed + 1))
  else
    echo "== $step FAILED in $((SECONDS - start)) s"
    failed+=("$step")
  fi
done
[ ${#failed[@]} = 0 ] || echo "failed: ${failed[*]}"
echo "$passed passed, ${#failed[@]} failed"
[ ${#failed[@]} = 0 ]
