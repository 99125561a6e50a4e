#pragma once

#include "GUI/Element.h"

#include <functional>

namespace pulsara {

class SkinFrame;

// A horizontal scroll bar: an arrow at each end, a track and a thumb. The thumb is `thumb`
// of the track long (visible / total) and sits at `position` (0 = the start, 1 = the end).
// The arrows move by `step`, a tap on the track by a page, and the thumb can be dragged.
class ScrollBar : public Element {
public:
    void setSkin(SkinFrame* track, SkinFrame* thumb);
    // Fractions in 0..1; the thumb fraction is at least one arrow's worth of track.
    void setThumb(double fraction);
    void setPosition(double);
    void setStep(double step) { step_ = step; }
    double thumb() const { return thumb_; }
    double position() const { return position_; }
    double step() const { return step_; }

    // Called when the user moved the position.
    std::function<void(double position)> onScroll;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int stylusMove(int32_t x, int32_t y) override;
    int stylusUp(int button, int32_t x, int32_t y) override;

    // Geometry, in window coordinates.
    ElemRect trackRect() const;
    ElemRect thumbRect() const;

private:
    int32_t arrowWidth() const { return rect_.height; }
    void scrollTo(double);

    SkinFrame* track_ = nullptr;
    SkinFrame* thumbFrame_ = nullptr;
    double thumb_ = 1.0;
    double position_ = 0.0;
    double step_ = 0.1;
    // While the thumb is dragged: the offset of the stylus from the thumb's left edge.
    int32_t dragOffset_ = -1;
};

} // namespace pulsara
