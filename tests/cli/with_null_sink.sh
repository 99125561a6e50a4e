#!/usr/bin/env bash
# Plays a song with `pulsara --play` into a PulseAudio server of its own (a null sink, no
# hardware, a private runtime folder) and records the sink's monitor.
#
#   play_through_null_sink.sh PULSARA SONG RECORDING.raw [RATE] [CHANNELS] [-- PLAY OPTIONS...]
#
# The recording is raw signed 16-bit little-endian at RATE (44100) with CHANNELS (1). Exit
# status: pulsara's, or 77 when no PulseAudio server can be started here.
set -uo pipefail

pulsara=$1 song=$2 recording=$3
rate=${4:-44100} channels=${5:-1}
shift $(( $# < 5 ? $# : 5 ))
[ "${1:-}" = "--" ] && shift

command -v pulseaudio >/dev/null && command -v parec >/dev/null || exit 77

runtime=$(mktemp -d)
server_pid="" recorder_pid=""
cleanup() {
    [ -n "$recorder_pid" ] && kill "$recorder_pid" 2>/dev/null && wait "$recorder_pid" 2>/dev/null
    [ -n "$server_pid" ] && kill "$server_pid" 2>/dev/null && wait "$server_pid" 2>/dev/null
    rm -rf "$runtime"
}
trap cleanup EXIT

# Everything the server and its clients look up stays inside the private folder.
export HOME=$runtime XDG_RUNTIME_DIR=$runtime XDG_CONFIG_HOME=$runtime/config PULSE_RUNTIME_PATH=$runtime/pulse
export PULSE_SERVER=unix:$runtime/socket
unset DBUS_SESSION_BUS_ADDRESS

pulseaudio -n --daemonize=no --exit-idle-time=-1 --use-pid-file=no --log-target=file:"$runtime/server.log" \
    -L "module-native-protocol-unix socket=$runtime/socket auth-anonymous=1" \
    -L "module-null-sink sink_name=pulsara_test rate=$rate channels=$channels" &
server_pid=$!
for _ in $(seq 50); do
    pactl info >/dev/null 2>&1 && break
    sleep 0.1
done
pactl info >/dev/null 2>&1 || { cat "$runtime/server.log" >&2; exit 77; }
pactl set-default-sink pulsara_test

parec --latency-msec=20 -d pulsara_test.monitor --format=s16le --rate="$rate" --channels="$channels" --raw >"$recording" &
recorder_pid=$!
# Recording starts only once the server lists the recorder's stream.
for _ in $(seq 50); do
    [ -n "$(pactl list short source-outputs 2>/dev/null)" ] && break
    sleep 0.1
done
# A moment of silence first wakes the sink, so that the song's first notes are recorded too.
head -c $(( rate * channels )) /dev/zero | pacat -d pulsara_test --format=s16le --rate="$rate" --channels="$channels" --raw

"$pulsara" --play "$song" --rate "$rate" "$@" </dev/null
status=$?
sleep 0.3
exit $status
