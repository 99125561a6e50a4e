#pragma once

#include <cstdint>
#include <string>
#include <vector>

class QSettings;

namespace pulsara {

// The user's settings: read once at start-up, written once at exit. A value that is missing,
// unreadable or too long always means its default.
struct AppSettings {
    static constexpr uint32_t kDefaultRate = 44100;
    static constexpr int kDefaultLatencyMs = 200;
    static constexpr int kMinLatencyMs = 30;
    static constexpr int kMaxLatencyMs = 600;
    // The longest stored paths and skin names, in characters: the settings take at most 260
    // bytes of a path (and 64 of a skin name) with its terminator, two bytes a character.
    static constexpr size_t kMaxPathLength = 129;
    static constexpr size_t kMaxSkinNameLength = 31;
    static constexpr size_t kRecentSongs = 8;

    std::u16string installDir;
    uint32_t sampleRate = kDefaultRate;
    uint8_t channels = 1;
    uint32_t interpolation = 0;
    uint32_t liveact = 0;
    int bufferLength = kDefaultLatencyMs;
    bool releaseWaveOut = true;
    std::u16string lastSong;
    std::u16string lastSample;
    std::u16string samplesDir;
    std::u16string skinName = u"Default";
    // Not among the program's first settings: the sound output by name, empty for the default.
    std::u16string device;
    // The MIDI input by name (empty: every input; "None": none), and whether its notes play
    // tracks as drums (0) or the chosen instrument at their pitch (1).
    std::u16string midiIn;
    uint32_t midiMode = 0;
    // Screen pixels per pixel of the skin: 1 to 3, or 0 for the screen's own scale rounded to a
    // whole number.
    uint32_t zoom = 0;
    // Not among the program's first settings: File > Open Recent, newest first.
    std::vector<std::u16string> recentSongs;
};

// What the settings fall back to, and the song named on the command line (which wins over the
// stored last song).
struct SettingsDefaults {
    std::u16string installDir;
    std::u16string lastSong;
    std::u16string lastSample;
    std::u16string samplesDir;
    std::u16string commandLineSong;
};

AppSettings loadSettings(QSettings&, const SettingsDefaults&);
// Returns false when the settings could not be written (the caller reports it).
bool saveSettings(QSettings&, const AppSettings&);
// Puts the song first in the recent list, without repeats, at most kRecentSongs long.
void rememberRecentSong(AppSettings&, std::u16string_view path);

} // namespace pulsara
