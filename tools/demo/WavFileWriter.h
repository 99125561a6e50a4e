#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace demo {

// Writes mono PCM samples (floats in [-1, 1]) as a plain RIFF WAVE file of 8 or 16 bits.
bool writeWavFile(const std::string& path, const std::vector<float>& samples, uint32_t sampleRate, uint16_t bits);

} // namespace demo
