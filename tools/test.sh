#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test (no display needed).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bash "$root/tools/packages.sh"
bash "$root/tools/build.sh"
cd "${QMR_BUILD_DIR:-$root/build}"
export QT_QPA_PLATFORM=offscreen
ctest --output-on-failure --timeout 300 "$@"
