"""What the real-window scripts share: a private X server (Xvfb), a private home for the
program, and xdotool and ImageMagick to find, drive and look at its windows."""
import os
import shutil
import sys
import subprocess
import tempfile
import time

SKIP = 77
# The back of the top bar, away from its dots.
TOP_BAR = (0x17, 0x1A, 0x20)
# The window's geometry at its start size (1200 x 780 on a 1280 x 800 screen): two rows of 36
# pixels above the editors, cells of 28 x 16, a label column of 120 on the pattern page (48 on
# the playlist).
UNIT = 36
CELL_WIDTH, CELL_HEIGHT = 28, 16
PATTERN_LABELS, PLAYLIST_LABELS = 120, 48


def wait_for(check, what, timeout=60.0):
    """Polls `check` until it holds and returns what it gave; fails when it never does."""
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        result = check()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError("timed out waiting for " + what)


def run(*command, **kwargs):
    return subprocess.run(command, check=True, capture_output=True, text=True, **kwargs).stdout


def missing_tools():
    return [tool for tool in ("Xvfb", "xdotool", "import") if not shutil.which(tool)]


def run_window_test(test):
    """Runs test(pulsara, desktop) on `PULSARA SHARE_DIR` from the command line in a Desktop of
    its own: its exit status, or SKIP when no X server or tools can be had here."""
    pulsara, share = sys.argv[1], sys.argv[2]
    if missing_tools():
        print("skipped: %s not installed" % ", ".join(missing_tools()))
        return SKIP
    with Desktop(share) as desktop:
        if not desktop.started:
            print("skipped: Xvfb did not start")
            return SKIP
        return test(pulsara, desktop)


class Desktop:
    """An X server and a home folder of their own (settings, runtime folder, documents), both
    gone when the `with` block ends, with every program started through it."""

    def __init__(self, share):
        self.share = share
        self.folder = tempfile.mkdtemp(prefix="pulsara-window-")
        self.programs = []
        read_end, write_end = os.pipe()
        with open(self.path("xvfb.log"), "w") as log:
            self.server = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x800x24", "-nolisten", "tcp"],
                                           pass_fds=[write_end], stderr=log)
        os.close(write_end)
        with os.fdopen(read_end) as display:
            self.display = display.readline().strip()
        # No display number: Xvfb could not start here.
        self.started = bool(self.display)
        self.env = dict(os.environ, DISPLAY=":" + self.display, HOME=self.folder, XDG_RUNTIME_DIR=self.folder,
                        XDG_CONFIG_HOME=self.folder + "/config", QT_QPA_PLATFORM="xcb", PULSARA_DATA_DIR=share)

    def __enter__(self):
        return self

    def __exit__(self, error, *details):
        for program in self.programs:
            program.kill()
            program.wait()
        if error:
            # What the programs and the X server said is the first thing to read when a check failed.
            if self.server.poll() is not None:
                print("--- the X server ended early, with status %d" % self.server.returncode)
            logs = ["program-%d.log" % number for number in range(len(self.programs))] + ["xvfb.log"]
            for name in logs:
                with open(self.path(name), errors="replace") as log:
                    print("--- %s: %s" % (name, log.read()))
        # Asked to end rather than killed, so that it takes its socket and lock file with it.
        self.server.terminate()
        self.server.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def start(self, *command):
        log = open(self.path("program-%d.log" % len(self.programs)), "w")
        program = subprocess.Popen(command, env=self.env, stdout=log, stderr=subprocess.STDOUT)
        log.close()
        self.programs.append(program)
        return program

    def xdotool(self, *arguments):
        return subprocess.run(("xdotool",) + arguments, capture_output=True, text=True, env=self.env).stdout.split()

    def windows(self, name):
        """The shown windows whose whole title matches the regular expression."""
        return self.xdotool("search", "--onlyvisible", "--name", "^" + name + "$")

    def focus(self, window):
        """Points at the window and gives it the keyboard, as a click would."""
        self.xdotool("mousemove", "--window", window, "20", "20")
        self.xdotool("windowfocus", "--sync", window)

    def keys(self, *keys):
        run("xdotool", "key", *keys, env=self.env)

    def click(self, x, y):
        run("xdotool", "mousemove", str(x), str(y), "click", "1", env=self.env)

    def pixel(self, x, y):
        text = run("import", "-window", "root", "-crop", "1x1+%d+%d" % (x, y), "-depth", "8", "txt:-", env=self.env)
        # "0,0: (23,26,32)  #171A20  srgb(23,26,32)"
        values = text.splitlines()[-1].split("(")[1].split(")")[0].split(",")
        return tuple(int(float(v)) for v in values[:3])

    def demo_song(self, name):
        """A copy of the demo song, with its samples beside it, in the songs folder."""
        songs = self.path("songs")
        if not os.path.isdir(songs):
            shutil.copytree(os.path.join(self.share, "Demo"), songs)
        song = os.path.join(songs, name + ".kqu")
        shutil.copy(os.path.join(songs, "zzzDemo.kqu"), song)
        return song

    def canvas_top(self):
        """The canvas starts below the menu bar: the first row of the top bar's colour."""
        return wait_for(lambda: next((y for y in range(0, 80) if self.pixel(601, y) == TOP_BAR), None), "the top bar")


def cell(canvas_top, label_width, column, row):
    """The centre of a grid cell on the screen."""
    grid_top = canvas_top + 2 * UNIT
    return label_width + column * CELL_WIDTH + CELL_WIDTH // 2, grid_top + (row + 1) * CELL_HEIGHT + CELL_HEIGHT // 2
