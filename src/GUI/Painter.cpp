#include "GUI/Painter.h"

namespace pulsara {

int Painter::drawPart(int32_t, int32_t, int32_t, int32_t, int32_t, int32_t)
{
    return 0;
}

int Painter::drawInRect(const ElemRect& rect)
{
    return drawRect(rect.x, rect.y, rect.width, rect.height);
}

int Painter::drawAt(int32_t x, int32_t y)
{
    return drawRect(x, y, 0, 0);
}

} // namespace pulsara
