#!/usr/bin/env python3
"""The desktop shell in a real X server: one program per user (a second start without a song
ends, one with a song takes over), Save new version and Export to WAV from their shortcuts,
the save-changes question on Ctrl+Q, and the settings written at exit.

    window_shell.py PULSARA SHARE_DIR

Exit status 0 passed, 1 failed, 77 when no X server or xdotool can be had here.
"""
import configparser
import json
import os
import subprocess
import sys

from xwindow import PATTERN_LABELS, cell, run, run_window_test, wait_for


def ended(program):
    return program.poll() is not None


def song_without_views(pulsara, path):
    song = json.loads(run(pulsara, "--dump", path))
    for view in ("views", "editorShown"):
        song.pop(view)
    return song


def test(pulsara, desktop):
    first, beat = desktop.demo_song("first"), desktop.demo_song("beat")
    # The format both the window and --export below use.
    ini = desktop.path("config", "Orvane", "Pulsara.ini")
    os.makedirs(os.path.dirname(ini))
    with open(ini, "w") as settings:
        settings.write("[General]\nSmpFreq=44100\nStereo=0\nInterpolation=0\n")

    # One program per user: a start without a song brings the running one forward and ends.
    running = desktop.start(pulsara, first)
    wait_for(lambda: desktop.windows("Pulsara - first"), "the first window")
    assert subprocess.run([pulsara], env=desktop.env, timeout=10).returncode == 0
    assert len(desktop.windows("Pulsara.*")) == 1 and not ended(running), "a second window"
    # A start with a song closes the running program (its song is clean: no question) and
    # opens the song itself.
    taking_over = desktop.start(pulsara, beat)
    wait_for(lambda: ended(running), "the first program to end")
    assert running.returncode == 0
    window = wait_for(lambda: desktop.windows("Pulsara - beat"), "the song opened from the shell")[0]

    # Save new version.
    desktop.focus(window)
    desktop.keys("ctrl+alt+s")
    wait_for(lambda: desktop.windows("Pulsara - beat_1"), "the new version's title")
    beat_1 = desktop.path("songs", "beat_1.kqu")
    assert song_without_views(pulsara, beat_1) == song_without_views(pulsara, beat)

    # Export to WAV through the file dialog gives what the command line gives.
    wav, expected = desktop.path("window.wav"), desktop.path("command-line.wav")
    run(pulsara, "--export", expected, beat_1)
    desktop.keys("ctrl+e")
    dialog = wait_for(lambda: desktop.windows("Save As"), "the export dialog")[0]
    desktop.focus(dialog)
    desktop.keys("ctrl+a")
    run("xdotool", "type", wav, env=desktop.env)
    desktop.keys("Return")
    with open(expected, "rb") as file:
        reference = file.read()

    def exported():
        if not os.path.exists(wav) or desktop.windows("Save As"):
            return False
        with open(wav, "rb") as file:
            return file.read() == reference
    wait_for(exported, "the exported file to match --export (%d bytes)" % len(reference))

    # The program that took over is the one a later start finds, even though the one it
    # replaced took a moment to end (its sound output drains first).
    later = desktop.start(pulsara)
    wait_for(lambda: ended(later) or len(desktop.windows("Pulsara.*")) > 1, "the later start to end")
    took_over = ended(later) and later.returncode == 0
    if not took_over:
        later.kill()
        later.wait()
        wait_for(lambda: len(desktop.windows("Pulsara.*")) == 1, "the second window to close")

    # An edit marks the title; Ctrl+Q asks to save it (the question's caption is the
    # command's), Cancel (Escape) keeps the program, No ends it.
    desktop.click(*cell(desktop.canvas_top(), PATTERN_LABELS, 2, 1))
    wait_for(lambda: desktop.windows("Pulsara - beat_1\\*"), "the modified title")
    for answer in ("Escape", "n"):
        desktop.focus(window)
        desktop.keys("ctrl+q")
        question = wait_for(lambda: desktop.windows("Exit"), "the save-changes question")[0]
        desktop.focus(question)
        desktop.keys(answer)
        if answer == "Escape":
            wait_for(lambda: not desktop.windows("Exit"), "the question to close")
            assert not ended(taking_over) and desktop.windows("Pulsara - beat_1\\*"), "Cancel ended the program"
    wait_for(lambda: ended(taking_over), "the program to end on No")
    assert taking_over.returncode == 0

    # The settings as they stood at exit.
    stored = configparser.ConfigParser(interpolation=None)
    stored.read(ini)
    general = stored["General"]
    written = {"installdir", "smpfreq", "stereo", "interpolation", "liveact", "bufflength", "releasewaveout", "lastsong",
               "lastsmp", "samplesdir", "skin", "recentsongs"}
    assert written <= set(general), sorted(written - set(general))
    assert general["LastSong"] == beat_1, general["LastSong"]
    assert general["SmpFreq"] == "44100" and general["Stereo"] == "0" and general["Interpolation"] == "0"
    assert general["BuffLength"] == "200" and general["Skin"] == "Default" and general["Liveact"] == "0"
    assert beat_1 in general["RecentSongs"] and beat in general["RecentSongs"], general["RecentSongs"]
    if not took_over:
        print("failed: a start after the take-over opened a second window; the program that took over is not listening")
        return 1
    print("passed")
    return 0


if __name__ == "__main__":
    sys.exit(run_window_test(test))
