#!/usr/bin/env bash
# Batch profile: "cauce perfil" over 200 copies of the bundled example reach (Rios.xlsx, sheet Persecc,
# 12 sections) in one call, and the time per reach; the last run adds the standard-step profile beside the
# screen's (--metodo ambos), which should cost at most three times the screen's run. Each reach is opened, its twelve sections computed
# with "(Y?)", its profile run with "Perfiles", and its table printed as CSV.
#
#   bash bench/profile_batch.sh [CAUCE] [COPIAS]     (CAUCE defaults to build/cli/cauce, COPIAS to 200)
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
cauce="$(realpath -m "${1:-$here/build/cli/cauce}")"
copies="${2:-200}"
[ -x "$cauce" ] || { echo "perfil_lote: no se encuentra el programa \"$cauce\" (compílelo o páselo como argumento)" >&2; exit 2; }

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
for k in $(seq -w 1 "$copies"); do cp "$here/examples/Rios.xlsx" "$work/tramo-$k.xlsx"; done
export CAUCE_DATOS="$work/datos"

run() {  # label, extra options
  local label="$1"; shift
  local start end rows
  start=$(date +%s%N)
  rows=$(cd "$work" && "$cauce" perfil tramo-*.xlsx --y-inicial 1.8 --formato csv "$@" | tail -n +2 | wc -l)
  end=$(date +%s%N)
  local ms=$(( (end - start) / 1000000 ))
  if [ "$rows" -ne $((copies * 12)) ]; then
    echo "perfil_lote: se esperaban $((copies * 12)) filas y salieron $rows" >&2
    exit 1
  fi
  awk -v l="$label" -v ms="$ms" -v n="$copies" \
    'BEGIN { printf "%-28s %d tramos en %.2f s: %.2f ms por tramo\n", l, n, ms / 1000, ms / n }'
}

run "con --hoja Persecc" --hoja Persecc
run "sin --hoja (la busca)"
run "--metodo ambos" --hoja Persecc --metodo ambos
