#!/usr/bin/env bash
# Configures and builds into build/ (or $QMR_BUILD_DIR). Prints only what is worth reading.
# $QMR_CONFIGURE_ARGS are extra arguments for the first configure of that directory.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${QMR_BUILD_DIR:-$root/build}"
if [ ! -f "$build/build.ninja" ]; then
  # shellcheck disable=SC2086
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    ${QMR_CONFIGURE_ARGS:-} >/dev/null
fi
log="$(mktemp)"
trap 'rm -f "$log"' EXIT
if ! cmake --build "$build" -- -j"$(nproc)" >"$log" 2>&1; then
  cat "$log"
  echo "The build failed." >&2
  exit 1
fi
grep -vE '^(\[[0-9]+/[0-9]+\]|ninja: no work to do)' "$log" || true
