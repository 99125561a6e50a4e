#!/usr/bin/env python3
"""The whole program's start, as a user waits for it: from `pulsara` being started (no song:
the demo, as on a first start) to its top bar showing on a private X server. The first start,
which also installs the demo into the home folder, is timed apart from the rest.

    python3 bench/startup_to_paint.py build/pulsara build/share/pulsara [RUNS]

Under tests/cli/with_null_sink.sh the program opens a real (null) sound output as it starts.
"""
import ctypes
import os
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "cli"))
from xwindow import TOP_BAR, Desktop, missing_tools  # noqa: E402

ZPIXMAP = 2
ALL_PLANES = ctypes.c_ulong(-1).value
COLUMN_X, COLUMN_HEIGHT = 601, 80


class Screen:
    """Reads a column of the root window straight through Xlib: a poll costs well under a
    millisecond, where ImageMagick's import takes tens."""

    def __init__(self, display):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self.x11.XGetImage.restype = ctypes.c_void_p
        self.x11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                                       ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self.x11.XGetPixel.restype = ctypes.c_ulong
        self.x11.XGetPixel.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int]
        self.x11.XDestroyImage.argtypes = [ctypes.c_void_p]
        self.display = self.x11.XOpenDisplay((":" + display).encode())
        self.root = self.x11.XDefaultRootWindow(self.display)

    def shows_top_bar(self):
        image = self.x11.XGetImage(self.display, self.root, COLUMN_X, 0, 1, COLUMN_HEIGHT, ALL_PLANES, ZPIXMAP)
        wanted = (TOP_BAR[0] << 16) | (TOP_BAR[1] << 8) | TOP_BAR[2]
        found = any(self.x11.XGetPixel(image, 0, y) & 0xFFFFFF == wanted for y in range(COLUMN_HEIGHT))
        self.x11.XDestroyImage(image)
        return found


def until(check, timeout=20.0):
    deadline = time.monotonic() + timeout
    while not check():
        if time.monotonic() > deadline:
            raise AssertionError("timed out")
        time.sleep(0.002)


def main():
    pulsara, share = sys.argv[1], sys.argv[2]
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 10
    if missing_tools():
        sys.exit("needs " + ", ".join(missing_tools()))
    with Desktop(share) as desktop:
        screen = Screen(desktop.display)
        times = []
        for _ in range(runs + 1):
            started = time.monotonic()
            program = desktop.start(pulsara)
            until(screen.shows_top_bar)
            times.append((time.monotonic() - started) * 1000)
            program.kill()
            program.wait()
            until(lambda: not screen.shows_top_bar())
        later = times[1:]
        print("first start (installs the demo): %.0f ms" % times[0])
        print("later starts, %d runs: median %.0f ms, min %.0f ms, max %.0f ms"
              % (len(later), statistics.median(later), min(later), max(later)))


if __name__ == "__main__":
    main()
