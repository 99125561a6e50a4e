#pragma once

#include "GUI/Element.h"

#include <atomic>

namespace pulsara {

class SkinBitmap;

// A bar of whole segments, lit from the left by its value. The bitmap holds the unlit bar over
// the lit bar, each half its height. The value may be set from the audio device's thread; the
// GUI thread's repaint timer draws it.
class LevelMeter : public Element {
public:
    explicit LevelMeter(int32_t segments) : segments_(segments > 0 ? segments : 1) { }

    // Not owned; the meter's size becomes one bar of it.
    void setBitmap(SkinBitmap*);
    void place(int32_t x, int32_t y);
    // Stores (integer part of value x segments) / segments, so the bar falls to the segment
    // below. Any thread: no allocation, lock or I/O.
    void setValue(float);
    float value() const { return value_.load(std::memory_order_relaxed); }
    int32_t segments() const { return segments_; }
    int32_t litSegments() const;

    int paint(DeviceContext*, uint32_t mode) override;
    void collectChanged(QRegion&) const override;

private:
    int32_t segments_;
    SkinBitmap* bitmap_ = nullptr;
    std::atomic<float> value_ { 0.0f };
    // Set by setValue, taken by paint: the meter's own dirty mark, safe across threads.
    mutable std::atomic<bool> changed_ { false };
};

} // namespace pulsara
