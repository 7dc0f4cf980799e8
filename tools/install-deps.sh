#!/usr/bin/env bash
# Installs every Debian package that building, playing and testing the game need.
# Packages that are already installed are skipped; apt-get runs through sudo when not root.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  libx11-dev libgl-dev libglx-dev libgl1-mesa-dri
  libstb-dev libsdl2-dev libmpg123-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xdotool x11-utils x11-xkb-utils
  python3
  desktop-file-utils appstream man-db dpkg-dev lintian
  clang-14 libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
echo "[setup] installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
