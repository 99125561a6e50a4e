#include "GUI/ArrowPainter.h"

#include <QPainter>
#include <QPolygon>
#include <cassert>

namespace pulsara {

int ArrowPainter::drawRect(int32_t x, int32_t y, int32_t w, int32_t h)
{
    if (!dc_)
        return 0;
    QPolygon corners;
    switch (direction_) {
    case kUp:
        corners << QPoint(x, y + h) << QPoint(x + w / 2, y) << QPoint(x + w, y + h);
        break;
    case kDown:
        corners << QPoint(x, y) << QPoint(x + w, y) << QPoint(x + w / 2, y + h);
        break;
    case kLeft:
        corners << QPoint(x + w, y) << QPoint(x + w, y + h) << QPoint(x, y + h / 2);
        break;
    case kRight:
        corners << QPoint(x, y) << QPoint(x + w, y + h / 2) << QPoint(x, y + h);
        break;
    default:
        assert(false && "an arrow points up, down, left or right");
        return 0;
    }
    if (brush_)
        dc_->setBrush(*brush_);
    if (pen_)
        dc_->setPen(*pen_);
    dc_->setCompositionMode(QPainter::CompositionMode_SourceOver);
    dc_->drawPolygon(corners);
    return 1;
}

} // namespace pulsara
