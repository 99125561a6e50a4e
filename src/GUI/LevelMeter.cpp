#include "GUI/LevelMeter.h"

#include "GUI/SkinBitmap.h"

#include <QRegion>

#include <algorithm>

namespace pulsara {

void LevelMeter::setBitmap(SkinBitmap* bitmap)
{
    bitmap_ = bitmap;
    place(rect_.x, rect_.y);
}

void LevelMeter::place(int32_t x, int32_t y)
{
    layout({ x, y, bitmap_ ? bitmap_->width() : 0, bitmap_ ? bitmap_->height() / 2 : 0 });
}

// Device callback thread or GUI thread: no allocation, locks, I/O or logging.
void LevelMeter::setValue(float value)
{
    float stepped = float(int32_t(value * float(segments_))) / float(segments_);
    if (stepped != value_.exchange(stepped, std::memory_order_relaxed))
        changed_.store(true, std::memory_order_release);
}

int32_t LevelMeter::litSegments() const
{
    return std::clamp(int32_t(value() * float(segments_) + 0.5f), 0, segments_);
}

int LevelMeter::paint(DeviceContext* dc, uint32_t mode)
{
    bool changed = changed_.exchange(false, std::memory_order_acquire);
    if ((changed || mustDraw(mode)) && bitmap_) {
        SkinBitmap& bitmap = *bitmap_;
        bitmap.setDestination(dc);
        const int32_t barHeight = rect_.height;
        const int32_t litWidth = rect_.width * litSegments() / segments_;
        bitmap.drawPart(0, barHeight, litWidth, barHeight, rect_.x, rect_.y);
        bitmap.drawPart(litWidth, 0, rect_.width - litWidth, barHeight, rect_.x + litWidth, rect_.y);
    }
    return Element::paint(dc, mode);
}

void LevelMeter::collectChanged(QRegion& region) const
{
    if (isVisible() && changed_.load(std::memory_order_acquire))
        region += rect_.toQRect();
    Element::collectChanged(region);
}

} // namespace pulsara
