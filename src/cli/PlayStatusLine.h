#pragma once

#include <cstdint>
#include <string>

namespace pulsara {

// What the command line's playback shows, rewritten in place:
// "pos 003  step 07  L [######----] R [###-------] CLIP  load   4%".
struct PlayStatus {
    int32_t songPosition = 0;
    uint32_t step = 0;
    float peakLeft = 0.0f;
    float peakRight = 0.0f;
    bool clipped = false;
    float load = 0.0f; // fraction of the latency period
    bool live = false;
};

class PlayStatusLine {
public:
    static constexpr int kMeterSegments = 10;

    static std::string format(const PlayStatus&);
    // The segments a meter lights for a peak: whole segments only, none below zero, as the
    // window's level meters.
    static int litSegments(float peak);
};

} // namespace pulsara
