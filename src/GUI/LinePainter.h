#pragma once

#include "GUI/Painter.h"

#include <QColor>

namespace pulsara {

// One-pixel lines from a current point. drawAt draws a line to the point; drawRect draws
// nothing (it passes to drawPart, which lines do not have).
class LinePainter : public Painter {
public:
    explicit LinePainter(QColor color = Qt::black) : color_(color) { }

    void moveTo(int32_t x, int32_t y);
    // Draws from the current point up to, but not including, (x, y), which becomes current.
    void lineTo(int32_t x, int32_t y);

    int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) override;
    int drawAt(int32_t x, int32_t y) override;

    void setColor(QColor color) { color_ = color; }
    int32_t currentX() const { return x_; }
    int32_t currentY() const { return y_; }

private:
    int32_t x_ = 0;
    int32_t y_ = 0;
    QColor color_;
};

} // namespace pulsara
