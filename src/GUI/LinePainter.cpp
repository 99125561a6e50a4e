#include "GUI/LinePainter.h"

#include <QPainter>
#include <cstdlib>

namespace pulsara {

void LinePainter::moveTo(int32_t x, int32_t y)
{
    x_ = x;
    y_ = y;
}

void LinePainter::lineTo(int32_t x, int32_t y)
{
    if (dc_ && (x != x_ || y != y_)) {
        // The end point is left out, so that a rule from left to left + width covers exactly
        // width pixels and lines drawn end to end do not overlap.
        int32_t dx = x - x_;
        int32_t dy = y - y_;
        int32_t steps = std::max(std::abs(dx), std::abs(dy));
        double fraction = double(steps - 1) / steps;
        QPointF end(x_ + dx * fraction, y_ + dy * fraction);
        dc_->save();
        dc_->setCompositionMode(QPainter::CompositionMode_SourceOver);
        dc_->setRenderHint(QPainter::Antialiasing, false);
        dc_->setPen(QPen(color_, 1));
        dc_->drawLine(QPoint(x_, y_), end.toPoint());
        dc_->restore();
    }
    moveTo(x, y);
}

int LinePainter::drawRect(int32_t, int32_t, int32_t width, int32_t height)
{
    return drawPart(0, 0, width, height, 0, 0);
}

int LinePainter::drawAt(int32_t x, int32_t y)
{
    lineTo(x, y);
    return 1;
}

} // namespace pulsara
