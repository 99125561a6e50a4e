#include "GUI/BmpWriter.h"

namespace pulsara {

namespace {

void put16(std::vector<uint8_t>& out, uint32_t value)
{
    out.push_back(uint8_t(value));
    out.push_back(uint8_t(value >> 8));
}

void put32(std::vector<uint8_t>& out, uint32_t value)
{
    put16(out, value & 0xFFFF);
    put16(out, value >> 16);
}

} // namespace

std::vector<uint8_t> encodeBmp24(const QImage& source)
{
    QImage image = source.convertToFormat(QImage::Format_RGB32);
    const uint32_t width = uint32_t(image.width());
    const uint32_t height = uint32_t(image.height());
    const uint32_t stride = (width * 3 + 3) / 4 * 4;
    const uint32_t pixelOffset = 14 + 40;
    std::vector<uint8_t> out;
    out.reserve(pixelOffset + stride * height);
    out.push_back('B');
    out.push_back('M');
    put32(out, pixelOffset + stride * height);
    put32(out, 0);
    put32(out, pixelOffset);
    put32(out, 40);
    put32(out, width);
    put32(out, height);
    put16(out, 1);
    put16(out, 24);
    put32(out, 0);
    put32(out, stride * height);
    put32(out, 2835);
    put32(out, 2835);
    put32(out, 0);
    put32(out, 0);
    for (uint32_t row = height; row-- > 0;) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(int(row)));
        for (uint32_t x = 0; x < width; ++x) {
            out.push_back(uint8_t(qBlue(line[x])));
            out.push_back(uint8_t(qGreen(line[x])));
            out.push_back(uint8_t(qRed(line[x])));
        }
        for (uint32_t pad = width * 3; pad < stride; ++pad)
            out.push_back(0);
    }
    return out;
}

} // namespace pulsara
