#include "Sound/SongPlayer.h"

#include <algorithm>

namespace pulsara {

SongPlayer::SongPlayer()
    : playlist_(kPatterns, kPositions)
{
    for (StepGrid& pattern : patterns_)
        pattern.resize(kTracks, length());
}

const std::u16string& SongPlayer::patternName(uint32_t index) const
{
    return patternNames_[index < kPatterns ? index : 0];
}

void SongPlayer::setPatternName(uint32_t index, std::u16string_view name)
{
    if (index < kPatterns)
        patternNames_[index] = name.substr(0, kMaxNameLength);
}

void SongPlayer::setLength(uint32_t steps)
{
    for (StepGrid& pattern : patterns_)
        pattern.resize(kTracks, steps);
    PatternPlayer::setLength(steps);
}

void SongPlayer::clearSong()
{
    for (StepGrid& pattern : patterns_)
        pattern.clear();
    for (std::u16string& name : patternNames_)
        name.clear();
    playlist_.clear();
    grid().clear();
    setLoopStart(0);
    setLoopEnd(-1);
}

int32_t SongPlayer::nextPosition(int32_t position) const
{
    int32_t last = playlist_.lastUsedPosition();
    int32_t end = loopEnd() == -1 ? last : loopEnd();
    if (position == end)
        return loopStart();
    if (position != last)
        return position + 1;
    return 0;
}

void SongPlayer::advance(int32_t row)
{
    int32_t next = nextPosition(playedPosition());
    if (row < 0) {
        songPosition_.store(next, std::memory_order_relaxed);
        return;
    }
    mergeRow(static_cast<uint32_t>(row), next);
    songPosition_.store(next - 1, std::memory_order_relaxed);
}

void SongPlayer::advanceForRow(int32_t row, uint32_t wrap)
{
    if (!walksPlaylist())
        return;
    if (row >= 0) {
        if (row == 0 && wrap == 0)
            blockStartPosition_ = playedPosition();
        if (wrap > 0) {
            // A later pass end of the same block: start from where the shared position will
            // stand by then. A row meets its pass ends in order, so each is one step on.
            laterWrapPosition_ = nextPosition(wrap == 1 ? blockStartPosition_ : laterWrapPosition_);
            songPosition_.store(laterWrapPosition_, std::memory_order_relaxed);
        }
    }
    advance(row);
}

void SongPlayer::mergeRow(uint32_t row, int32_t position)
{
    StepGrid& combined = grid();
    uint32_t steps = std::min(length(), StepGrid::kCellsPerRow);
    for (uint32_t step = 0; step < steps; ++step)
        combined.setCell(row, step, kEmptyStep);
    if (position < 0)
        return;
    // Patterns later in index order overwrite earlier ones, so the highest index wins a cell.
    for (uint32_t index = 0; index < kPatterns; ++index) {
        if (!playlist_.isOn(index, static_cast<uint32_t>(position)))
            continue;
        const StepGrid& pattern = patterns_[index];
        for (uint32_t step = 0; step < steps; ++step) {
            Step cell = pattern.cell(row, step);
            if (cell.isNote())
                combined.setCell(row, step, cell);
        }
    }
}

void SongPlayer::copyPatternIntoGrid()
{
    const StepGrid& pattern = patterns_[static_cast<uint32_t>(mode()) < kPatterns ? mode() : 0];
    StepGrid& combined = grid();
    for (uint32_t row = 0; row < kTracks; ++row) {
        for (uint32_t step = 0; step < StepGrid::kCellsPerRow; ++step)
            combined.setCell(row, step, pattern.cell(row, step));
    }
}

void SongPlayer::setSongPosition(int32_t position)
{
    if (mode() != kSongMode) {
        songPosition_.store(position, std::memory_order_relaxed);
        copyPatternIntoGrid();
        return;
    }
    songPosition_.store(position - 1, std::memory_order_relaxed);
    for (uint32_t row = 0; row < kTracks; ++row)
        advance(static_cast<int32_t>(row));
    advance(-1);
}

namespace {

constexpr uint32_t kPositionBits = 16;
constexpr uint32_t kPositionMask = (1u << kPositionBits) - 1;

int32_t requestedPosition(uint64_t request)
{
    return static_cast<int32_t>(static_cast<uint32_t>(request) & kPositionMask);
}

uint32_t requestedStep(uint64_t request)
{
    return static_cast<uint32_t>(request) >> kPositionBits;
}

} // namespace

int32_t SongPlayer::songPosition() const
{
    uint64_t request = request_.load(std::memory_order_acquire);
    if (request == kNoRequest)
        return playedPosition();
    return landingPosition(requestedPosition(request));
}

int32_t SongPlayer::landingPosition(int32_t position) const
{
    return mode() == kSongMode ? nextPosition(position - 1) : position;
}

void SongPlayer::requestSongPosition(int32_t position, uint32_t step)
{
    if (++requestSerial_ == 0)
        ++requestSerial_;
    uint32_t where = static_cast<uint32_t>(std::clamp<int32_t>(position, 0, kPositions - 1))
        | std::min(step, StepGrid::kCellsPerRow - 1) << kPositionBits;
    request_.store((uint64_t { requestSerial_ } << 32) | where, std::memory_order_release);
    restartClockAt(step);
}

void SongPlayer::moveToSongPosition(int32_t position, uint32_t step)
{
    request_.store(kNoRequest, std::memory_order_relaxed);
    startAt(position, step);
    restartClockAt(step);
}

void SongPlayer::startAt(int32_t position, uint32_t step)
{
    restartPassAt(static_cast<uint64_t>(step * framesPerStep()));
    setSongPosition(position);
}

void SongPlayer::rebuildGrid()
{
    if (mode() != kSongMode) {
        copyPatternIntoGrid();
        return;
    }
    for (uint32_t row = 0; row < kTracks; ++row)
        mergeRow(row, playedPosition());
}

void SongPlayer::render(float* out, uint32_t frames, uint32_t channels)
{
    uint64_t request = request_.load(std::memory_order_acquire);
    if (request != kNoRequest) {
        startAt(requestedPosition(request), requestedStep(request));
        // Cleared only after the move, and only when no newer request came meanwhile, so that
        // songPosition() never shows the old position in between.
        request_.compare_exchange_strong(request, kNoRequest, std::memory_order_acq_rel);
    }
    if (gridChanged_.exchange(false, std::memory_order_acq_rel))
        rebuildGrid();
    PatternPlayer::render(out, frames, channels);
}

void SongPlayer::setMode(int32_t mode)
{
    mode_.store(mode, std::memory_order_relaxed);
    markGridChanged();
}

uint64_t SongPlayer::lengthInFrames() const
{
    uint64_t pass = framesPerPass();
    if (mode() != kSongMode)
        return pass;
    if (playlist_.isEmpty())
        return 0;
    int32_t end = loopEnd() == -1 ? playlist_.lastUsedPosition() : loopEnd();
    return end < 0 ? 0 : static_cast<uint64_t>(end + 1) * pass;
}

void SongPlayer::seek(uint64_t frame)
{
    request_.store(kNoRequest, std::memory_order_relaxed);
    uint64_t pass = framesPerPass();
    PatternPlayer::seek(frame);
    setSongPosition(pass > 0 ? static_cast<int32_t>(std::min<uint64_t>(frame / pass, kPositions)) : 0);
}

} // namespace pulsara
