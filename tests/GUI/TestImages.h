#pragma once

#include <QImage>
#include <QString>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace pulsara::test {

// Hand-made BMP files: a header with chosen fields followed by the given pixel bytes as they
// are, so that tests can make files that are padded, unpadded, short or wrong.
struct BmpFileBuilder {
    int32_t width = 1, height = 1;
    uint16_t bitsPerPixel = 24;
    uint32_t compression = 0;
    std::vector<uint32_t> palette; // 0x00RRGGBB entries, written after the header
    std::vector<uint8_t> pixels;

    std::vector<uint8_t> build() const
    {
        std::vector<uint8_t> out { 'B', 'M' };
        auto put = [&](uint32_t v, int bytes) {
            for (int i = 0; i < bytes; ++i)
                out.push_back(uint8_t(v >> (8 * i)));
        };
        uint32_t pixelOffset = 54 + uint32_t(palette.size()) * 4;
        for (uint32_t field : { pixelOffset + uint32_t(pixels.size()), 0u, pixelOffset, 40u, uint32_t(width), uint32_t(height) })
            put(field, 4);
        put(1, 2);
        put(bitsPerPixel, 2);
        for (uint32_t field : { compression, uint32_t(pixels.size()), 0u, 0u, uint32_t(palette.size()), 0u })
            put(field, 4);
        for (uint32_t colour : palette)
            put(colour, 4);
        out.insert(out.end(), pixels.begin(), pixels.end());
        return out;
    }
};

inline void writeFile(const QString& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream(path.toStdString(), std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

struct PixelAt {
    int x, y;
    QRgb colour;
};

inline void expectPixels(const QImage& image, const std::vector<PixelAt>& pixels, const std::string& what = {})
{
    for (const PixelAt& p : pixels)
        EXPECT_EQ(image.pixel(p.x, p.y), p.colour) << what << " at " << p.x << "," << p.y;
}

} // namespace pulsara::test
