#pragma once

#include <cstddef>
#include <cstdint>

namespace pulsara {

// Turns the PCM bytes of a WAV data chunk into float frames at another channel count, as the
// reader does before it resamples. Only 8-bit (unsigned) and 16-bit (signed little-endian)
// samples exist here; 1 or 2 channels on either side.
class PcmConverter {
public:
    // The float nearest 1/32767: full scale of 16-bit PCM maps to just under 1.0.
    static constexpr float kPcm16Scale = 3.051851e-5f;

    static float fromPcm16(int16_t sample) { return sample * kPcm16Scale; }
    // 8-bit samples are unsigned around 128; they are widened to 16 bits first.
    static float fromPcm8(uint8_t sample) { return static_cast<int16_t>((sample - 128) * 256) * kPcm16Scale; }

    // `bits` is 8 or 16; the channel counts are 1 or 2.
    PcmConverter(uint32_t bits, uint32_t sourceChannels, uint32_t targetChannels);

    // Converts `frames` source frames from `bytes` (which holds at least frames x source
    // channels x bits / 8 bytes) into `out` (frames x target channels floats). Mono to stereo copies
    // the sample into both channels; stereo to mono takes (left + right) x 0.5.
    void convert(const uint8_t* bytes, uint32_t frames, float* out) const;

private:
    float sampleAt(const uint8_t* bytes, uint32_t index) const;

    uint32_t bits_;
    uint32_t sourceChannels_;
    uint32_t targetChannels_;
};

} // namespace pulsara
