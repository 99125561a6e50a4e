#pragma once

#include <QRect>
#include <cstdint>

namespace pulsara {

// A rectangle in the window's client coordinates, half-open: x <= px < x + width.
struct ElemRect {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;

    int32_t right() const { return x + width; }
    int32_t bottom() const { return y + height; }
    bool contains(int32_t px, int32_t py) const { return x <= px && px < x + width && y <= py && py < y + height; }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    QRect toQRect() const { return QRect(x, y, width, height); }
    bool operator==(const ElemRect&) const = default;
};

} // namespace pulsara
