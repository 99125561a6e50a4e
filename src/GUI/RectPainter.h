#pragma once

#include "GUI/Painter.h"

#include <QColor>

namespace pulsara {

// An outlined rectangle of one-pixel lines; the inside is left as it is.
class RectPainter : public Painter {
public:
    explicit RectPainter(QColor outline = Qt::black) : outline_(outline) { }

    // The outline covers x .. x + width - 1 and y .. y + height - 1.
    int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) override;

    void setColor(QColor color) { outline_ = color; }

private:
    QColor outline_;
};

} // namespace pulsara
