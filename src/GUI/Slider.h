#pragma once

#include "GUI/Element.h"

#include <functional>

namespace pulsara {

class SkinBitmap;
class SkinFrame;

// A knob that slides along a groove, horizontally or vertically, with a value in 0..1: 0 at the
// left or the top. With a step, the value moves in whole steps.
class Slider : public Element {
public:
    enum class Orientation { Horizontal, Vertical };

    explicit Slider(Orientation orientation = Orientation::Horizontal) : orientation_(orientation) { }

    // The knob is a two-state bitmap (released, pressed); the groove and the background behind
    // it are frames. Not owned.
    void setSkin(SkinBitmap* knob, SkinFrame* groove, SkinFrame* background);
    // Clamps to 0..1 and rounds to the step; redraws when it changed.
    void setValue(double);
    double value() const { return value_; }
    void setStep(double step) { step_ = step; }
    double step() const { return step_; }
    bool isDragging() const { return dragging_; }

    // Called when the user moved the knob.
    std::function<void(double value)> onChange;
    // Called when a drag starts and when it ends, so that the owner can treat it as one change.
    std::function<void()> onPress;
    std::function<void()> onRelease;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int stylusUp(int button, int32_t x, int32_t y) override;
    int stylusMove(int32_t x, int32_t y) override;

    // The value under a point, before stepping.
    double valueAt(int32_t x, int32_t y) const;

private:
    int32_t knobSize() const;
    int32_t travel() const;
    void moveTo(int32_t x, int32_t y);

    Orientation orientation_;
    SkinBitmap* knob_ = nullptr;
    SkinFrame* groove_ = nullptr;
    SkinFrame* background_ = nullptr;
    double value_ = 0.0;
    double step_ = 0.0;
    bool dragging_ = false;
};

} // namespace pulsara
