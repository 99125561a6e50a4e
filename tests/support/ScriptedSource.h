#pragma once

#include "Sound/SoundSource.h"

#include <atomic>
#include <vector>

namespace pulsara::testing {

// A sound source that renders a script: the `head` samples first, then `tail` over and over
// (interleaved, so a two-sample tail is a constant stereo frame). It remembers what it was asked.
class ScriptedSource : public SoundSource {
public:
    std::vector<float> head;
    std::vector<float> tail { 0.0f };

    std::atomic<int> renders { 0 };
    std::atomic<uint32_t> lastFrames { 0 };
    std::atomic<int> lastLatency { -1 };

    void setFormat(const AudioFormat* format) override { format_ = format; }
    const AudioFormat* format() const override { return format_; }
    void render(float* out, uint32_t frames, uint32_t channels) override
    {
        renders.fetch_add(1);
        lastFrames = frames;
        for (size_t i = 0; i < size_t { frames } * channels; ++i)
            out[i] = i < head.size() ? head[i] : tail[(i - head.size()) % tail.size()];
    }
    uint64_t lengthInFrames() const override { return 0; }
    void seek(uint64_t) override { }
    void start() override { }
    void stop() override { }
    void setLatency(int milliseconds) override { lastLatency = milliseconds; }

private:
    const AudioFormat* format_ = nullptr;
};

} // namespace pulsara::testing
