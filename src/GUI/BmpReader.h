#pragma once

#include <QImage>

#include <cstdint>
#include <span>

namespace pulsara {

// Why a BMP file could not become a bitmap; each has its own message at the skin loader.
enum class BmpFault {
    None,
    NoRead, // the file is empty
    NotBitmap, // it does not begin with "BM"
    CannotCreate, // its header describes no bitmap that can be made
};

struct BmpImage {
    BmpFault fault = BmpFault::None;
    QImage image; // RGB32, top row first
};

// Decodes a Windows BMP file the way the program always has: the 40-byte information header at
// offset 14 describes the bitmap, the pixel data starts at the offset stored at byte 10, and
// (bits per pixel x height x width) / 8 bytes are copied from there into a bitmap whose rows are
// padded to 4 bytes, with no padding skipped in the file. Files whose rows fill whole 4-byte
// words come out right; others come out with their later rows shifted. Bytes that a header
// claims but the file lacks read as zero.
BmpImage readBmp(std::span<const uint8_t> file);

// Bitmaps larger than this in either direction, or in area, are refused as ones that cannot be
// created; no skin needs more and it bounds the memory a hostile file can ask for.
constexpr int32_t kMaxBmpSide = 8192;
constexpr int64_t kMaxBmpPixels = 16 * 1024 * 1024;

} // namespace pulsara
