#!/usr/bin/env bash
# Installs what is missing, builds, and starts Quillmere on its default home
# (~/.local/share/Quillmere). Extra arguments go to the program (e.g. --home DIR).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bash "$root/tools/packages.sh"
bash "$root/tools/build.sh"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "Quillmere is built (${QMR_BUILD_DIR:-$root/build}/app/quillmere), but there is no display" >&2
  echo "to show it on: neither DISPLAY nor WAYLAND_DISPLAY is set. Start it from a desktop session," >&2
  echo "or under a virtual display with: xvfb-run -a bash tools/run.sh" >&2
  exit 2
fi
exec "${QMR_BUILD_DIR:-$root/build}/app/quillmere" "$@"
