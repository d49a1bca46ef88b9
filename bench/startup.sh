#!/usr/bin/env bash
# Start-up of the desktop application: the time from launching `cauce` to its first painted window,
# and the memory it then holds. The program ends itself right after that first paint
# (CAUCE_MEASURE_STARTUP) and prints its own count from entering the desktop code and its resident
# memory; this script adds the wall time from the launch, which includes loading Qt.
#
#   bash bench/startup.sh [BUILD_FOLDER] [RUNS]        (defaults: build, 10)
#
# Without a display it runs itself under Xvfb. The workbooks go to a scratch data folder, so the
# first run also measures copying the bundled examples there.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
runs=${2:-10}
exe=$build/cli/cauce
[ -x "$exe" ] || { echo "No está $exe: compile antes (cmake --build $build --target cauce)" >&2; exit 2; }
if [ -z "${DISPLAY:-}" ] && [ -z "${CAUCE_UNDER_XVFB:-}" ]; then
  exec env CAUCE_UNDER_XVFB=1 xvfb-run -a -s "-screen 0 1600x1000x24" bash "$0" "$build" "$runs"
fi

data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
walls=() apps=() rss=() peak=()
for i in $(seq 1 "$runs"); do
  t0=$(date +%s%N)
  out=$(CAUCE_DATOS="$data" CAUCE_MEASURE_STARTUP=1 "$exe" 2>/dev/null)
  t1=$(date +%s%N)
  line=$(grep '^arranque_ms=' <<<"$out") || { echo "La ejecución $i no informó del arranque" >&2; exit 1; }
  walls+=($(( (t1 - t0) / 1000000 )))
  apps+=($(sed 's/.*arranque_ms=\([0-9]*\).*/\1/' <<<"$line"))
  rss+=($(sed 's/.*rss_kb=\([0-9]*\).*/\1/' <<<"$line"))
  peak+=($(sed 's/.*rss_max_kb=\([0-9]*\).*/\1/' <<<"$line"))
  [ "$i" -eq 1 ] && echo "primera ejecución (copia los libros de ejemplo): ${walls[0]} ms de pared, ${apps[0]} ms en la aplicación"
done

median() { printf '%s\n' "$@" | sort -n | awk '{a[NR]=$1} END {print (NR % 2) ? a[(NR+1)/2] : int((a[NR/2]+a[NR/2+1])/2)}'; }
echo "ejecuciones: $runs"
echo "hasta la primera ventana pintada, desde el lanzamiento (mediana): $(median "${walls[@]}") ms"
echo "hasta la primera ventana pintada, desde la entrada a la aplicación (mediana): $(median "${apps[@]}") ms"
echo "memoria residente al pintar (mediana): $(( $(median "${rss[@]}") / 1024 )) MB; máxima: $(( $(median "${peak[@]}") / 1024 )) MB"
