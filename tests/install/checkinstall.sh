#!/usr/bin/env bash
# Installs a build into a temporary prefix and checks what a desktop needs of it: the
# program, its help text, a valid desktop entry and metainfo, the icon in every size, and
# that the installed program finds its help file and starts (offscreen) on a fresh home.
# Usage: checkinstall.sh BUILD_DIR SOURCE_DIR
set -uo pipefail
build="$1"
source="$2"
prefix="$(mktemp -d)"
home="$(mktemp -d)"
trap 'rm -rf "$prefix" "$home"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >/dev/null || fail "cmake --install failed"

app_id=org.quillmere.Quillmere
files=(
  bin/quillmere
  share/quillmere/qmrhelp.txt
  share/applications/$app_id.desktop
  share/metainfo/$app_id.metainfo.xml
  share/icons/hicolor/scalable/apps/quillmere.svg
)
for size in 16 22 24 32 48 64 128 256; do
  files+=(share/icons/hicolor/${size}x${size}/apps/quillmere.png)
done
for f in "${files[@]}"; do
  [ -f "$prefix/$f" ] || fail "the installation lacks $f"
done
[ -x "$prefix/bin/quillmere" ] || fail "bin/quillmere is not executable"
cmp -s "$prefix/share/quillmere/qmrhelp.txt" "$source/resources/qmrhelp.txt" ||
  fail "the installed help text differs from resources/qmrhelp.txt"

# The validators: errors and warnings fail; hints of the desktop validator do not.
command -v desktop-file-validate >/dev/null || fail "desktop-file-validate is missing (desktop-file-utils)"
command -v appstreamcli >/dev/null || fail "appstreamcli is missing (appstream)"
report="$(desktop-file-validate "$prefix/share/applications/$app_id.desktop" 2>&1)"
if grep -qE ": (error|warning):" <<<"$report"; then
  echo "$report" >&2
  fail "desktop-file-validate"
fi
appstreamcli validate --no-net "$prefix/share/metainfo/$app_id.metainfo.xml" >/dev/null ||
  fail "appstreamcli validate --no-net: $(appstreamcli validate --no-net "$prefix/share/metainfo/$app_id.metainfo.xml" 2>&1)"
icon="$(sed -n 's/^Icon=//p' "$prefix/share/applications/$app_id.desktop")"
[ -f "$prefix/share/icons/hicolor/scalable/apps/$icon.svg" ] ||
  fail "the desktop entry names the icon '$icon', which is not installed"
exec_name="$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$prefix/share/applications/$app_id.desktop")"
[ -x "$prefix/bin/$exec_name" ] || fail "the desktop entry starts '$exec_name', which is not installed"

# The installed program finds the installed help text (not the build tree's, not a home's).
found="$(QUILLMERE_HOME="$home" "$prefix/bin/quillmere" --help-file)" ||
  fail "the installed program finds no help file"
[ "$found" = "$prefix/share/quillmere/qmrhelp.txt" ] ||
  fail "the installed program found its help at '$found'"

# Started offscreen on a fresh home it keeps running until stopped, its store made and a
# help text of its own written into the home.
QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES='qt.qpa.*=false' \
  timeout 6 "$prefix/bin/quillmere" --home "$home" >/dev/null 2>&1
rc=$?
[ "$rc" -eq 124 ] || fail "the installed program ended by itself with status $rc"
[ -f "$home/qmr.mdb" ] || fail "the installed program made no store"
[ -f "$home/qmrhelp.txt" ] || fail "the installed program wrote no help text into its home"
echo "The installation in a temporary prefix is complete and starts."
