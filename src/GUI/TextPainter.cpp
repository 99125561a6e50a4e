#include "GUI/TextPainter.h"

#include <QFontMetrics>
#include <QPainter>

namespace pulsara {

Qt::Alignment TextPainter::horizontalAlignment(int32_t align, int textWidth, int boxWidth)
{
    switch (align) {
    case kAuto:
        return textWidth <= boxWidth ? Qt::AlignHCenter : Qt::AlignRight;
    case kRight:
        return Qt::AlignRight;
    case kLeft:
        return Qt::AlignLeft;
    default:
        return Qt::AlignHCenter;
    }
}

int TextPainter::drawRect(int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (!text_ || !dc_)
        return 0;
    QString text = QString::fromUtf16(text_);
    int textWidth = QFontMetrics(dc_->font()).horizontalAdvance(text);
    Qt::Alignment alignment = horizontalAlignment(align_, textWidth, width);
    QPainter::CompositionMode previous = dc_->compositionMode();
    dc_->setCompositionMode(QPainter::CompositionMode_SourceOver);
    dc_->drawText(QRect(x, y, width, height), int(alignment | Qt::AlignVCenter | Qt::TextSingleLine), text);
    dc_->setCompositionMode(previous);
    return 1;
}

} // namespace pulsara
