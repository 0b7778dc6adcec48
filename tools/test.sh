#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test (no display needed).
#   --sanitize   builds into build-sanitize/ with AddressSanitizer and UndefinedBehaviorSanitizer
#                and runs the whole suite there; any report fails the run.
# Other arguments go to ctest.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
args=()
for a in "$@"; do
  if [ "$a" = "--sanitize" ]; then
    export QMR_BUILD_DIR="$root/build-sanitize"
    export QMR_CONFIGURE_ARGS="-DQMR_SANITIZE=ON"
  else
    args+=("$a")
  fi
done
bash "$root/tools/packages.sh"
bash "$root/tools/build.sh"
cd "${QMR_BUILD_DIR:-$root/build}"
export QT_QPA_PLATFORM=offscreen
ctest --output-on-failure --timeout 300 "${args[@]}"
