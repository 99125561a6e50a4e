#include "GUI/editors/OctaveSelector.h"

#include "GUI/SkinBitmap.h"

namespace pulsara {

void OctaveSelector::setBitmap(SkinBitmap* bitmap)
{
    bitmap_ = bitmap;
    place(rect_.x, rect_.y);
}

int32_t OctaveSelector::cellSize() const
{
    return bitmap_ ? bitmap_->height() / 2 : 0;
}

void OctaveSelector::place(int32_t x, int32_t y)
{
    layout({ x, y, cellSize() * kOctaves, cellSize() });
}

void OctaveSelector::setOctave(int32_t octave)
{
    if (octave == octave_)
        return;
    octave_ = octave;
    redraw();
}

int OctaveSelector::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode) && bitmap_) {
        SkinBitmap& digits = *bitmap_;
        const int32_t size = cellSize();
        digits.setDestination(dc);
        digits.drawPart(0, 0, size * kOctaves, size, rect_.x, rect_.y);
        if (octave_ >= 0 && octave_ < kOctaves)
            digits.drawPart(octave_ * size, size, size, size, rect_.x + octave_ * size, rect_.y);
    }
    return Element::paint(dc, mode);
}

int OctaveSelector::stylusDown(int, int32_t x, int32_t)
{
    const int32_t size = cellSize();
    if (size <= 0)
        return 1;
    int32_t octave = (x - rect_.x) / size;
    if (octave < 0 || octave >= kOctaves)
        return 1;
    setOctave(octave);
    if (onSelect)
        onSelect(octave);
    return 1;
}

} // namespace pulsara
