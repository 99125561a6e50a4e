#pragma once

#include "GUI/Element.h"

#include <functional>

namespace pulsara {

class SkinBitmap;

// A row of octave numbers, 1 to 8, one lit: the skin's octave bitmap holds the digits in square
// cells, plain above lit. The value is the octave counted from 0.
class OctaveSelector : public Element {
public:
    static constexpr int32_t kOctaves = 8;

    void setBitmap(SkinBitmap*);
    void place(int32_t x, int32_t y);
    // Values outside 0..7 light nothing.
    void setOctave(int32_t);
    int32_t octave() const { return octave_; }
    int32_t cellSize() const;

    std::function<void(int32_t octave)> onSelect;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;

private:
    SkinBitmap* bitmap_ = nullptr;
    int32_t octave_ = -1;
};

} // namespace pulsara
