#pragma once

#include "GUI/Element.h"
#include "GUI/TextPainter.h"

#include <QColor>
#include <QFont>

namespace pulsara {

class SkinFrame;

// A number of fixed digits, shown with leading zeros on a dark frame, like a counter.
class NumericDisplay : public Element {
public:
    explicit NumericDisplay(int32_t digits) : digits_(digits) { }

    void setFrame(SkinFrame* frame) { frame_ = frame; }
    void setFont(const QFont& font) { font_ = font; }
    void setColor(QColor color) { color_ = color; }
    // Values that do not fit the digits show their last digits.
    void setValue(int32_t);
    int32_t value() const { return value_; }
    int32_t digits() const { return digits_; }
    // The text shown for the current value.
    std::u16string text() const;
    // A width that holds the digits in the display's font, with a margin.
    int32_t preferredWidth() const;

    int paint(DeviceContext*, uint32_t mode) override;

private:
    int32_t digits_;
    int32_t value_ = 0;
    SkinFrame* frame_ = nullptr;
    QFont font_ { QStringLiteral("Liberation Sans") };
    QColor color_ { Qt::white };
};

} // namespace pulsara
