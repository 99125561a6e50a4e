#pragma once

#include "Sound/Step.h"

#include <cstdint>

namespace pulsara {

class Instrument;

// Plays one grid row's notes on the row's instrument inside rendered blocks.
//
// A block is mixed stretch by stretch: each trigger or note-end splits it, and every stretch in
// which the sample sounds is one call of the sample's mix. A trigger cuts the sounding note at
// its frame and restarts the sample from the beginning. A note with a length parameter
// (steps as 8.8 fixed point) ends by itself that many steps later, to the frame; the frames per
// step come with every block, so note lengths follow tempo changes.
//
// Device callback thread (all operations but setInstrument): no allocation, locks, I/O or logging.
class TrackVoice {
public:
    void setInstrument(Instrument* instrument) { instrument_ = instrument; }
    Instrument* instrument() const { return instrument_; }

    // Starts a block of `frames` frames mixed into `out`.
    void beginBlock(float* out, uint32_t frames, uint32_t channels, double framesPerStep);
    // Plays `step` (volume already scaled by the master volume) from frame `offset` of the block.
    // Offsets must not decrease within a block.
    void trigger(uint32_t offset, Step step);
    // Mixes the rest of the block.
    void endBlock();
    // Silences the sounding note at once.
    void cut();

private:
    void mixUntil(uint32_t frame);

    Instrument* instrument_ = nullptr;
    float* out_ = nullptr;
    uint32_t frames_ = 0;
    uint32_t channels_ = 1;
    uint32_t mixed_ = 0; // frames of the block already mixed
    double framesPerStep_ = 0.0;
    // Frames from the start of the block at which the sounding note ends; negative when it
    // plays until the sample ends or the next trigger.
    int64_t noteEnd_ = -1;
};

} // namespace pulsara
