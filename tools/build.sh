#!/usr/bin/env bash
# Configures and builds into build/ (or $QMR_BUILD_DIR).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${QMR_BUILD_DIR:-$root/build}"
if [ ! -f "$build/build.ninja" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
cmake --build "$build" -- -j"$(nproc)" | grep -vE '^\[[0-9]+/[0-9]+\]' || true
test -x "$build/app/quillmere"
