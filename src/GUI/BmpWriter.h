#pragma once

#include <QImage>

#include <cstdint>
#include <vector>

namespace pulsara {

// A standard 24-bit bottom-up BMP file of the image (40-byte information header, rows padded to
// 4 bytes). The skin generator writes the default skin with it.
std::vector<uint8_t> encodeBmp24(const QImage&);

} // namespace pulsara
