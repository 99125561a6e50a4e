#include "GUI/BitmapButton.h"

#include "GUI/SkinBitmap.h"

namespace pulsara {

void BitmapButton::setBitmap(SkinBitmap* bitmap)
{
    bitmap_ = bitmap;
    place(rect_.x, rect_.y);
}

void BitmapButton::place(int32_t x, int32_t y)
{
    layout({ x, y, stateWidth(), stateHeight() });
}

int32_t BitmapButton::stateWidth() const
{
    return bitmap_ ? bitmap_->width() / 2 : 0;
}

int32_t BitmapButton::stateHeight() const
{
    return bitmap_ ? bitmap_->height() : 0;
}

void BitmapButton::setPressed(bool pressed)
{
    if (pressed_ == pressed)
        return;
    pressed_ = pressed;
    redraw();
}

int BitmapButton::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode) && bitmap_) {
        SkinBitmap& bitmap = *bitmap_;
        bitmap.setDestination(dc);
        bitmap.drawPart(pressed_ ? stateWidth() : 0, 0, stateWidth(), stateHeight(), rect_.x, rect_.y);
    }
    return Element::paint(dc, mode);
}

int BitmapButton::stylusDown(int, int32_t, int32_t)
{
    switch (kind_) {
    case Kind::Indicator:
        return 0;
    case Kind::Latch:
        if (pressed_)
            return 1;
        setPressed(true);
        break;
    case Kind::Toggle:
        setPressed(!pressed_);
        break;
    }
    if (onChange)
        onChange(pressed_);
    return 1;
}

} // namespace pulsara
