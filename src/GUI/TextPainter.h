#pragma once

#include "GUI/Painter.h"

#include <string_view>

namespace pulsara {

// One line of text in a box, vertically centred, in the destination's current font and pen.
class TextPainter : public Painter {
public:
    enum Align : int32_t {
        kAuto = 0, // centred while it fits, else right-aligned so that its end stays visible
        kRight = 1,
        kLeft = 2,
        kCentre = 3, // as every other value
    };

    explicit TextPainter(int32_t align = kAuto) : align_(align) { }

    // Not owned; null draws nothing.
    void setText(const char16_t* text) { text_ = text; }
    void setAlign(int32_t align) { align_ = align; }
    const char16_t* text() const { return text_; }

    int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) override;

    // The horizontal alignment chosen for a text of that width in a box of that width.
    static Qt::Alignment horizontalAlignment(int32_t align, int textWidth, int boxWidth);

private:
    const char16_t* text_ = nullptr;
    int32_t align_ = kAuto;
};

} // namespace pulsara
