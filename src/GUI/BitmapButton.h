#pragma once

#include "GUI/Element.h"

#include <functional>

namespace pulsara {

class SkinBitmap;

// A button drawn from a two-state bitmap: the released state on the bitmap's left half, the
// pressed state on its right half. It is as large as one state.
class BitmapButton : public Element {
public:
    enum class Kind {
        Toggle, // each tap flips the state
        Latch, // a tap presses it; only its owner releases it (page selectors)
        Indicator, // shows a state and takes no input (lamps)
    };

    explicit BitmapButton(Kind kind = Kind::Toggle) : kind_(kind) { }

    // The bitmap is not owned. The button's size becomes one state of it.
    void setBitmap(SkinBitmap*);
    // Moves the button to (x, y) in its own size.
    void place(int32_t x, int32_t y);
    void setPressed(bool);
    bool isPressed() const { return pressed_; }
    int32_t stateWidth() const;
    int32_t stateHeight() const;

    // Called after a tap changed the state.
    std::function<void(bool pressed)> onChange;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;

private:
    Kind kind_;
    SkinBitmap* bitmap_ = nullptr;
    bool pressed_ = false;
};

} // namespace pulsara
