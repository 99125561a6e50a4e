#pragma once

#include "Sound/SoundSource.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace pulsara {

// Renders a sound source from its first frame to its end into a 16-bit PCM WAV file, as fast as
// the machine allows: clipped to full scale, with the last 30 ms faded out.
class WavExporter {
public:
    static constexpr uint32_t kHeaderBytes = 46;
    static constexpr uint32_t kBlockMs = 200;
    static constexpr uint32_t kFadeMs = 30;

    // Told after every block: frames written so far and the total.
    using Progress = std::function<void(uint64_t done, uint64_t total)>;

    // Returns 1 when the file could be created (the writes themselves are not checked), else
    // reports "can't create file" and returns 0.
    int exportTo(SoundSource&, std::u16string_view path, const Progress& = {});

    // Frames in a block at `sampleRate`: 200 ms rounded down to a multiple of 32.
    static uint32_t blockFrames(uint32_t sampleRate);
};

} // namespace pulsara
