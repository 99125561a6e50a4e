// Feeds arbitrary bytes to the skin's BMP reader: every input must end in a bitmap or in one of
// the reader's faults, without reading outside the file or asking for unbounded memory.
#include "GUI/BmpReader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    pulsara::BmpImage bitmap = pulsara::readBmp({ data, size });
    if (bitmap.fault == pulsara::BmpFault::None) {
        const QImage& image = bitmap.image;
        if (image.isNull() || image.format() != QImage::Format_RGB32 || image.width() > pulsara::kMaxBmpSide
            || image.height() > pulsara::kMaxBmpSide)
            std::abort();
    } else if (!bitmap.image.isNull()) {
        std::abort();
    }
    return 0;
}
