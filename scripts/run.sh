#!/usr/bin/env bash
# `make run`: opens Pulsara with its demo song when a display is available; otherwise renders
# the demo song to a WAV file with the command line and says where it is.
set -euo pipefail
build="${1:-build}"
demo="$build/share/pulsara/Demo/zzzDemo.kqu"
out="$build/zzzDemo.wav"

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    if "$build/pulsara" "$demo"; then
        exit 0
    fi
    echo "The window could not be opened; rendering the demo instead."
else
    echo "No display is available (DISPLAY is not set), so the demo is rendered instead of opening the window."
fi

"$build/pulsara" --export "$out" "$demo" --stereo --interpolation linear
frames=$(( ($(stat -c %s "$out") - 46) / 4 ))
seconds=$(awk -v f="$frames" 'BEGIN { printf "%.2f", f / 44100 }')
peak=$(sox "$out" -n stat 2>&1 | awk -F: '/Maximum amplitude/ { gsub(/ /, "", $2); print $2 }')
echo "Rendered the demo song to $out: $seconds s, 44100 Hz stereo, peak level $peak of full scale."
echo "To hear it on the sound device: $build/pulsara --play $demo (Enter or Ctrl+C stops it)."
