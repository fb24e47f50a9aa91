#!/usr/bin/env bash
# Times whole batch conversions of the real program, start to exit, against
# the floor of each case (decoding the same picture and writing as many
# bytes), on pictures generated the same way every time.
#   bash bench/convert.sh [runs] [part]   (default 9 runs a case; the median is
#   shown; part keeps the cases whose name and source hold it, e.g. "b8 255 colours (normal) bmp")
set -euo pipefail
cd "$(dirname "$0")/.."
essais=${1:-9}
cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTESS_TESTS=OFF -DTESS_BENCH=ON > /dev/null
cmake --build build-bench -j"$(nproc)" --target tessellarium mesure > /dev/null
images=build-bench/images-bench
[ -f "$images/photo1024.png" ] || build-bench/bench/mesure genere "$images"
build-bench/bench/mesure temps build-bench/tessellarium "$images" "$essais" ${2:+"$2"}
