#!/usr/bin/env bash
# Checks the Debian package `make package` built: what it depends on and holds, and, where this
# runs as root, that it installs, runs from the menu's command, exports its demo and uninstalls
# cleanly.
#
#   package_check.sh PULSARA.deb
set -euo pipefail
deb=$1
fail() { echo "package_check: $*" >&2; exit 1; }

info=$(dpkg-deb --info "$deb")
depends=$(dpkg-deb --field "$deb" Depends)
for needed in libqt6widgets6 librtaudio fonts-liberation2 libasound2; do
    grep -q "$needed" <<<"$depends" || fail "Depends lacks $needed: $depends"
done
grep -q "postinst" <<<"$info" || fail "no postinst"
contents=$(dpkg-deb --contents "$deb" | awk '{ print $NF }')
for file in ./usr/bin/pulsara ./usr/bin/pulsara-window ./usr/lib/pulsara/pulsara-audio.so ./usr/share/pulsara/Skins/Default/stepsPat.bmp ./usr/share/pulsara/Demo/zzzDemo.kqu \
    ./usr/share/pulsara/Demo/Kick1.wav ./usr/share/pulsara/Pulsara.htm ./usr/share/applications/pulsara.desktop \
    ./usr/share/icons/hicolor/scalable/apps/pulsara.svg ./usr/share/mime/packages/pulsara.xml; do
    grep -qx "$file" <<<"$contents" || fail "the package lacks $file"
done

if [ "$(id -u)" -ne 0 ]; then
    echo "package_check: not root, so the package is not installed here (contents checked)"
    exit 0
fi
# Only a package that is installed counts: one removed earlier leaves a record, not files.
if dpkg-query -W -f='${Status}' pulsara 2>/dev/null | grep -q "ok installed"; then
    echo "package_check: a pulsara package is installed already; it is left alone (contents checked)"
    exit 0
fi
scratch=$(mktemp -d)
trap 'dpkg --purge pulsara >/dev/null 2>&1 || true; rm -rf "$scratch"' EXIT
DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$(realpath "$deb")" >/dev/null
[ "$(/usr/bin/pulsara --version)" = "pulsara $(dpkg-deb --field "$deb" Version)" ] || fail "pulsara --version: $(/usr/bin/pulsara --version)"
HOME=$scratch /usr/bin/pulsara --export "$scratch/demo.wav" /usr/share/pulsara/Demo/zzzDemo.kqu
[ "$(head -c 4 "$scratch/demo.wav")" = "RIFF" ] && [ "$(stat -c %s "$scratch/demo.wav")" -gt 100000 ] || fail "the demo did not export"
dpkg --purge pulsara >/dev/null
[ ! -e /usr/bin/pulsara ] && [ ! -e /usr/share/pulsara ] || fail "files left after removal"
echo "package_check: installed, ran and removed $(basename "$deb")"
