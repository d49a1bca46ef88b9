#!/usr/bin/env bash
# Installs what is missing, checks the C++ files' format, builds Cauce and runs every test through CTest, twice:
#   build/      the program as shipped (g++), every test, the desktop tests on Qt's offscreen platform;
#   build-san/  clang with AddressSanitizer and UndefinedBehaviorSanitizer: the test suite again, and a
#               short run of each libFuzzer target from its seed corpus (CAUCE_FUZZ_SECONDS each).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/instalar-dependencias.sh
bash scripts/formato.sh --check
jobs=$(nproc 2>/dev/null || echo 2)

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"

if [ -z "${CAUCE_SIN_SANITIZADORES:-}" ]; then
  CC=clang CXX=clang++ cmake -S . -B build-san -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCAUCE_GUI=OFF \
    -DCAUCE_BENCH=OFF -DCAUCE_SANITIZE=ON -DCAUCE_FUZZ=ON -DCAUCE_FUZZ_SECONDS="${CAUCE_FUZZ_SECONDS:-20}"
  cmake --build build-san -j"$jobs"
  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-san --output-on-failure -j"$jobs"
fi
