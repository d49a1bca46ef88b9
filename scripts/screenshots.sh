#!/usr/bin/env bash
# Screenshots of the five screens for docs/ and the README: the real desktop on a virtual 1366x768
# screen, each screen after its computation (scripts/screenshots.py says how), saved as
# docs/form1.png ... docs/form5.png. Needs xvfb, at-spi2-core and python3-pyatspi.
# Usage: bash scripts/screenshots.sh [BUILD_FOLDER] [OUTPUT_FOLDER]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
out=${2:-docs}
cmake --build "$build" -j2 --target cauce
mkdir -p "$out"
/usr/bin/python3 scripts/screenshots.py "$build/cli/cauce" "$out"
