#!/usr/bin/env bash
# scripts/package_check.sh FOLDER: the Debian package in FOLDER installs into an empty root, its tool
# runs from there, and its removal leaves nothing behind.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root"/var/lib/dpkg/{info,updates}
touch "$root/var/lib/dpkg/status"
package=$(ls "${1:-build/product}"/orbcommon_*.deb)
# The root holds no shell, so the package's scripts (they refresh the loader's cache) run outside.
packages() {
  dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless \
    --log="$root/var/lib/dpkg/log" "$@" >"$root/var/lib/dpkg/output" 2>&1 ||
    { cat "$root/var/lib/dpkg/output"; return 1; }
}
files() { find "$root" -mindepth 1 -path "$root/var" -prune -o -not -type d -print; }

packages --install "$package"
library=$(find "$root/usr/lib" -name 'liborbcommon.so.1')
for wanted in bin/orbprops share/man/man1/orbprops.1.gz include/orbcommon/sysprops/catalogue.h \
  share/orbcommon/orbprops.schema.json share/doc/orbcommon/{CHANGELOG.md,changelog.gz,copyright}; do
  [ -e "$root/usr/$wanted" ] || { echo "the package lacks $wanted"; exit 1; }
done
[ -n "$library" ] || { echo "the package lacks the library"; exit 1; }
"$root/usr/bin/orbprops" get OSType ComputerName >/dev/null
dpkg-deb --field "$package" Depends | grep -q 'libc6' || { echo "no dependencies stated"; exit 1; }

packages --remove orbcommon
left=$(files)
[ -z "$left" ] || { echo "removal left: $left"; exit 1; }
echo "$(basename "$package"): installed, ran, removed"
