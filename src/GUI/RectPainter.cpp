#include "GUI/RectPainter.h"

#include <QPainter>

namespace pulsara {

int RectPainter::drawRect(int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (!dc_ || width <= 0 || height <= 0)
        return 0;
    dc_->save();
    dc_->setCompositionMode(QPainter::CompositionMode_SourceOver);
    dc_->setRenderHint(QPainter::Antialiasing, false);
    dc_->setPen(QPen(outline_, 1));
    dc_->setBrush(Qt::NoBrush);
    // QPainter's outline of (w, h) spans w + 1 pixels; the rectangle's right and bottom edges
    // are outside it.
    dc_->drawRect(x, y, width - 1, height - 1);
    dc_->restore();
    return 1;
}

} // namespace pulsara
