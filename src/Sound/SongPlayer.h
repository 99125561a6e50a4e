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

    // Moves to song position `position` and rebuilds the combined grid for it.
    void setSongPosition(int32_t position);
    int32_t songPosition() const { return songPosition_.load(std::memory_order_relaxed); }
    // kSongMode walks the playlist; a pattern index loops that pattern.
    void setMode(int32_t mode);
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
    // A seek to frame 0 also goes back to song position 0.
    void seek(uint64_t frame) override;

protected:
    void advanceForRow(int32_t row, uint32_t wrap) override;

private:
    bool walksPlaylist() const { return mode() == kSongMode && followsPlaylist(); }
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
