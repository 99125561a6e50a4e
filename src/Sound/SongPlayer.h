#pragma once

#include "Sound/PatternPlayer.h"
#include "Sound/Playlist.h"

#include <array>
#include <string>
#include <string_view>

namespace pulsara {

// Walks the playlist: at each song position the patterns that are on there are merged into
// the sequencer's combined grid, row by row as each row wraps, so that every track switches to
// the next position's notes exactly at its own pass end. In pattern mode one pattern loops.
//
// Threads: patterns, playlist, mode and loop are the GUI thread's to edit at any time (atomic
// cells and words). The song position belongs to the thread that renders; the GUI thread moves
// it while the stream runs only through requestSongPosition, which the next render carries out.
class SongPlayer : public PatternPlayer {
public:
    static constexpr uint32_t kPatterns = 40;
    static constexpr uint32_t kPositions = 256;
    static constexpr int32_t kSongMode = -1;
    static constexpr std::size_t kMaxNameLength = 31;

    SongPlayer();

    StepGrid& pattern(uint32_t index) { return patterns_[index < kPatterns ? index : 0]; }
    const StepGrid& pattern(uint32_t index) const { return patterns_[index < kPatterns ? index : 0]; }
    Playlist& playlist() { return playlist_; }
    const Playlist& playlist() const { return playlist_; }

    const std::u16string& patternName(uint32_t index) const;
    void setPatternName(uint32_t index, std::u16string_view name); // cut to kMaxNameLength

    // Resizes every pattern and the combined grid.
    void setLength(uint32_t steps) override;

    // Moves to song position `position` and rebuilds the combined grid for it; the pass goes on
    // where it stands. The thread that renders, or the GUI thread while the stream is stopped.
    void setSongPosition(int32_t position);
    // GUI thread, also while the stream renders: the next rendered block starts at step `step`
    // of song position `position` (0 to 255, and 0 to 63), as moveToSongPosition does. A later
    // request replaces one the render has not taken yet.
    void requestSongPosition(int32_t position, uint32_t step = 0);
    // Starts at step `step` of song position `position` now: the song position and its grid,
    // the pass position of that step, and the next step 0 not counted as a pass end. GUI thread
    // while the stream is stopped; drops a request the render has not taken.
    void moveToSongPosition(int32_t position, uint32_t step = 0);
    // The song position being played; while a request waits for the render, the position it
    // lands on, so that a ruler drawn from it does not jump back in between.
    int32_t songPosition() const;
    // kSongMode walks the playlist; a pattern index loops that pattern. The song position stays;
    // the next render builds the combined grid for the new mode.
    void setMode(int32_t mode);
    // Any thread: a pattern or the playlist changed, so the next render builds the combined grid
    // again for the position it plays, and the change sounds from that block on rather than
    // from the next pass.
    void markGridChanged() { gridChanged_.store(true, std::memory_order_release); }
    int32_t mode() const { return mode_.load(std::memory_order_relaxed); }
    void setFollowPlaylist(bool follow) { followPlaylist_.store(follow, std::memory_order_relaxed); }
    bool followsPlaylist() const { return followPlaylist_.load(std::memory_order_relaxed); }

    void setLoopStart(int32_t position) { loopStart_.store(position, std::memory_order_relaxed); }
    int32_t loopStart() const { return loopStart_.load(std::memory_order_relaxed); }
    // -1 loops up to the last used position.
    void setLoopEnd(int32_t position) { loopEnd_.store(position, std::memory_order_relaxed); }
    int32_t loopEnd() const { return loopEnd_.load(std::memory_order_relaxed); }

    // Empties every pattern, its name and the playlist, and resets the loop.
    void clearSong();

    // Song mode: positions 0 to the loop end (the last used position when the loop end is -1),
    // one pass each; 0 for an empty playlist. Pattern mode: one pass.
    uint64_t lengthInFrames() const override;
    // A seek to frame 0 also goes back to song position 0. Drops a request the render has not
    // taken.
    void seek(uint64_t frame) override;
    // Device callback thread: no allocation, locks, I/O or logging. Carries out a requested
    // move at the start of the block, then renders it.
    void render(float* out, uint32_t frames, uint32_t channels) override;

protected:
    void advanceForRow(int32_t row, uint32_t wrap) override;

private:
    static constexpr uint64_t kNoRequest = 0;

    bool walksPlaylist() const { return mode() == kSongMode && followsPlaylist(); }
    int32_t playedPosition() const { return songPosition_.load(std::memory_order_relaxed); }
    // Where setSongPosition(position) leaves the song position.
    int32_t landingPosition(int32_t position) const;
    void startAt(int32_t position, uint32_t step);
    // The thread that renders: the combined grid again, for the mode and the position played.
    void rebuildGrid();
    // The position the advance rule moves `position` to.
    int32_t nextPosition(int32_t position) const;
    // One step of the walk: move the song position on, then (for a row) merge that row for the
    // new position and step back, so that the shared position moves only on row -1.
    void advance(int32_t row);
    void mergeRow(uint32_t row, int32_t position);
    void copyPatternIntoGrid();

    std::array<StepGrid, kPatterns> patterns_;
    std::array<std::u16string, kPatterns> patternNames_;
    Playlist playlist_;
    std::atomic<int32_t> songPosition_ { -1 };
    // A move the render has yet to make: a serial in the high word, so that a repeated request
    // for the same position is not mistaken for the one taken, and the step and the position in
    // the low word's two halves; kNoRequest when none waits. The serial is the GUI thread's.
    std::atomic<uint64_t> request_ { kNoRequest };
    std::atomic<bool> gridChanged_ { false };
    uint32_t requestSerial_ = 0;
    std::atomic<int32_t> loopStart_ { 0 };
    std::atomic<int32_t> loopEnd_ { 1 };
    std::atomic<int32_t> mode_ { kSongMode };
    std::atomic<bool> followPlaylist_ { true };
    // Where the song position stood when the current block's later pass ends are reached; only
    // blocks longer than a pass have those.
    int32_t laterWrapPosition_ = 0;
    int32_t blockStartPosition_ = 0;
};

} // namespace pulsara
