#pragma once

#include "Sound/QueuedWaveDevice.h"

#include <vector>

namespace pulsara::testing {

// The queued wave device with an output that the test pulls by hand (from any thread),
// standing in for the audio back end's callback. A test may force the answers of the output's
// open and of the device's close and position; Ok leaves the answer to the queue.
class PulledWaveDevice : public QueuedWaveDevice {
public:
    WaveResult openResult = WaveResult::Ok;
    WaveResult closeResult = WaveResult::Ok;
    WaveResult positionResult = WaveResult::Ok;
    int outputsClosed = 0;

    // One callback of `frames` frames; returns what the output got.
    std::vector<int16_t> pull(uint32_t frames, uint32_t channels = 1)
    {
        std::vector<int16_t> out(frames * channels, int16_t { 12345 });
        play(out.data(), frames);
        return out;
    }

    WaveResult close() override { return closeResult != WaveResult::Ok ? closeResult : QueuedWaveDevice::close(); }
    WaveResult position(uint32_t& frames) const override
    {
        return positionResult != WaveResult::Ok ? positionResult : QueuedWaveDevice::position(frames);
    }

protected:
    WaveResult openOutput(const WaveFormat&) override { return openResult; }
    void closeOutput() override { ++outputsClosed; }
};

} // namespace pulsara::testing
