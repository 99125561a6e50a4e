#!/usr/bin/env bash
# Installs the build into a scratch prefix, checks the files a desktop needs, and runs the installed
# program there with no PULSARA_DATA_DIR.
#
#     install_test.sh CMAKE BUILD_DIR
set -euo pipefail
cmake="$1"
build="$2"
prefix=$(mktemp -d "${TMPDIR:-/tmp}/pulsara-install.XXXXXX")
trap 'rm -rf "$prefix"' EXIT
unset PULSARA_DATA_DIR
# Samples missing beside the song would be looked for in ~/Documents/Pulsara: not the user's.
export HOME="$prefix"

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

installed=$("$cmake" --install "$build" --prefix "$prefix" 2>&1) || fail "the install failed: $installed"

share="$prefix/share"
data="$share/pulsara"
for file in bin/pulsara bin/pulsara-window share/pulsara/Demo/zzzDemo.kqu share/pulsara/Pulsara.htm share/applications/pulsara.desktop \
    share/icons/hicolor/scalable/apps/pulsara.svg share/mime/packages/pulsara.xml; do
    [ -s "$prefix/$file" ] || fail "$file was not installed"
done
diff -r "$build/share/pulsara/Skins" "$data/Skins" >/dev/null || fail "the installed skin differs from the built one"
[ "$(ls "$data"/Demo/*.kqt | wc -l)" -eq 2 ] || fail "the two demo templates were not installed"
# Every picture the manual shows is there.
for image in $(grep -o 'src="[^"]*"' "$data/Pulsara.htm" | cut -d'"' -f2); do
    [ -s "$data/$image" ] || fail "the manual shows $image, which was not installed"
done
desktop-file-validate "$share/applications/pulsara.desktop" || fail "the desktop file is not valid"
# The install compiled the MIME package, so the desktop knows the song files.
grep -q '^50:application/x-pulsara-song:\*\.kqu$' "$share/mime/globs2" || fail "the MIME database has no Pulsara songs"

version=$("$prefix/bin/pulsara" --version)
[[ "$version" == "pulsara "[0-9]* ]] || fail "--version printed \"$version\""
# The windowless program starts without the window system's or the audio libraries; --play
# loads the installed audio module, which then finds no sound server here.
! ldd "$prefix/bin/pulsara" | grep -E 'libQt6|librtaudio' || fail "the command-line program links Qt or RtAudio"
status=0
played=$(PULSARA_AUDIO_BACKEND=pulse PULSE_SERVER=unix:/nonexistent/pulsara-socket "$prefix/bin/pulsara" --play "$data/Demo/zzzDemo.kqu" </dev/null 2>&1) || status=$?
[ "$status" -eq 1 ] && [ "$played" = "pulsara: error: no audio output device could be opened" ] || fail "--play said: $played"

# The demo names its samples beside itself: a sample left out would be a warning on stderr.
warnings=$("$prefix/bin/pulsara" --export "$prefix/out.wav" "$data/Demo/zzzDemo.kqu" 2>&1 >/dev/null) || fail "the export failed: $warnings"
[ -z "$warnings" ] || fail "the export warned: $warnings"
[ "$(stat -c %s "$prefix/out.wav")" -gt 46 ] || fail "the exported WAV file holds no sound"
[ "$(head -c 4 "$prefix/out.wav")" = RIFF ] || fail "the exported file is not a WAV file"
echo passed
