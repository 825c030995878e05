#!/usr/bin/env bash
# Installs what building, testing and running need on Debian 12. Quick when all is present.
set -euo pipefail
packages=(
  build-essential cmake ninja-build pkg-config git ccache
  libgtest-dev libgmock-dev
  qt6-base-dev qt6-base-dev-tools libgl-dev
  portaudio19-dev libebur128-dev
  libcdio-dev libcdio-paranoia-dev libburn-dev libdiscid-dev cd-paranoia
  clang libclang-rt-14-dev
  sox ffmpeg mpg123 lame libgsm-tools flac vorbis-tools espeak-ng xdg-utils python3
  pulseaudio pulseaudio-utils
  xvfb xauth xdotool imagemagick
  python3
)
missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed'; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; fi
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
