#!/usr/bin/env python3
"""The window as a user drives it, in a real X server: open a song, paint a note by clicking its
cell, give it another pitch on the piano, place a pattern on the playlist, save with Ctrl+S, and
read the song back with `pulsara --dump`: exactly those changes, nothing else.

    window_end_to_end.py PULSARA SHARE_DIR

Exit status 0 passed, 1 failed, 77 when no X server or xdotool can be had here.
"""
import json
import sys

from xwindow import PATTERN_LABELS, PLAYLIST_LABELS, UNIT, cell, run, run_window_test, wait_for

# The side panel's 220 pixels at the right of the 1200-pixel window, its piano below the note
# information.
WINDOW_WIDTH = 1200
SIDE_WIDTH = 220
NOTE_INFO_TOP = 22 + 6
PIANO_TOP = NOTE_INFO_TOP + 76 + 4
WHITE_KEY = 20


def test(pulsara, desktop):
    song = desktop.demo_song("e2e")
    before = json.loads(run(pulsara, "--dump", song))

    desktop.start(pulsara, song)
    wait_for(lambda: desktop.windows("Pulsara - e2e"), "the window")
    top = desktop.canvas_top()

    # Pattern page: a note on the Snare's row, step 3; then G on the piano.
    desktop.click(*cell(top, PATTERN_LABELS, 2, 1))
    wait_for(lambda: desktop.windows("Pulsara - e2e\\*"), "the modified title")
    piano_x = WINDOW_WIDTH - SIDE_WIDTH + (SIDE_WIDTH - 48 - 7 * WHITE_KEY) // 2
    desktop.click(piano_x + 4 * WHITE_KEY + WHITE_KEY // 2, top + 2 * UNIT + PIANO_TOP + 34)
    # Playlist page: pattern 6 at song position 26.
    desktop.click(84 + 42, top + UNIT + UNIT // 2)
    desktop.click(*cell(top, PLAYLIST_LABELS, 25, 5))
    desktop.keys("ctrl+s")
    wait_for(lambda: desktop.windows("Pulsara - e2e"), "the saved title")

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


if __name__ == "__main__":
    sys.exit(run_window_test(test))
