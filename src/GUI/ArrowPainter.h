#pragma once

#include "GUI/Painter.h"

class QBrush;
class QPen;

namespace pulsara {

// A filled triangle pointing one way, corner to corner in its box.
class ArrowPainter : public Painter {
public:
    enum Direction : int32_t { kUp = 0, kDown = 1, kLeft = 2, kRight = 3 };

    explicit ArrowPainter(Direction direction = kUp) : direction_(direction) { }

    // Not owned; both are left selected in the destination after drawing.
    void setPen(const QPen* pen) { pen_ = pen; }
    void setBrush(const QBrush* brush) { brush_ = brush; }
    void setDirection(Direction direction) { direction_ = direction; }

    int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) override;

private:
    Direction direction_;
    const QPen* pen_ = nullptr;
    const QBrush* brush_ = nullptr;
};

} // namespace pulsara
