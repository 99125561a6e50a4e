#pragma once

#include "Sound/QueuedWaveDevice.h"

#include <rtaudio/RtAudio.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pulsara {

// The wave device on the computer's default sound output, through RtAudio's callback API:
// 16-bit interleaved frames at the format's rate and channel count. RtAudio's callback thread
// plays the queued buffers and reports each finished one done right there.
class RtAudioDevice final : public QueuedWaveDevice {
public:
    // Frames RtAudio asks for at a time: small against any latency the stream uses, so that a
    // refill inside the callback never has to wait for the next period.
    static constexpr unsigned kFramesPerCallback = 512;

    // UNSPECIFIED takes the first back end that has an output device (JACK, PulseAudio, ALSA).
    explicit RtAudioDevice(RtAudio::Api = RtAudio::UNSPECIFIED);
    ~RtAudioDevice() override;

    // GUI thread.
    std::vector<std::string> outputNames() override;
    void chooseOutput(std::string name) override
    {
        chosenOutput_ = std::move(name);
        missingTold_ = false;
    }
    bool takeFallbackNotice() override { return std::exchange(fellBack_, false); }

protected:
    WaveResult openOutput(const WaveFormat&) override;
    void closeOutput() override;

private:
    // Device callback thread: no allocation, locks, I/O or logging.
    static int fillOutput(void* output, void* input, unsigned frames, double streamTime, RtAudioStreamStatus,
        void* device);

    RtAudio::Api api_;
    std::unique_ptr<RtAudio> rtAudio_; // exists while the output is open
    std::string chosenOutput_;
    bool fellBack_ = false;
    // The chosen output was found missing and that was said: it is not said again at every open.
    bool missingTold_ = false;
};

} // namespace pulsara
