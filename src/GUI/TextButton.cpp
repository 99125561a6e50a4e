#include "GUI/TextButton.h"

#include "GUI/SkinFrame.h"
#include "GUI/TextPainter.h"

#include <QPainter>

namespace pulsara {

void TextButton::setSkin(SkinFrame* released, SkinFrame* pressed)
{
    released_ = released;
    pressedFrame_ = pressed;
}

void TextButton::setColors(QColor text, QColor pressedText)
{
    text_ = text;
    pressedText_ = pressedText;
}

void TextButton::setCaption(std::u16string caption)
{
    if (caption == caption_)
        return;
    caption_ = std::move(caption);
    redraw();
}

void TextButton::setPressed(bool pressed)
{
    if (pressed == pressed_)
        return;
    pressed_ = pressed;
    redraw();
}

int TextButton::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode)) {
        if (SkinFrame* frame = pressed_ ? pressedFrame_ : released_) {
            frame->setDestination(dc);
            frame->drawInRect(rect_);
        }
        dc->setFont(font_);
        dc->setPen(pressed_ ? pressedText_ : text_);
        TextPainter text(TextPainter::kCentre);
        text.setText(caption_.c_str());
        text.setDestination(dc);
        text.drawInRect(rect_);
    }
    return Element::paint(dc, mode);
}

int TextButton::stylusDown(int, int32_t, int32_t)
{
    if (kind_ == Kind::Latch) {
        if (!pressed_) {
            setPressed(true);
            if (onClick)
                onClick();
        }
        return 1;
    }
    tracking_ = true;
    setPressed(true);
    return 1;
}

int TextButton::stylusMove(int32_t x, int32_t y)
{
    if (tracking_)
        setPressed(rect_.contains(x, y));
    return 1;
}

int TextButton::stylusUp(int, int32_t x, int32_t y)
{
    if (!tracking_)
        return 1;
    tracking_ = false;
    setPressed(false);
    if (rect_.contains(x, y) && onClick)
        onClick();
    return 1;
}

} // namespace pulsara
