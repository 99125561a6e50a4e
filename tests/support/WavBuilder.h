#pragma once

// Builds WAV file bytes for tests: makeWav(1, 22050, 8, pcm8({ 128, 255, 0 })).

#include <bit>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pulsara::test {

// One RIFF chunk. `declaredSize` replaces the size written in the header (the bytes stay as
// they are), for files that lie about their chunks.
struct WavChunk {
    std::string id; // 4 characters
    std::vector<uint8_t> bytes;
    std::optional<uint32_t> declaredSize = std::nullopt;
};

inline void appendLe(std::vector<uint8_t>& out, uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

// Sample bytes in the file's encodings: unsigned 8-bit, signed 16-bit and 32-bit float, little-endian.
inline std::vector<uint8_t> pcm8(std::initializer_list<uint8_t> samples) { return std::vector<uint8_t>(samples); }

inline std::vector<uint8_t> pcm16(const std::vector<int16_t>& samples)
{
    std::vector<uint8_t> out;
    for (int16_t sample : samples)
        appendLe(out, static_cast<uint16_t>(sample), 2);
    return out;
}

inline std::vector<uint8_t> float32(const std::vector<float>& samples)
{
    std::vector<uint8_t> out;
    for (float sample : samples)
        appendLe(out, std::bit_cast<uint32_t>(sample), 4);
    return out;
}

// The 16-byte "fmt " chunk: format tag 1 (PCM), or 3 (float) for 32 bits.
inline WavChunk formatChunk(uint16_t channels, uint32_t rate, uint16_t bits)
{
    WavChunk chunk { "fmt ", {} };
    uint16_t blockAlign = static_cast<uint16_t>(channels * bits / 8);
    for (auto [value, bytes] : { std::pair<uint32_t, int> { bits == 32 ? 3 : 1, 2 }, { channels, 2 }, { rate, 4 },
             { rate * blockAlign, 4 }, { blockAlign, 2 }, { bits, 2 } })
        appendLe(chunk.bytes, value, bytes);
    return chunk;
}

// The signed 16-bit samples of `bytes` after the first `skip` (a header, or none for raw data).
inline std::vector<int16_t> samples16(const std::vector<uint8_t>& bytes, std::size_t skip)
{
    std::vector<int16_t> samples(bytes.size() > skip ? (bytes.size() - skip) / 2 : 0);
    std::memcpy(samples.data(), bytes.data() + skip, samples.size() * 2); // little-endian host
    return samples;
}

// "RIFF", size, "WAVE", then the chunks in the given order, each without a pad byte.
inline std::vector<uint8_t> riffWave(const std::vector<WavChunk>& chunks)
{
    std::vector<uint8_t> out { 'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E' };
    for (const WavChunk& chunk : chunks) {
        out.insert(out.end(), chunk.id.begin(), chunk.id.end());
        appendLe(out, chunk.declaredSize.value_or(static_cast<uint32_t>(chunk.bytes.size())), 4);
        out.insert(out.end(), chunk.bytes.begin(), chunk.bytes.end());
    }
    uint32_t riffSize = static_cast<uint32_t>(out.size() - 8);
    std::memcpy(out.data() + 4, &riffSize, 4); // little-endian host
    return out;
}

// A plain WAV: "fmt ", the extra chunks, then "data" holding `samples` (already encoded).
inline std::vector<uint8_t> makeWav(uint16_t channels, uint32_t rate, uint16_t bits, std::vector<uint8_t> samples,
    std::vector<WavChunk> extraChunks = {})
{
    extraChunks.insert(extraChunks.begin(), formatChunk(channels, rate, bits));
    extraChunks.push_back(WavChunk { "data", std::move(samples) });
    return riffWave(extraChunks);
}

} // namespace pulsara::test
