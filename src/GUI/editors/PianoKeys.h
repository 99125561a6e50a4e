#pragma once

#include "GUI/Element.h"

#include <functional>

namespace pulsara {

class SkinBitmap;

// One octave of piano keys to pick a note within the octave (0 = C to 11 = B). The skin's
// piano bitmap holds 7 white keys, the plain keyboard above the lit one; black keys follow each
// white key but E and B, two thirds of a white key wide, starting two thirds into it, three
// fifths of its height.
class PianoKeys : public Element {
public:
    static constexpr int32_t kKeys = 12;

    void setBitmap(SkinBitmap*);
    // Moves the keyboard to (x, y) in its own size.
    void place(int32_t x, int32_t y);
    // -1 lights no key.
    void setSelected(int32_t key);
    int32_t selected() const { return selected_; }
    // The key under a point, or -1.
    int32_t keyAt(int32_t x, int32_t y) const;

    // Called when a tap picks a key.
    std::function<void(int32_t key)> onSelect;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;

private:
    // The key's rectangle relative to the keyboard's top left.
    ElemRect keyRect(int32_t key) const;
    static bool isBlack(int32_t key);

    SkinBitmap* bitmap_ = nullptr;
    int32_t selected_ = -1;
};

} // namespace pulsara
