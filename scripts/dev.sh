#!/usr/bin/env bash
# One entry point for a fresh Debian 12 machine.
#   scripts/dev.sh run    install what is needed, build, start Mirabend
#   scripts/dev.sh test   install what is needed, build, run every test
#   scripts/dev.sh build  build only (no install)
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
jobs=$(nproc 2>/dev/null || echo 2)
build_dir=${MIRABEND_BUILD_DIR:-build}
asan_dir=${MIRABEND_ASAN_DIR:-build-asan}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs the packages listed under scripts/deps/ (one name a line) from
# Debian's archive. Skips apt entirely when everything is already there, so
# running it twice costs nothing.
install_deps() {
  local lists=("$@") wanted=() missing=()
  mapfile -t wanted < <(cat "${lists[@]/#/scripts/deps/}" | sed 's/#.*//' | tr -s ' \t' '\n' | grep -v '^$' | sort -u)
  for p in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    echo "== all ${#wanted[@]} packages present"
    return
  fi
  echo "== installing: ${missing[*]}"
  as_root env DEBIAN_FRONTEND=noninteractive apt-get update -q
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

dep_lists() {
  local kind=$1
  ls scripts/deps | grep -E '\.txt$' | while read -r f; do
    case "$f" in
      test.txt|*-test.txt) [ "$kind" = test ] && echo "$f" ;;
      *) echo "$f" ;;
    esac
  done
}

configure() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
}

case "${1:-}" in
  run)
    mapfile -t lists < <(dep_lists run)
    install_deps "${lists[@]}"
    configure "$build_dir" -DMIRABEND_BUILD_TESTS=OFF
    cmake --build "$build_dir" -j "$jobs" --target mirabend
    shift
    exec "$build_dir/bin/mirabend" "$@"
    ;;
  test)
    mapfile -t lists < <(dep_lists test)
    install_deps "${lists[@]}"
    configure "$build_dir" -DMIRABEND_BUILD_TESTS=ON
    cmake --build "$build_dir" -j "$jobs"
    status=0
    # Fast unit tests again with AddressSanitizer and UndefinedBehaviorSanitizer.
    configure "$asan_dir" -DMIRABEND_BUILD_TESTS=ON -DMIRABEND_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
    cmake --build "$asan_dir" -j "$jobs" --target mirabend_unit_tests
    echo "== unit tests under AddressSanitizer + UndefinedBehaviorSanitizer"
    (cd "$asan_dir" && ctest -L '^unit$' -j "$jobs" --output-on-failure) || status=1
    bash tests/whiteboard/notes/fuzz/run.sh || status=1
    echo "== the whole suite"
    (cd "$build_dir" && ctest -j "$jobs" --output-on-failure) || status=1
    exit $status
    ;;
  build)
    configure "$build_dir" -DMIRABEND_BUILD_TESTS=ON
    cmake --build "$build_dir" -j "$jobs"
    ;;
  *)
    echo "usage: scripts/dev.sh run|test|build" >&2
    exit 2
    ;;
esac
