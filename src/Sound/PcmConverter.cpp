#include "Sound/PcmConverter.h"

namespace pulsara {

PcmConverter::PcmConverter(uint32_t bits, uint32_t sourceChannels, uint32_t targetChannels)
    : bits_(bits)
    , sourceChannels_(sourceChannels)
    , targetChannels_(targetChannels)
{
}

float PcmConverter::sampleAt(const uint8_t* bytes, uint32_t index) const
{
    if (bits_ == 8)
        return fromPcm8(bytes[index]);
    const uint8_t* sample = bytes + static_cast<std::size_t>(index) * 2;
    return fromPcm16(static_cast<int16_t>(sample[0] | (sample[1] << 8)));
}

void PcmConverter::convert(const uint8_t* bytes, uint32_t frames, float* out) const
{
    for (uint32_t f = 0; f < frames; ++f) {
        if (sourceChannels_ == 1) {
            float sample = sampleAt(bytes, f);
            for (uint32_t c = 0; c < targetChannels_; ++c)
                out[f * targetChannels_ + c] = sample;
        } else if (targetChannels_ == 1) {
            out[f] = (sampleAt(bytes, 2 * f) + sampleAt(bytes, 2 * f + 1)) * 0.5f;
        } else {
            out[2 * f] = sampleAt(bytes, 2 * f);
            out[2 * f + 1] = sampleAt(bytes, 2 * f + 1);
        }
    }
}

} // namespace pulsara
