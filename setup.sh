#!/usr/bin/env bash
# Set-up on a fresh Debian 12 machine: installs what is missing with apt,
# configures and builds, then
#   bash setup.sh example   runs the batch converter on the bundled example;
#   bash setup.sh test      runs every test, plain and under ASan + UBSan.
set -euo pipefail
cd "$(dirname "$0")"
mode=${1:-example}

paquets=(g++ cmake make libgtest-dev libbenchmark-dev libpng-dev libjpeg-dev libgif-dev libtiff-dev qt6-base-dev)
# The fuzz targets' regression run needs clang's libFuzzer.
[ "$mode" = test ] && paquets+=(clang-14 libclang-rt-14-dev libfuzzer-14-dev)
manque=()
for p in "${paquets[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || manque+=("$p")
done
if [ ${#manque[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo=sudo
  $sudo apt-get update
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${manque[@]}"
fi
jobs=$(nproc)

case "$mode" in
  example)
    cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
    # The program and its desktop module (Qt), which batch runs never load.
    cmake --build build -j"$jobs" --target tessellarium
    # The example is copied so that the run never touches the tracked files.
    rm -rf build/exemple
    cp -r examples/demo build/exemple
    cd build/exemple
    # 4-bit tiles (15 colours), 8-bit tiles, and a 16-bit bitmap, in one run.
    ../tessellarium "-tset src=niveau +16c:-tset src=decor:-b16 src=titre"
    echo "--- files written in build/exemple:"
    ls -l -- *.c
    echo "--- build/exemple/projet.tsl, with the new elements (shown as UTF-8):"
    iconv -f LATIN1 -t UTF-8 projet.tsl 2>/dev/null || cat projet.tsl
    if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
      echo "--- opening the example project in the desktop program (close the window to end)"
      ../tessellarium projet.tsl
    else
      echo "--- no display here: the desktop program is built; on a desktop, open a project with"
      echo "    build/tessellarium path/to/projet.tsl"
    fi
    ;;
  test)
    cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESS_TESTS=ON -DTESS_BENCH=ON -DTESS_WERROR=ON
    cmake --build build -j"$jobs"
    ctest --test-dir build --output-on-failure -j"$jobs"
    cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DTESS_TESTS=ON -DTESS_SANITIZE=ON -DTESS_WERROR=ON
    cmake --build build-asan -j"$jobs"
    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ASAN_OPTIONS=detect_leaks=1 \
      ctest --test-dir build-asan --output-on-failure -j"$jobs"
    # Every fuzz target a few seconds on its committed corpus, crash cases included.
    bash tests/fuzz/run.sh regression
    ;;
  *)
    echo "usage: bash setup.sh [example|test]" >&2
    exit 2
    ;;
esac
