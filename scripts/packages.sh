# shellcheck shell=bash disable=SC2034
# scripts/packages.sh: which distribution packages each command of the driver needs; sourced by dev.

packages_build=(g++ cmake ninja-build pkg-config libcli11-dev nlohmann-json3-dev)
packages_test=(libgtest-dev libgmock-dev python3 python3-jsonschema iproute2 procps groff man-db mandoc
  fish zsh util-linux hostname locales strace valgrind)
packages_check=(clang clang-format clang-tidy clang-tools lld llvm libclang-rt-14-dev shellcheck
  binutils git abigail-tools)
packages_bench=(libbenchmark-dev iproute2 libapr1-dev libwinpr2-dev libpoco-dev libglib2.0-dev
  libboost-thread-dev uuid-dev python3 python3-matplotlib)
packages_macos=(llvm)
packages_package=(dpkg-dev file)
packages_docs=(doxygen)
packages_coverage=(clang llvm libclang-rt-14-dev)

# as_root COMMAND...: runs it as the superuser, through sudo when need be.
as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "dev: '$*' needs root: run it yourself, or install sudo" >&2
    return 1
  fi
}

# need PACKAGE...: installs those that are missing; their output goes to standard error.
need() {
  if ! command -v dpkg-query >/dev/null; then
    echo "dev: no dpkg here; make sure that you have the likes of: $*" >&2
    return 0
  fi
  local missing=() package
  for package in "$@"; do
    case $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) in
      installed) ;;
      *) missing+=("$package") ;;
    esac
  done
  if [ ${#missing[@]} = 0 ]; then return 0; fi
  echo "dev: installing ${missing[*]}" >&2
  as_root apt-get update -qq >&2 || true
  # Another installation under way, an automatic update say, is waited for.
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
    -o DPkg::Lock::Timeout=900 "${missing[@]}" >&2
}

# need_command COMMAND PACKAGE: installs PACKAGE unless COMMAND is there from wherever.
need_command() {
  command -v "$1" >/dev/null || need "$2"
}
