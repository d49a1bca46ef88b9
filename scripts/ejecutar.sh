#!/usr/bin/env bash
# Installs what is missing, builds Cauce and runs it on its bundled example workbooks: the desktop
# application when there is a display, otherwise the same reaches headless through the command line.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/instalar-dependencias.sh
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs" --target cauce
if [ -n "${DISPLAY:-}" ] && [ -z "${CAUCE_SIN_VENTANA:-}" ]; then
  exec build/cli/cauce
fi
echo "Sin pantalla gráfica: se calculan los tramos de los libros de ejemplo con la línea de órdenes."
echo "(Con una pantalla, o con xvfb-run, se abre la aplicación de escritorio.)"
echo
build/cli/cauce perfil 'C:\Programas\Datos\Rios.xls' --hoja Persecc --y-inicial 2.2
echo
build/cli/cauce perfil 'C:\Programas\Datos\Rios.xls' --hoja Percanal --y-inicial 1.2
echo
build/cli/cauce perfil 'C:\Ormandi\Ormandi.xls' --y-final 2.5
