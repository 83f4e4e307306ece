#!/usr/bin/env bash
# Installs what a Debian 12 lacks to build and test everything. Quick when nothing is missing.
set -euo pipefail

packages=(
  cmake ninja-build python3                          # the build and the workshop
  g++ libgtest-dev libgmock-dev libbenchmark-dev     # Linux: tests and benchmarks
  clang libclang-rt-14-dev clang-format clang-tidy   # second compiler, sanitizers, lint
  lld llvm mingw-w64-x86-64-dev                      # Windows modules and their inspection
  g++-mingw-w64-x86-64-win32                         # Windows programs beside them
  wine wine64                                        # the kernel interface they run in
  qemu-system-x86                                    # the emulated PC of the metal tests
  libcli11-dev                                       # command lines of programs for people
  libfmt-dev libspdlog-dev libabsl-dev libmsgpack-dev  # peers of the benchmarks
)

is_installed() {
  dpkg-query -W -f='${db:Status-Abbrev}' "$1" 2>/dev/null | grep -q '^ii'
}

missing_packages() {
  local package
  for package in "${packages[@]}"; do
    is_installed "$package" || echo "$package"
  done
}

as_root() {
  local raise=(sudo)
  [ "$(id -u)" -ne 0 ] || raise=()
  "${raise[@]}" env DEBIAN_FRONTEND=noninteractive "$@"
}

demand_root() {
  if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
    echo "setup: installing packages needs root; run this as root or install sudo" >&2
    exit 1
  fi
}

# Passes every 25th line of apt on, so that a long installation is seen to move.
progress() {
  awk 'NR % 25 == 0 { print "  " substr($0, 1, 76); fflush() }'
}

install_packages() {
  local log
  demand_root
  log=$(mktemp)
  echo "setup: installing $*"
  if as_root apt-get update >"$log" 2>&1 &&
    as_root apt-get install -y --no-install-recommends "$@" 2>&1 | tee -a "$log" | progress; then
    rm -f "$log"
    echo "setup: done in ${SECONDS} s"
    return
  fi
  tail -n 30 "$log" >&2
  rm -f "$log"
  echo "setup: apt-get could not install the packages" >&2
  exit 1
}

main() {
  if ! command -v dpkg-query >/dev/null; then
    echo "setup: this is not Debian; needed are the equivalents of: ${packages[*]}" >&2
    return
  fi
  local missing
  mapfile -t missing < <(missing_packages)
  [ "${#missing[@]}" -eq 0 ] || install_packages "${missing[@]}" >&2
}

main
