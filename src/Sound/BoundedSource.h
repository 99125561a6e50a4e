#pragma once

#include "Sound/SoundSource.h"

#include <atomic>
#include <cstdint>

namespace pulsara {

// Plays another source up to a given number of frames and silence after it, so that a player
// that would loop forever can be heard exactly once. Everything but render is passed through.
class BoundedSource final : public SoundSource {
public:
    explicit BoundedSource(SoundSource& inner)
        : inner_(inner)
    {
    }

    // Frames at the output rate; also starts counting from zero again.
    void setEnd(uint64_t frames);
    uint64_t end() const { return end_.load(std::memory_order_relaxed); }
    uint64_t renderedFrames() const { return rendered_.load(std::memory_order_acquire); }
    // Every frame up to the end has been rendered.
    bool hasEnded() const { return renderedFrames() >= end(); }

    void setFormat(const AudioFormat* format) override { inner_.setFormat(format); }
    const AudioFormat* format() const override { return inner_.format(); }
    // Device callback thread: no allocation, locks, I/O or logging.
    void render(float* out, uint32_t frames, uint32_t channels) override;
    uint64_t lengthInFrames() const override { return end(); }
    void seek(uint64_t frame) override { inner_.seek(frame); }
    void start() override { inner_.start(); }
    void stop() override { inner_.stop(); }
    void setLatency(int milliseconds) override { inner_.setLatency(milliseconds); }
    void setRenderThreads(uint32_t threads) override { inner_.setRenderThreads(threads); }

private:
    SoundSource& inner_;
    std::atomic<uint64_t> end_ { 0 };
    std::atomic<uint64_t> rendered_ { 0 };
};

} // namespace pulsara
