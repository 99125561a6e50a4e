#pragma once

#include "Sound/AudioFormat.h"

#include <cstdint>

namespace pulsara {

// Anything that renders float frames: the song player for the output stream and the exporter.
class SoundSource {
public:
    virtual ~SoundSource() = default;

    // The format is not owned; it must outlive the source or be replaced.
    virtual void setFormat(const AudioFormat*) = 0;
    virtual const AudioFormat* format() const = 0;
    // Fills `frames` interleaved frames of `channels` channels, nominally in [-1, 1].
    virtual void render(float* out, uint32_t frames, uint32_t channels) = 0;
    // Length in frames at the output rate.
    virtual uint64_t lengthInFrames() const = 0;
    virtual void seek(uint64_t frame) = 0;
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual void setLatency(int milliseconds) { }
    // Rendering away from the device (an export): render() may use up to `threads` threads at
    // once, with the same output to the bit. 1, the default, renders on the calling thread alone,
    // as the device's callback must. The thread that renders, between blocks.
    virtual void setRenderThreads(uint32_t threads) { }
};

} // namespace pulsara
