#!/usr/bin/env bash
# Installs what a Debian 12 lacks for a verb of ./dev, or without one for all of them. Quick when
# nothing is missing.
#
#   setup.sh [VERB]
#   setup.sh --list [VERB]    only prints the packages
set -euo pipefail

host=(cmake ninja-build python3 g++                  # programs for Linux, the workshop itself,
      libcli11-dev nlohmann-json3-dev
      mingw-w64-common)                              # and the kernel's names
tests=(libgtest-dev libgmock-dev)
sanitizers=(clang libclang-rt-14-dev lld llvm)       # second compiler, and what it links with
windows=(clang lld llvm python3-pefile)              # the modules and their inspection
wine=(wine wine64)                                   # the kernel interface they run in
bare=(clang lld llvm qemu-system-x86)                # the emulated PC and its images
peers=(libbenchmark-dev libfmt-dev libspdlog-dev libabsl-dev libmsgpack-dev)
counting=(valgrind)                                  # instructions of a path
mingw=(mingw-w64-x86-64-dev g++-mingw-w64-x86-64-win32)  # Windows programs, driver kit headers
lint=(clang-format clang-tidy)
analysis=(cppcheck)                                  # more of the same
fresh=(debootstrap)                                  # a Debian with nothing else in it
pages=(mkdocs python3-pygments doxygen)              # the handbook
debugger=(gdb)                                       # its views
browser=(chromium chromium-driver fonts-dejavu-core) # the page of a trace, as people see it
packaging=(pkgconf mandoc)                           # what is installed, as clients find it
mutation=(python3-clang)                             # where a source can be mutated
packing=(dpkg-dev binutils)                          # the Debian packages

packages_for() {
  case "$1" in
    demo) echo "${host[@]}" ;;
    bench) echo "${host[@]}" "${peers[@]}" ;;
    budget) echo "${host[@]}" "${counting[@]}" ;;
    dist) echo "${host[@]}" "${windows[@]}" "${mingw[@]}" "${peers[@]}" "${packing[@]}" ;;
    kernel) echo "${host[@]}" "${windows[@]}" "${wine[@]}" ;;
    docs) echo python3 "${pages[@]}" ;;
    metal) echo "${host[@]}" "${bare[@]}" ;;
    mutants) echo "${host[@]}" "${tests[@]}" "${sanitizers[@]}" "${mutation[@]}" ;;
    coverage | fuzz | soak) echo "${host[@]}" "${tests[@]}" "${sanitizers[@]}" ;;
    everything | prove) packages_for test && echo "${pages[@]}" "${debugger[@]}" "${browser[@]}" \
      "${analysis[@]}" "${fresh[@]}" ;;
    build | test) echo "${host[@]}" "${tests[@]}" "${sanitizers[@]}" "${windows[@]}" "${wine[@]}" \
      "${bare[@]}" "${peers[@]}" "${counting[@]}" "${mingw[@]}" "${lint[@]}" "${packaging[@]}" \
      "${packing[@]}" "${mutation[@]}" ;;
    *) echo "setup: '$1' is no verb that needs packages" >&2 && return 2 ;;
  esac
}

is_installed() {
  dpkg-query -W -f='${db:Status-Abbrev}' "$1" 2>/dev/null | grep -q '^ii'
}

missing_packages() {
  local package
  for package in "$@"; do
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
  local is_list=
  if [ "${1:-}" = --list ]; then
    is_list=1
    shift
  fi
  local names packages
  names=$(packages_for "${1:-everything}")
  mapfile -t packages < <(tr ' ' '\n' <<<"$names" | sort -u)
  if [ -n "$is_list" ]; then
    echo "${packages[*]}"
    return
  fi
  if ! command -v dpkg-query >/dev/null; then
    echo "setup: this is not Debian; needed are the equivalents of: ${packages[*]}" >&2
    return
  fi
  local missing
  mapfile -t missing < <(missing_packages "${packages[@]}")
  [ "${#missing[@]}" -eq 0 ] || install_packages "${missing[@]}" >&2
}

main "$@"
