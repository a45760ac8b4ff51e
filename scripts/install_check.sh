#!/usr/bin/env bash
# scripts/install_check.sh BUILD: installs BUILD into an empty prefix, moves that elsewhere, and
# builds and runs the examples and the consumers of tests/contract against the moved copy alone, by
# CMake, and the latter also by pkg-config.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$work/before" >/dev/null
mv "$work/before" "$prefix"
if grep -rIlF -e "$work/before" -e "$PWD" "$prefix"; then
  echo "these files name the folder that they were installed to, or built in"
  exit 1
fi
cp -r tests/contract/consumers examples "$work"  # where no header of ours is near

# logged COMMAND...: runs it; what it prints is shown when it fails.
logged() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }; }

logged cmake -S tests/contract/versions -B "$work/versions" -DCMAKE_PREFIX_PATH="$prefix"

for project in consumers examples; do
  folder=$work/$project-build
  logged cmake -S "$work/$project" -B "$folder" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
  logged cmake --build "$folder"
  logged ctest --test-dir "$folder" --output-on-failure
done

awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' README.md >"$work/readme.cpp"
cd "$work/consumers"

PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name orbcommon.pc)")
export PKG_CONFIG_PATH
read -ra flags <<<"$(pkg-config --cflags orbcommon)"
read -ra libraries <<<"$(pkg-config --libs orbcommon) -Wl,-rpath,$(pkg-config --variable=libdir orbcommon)"
cc -std=c11 -shared -fPIC "${flags[@]}" c/plugin.c -o "$work/plugin.so"
mapfile -t sources < <(find c -name '*.c' ! -name plugin.c)
cc -std=c11 "${flags[@]}" "${sources[@]}" "${libraries[@]}" -o "$work/c11"
for standard in 17 20; do
  c++ -std=c++$standard "${flags[@]}" cxx/*.cpp "${libraries[@]}" -o "$work/cxx$standard"
done
c++ -std=c++17 "${flags[@]}" "$work/readme.cpp" "${libraries[@]}" -o "$work/readme"
cd "$work"
./readme >readme.out
grep -q '^PlatformID = ' readme.out || { echo "the program of README.md prints no report"; exit 1; }
logged ./c11 "$work/plugin.so"
logged ./cxx17
logged ./cxx20
echo "built and run against the installed library by CMake and by pkg-config"
