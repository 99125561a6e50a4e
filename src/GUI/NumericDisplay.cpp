#include "GUI/NumericDisplay.h"

#include "GUI/SkinFrame.h"

#include <QFontMetrics>
#include <QPainter>

#include <cstdlib>

namespace pulsara {

void NumericDisplay::setValue(int32_t value)
{
    if (value == value_)
        return;
    value_ = value;
    redraw();
}

std::u16string NumericDisplay::text() const
{
    std::u16string text(size_t(digits_), u'0');
    int64_t rest = std::llabs(int64_t(value_));
    for (int32_t i = digits_ - 1; i >= 0 && rest > 0; --i, rest /= 10)
        text[size_t(i)] = char16_t(u'0' + rest % 10);
    if (value_ < 0 && digits_ > 0)
        text[0] = u'-';
    return text;
}

int32_t NumericDisplay::preferredWidth() const
{
    return QFontMetrics(font_).horizontalAdvance(QString(digits_, u'0')) + 12;
}

int NumericDisplay::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode)) {
        if (frame_) {
            frame_->setDestination(dc);
            frame_->drawInRect(rect_);
        }
        std::u16string shown = text();
        dc->setFont(font_);
        dc->setPen(color_);
        TextPainter painter(TextPainter::kCentre);
        painter.setText(shown.c_str());
        painter.setDestination(dc);
        painter.drawInRect(rect_);
    }
    return Element::paint(dc, mode);
}

} // namespace pulsara
