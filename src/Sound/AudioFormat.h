#pragma once

#include <cstdint>

namespace pulsara {

// The format of sound on the renderer's side. bitsPerSample is 32 for the program's own float
// mix; the device and exported files are always 16-bit whatever it says.
struct AudioFormat {
    uint32_t sampleRate = 44100; // frames per second
    uint8_t bitsPerSample = 32;
    uint8_t channels = 1; // 1 or 2
};

} // namespace pulsara
