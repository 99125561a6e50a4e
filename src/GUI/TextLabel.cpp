#include "GUI/TextLabel.h"

#include <QPainter>

namespace pulsara {

void TextLabel::setText(std::u16string text)
{
    if (text == text_)
        return;
    text_ = std::move(text);
    redraw();
}

int TextLabel::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode) && !text_.empty()) {
        dc->setFont(font_);
        dc->setPen(color_);
        TextPainter painter(align_);
        painter.setText(text_.c_str());
        painter.setDestination(dc);
        painter.drawInRect(rect_);
    }
    return Element::paint(dc, mode);
}

} // namespace pulsara
