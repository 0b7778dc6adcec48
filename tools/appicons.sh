#!/usr/bin/env bash
# Renders the application icon (resources/app/quillmere.svg) to the PNG sizes that are kept
# beside it, for the window icon and the desktop's icon theme. Run after changing the SVG;
# needs rsvg-convert (Debian package librsvg2-bin). The build itself uses the PNGs as kept.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
svg="$root/resources/app/quillmere.svg"
command -v rsvg-convert >/dev/null || { echo "rsvg-convert is missing: apt-get install librsvg2-bin" >&2; exit 1; }
for size in 16 22 24 32 48 64 128 256; do
  dir="$root/resources/app/hicolor/${size}x${size}/apps"
  mkdir -p "$dir"
  rsvg-convert -w "$size" -h "$size" "$svg" -o "$dir/quillmere.png"
done
