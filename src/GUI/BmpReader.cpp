#include "GUI/BmpReader.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace pulsara {

namespace {

// Little-endian fields; what lies past the end of the file reads as zero.
class FileBytes {
public:
    explicit FileBytes(std::span<const uint8_t> bytes) : bytes_(bytes) { }

    uint8_t u8(uint64_t offset) const { return offset < bytes_.size() ? bytes_[offset] : 0; }
    uint16_t u16(uint64_t offset) const { return uint16_t(u8(offset) | u8(offset + 1) << 8); }
    uint32_t u32(uint64_t offset) const { return uint32_t(u16(offset)) | uint32_t(u16(offset + 2)) << 16; }
    uint64_t size() const { return bytes_.size(); }
    const uint8_t* data() const { return bytes_.data(); }

private:
    std::span<const uint8_t> bytes_;
};

constexpr uint64_t kInfoHeaderOffset = 14;

struct InfoHeader {
    uint32_t size = 0;
    int32_t width = 0;
    int32_t height = 0;
    uint16_t bitsPerPixel = 0;
    uint32_t compression = 0;
    uint32_t coloursUsed = 0;

    int32_t rows() const { return height < 0 ? -height : height; }
    bool bottomUp() const { return height > 0; }
    uint64_t stride() const { return (uint64_t(width) * bitsPerPixel + 31) / 32 * 4; }
};

InfoHeader readInfoHeader(const FileBytes& file)
{
    InfoHeader header;
    header.size = file.u32(kInfoHeaderOffset);
    header.width = int32_t(file.u32(18));
    header.height = int32_t(file.u32(22));
    header.bitsPerPixel = file.u16(28);
    header.compression = file.u32(30);
    header.coloursUsed = file.u32(46);
    return header;
}

bool canCreate(const InfoHeader& header)
{
    const uint16_t bits = header.bitsPerPixel;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32)
        return false;
    if (header.compression != 0 || header.width <= 0 || header.height == 0 || header.height == INT32_MIN)
        return false;
    return header.width <= kMaxBmpSide && header.rows() <= kMaxBmpSide
        && int64_t(header.width) * header.rows() <= kMaxBmpPixels;
}

// The colour table follows the information header. Only its first entry travelled with the
// header in the original loader; the rest is taken from the file rather than from whatever
// memory happened to follow, and entries the file lacks are black.
std::vector<QRgb> readPalette(const FileBytes& file, const InfoHeader& header)
{
    if (header.bitsPerPixel > 8)
        return {};
    uint32_t count = header.coloursUsed != 0 ? header.coloursUsed : 1u << header.bitsPerPixel;
    count = std::min<uint32_t>(count, 1u << header.bitsPerPixel);
    std::vector<QRgb> palette(1u << header.bitsPerPixel, qRgb(0, 0, 0));
    uint64_t start = kInfoHeaderOffset + header.size;
    for (uint32_t i = 0; i < count; ++i) {
        uint64_t entry = start + uint64_t(i) * 4;
        palette[i] = qRgb(file.u8(entry + 2), file.u8(entry + 1), file.u8(entry));
    }
    return palette;
}

QRgb pixelAt(const uint8_t* row, int32_t x, uint16_t bits, const std::vector<QRgb>& palette)
{
    switch (bits) {
    case 32:
    case 24: {
        const uint8_t* pixel = row + x * (bits / 8);
        return qRgb(pixel[2], pixel[1], pixel[0]);
    }
    case 16: {
        uint16_t value = uint16_t(row[x * 2] | row[x * 2 + 1] << 8);
        auto widen = [](int five) { return (five << 3) | (five >> 2); };
        return qRgb(widen((value >> 10) & 31), widen((value >> 5) & 31), widen(value & 31));
    }
    case 8:
        return palette[row[x]];
    case 4:
        return palette[(row[x / 2] >> (x % 2 == 0 ? 4 : 0)) & 15];
    default:
        return palette[(row[x / 8] >> (7 - x % 8)) & 1];
    }
}

} // namespace

BmpImage readBmp(std::span<const uint8_t> bytes)
{
    FileBytes file(bytes);
    if (file.size() == 0)
        return { BmpFault::NoRead, {} };
    if (file.u8(0) != 'B' || file.u8(1) != 'M')
        return { BmpFault::NotBitmap, {} };
    uint32_t pixelOffset = file.u32(10);
    InfoHeader header = readInfoHeader(file);
    if (!canCreate(header))
        return { BmpFault::CannotCreate, {} };

    // The bitmap's own memory, rows padded to 4 bytes, filled by one straight copy.
    std::vector<uint8_t> section(header.stride() * uint64_t(header.rows()), 0);
    uint64_t claimed = uint64_t(header.bitsPerPixel) * (uint32_t(header.height) & 0xFFFF)
        * (uint32_t(header.width) & 0xFFFF) / 8;
    uint64_t available = pixelOffset < file.size() ? file.size() - pixelOffset : 0;
    uint64_t copied = std::min({ claimed, available, uint64_t(section.size()) });
    if (copied > 0)
        std::memcpy(section.data(), file.data() + pixelOffset, copied);

    QImage image(header.width, header.rows(), QImage::Format_RGB32);
    if (image.isNull())
        return { BmpFault::CannotCreate, {} };
    std::vector<QRgb> palette = readPalette(file, header);
    for (int32_t y = 0; y < header.rows(); ++y) {
        int32_t sourceRow = header.bottomUp() ? header.rows() - 1 - y : y;
        const uint8_t* row = section.data() + header.stride() * uint64_t(sourceRow);
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int32_t x = 0; x < header.width; ++x)
            line[x] = pixelAt(row, x, header.bitsPerPixel, palette);
    }
    return { BmpFault::None, std::move(image) };
}

} // namespace pulsara
