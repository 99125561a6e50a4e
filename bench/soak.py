#!/usr/bin/env python3
"""A long session at the real window while the song plays at 30 ms latency: notes painted and
cleared, the pages and the patterns switched, a save every few seconds. At the end: the gaps in
the sound, the errors, and the program's memory over the run.

    PULSE_LOG=4 bash tests/cli/with_null_sink.sh -- python3 bench/soak.py build/pulsara build/share/pulsara [SECONDS]

The gaps are counted twice: by the program (its device's underruns, printed at exit when
PULSARA_PRINT_UNDERRUNS is set) and by the sound server (the underruns of the program's stream
that its debug log shows ending while the stream plays on; PULSE_LOG=4 turns that log on).
"""
import os
import random
import re
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "cli"))
from xwindow import PATTERN_LABELS, PLAYLIST_LABELS, UNIT, Desktop, cell, wait_for  # noqa: E402

ACTION_SECONDS = 1.0
SAVE_SECONDS = 5.0
# The pattern selector's arrows, right of the pattern grid at the top of the side panel.
SELECTOR_LEFT, SELECTOR_RIGHT, SELECTOR_HEIGHT = 991, 1189, 22


def rss_kib(pid):
    with open("/proc/%d/status" % pid) as status:
        return int(re.search(r"VmRSS:\s+(\d+)", status.read()).group(1))


def main():
    pulsara, share = sys.argv[1], sys.argv[2]
    seconds = float(sys.argv[3]) if len(sys.argv) > 3 else 600.0
    server_log = os.path.join(os.environ.get("XDG_RUNTIME_DIR", ""), "server.log")
    if not os.environ.get("PULSE_SERVER"):
        sys.exit("run it under tests/cli/with_null_sink.sh")
    random.seed(20261123)
    with Desktop(share) as desktop:
        desktop.env["PULSARA_PRINT_UNDERRUNS"] = "1"
        # The server's log level, not the program's: its sound library would log to stderr too.
        desktop.env.pop("PULSE_LOG", None)
        os.makedirs(desktop.path("config", "Orvane"))
        with open(desktop.path("config", "Orvane", "Pulsara.ini"), "w") as settings:
            settings.write("[General]\nBuffLength=30\n")
        song = desktop.demo_song("soak")
        errors_path = desktop.path("stderr.txt")
        with open(errors_path, "w") as errors:
            program = desktop.start(pulsara, song, stderr=errors)
        window = wait_for(lambda: desktop.windows("Pulsara - soak"), "the window", timeout=60)[0]
        top = desktop.canvas_top()
        desktop.focus(window)

        def pattern_page():
            desktop.click(42, top + UNIT + UNIT // 2)

        def playlist_page():
            desktop.click(84 + 42, top + UNIT + UNIT // 2)

        def paint_note():
            desktop.click(*cell(top, PATTERN_LABELS, random.randrange(16), random.randrange(30)))

        def switch_pattern():
            x = random.choice((SELECTOR_LEFT, SELECTOR_RIGHT))
            desktop.click(x, top + 2 * UNIT + SELECTOR_HEIGHT // 2)

        def place_pattern():
            playlist_page()
            desktop.click(*cell(top, PLAYLIST_LABELS, random.randrange(20), random.randrange(30)))
            pattern_page()

        def keyboard():
            desktop.keys(*random.choices(("Left", "Right", "Up", "Down"), k=3), "Return")

        actions = (paint_note, switch_pattern, place_pattern, keyboard)
        started = time.monotonic()
        next_save = started + SAVE_SECONDS
        samples, stray_windows, done, saves = [], set(), 0, 0
        while time.monotonic() - started < seconds and program.poll() is None:
            random.choice(actions)()
            done += 1
            if time.monotonic() >= next_save:
                desktop.keys("ctrl+s")
                wait_for(lambda: desktop.windows("Pulsara - soak"), "the saved title")
                saves += 1
                next_save += SAVE_SECONDS
                samples.append((time.monotonic() - started, rss_kib(program.pid)))
                # An error shows as a message box beside the window.
                stray_windows.update(w for w in desktop.windows(".+") if w != window)
            time.sleep(max(0.0, started + done * ACTION_SECONDS - time.monotonic()))

        running_at_end = program.poll() is None
        desktop.keys("ctrl+s")
        wait_for(lambda: desktop.windows("Pulsara - soak"), "the last save")
        desktop.keys("ctrl+q")
        wait_for(lambda: program.poll() is not None, "the program to end")
        with open(errors_path) as errors:
            output = errors.read()
        underruns = re.search(r"underruns: (\d+)", output)
        other_output = [line for line in output.splitlines() if not line.startswith("underruns:")]
        # The program's stream ("Playback") running dry, then going on: a gap. A stream also starts
        # out dry until its first buffers come, and runs dry as it closes; neither is one.
        server_underruns, streams = None, 0
        if os.path.exists(server_log):
            server_underruns, dry = 0, False
            with open(server_log, errors="replace") as log:
                for line in log:
                    # One stream for the whole run: playing never stopped (a stop lets the device go).
                    streams += "Created input" in line and '"Playback"' in line
                    if "underrun of 'Playback'" in line:
                        dry = True
                    elif "end of underrun" in line and dry:
                        server_underruns, dry = server_underruns + 1, False

        minute = next((rss for at, rss in samples if at >= 60), samples[0][1])
        print("ran %.0f s: %d actions, %d saves; program still running at the end: %s; load average %.1f"
              % (time.monotonic() - started, done, saves, running_at_end, os.getloadavg()[1]))
        print("underruns: program %s, sound server %s; the program's output streams: %d"
              % (underruns.group(1) if underruns else "not reported", "not logged" if server_underruns is None else server_underruns,
                 streams))
        print("errors: %d message windows, %d lines on stderr, exit status %d"
              % (len(stray_windows), len(other_output), program.returncode))
        for line in other_output[:10]:
            print("  stderr:", line)
        print("RSS: %d KiB at %.0f s, %d KiB after the first minute, %d KiB at the end, %d to %d KiB over the run"
              % (samples[0][1], samples[0][0], minute, samples[-1][1], min(r for _, r in samples), max(r for _, r in samples)))


if __name__ == "__main__":
    main()
