#include "GUI/BitmapView.h"

#include "GUI/SkinBitmap.h"

namespace pulsara {

void BitmapView::setBitmap(SkinBitmap* bitmap, int32_t sourceX, int32_t sourceY)
{
    bitmap_ = bitmap;
    sourceX_ = sourceX;
    sourceY_ = sourceY;
    markDirty();
}

int BitmapView::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode) && bitmap_) {
        SkinBitmap& bitmap = *bitmap_;
        bitmap.setDestination(dc);
        bitmap.drawPart(sourceX_, sourceY_, rect_.width, rect_.height, rect_.x, rect_.y);
    }
    return Element::paint(dc, mode);
}

} // namespace pulsara
