#!/usr/bin/env bash
# Formats the tracked C++ files with the project's .clang-format; with --check, changes nothing and
# fails listing the files that do not match it.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files -- '*.cpp' '*.hpp')
if [ "${1:-}" = "--check" ]; then
  bad=()
  for f in "${files[@]}"; do
    clang-format --dry-run -Werror "$f" >/dev/null 2>&1 || bad+=("$f")
  done
  if [ "${#bad[@]}" -gt 0 ]; then
    printf 'Sin el formato de .clang-format (corrija con scripts/formato.sh):\n' >&2
    printf '  %s\n' "${bad[@]}" >&2
    exit 1
  fi
else
  clang-format -i "${files[@]}"
fi
