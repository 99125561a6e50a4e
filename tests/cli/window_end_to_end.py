#!/usr/bin/env python3
"""The window as a user drives it, in a real X server: open a song, paint a note by clicking its
cell, give it another pitch on the piano, place a pattern on the playlist, save with Ctrl+S, and
read the song back with `pulsara --dump`: exactly those changes, nothing else.

    window_end_to_end.py PULSARA SHARE_DIR

Exit status 0 passed, 1 failed, 77 when no X server or xdotool can be had here.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

SKIP = 77

# The window's geometry at its start size (1200 x 780 on a 1280 x 800 screen): two rows of 36
# pixels above the editors, cells of 28 x 16, a label column of 120 on the pattern page (48 on
# the playlist), the side panel's 220 pixels at the right.
UNIT = 36
CELL_WIDTH, CELL_HEIGHT = 28, 16
WINDOW_WIDTH = 1200
SIDE_WIDTH = 220
NOTE_INFO_TOP = 22 + 6
PIANO_TOP = NOTE_INFO_TOP + 76 + 4
WHITE_KEY = 20
# The back of the top bar, away from its dots.
TOP_BAR = (0x17, 0x1A, 0x20)


def wait_for(check, what, timeout=15.0):
    """Polls `check` until it holds; fails the test when it never does."""
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        result = check()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError("timed out waiting for " + what)


def run(*command, **kwargs):
    return subprocess.run(command, check=True, capture_output=True, text=True, **kwargs).stdout


def start_x_server():
    read_end, write_end = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x800x24", "-nolisten", "tcp"],
                              pass_fds=[write_end], stderr=subprocess.DEVNULL)
    os.close(write_end)
    with os.fdopen(read_end) as display:
        number = display.readline().strip()
    if not number:
        server.kill()
        return None, None
    return server, ":" + number


def window_titled(name, env):
    found = subprocess.run(["xdotool", "search", "--name", "^" + name + "$"], capture_output=True, text=True, env=env)
    return found.stdout.split()[:1]


def pixel(env, x, y):
    text = run("import", "-window", "root", "-crop", "1x1+%d+%d" % (x, y), "-depth", "8", "txt:-", env=env)
    # "0,0: (23,26,32)  #171A20  srgb(23,26,32)"
    values = text.splitlines()[-1].split("(")[1].split(")")[0].split(",")
    return tuple(int(float(v)) for v in values[:3])


def main():
    pulsara, share = sys.argv[1], sys.argv[2]
    for tool in ("Xvfb", "xdotool", "import"):
        if not shutil.which(tool):
            print("skipped: %s is not installed" % tool)
            return SKIP
    server, display = start_x_server()
    if not server:
        print("skipped: Xvfb did not start")
        return SKIP
    folder = tempfile.mkdtemp(prefix="pulsara-window-")
    program = None
    try:
        env = dict(os.environ, DISPLAY=display, HOME=folder, XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder + "/config",
                   QT_QPA_PLATFORM="xcb", PULSARA_DATA_DIR=share)
        songs = os.path.join(folder, "songs")
        shutil.copytree(os.path.join(share, "Demo"), songs)
        song = os.path.join(songs, "e2e.kqu")
        shutil.copy(os.path.join(songs, "zzzDemo.kqu"), song)
        before = json.loads(run(pulsara, "--dump", song))

        program = subprocess.Popen([pulsara, song], env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for(lambda: window_titled("Pulsara - e2e", env), "the window")
        # The canvas starts below the menu bar: the first row of the top bar's colour.
        top = wait_for(lambda: next((y for y in range(0, 80) if pixel(env, 601, y) == TOP_BAR), None), "the top bar")
        grid_top = top + 2 * UNIT

        def click(x, y):
            run("xdotool", "mousemove", str(x), str(y), "click", "1", env=env)

        def cell(label_width, column, row):
            return label_width + column * CELL_WIDTH + CELL_WIDTH // 2, grid_top + (row + 1) * CELL_HEIGHT + CELL_HEIGHT // 2

        # Pattern page: a note on the Snare's row, step 3; then G on the piano.
        click(*cell(120, 2, 1))
        wait_for(lambda: window_titled("Pulsara - e2e\\*", env), "the modified title")
        piano_x = WINDOW_WIDTH - SIDE_WIDTH + (SIDE_WIDTH - 48 - 7 * WHITE_KEY) // 2
        click(piano_x + 4 * WHITE_KEY + WHITE_KEY // 2, grid_top + PIANO_TOP + 34)
        # Playlist page: pattern 6 at song position 26.
        click(84 + 42, top + UNIT + UNIT // 2)
        click(*cell(48, 25, 5))
        run("xdotool", "key", "ctrl+s", env=env)
        wait_for(lambda: window_titled("Pulsara - e2e", env), "the saved title")

        after = json.loads(run(pulsara, "--dump", song))
        expected = json.loads(json.dumps(before))
        intro = next(p for p in expected["patterns"] if p["slot"] == 0)
        intro["notes"].append({"row": 1, "step": 2, "volume": 1, "rate": 1.49830711, "param": 0})
        intro["notes"].sort(key=lambda n: (n["row"], n["step"]))
        next(p for p in expected["patterns"] if p["slot"] == 5)["positions"].append(25)
        expected["lastUsedPosition"] = 25
        # The views are saved as the window shows them: the playlist page.
        expected["editorShown"] = 1
        after.pop("views")
        expected.pop("views")
        for pattern in after["patterns"]:
            pattern["notes"].sort(key=lambda n: (n["row"], n["step"]))
        if after != expected:
            print("the saved song differs from the edits made")
            print("expected:", json.dumps(expected, sort_keys=True))
            print("saved:   ", json.dumps(after, sort_keys=True))
            return 1
        print("passed")
        return 0
    finally:
        if program:
            program.kill()
            program.wait()
        server.kill()
        server.wait()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
