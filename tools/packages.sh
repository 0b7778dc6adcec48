#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running and testing need, when missing.
# Quiet when everything is there.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config     # build
  qt6-base-dev libgl-dev               # widgets, images, printing, settings (Qt 6)
  qt6-image-formats-plugins            # more image formats for loose files
  qt6-l10n-tools qt6-tools-dev         # lupdate and its CMake package: the translation template
  libqt6svg6                           # draws the program's SVG icons at any size
  qt6-pdf-dev                          # PDF shortcuts: their first page as a tile, their text
  libsqlite3-dev                       # the store
  libcurl4-openssl-dev                 # mail to an SMTP server
  qtkeychain-qt6-dev                   # the SMTP password in the desktop's keyring
  libtesseract-dev tesseract-ocr-eng   # reads the text on the pages
  libsane-dev sane-utils               # scanners and cameras; sane-utils brings the test device
  xvfb xauth                           # a virtual display for screenshots under xvfb-run
  clang libclang-rt-14-dev             # fuzz targets: clang with libFuzzer and its sanitizers
  poppler-utils                        # tests: pdfinfo and pdfimages read printed PDF files
  dbus gnome-keyring                   # tests: a private session bus with a keyring daemon
  desktop-file-utils appstream         # tests: desktop-file-validate, appstreamcli validate
  dpkg-dev file                        # cpack -G DEB: dpkg-shlibdeps finds the run-time packages
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "Need root (or sudo) to install: ${missing[*]}" >&2; exit 1; }
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
