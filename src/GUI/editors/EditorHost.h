#pragma once

#include <cstdint>
#include <functional>

namespace pulsara {

// What the editors ask of the application that holds them: playback, the top bar and the
// keyboard focus. Changes to the song itself go through SongEdits, never through here.
class EditorHost {
public:
    // What the top bar shows: the song (0), a pattern chosen on the playlist (1), or a track
    // chosen on the pattern page (2).
    enum TopBarMode : int32_t { kSongMode = 0, kPatternMode = 1, kTrackMode = 2 };

    virtual ~EditorHost() = default;

    virtual void setTopBarMode(int32_t) = 0;
    // Playing goes on from the start of that song position.
    virtual void moveToSongPosition(int32_t position) = 0;
    // Playing goes on from that step of the pattern being played.
    virtual void moveToStep(int32_t step) = 0;
    // The player loops one pattern (its index) or walks the playlist (-1).
    virtual void setPlayedPattern(int32_t pattern) = 0;
    // Which editor page has the keyboard: 0, 1, or 2 for neither.
    virtual void setFocusedEditor(uint16_t) = 0;
    virtual bool isLiveMode() const = 0;
    // Runs a sample load. Outside live mode the stream is stopped around it and the song is set
    // up again for playing, as a new sample may change what the player holds.
    virtual void loadSampleSafely(const std::function<void()>& load) = 0;
    // Plays the WAV file once, as it is selected in a file dialog; an empty path stops it.
    virtual void audition(std::u16string_view path) = 0;
};

} // namespace pulsara
