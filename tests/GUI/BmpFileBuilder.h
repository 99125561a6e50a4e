#pragma once

#include <cstdint>
#include <vector>

namespace pulsara::test {

// Hand-made BMP files: a header with chosen fields followed by the given pixel bytes as they
// are, so that tests can make files that are padded, unpadded, short or wrong.
struct BmpFileBuilder {
    int32_t width = 1;
    int32_t height = 1;
    uint16_t bitsPerPixel = 24;
    uint32_t compression = 0;
    std::vector<uint32_t> palette; // 0x00RRGGBB entries, written after the header
    std::vector<uint8_t> pixels;

    std::vector<uint8_t> build() const
    {
        std::vector<uint8_t> out;
        auto put16 = [&](uint32_t v) {
            out.push_back(uint8_t(v));
            out.push_back(uint8_t(v >> 8));
        };
        auto put32 = [&](uint32_t v) {
            put16(v & 0xFFFF);
            put16(v >> 16);
        };
        uint32_t pixelOffset = 54 + uint32_t(palette.size()) * 4;
        out.push_back('B');
        out.push_back('M');
        put32(pixelOffset + uint32_t(pixels.size()));
        put32(0);
        put32(pixelOffset);
        put32(40);
        put32(uint32_t(width));
        put32(uint32_t(height));
        put16(1);
        put16(bitsPerPixel);
        put32(compression);
        put32(uint32_t(pixels.size()));
        put32(0);
        put32(0);
        put32(uint32_t(palette.size()));
        put32(0);
        for (uint32_t colour : palette)
            put32(colour);
        out.insert(out.end(), pixels.begin(), pixels.end());
        return out;
    }
};

} // namespace pulsara::test
