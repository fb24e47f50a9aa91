#!/usr/bin/env bash
# Builds the fuzz targets (clang-14, libFuzzer, ASan + UBSan) in build-fuzz
# and runs them.
#
#   tests/fuzz/run.sh [seconds] [target...]   each target that long (60 by
#       default) on a copy of its corpus; new inputs are thrown away.
#   tests/fuzz/run.sh regression [target...]  each target 5 seconds: the
#       committed corpus, crash cases included, then a little mutation from
#       a fixed seed (CI).
#
# Two targets run at a time (FUZZ_JOBS). For each it prints the runs done and
# whether it found anything; a crash, leak, time-out or sanitizer report is
# kept under build-fuzz/trouvailles/<target>/ and the script exits 1.
# Environment: FUZZ_BUILD (build folder), FUZZ_JOBS, FUZZ_GARDE=1 keeps the
# grown corpus copies in build-fuzz/corpus-<target> and starts from them,
# FUZZ_TIMEOUT the seconds one input may take before it counts as a time-out
# or a slow input (10; more for a niced run on a busy machine).
set -uo pipefail
racine=$(cd "$(dirname "$0")/../.." && pwd)
cd "$racine"

cibles_toutes=(projet script gabarit liste bmp images conv)
duree=60
graine=()
if [ $# -gt 0 ]; then
  case "$1" in
    regression) duree=5; graine=(-seed=1); shift ;;
    ''|*[!0-9]*) echo "usage: $0 [seconds|regression] [target...]" >&2; exit 2 ;;
    *) duree=$1; shift ;;
  esac
fi
cibles=("$@")
[ ${#cibles[@]} -eq 0 ] && cibles=("${cibles_toutes[@]}")

construction=${FUZZ_BUILD:-$racine/build-fuzz}
jobs=${FUZZ_JOBS:-2}

if ! command -v clang++-14 >/dev/null; then
  echo "clang-14 is missing: apt-get install clang-14 libclang-rt-14-dev libfuzzer-14-dev" >&2
  exit 2
fi
if [ ! -f "$construction/CMakeCache.txt" ]; then
  CC=clang-14 CXX=clang++-14 cmake -S . -B "$construction" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DTESS_FUZZ=ON -DTESS_TESTS=OFF -DTESS_BENCH=OFF -DTESS_WERROR=ON >/dev/null || exit 1
fi
cmake --build "$construction" -j"$(nproc)" --target $(printf 'fuzz_%s ' "${cibles[@]}") >/dev/null || {
  echo "build failed: cmake --build $construction" >&2
  exit 1
}

trouvailles="$construction/trouvailles"
journaux="$construction/journaux"
mkdir -p "$trouvailles" "$journaux"

# One target: its corpus copied, libFuzzer for the time given, the log kept.
lance() {
  local cible=$1
  local corpus="$construction/corpus-$cible"
  local artefacts="$trouvailles/$cible"
  [ "${FUZZ_GARDE:-0}" = 1 ] || rm -rf "$corpus"
  rm -rf "$artefacts"
  mkdir -p "$corpus" "$artefacts"
  cp "$racine/tests/fuzz/corpus/$cible/"* "$corpus/" 2>/dev/null
  local dico=()
  [ -f "$racine/tests/fuzz/dictionnaires/$cible.dict" ] && dico=(-dict="$racine/tests/fuzz/dictionnaires/$cible.dict")
  "$construction/tests/fuzz/fuzz_$cible" "$corpus" "${dico[@]}" "${graine[@]}" \
    -max_total_time="$duree" -timeout="${FUZZ_TIMEOUT:-10}" -report_slow_units="${FUZZ_TIMEOUT:-10}" -rss_limit_mb=2048 -malloc_limit_mb=1024 \
    -print_final_stats=1 -artifact_prefix="$artefacts/" </dev/null >"$journaux/$cible.log" 2>&1
  echo $? >"$journaux/$cible.rc"
  [ "${FUZZ_GARDE:-0}" = 1 ] || rm -rf "$corpus"
}

enCours=0
for cible in "${cibles[@]}"; do
  lance "$cible" &
  enCours=$((enCours + 1))
  if [ "$enCours" -ge "$jobs" ]; then
    wait -n
    enCours=$((enCours - 1))
  fi
done
wait

echo "fuzzing, ${duree}s per target:"
echec=0
for cible in "${cibles[@]}"; do
  journal="$journaux/$cible.log"
  rc=$(cat "$journaux/$cible.rc" 2>/dev/null || echo 1)
  runs=$(grep -o 'Done [0-9]* runs in [0-9]* second' "$journal" | tail -n1 | awk '{print $2}')
  [ -z "$runs" ] && runs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$journal" | awk '{print $2}')
  cov=$(grep -o 'cov: [0-9]*' "$journal" | tail -n1 | awk '{print $2}')
  artefact=$(ls "$trouvailles/$cible" 2>/dev/null | head -n1)
  # Stopped from outside (SIGINT) with nothing kept: libFuzzer's code 72.
  interrompu=
  [ "$rc" = 72 ] && [ -z "$artefact" ] && grep -q 'libFuzzer: run interrupted' "$journal" && interrompu=1
  if { [ "$rc" = 0 ] || [ -n "$interrompu" ]; } && [ -z "$artefact" ]; then
    printf '  %-8s %10s runs, coverage %s: nothing found%s\n' "$cible" "${runs:-?}" "${cov:-?}" "${interrompu:+ (stopped early)}"
    rmdir "$trouvailles/$cible" 2>/dev/null
  else
    echec=1
    cause=$(grep -m1 -E 'ERROR: (AddressSanitizer|LeakSanitizer|libFuzzer)|runtime error|ALARM|deadly signal' "$journal")
    printf '  %-8s %10s runs: FOUND %s\n' "$cible" "${runs:-?}" "${cause:-exit code $rc}"
    printf '           input: %s, log: %s\n' "${artefact:+$trouvailles/$cible/$artefact}" "$journal"
    # The report itself, for a run whose folders are gone afterwards (CI).
    grep -m1 -A30 -E '==ERROR|runtime error|ALARM|deadly signal' "$journal" | sed 's/^/           | /'
  fi
done
exit $echec
