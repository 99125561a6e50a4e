#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Pulsara need,
# skipping the ones already there so that a warm machine starts at once.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    qt6-base-dev libgl-dev
    librtaudio-dev librtmidi-dev libasound2-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev
    fonts-liberation2
    pulseaudio pulseaudio-utils
    sox
    xvfb xdotool imagemagick python3
    dpkg-dev
    desktop-file-utils shared-mime-info
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
