#pragma once

#include <cstdint>
#include <vector>

namespace pulsara {

// One loaded sound as the mixer reads it: interleaved float frames at the output's rate and
// channel count. The GUI thread builds it whole and a sample publishes it; from then on nobody
// changes it, so the audio thread reads it without locks while the GUI thread builds the next.
struct SampleData {
    // Always one silent frame longer than `length` frames, because the linear method reads one
    // frame past the last one it interpolates from.
    std::vector<float> frames;
    int32_t length = 0; // source frames
    uint32_t channels = 1;
    // Set by the sample when it publishes the data, never 0: a note remembers the serial of the
    // data it started on, which tells it that the data under it was replaced.
    uint64_t serial = 0;
};

} // namespace pulsara
