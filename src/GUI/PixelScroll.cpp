#include "GUI/PixelScroll.h"

#include <QImage>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace pulsara {

void scrollPixels(QImage& image, const QRect& area, int dx, int dy)
{
    QRect bounded = area & image.rect();
    if (bounded.isEmpty() || image.depth() != 32 || std::abs(dx) >= bounded.width() || std::abs(dy) >= bounded.height())
        return;
    const int width = bounded.width() - std::abs(dx);
    const int rows = bounded.height() - std::abs(dy);
    const int fromX = bounded.x() + (dx < 0 ? -dx : 0);
    const int toX = bounded.x() + (dx > 0 ? dx : 0);
    const std::size_t bytes = static_cast<std::size_t>(width) * sizeof(uint32_t);
    // Rows are copied in the order that never reads a row already overwritten.
    for (int i = 0; i < rows; ++i) {
        int row = dy > 0 ? rows - 1 - i : i;
        int fromY = bounded.y() + (dy < 0 ? -dy : 0) + row;
        int toY = bounded.y() + (dy > 0 ? dy : 0) + row;
        const auto* source = reinterpret_cast<const uint32_t*>(image.constScanLine(fromY)) + fromX;
        auto* target = reinterpret_cast<uint32_t*>(image.scanLine(toY)) + toX;
        std::memmove(target, source, bytes);
    }
}

} // namespace pulsara
