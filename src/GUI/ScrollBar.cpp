#include "GUI/ScrollBar.h"

#include "GUI/ArrowPainter.h"
#include "GUI/SkinFrame.h"

#include <QBrush>
#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace pulsara {

void ScrollBar::setSkin(SkinFrame* track, SkinFrame* thumb)
{
    track_ = track;
    thumbFrame_ = thumb;
}

void ScrollBar::setThumb(double fraction)
{
    fraction = std::clamp(fraction, 0.0, 1.0);
    if (fraction == thumb_)
        return;
    thumb_ = fraction;
    redraw();
}

void ScrollBar::setPosition(double position)
{
    position = std::clamp(position, 0.0, 1.0);
    if (position == position_)
        return;
    position_ = position;
    redraw();
}

ElemRect ScrollBar::trackRect() const
{
    return { rect_.x + arrowWidth(), rect_.y, std::max(0, rect_.width - 2 * arrowWidth()), rect_.height };
}

ElemRect ScrollBar::thumbRect() const
{
    ElemRect track = trackRect();
    int32_t length = std::max(std::min(track.width, arrowWidth()), int32_t(std::lround(track.width * thumb_)));
    int32_t offset = int32_t(std::lround((track.width - length) * position_));
    return { track.x + offset, track.y, length, track.height };
}

int ScrollBar::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode) && track_ && thumbFrame_) {
        track_->setDestination(dc);
        track_->drawInRect(rect_);
        thumbFrame_->setDestination(dc);
        thumbFrame_->drawInRect(thumbRect());
        // The arrows are drawn, not bitmaps, so that they follow the bar's height.
        QPen pen(QColor(0x8a, 0x93, 0xa3));
        QBrush brush(QColor(0x8a, 0x93, 0xa3));
        dc->save();
        dc->setRenderHint(QPainter::Antialiasing);
        const int32_t inset = rect_.height / 3;
        const int32_t size = rect_.height - 2 * inset;
        ArrowPainter arrow(ArrowPainter::kLeft);
        arrow.setPen(&pen);
        arrow.setBrush(&brush);
        arrow.setDestination(dc);
        arrow.drawRect(rect_.x + inset, rect_.y + inset, size, size);
        arrow.setDirection(ArrowPainter::kRight);
        arrow.drawRect(rect_.right() - arrowWidth() + inset, rect_.y + inset, size, size);
        dc->restore();
    }
    return Element::paint(dc, mode);
}

void ScrollBar::scrollTo(double position)
{
    double before = position_;
    setPosition(position);
    if (position_ != before && onScroll)
        onScroll(position_);
}

int ScrollBar::stylusDown(int, int32_t x, int32_t y)
{
    ElemRect thumb = thumbRect();
    if (x < rect_.x + arrowWidth())
        scrollTo(position_ - step_);
    else if (x >= rect_.right() - arrowWidth())
        scrollTo(position_ + step_);
    else if (thumb.contains(x, y))
        dragOffset_ = x - thumb.x;
    else
        scrollTo(position_ + (x < thumb.x ? -thumb_ : thumb_));
    return 1;
}

int ScrollBar::stylusMove(int32_t x, int32_t)
{
    if (dragOffset_ < 0)
        return 0;
    ElemRect track = trackRect();
    int32_t room = track.width - thumbRect().width;
    if (room > 0)
        scrollTo(double(x - dragOffset_ - track.x) / room);
    return 1;
}

int ScrollBar::stylusUp(int, int32_t, int32_t)
{
    bool wasDragging = dragOffset_ >= 0;
    dragOffset_ = -1;
    return wasDragging ? 1 : 0;
}

} // namespace pulsara
