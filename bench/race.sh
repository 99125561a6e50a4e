#!/usr/bin/env bash
# Races `pulsara --export` against `openmpt123 --render` on the same notes and samples: songs of
# 8, 16 and 32 channels, each once at the samples' own pitch ("plain") and once with every note
# pitched, 58.8 s at 44100 Hz stereo with linear interpolation (openmpt123's --filter 2). Each
# run is timed as a whole process; the two programs take turns, so that a change in the
# machine's load falls on both. Prints the median wall time of each and their ratio.
#
#     bench/race.sh [BUILD_DIR] [RUNS]      (defaults: build, 15)
#
# Needs openmpt123 (Debian package openmpt123) and the build's bench/pulsara_race_songs.
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
runs="${2:-15}"
pulsara="$build/pulsara"
command -v openmpt123 >/dev/null || { echo "race.sh needs openmpt123 (apt-get install openmpt123)" >&2; exit 1; }
[ -x "$pulsara" ] && [ -x "$build/bench/pulsara_race_songs" ] || { echo "build $build first" >&2; exit 1; }

work=$(mktemp -d "${TMPDIR:-/tmp}/pulsara-race.XXXXXX")
trap 'rm -rf "$work"' EXIT
"$build/bench/pulsara_race_songs" "$work"

# Wall seconds of one run of "$@", its output thrown away.
timed() {
    local start=$EPOCHREALTIME
    "$@" >/dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
    local end=$EPOCHREALTIME
    echo "$start $end" | awk '{ printf "%.6f\n", $2 - $1 }'
}

median() {
    sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

echo "$(date -u '+%Y-%m-%d %H:%M UTC'), $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg), $runs runs each"
printf '%-16s %12s %12s %8s %12s\n' song pulsara openmpt123 ratio "x real time"
for song in race8-plain race8-pitched race16-plain race16-pitched race32-plain race32-pitched; do
    : >"$work/p" && : >"$work/o"
    for ((i = 0; i < runs; ++i)); do
        timed "$pulsara" --export "$work/$song.wav" "$work/$song.kqu" --stereo --rate 44100 --interpolation linear >>"$work/p"
        timed openmpt123 -q --render --force --samplerate 44100 --channels 2 --filter 2 --no-float "$work/$song.xm" >>"$work/o"
    done
    p=$(median <"$work/p")
    o=$(median <"$work/o")
    seconds=$(( ($(stat -c %s "$work/$song.wav") - 46) / 4 ))
    awk -v s="$song" -v p="$p" -v o="$o" -v f="$seconds" \
        'BEGIN { printf "%-16s %10.1f ms %10.1f ms %7.2fx %12.0f\n", s, p * 1000, o * 1000, o / p, f / 44100 / p }'
done
