#!/usr/bin/env bash
# Builds the Debian package of a build with cpack and checks its contents and that its
# dependencies name the run-time packages of the libraries the program links.
# Usage: checkdeb.sh BUILD_DIR
set -uo pipefail
build="$1"
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

log="$(cpack --config "$build/CPackConfig.cmake" -G DEB -B "$out" 2>&1)" || {
  echo "$log" >&2
  fail "cpack -G DEB failed"
}
deb="$(ls "$out"/*.deb 2>/dev/null | head -n 1)"
[ -n "$deb" ] || fail "cpack made no .deb"

depends="$(dpkg-deb -f "$deb" Depends)"
for p in libqt6core6 libqt6gui6 libqt6widgets6 libqt6printsupport6 libsqlite3-0 libc6 \
  qt6-qpa-plugins; do
  grep -qE "(^|, )$p( |,|$)" <<<"$depends" || fail "Depends lacks $p: $depends"
done
contents="$(dpkg-deb -c "$deb")"
for f in ./usr/bin/quillmere ./usr/share/quillmere/qmrhelp.txt \
  ./usr/share/applications/org.quillmere.Quillmere.desktop \
  ./usr/share/metainfo/org.quillmere.Quillmere.metainfo.xml \
  ./usr/share/icons/hicolor/scalable/apps/quillmere.svg \
  ./usr/share/icons/hicolor/48x48/apps/quillmere.png; do
  grep -qF " $f" <<<"$contents" || fail "the package lacks $f"
done
[ "$(dpkg-deb -f "$deb" Package)" = quillmere ] || fail "the package is not named quillmere"
echo "$(basename "$deb"): Depends: $depends"
