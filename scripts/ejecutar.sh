#!/usr/bin/env bash
# Installs what is missing, builds Cauce and runs it on its bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/instalar-dependencias.sh
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs" --target cauce
if [ -n "${DISPLAY:-}" ] && [ -z "${CAUCE_SIN_VENTANA:-}" ]; then
  exec build/cli/cauce
fi
echo "Sin pantalla gráfica: se ejecuta el guion de ejemplo examples/seccion.guion"
exec build/cli/cauce guion examples/seccion.guion
