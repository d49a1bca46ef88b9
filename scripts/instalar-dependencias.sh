#!/usr/bin/env bash
# Installs, from Debian's packages, whatever Cauce needs to build, test and run that is missing.
set -euo pipefail
packages=(
  g++ cmake make pkg-config
  qt6-base-dev qt6-charts-dev libqt6opengl6-dev qt6-translations-l10n libgl-dev
  xvfb xauth fonts-dejavu-core locales
  at-spi2-core python3-pyatspi dbus-x11
  libzip-dev libpugixml-dev zipcmp zipmerge ziptool libfreexl-dev
  nlohmann-json3-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  python3 python3-openpyxl python3-xlwt poppler-utils
  libreoffice-calc-nogui python3-uno
  clang libclang-rt-14-dev clang-format
  ccache dpkg-dev desktop-file-utils
  g++-mingw-w64-x86-64-posix wine64
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Instalando: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -q
  $SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
