#include "WavFileWriter.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace demo {

namespace {

void put(std::vector<uint8_t>& bytes, uint32_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void putTag(std::vector<uint8_t>& bytes, const char* tag)
{
    bytes.insert(bytes.end(), tag, tag + 4);
}

} // namespace

bool writeWavFile(const std::string& path, const std::vector<float>& samples, uint32_t sampleRate, uint16_t bits)
{
    uint32_t bytesPerSample = bits / 8;
    uint32_t dataBytes = static_cast<uint32_t>(samples.size()) * bytesPerSample;
    std::vector<uint8_t> bytes;
    putTag(bytes, "RIFF");
    put(bytes, 36 + dataBytes, 4);
    putTag(bytes, "WAVE");
    putTag(bytes, "fmt ");
    put(bytes, 16, 4);
    put(bytes, 1, 2); // PCM
    put(bytes, 1, 2); // mono
    put(bytes, sampleRate, 4);
    put(bytes, sampleRate * bytesPerSample, 4);
    put(bytes, bytesPerSample, 2);
    put(bytes, bits, 2);
    putTag(bytes, "data");
    put(bytes, dataBytes, 4);
    for (float sample : samples) {
        float clipped = std::clamp(sample, -1.0f, 1.0f);
        if (bits == 8)
            put(bytes, static_cast<uint32_t>(std::lround(clipped * 127.0f) + 128), 1);
        else
            put(bytes, static_cast<uint16_t>(static_cast<int16_t>(std::lround(clipped * 32767.0f))), 2);
    }
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file);
}

} // namespace demo
