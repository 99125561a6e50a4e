#!/usr/bin/env bash
# Runs a command against a PulseAudio server of its own: a null sink (no hardware) as the
# default output, a private runtime folder, everything stopped and removed at the end.
#
#   with_null_sink.sh [--rate HZ] [--channels N] [--record FILE] -- COMMAND [ARGUMENTS...]
#
# --record keeps what the sink played, as raw signed 16-bit little-endian samples at the
# sink's rate (44100) and channel count (1). Exit status: the command's, or 77 when no
# PulseAudio server can be started here.
set -uo pipefail

rate=44100 channels=1 recording=""
while [ $# -gt 0 ]; do
    case $1 in
    --rate) rate=$2; shift 2 ;;
    --channels) channels=$2; shift 2 ;;
    --record) recording=$2; shift 2 ;;
    --) shift; break ;;
    *) echo "with_null_sink.sh: unknown option $1" >&2; exit 2 ;;
    esac
done
[ $# -gt 0 ] || { echo "with_null_sink.sh: no command" >&2; exit 2; }
command -v pulseaudio >/dev/null && command -v pactl >/dev/null && command -v parec >/dev/null || exit 77

runtime=$(mktemp -d)
server_pid="" recorder_pid=""
cleanup() {
    for pid in $recorder_pid $server_pid; do kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null; done
    rm -rf "$runtime"
}
trap cleanup EXIT
# Tries a check ten times a second for five seconds.
await() { for _ in $(seq 50); do "$@" && return 0; sleep 0.1; done; return 1; }

# Everything the server and its clients look up stays inside the private folder.
export HOME=$runtime XDG_RUNTIME_DIR=$runtime XDG_CONFIG_HOME=$runtime/config PULSE_RUNTIME_PATH=$runtime/pulse
export PULSE_SERVER=unix:$runtime/socket
unset DBUS_SESSION_BUS_ADDRESS

pulseaudio -n --daemonize=no --exit-idle-time=-1 --use-pid-file=no --log-target=file:"$runtime/server.log" \
    -L "module-native-protocol-unix socket=$runtime/socket auth-anonymous=1" \
    -L "module-null-sink sink_name=pulsara_test rate=$rate channels=$channels" &
server_pid=$!
await pactl info >/dev/null 2>&1 || { cat "$runtime/server.log" >&2; exit 77; }
pactl set-default-sink pulsara_test

if [ -n "$recording" ]; then
    # A short recording latency: the recorder's default buffers lose the first notes.
    parec --latency-msec=20 -d pulsara_test.monitor --format=s16le --rate="$rate" --channels="$channels" --raw >"$recording" &
    recorder_pid=$!
    # Recording starts only once the server lists the recorder's stream.
    recorder_listed() { [ -n "$(pactl list short source-outputs 2>/dev/null)" ]; }
    await recorder_listed
fi
# A moment of silence first wakes the sink, so that the first notes are heard (and recorded) too.
head -c $(( rate * channels )) /dev/zero | pacat -d pulsara_test --format=s16le --rate="$rate" --channels="$channels" --raw

"$@"
status=$?
[ -n "$recording" ] && sleep 0.3
exit $status
