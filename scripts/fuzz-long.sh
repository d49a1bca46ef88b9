#!/usr/bin/env bash
# Long fuzz runs. Builds the libFuzzer targets (clang, AddressSanitizer and UndefinedBehaviorSanitizer)
# in build-fuzz/ (CAUCE_FUZZ_BUILD to choose another folder) and runs each target named, all of them
# by default, for MINUTOS minutes, one after another, from its seed corpus in fuzz/corpus/<target>/.
# The corpus each run grows, its log and any failing input stay in <build>/largo/<target>/.
#
#   scripts/fuzz-long.sh [MINUTOS] [OBJETIVO...]     e.g. scripts/fuzz-long.sh 10 workbook screens
#
# Exits with 1 when a target found a failure (its input is in <build>/largo/<target>/fallos/).
set -euo pipefail
cd "$(dirname "$0")/.."
minutes=${1:-10}
[ $# -gt 0 ] && shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(val_format script screens survey workbook workbook_xml xls_stream)
build=${CAUCE_FUZZ_BUILD:-build-fuzz}

CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCAUCE_GUI=OFF -DCAUCE_BENCH=OFF \
  -DCAUCE_SANITIZE=ON -DCAUCE_FUZZ=ON >/dev/null
cmake --build "$build" -j2 --target cauce "${targets[@]/%/_fuzz}"
# The legacy .xls reader is cauce itself, run as a child.
export CAUCE_XLS_READER="$PWD/$build/cli/cauce"

failed=0
for t in "${targets[@]}"; do
  dir="$build/largo/$t"
  mkdir -p "$dir/corpus" "$dir/fallos"
  options=(-max_total_time=$((minutes * 60)) -timeout=60 -rss_limit_mb=4096 -len_control=0 -print_final_stats=1
           -artifact_prefix="$dir/fallos/")
  [ -f "fuzz/$t.dict" ] && options+=(-dict="fuzz/$t.dict")
  echo "== $t, $minutes min"
  status=0
  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    "$build/fuzz/${t}_fuzz" "${options[@]}" "$dir/corpus" "fuzz/corpus/$t" >"$dir/registro.txt" 2>&1 || status=$?
  grep -a -E '^(stat::number_of_executed_units|stat::average_exec_per_sec|stat::peak_rss_mb)|DONE|^fuzz:|ERROR' \
    "$dir/registro.txt" | tail -n 6
  if [ "$status" -ne 0 ]; then
    echo "== $t: FALLO (estado $status), ver $dir/registro.txt"
    failed=1
  fi
done
exit $failed
