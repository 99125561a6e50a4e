#include "GUI/Slider.h"

#include "GUI/SkinFrame.h"

#include <algorithm>
#include <cmath>

namespace pulsara {

namespace {

constexpr int32_t kGrooveThickness = 6;

} // namespace

void Slider::setSkin(SkinBitmap* knob, SkinFrame* groove, SkinFrame* background)
{
    knob_ = knob;
    groove_ = groove;
    background_ = background;
}

void Slider::setValue(double value)
{
    value = std::clamp(value, 0.0, 1.0);
    if (step_ > 0.0)
        value = std::clamp(std::round(value / step_) * step_, 0.0, 1.0);
    if (value == value_)
        return;
    value_ = value;
    redraw();
}

int32_t Slider::knobSize() const
{
    return knob_ ? knob_->height() : 0;
}

int32_t Slider::travel() const
{
    int32_t length = orientation_ == Orientation::Horizontal ? rect_.width : rect_.height;
    return std::max(0, length - knobSize());
}

double Slider::valueAt(int32_t x, int32_t y) const
{
    if (travel() == 0)
        return 0.0;
    int32_t offset = orientation_ == Orientation::Horizontal ? x - rect_.x : y - rect_.y;
    return double(offset - knobSize() / 2) / travel();
}

int Slider::paint(DeviceContext* dc, uint32_t mode)
{
    if (!mustDraw(mode) || !knob_ || !groove_ || !background_)
        return Element::paint(dc, mode);
    const int32_t knob = knobSize();
    const int32_t knobAt = int32_t(std::lround(value_ * travel()));
    // The background goes first so that the knob's old position leaves no trace.
    background_->setDestination(dc);
    background_->drawInRect(rect_);
    groove_->setDestination(dc);
    SkinBitmap& knobBitmap = *knob_;
    knobBitmap.setDestination(dc);
    if (orientation_ == Orientation::Horizontal) {
        int32_t grooveY = rect_.y + (rect_.height - kGrooveThickness) / 2;
        groove_->drawRect(rect_.x, grooveY, rect_.width, kGrooveThickness);
        knobBitmap.drawPart(dragging_ ? knob : 0, 0, knob, knob, rect_.x + knobAt, rect_.y + (rect_.height - knob) / 2);
    } else {
        int32_t grooveX = rect_.x + (rect_.width - kGrooveThickness) / 2;
        groove_->drawRect(grooveX, rect_.y, kGrooveThickness, rect_.height);
        knobBitmap.drawPart(dragging_ ? knob : 0, 0, knob, knob, rect_.x + (rect_.width - knob) / 2, rect_.y + knobAt);
    }
    return Element::paint(dc, mode);
}

void Slider::moveTo(int32_t x, int32_t y)
{
    double before = value_;
    setValue(valueAt(x, y));
    if (value_ != before && onChange)
        onChange(value_);
}

int Slider::stylusDown(int, int32_t x, int32_t y)
{
    dragging_ = true;
    redraw();
    if (onPress)
        onPress();
    moveTo(x, y);
    return 1;
}

int Slider::stylusMove(int32_t x, int32_t y)
{
    if (!dragging_)
        return 0;
    moveTo(x, y);
    return 1;
}

int Slider::stylusUp(int, int32_t x, int32_t y)
{
    if (!dragging_)
        return 0;
    moveTo(x, y);
    dragging_ = false;
    redraw();
    if (onRelease)
        onRelease();
    return 1;
}

} // namespace pulsara
