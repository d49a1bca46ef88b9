#!/usr/bin/env bash
# Installs what is missing, checks the C++ files' format, then builds Cauce and checks it the way CI
# does, warnings as errors:
#   build/        g++, Release with Debian's own flags added (dpkg-buildflags): every test, the
#                 desktop tests on Qt's offscreen platform;
#   the package   the .deb built from build/ with cpack, its contents listed, unpacked into a
#                 temporary folder and its cauce run on the bundled reach;
#   build-san/    clang, RelWithDebInfo, AddressSanitizer and UndefinedBehaviorSanitizer: the test
#                 suite again, and a regression run of each libFuzzer target: its seed corpus, then
#                 CAUCE_FUZZ_RUNS mutations from a fixed seed, the same every time;
#   build-mingw/  the core and the script driver cross-compiled for Windows with mingw-w64 (no
#                 workbooks, no desktop), its screen scripts run under wine64 against the expected
#                 output of the Linux build.
# Each step says what it does; the first that fails ends the run with its name.
# CAUCE_NO_SANITIZERS=1 leaves out build-san/, CAUCE_NO_WINDOWS=1 build-mingw/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

step_name=""
step() {
  step_name="$*"
  printf '\n==== %s ====\n' "$step_name"
}
trap 'status=$?; [ $status -eq 0 ] || printf "\n**** FALLÓ: %s (estado %s)\n" "${step_name:-?}" "$status" >&2' EXIT
fail() {
  echo "ERROR: $*" >&2
  exit 1
}

step "Dependencias (apt-get, solo lo que falte)"
bash scripts/instalar-dependencias.sh

step "Formato de los archivos de C++ (.clang-format)"
bash scripts/formato.sh --check

jobs=$(nproc 2>/dev/null || echo 2)
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
version=$(sed -n 's/^project(Cauce VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[ -n "$version" ] || fail "no se encuentra la versión en project() de CMakeLists.txt"

step "build/: g++ Release con las opciones de Debian, avisos como errores"
cppflags=$(dpkg-buildflags --get CPPFLAGS)
cxxflags=$(dpkg-buildflags --get CXXFLAGS)
ldflags=$(dpkg-buildflags --get LDFLAGS)
echo "CPPFLAGS=$cppflags"
echo "CXXFLAGS=$cxxflags"
echo "LDFLAGS=$ldflags"
CC=gcc CXX=g++ cmake -S . -B build "${launcher[@]}" -DCMAKE_BUILD_TYPE=Release -DCAUCE_WERROR=ON \
  -DCMAKE_CXX_FLAGS="$cppflags $cxxflags" -DCMAKE_EXE_LINKER_FLAGS="$ldflags"
cmake --build build -j"$jobs"

step "build/: todas las pruebas"
ctest --test-dir build --output-on-failure -j"$jobs"

step "Paquete de Debian: cpack -G DEB"
rm -f build/cauce_*.deb
(cd build && cpack -G DEB)
deb=build/cauce_${version}_$(dpkg --print-architecture).deb
[ -f "$deb" ] || fail "cpack no dejó $deb"
dpkg-deb --info "$deb"
depends=$(dpkg-deb --field "$deb" Depends)
case "$depends" in
  *libqt6widgets6*) ;;
  *) fail "las dependencias no vienen de las bibliotecas enlazadas (dpkg-shlibdeps): $depends" ;;
esac

step "Paquete de Debian: contenido"
dpkg-deb --contents "$deb"
listing=$(dpkg-deb --contents "$deb" | awk '{print $NF}')
for f in ./usr/bin/cauce ./usr/share/applications/cauce.desktop ./usr/share/icons/hicolor/scalable/apps/cauce.svg; do
  grep -qx -- "$f" <<<"$listing" || fail "falta $f en $deb"
done

step "Paquete de Debian: desempaquetado, cauce perfil sobre el tramo de ejemplo"
unpacked=$(mktemp -d)
dpkg-deb -x "$deb" "$unpacked"
desktop-file-validate "$unpacked/usr/share/applications/cauce.desktop"
packaged="$unpacked/usr/bin/cauce"
printed=$("$packaged" --version)
echo "$printed"
[ "$printed" = "cauce $version" ] || fail "cauce --version dice \"$printed\", no \"cauce $version\""
reach=(perfil 'C:\Programas\Datos\Rios.xls' --hoja Persecc --y-inicial 2.2)
QT_QPA_PLATFORM=offscreen CAUCE_DATOS="$unpacked/datos" "$packaged" "${reach[@]}" | tee "$unpacked/perfil.txt"
QT_QPA_PLATFORM=offscreen CAUCE_DATOS="$unpacked/datos-build" build/cli/cauce "${reach[@]}" >"$unpacked/perfil-build.txt"
diff "$unpacked/perfil-build.txt" "$unpacked/perfil.txt" || fail "el cauce del paquete no da el mismo perfil que build/"
rm -rf "$unpacked"

if [ -z "${CAUCE_NO_SANITIZERS:-}" ]; then
  step "build-san/: clang con AddressSanitizer y UndefinedBehaviorSanitizer"
  CC=clang CXX=clang++ cmake -S . -B build-san "${launcher[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCAUCE_WERROR=ON -DCAUCE_GUI=OFF -DCAUCE_BENCH=OFF -DCAUCE_SANITIZE=ON -DCAUCE_FUZZ=ON \
    -DCAUCE_FUZZ_RUNS="${CAUCE_FUZZ_RUNS:-2000}"
  cmake --build build-san -j"$jobs"

  step "build-san/: las pruebas y los objetivos de fuzzing sobre su corpus"
  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-san --output-on-failure -j"$jobs"
fi

if [ -z "${CAUCE_NO_WINDOWS:-}" ]; then
  step "build-mingw/: el núcleo y el conductor de guiones para Windows (mingw-w64)"
  cmake -S . -B build-mingw "${launcher[@]}" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DCAUCE_WERROR=ON -DCAUCE_GUI=OFF -DCAUCE_WORKBOOK=OFF -DCAUCE_BENCH=OFF
  cmake --build build-mingw -j"$jobs"
  exe=build-mingw/cli/cauce.exe
  # Linked statically: only system DLLs, none of the compiler's.
  dlls=$(x86_64-w64-mingw32-objdump -p "$exe" | sed -n 's/.*DLL Name: //p' | tr '\n' ' ')
  echo "DLL: $dlls"
  case "$dlls" in
    *libstdc++*|*libgcc*|*libwinpthread*) fail "$exe necesita las DLL del compilador: $dlls" ;;
  esac

  step "build-mingw/: los guiones bajo wine64"
  WINEPREFIX=$(mktemp -d)
  export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  start=$(date +%s)
  /usr/lib/wine/wine64 "$exe" --version
  echo "Primer arranque de wine (crea su prefijo): $(($(date +%s) - start)) s"
  answer=$(printf 'pantalla Form2\nlibro Rios.xlsx\n' | /usr/lib/wine/wine64 "$exe" guion 2>&1 || true)
  echo "$answer"
  grep -q "No se pueden abrir libros en esta versión" <<<"$answer" ||
    fail "sin libros, el conductor no lo dice"
  ctest --test-dir build-mingw --output-on-failure
  /usr/lib/wine/wineserver -k || true
  rm -rf "$WINEPREFIX"
fi

step_name=""
printf '\n==== Todo bien ====\n'
