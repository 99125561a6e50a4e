#pragma once

#include "Sound/QueuedWaveDevice.h"

#include <vector>

namespace pulsara::testing {

// The queued wave device with an output that the test pulls by hand (from any thread),
// standing in for the audio back end's callback.
class PulledWaveDevice : public QueuedWaveDevice {
public:
    WaveResult openResult = WaveResult::Ok;
    int outputsClosed = 0;

    // One callback of `frames` frames; returns what the output got.
    std::vector<int16_t> pull(uint32_t frames, uint32_t channels = 1)
    {
        std::vector<int16_t> out(frames * channels, int16_t { 12345 });
        play(out.data(), frames);
        return out;
    }

protected:
    WaveResult openOutput(const WaveFormat&) override { return openResult; }
    void closeOutput() override { ++outputsClosed; }
};

} // namespace pulsara::testing
