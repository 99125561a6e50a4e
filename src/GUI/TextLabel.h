#pragma once

#include "GUI/Element.h"
#include "GUI/TextPainter.h"

#include <QColor>
#include <QFont>

#include <string>

namespace pulsara {

// One line of text in a font and a colour, drawn over whatever its parent painted.
class TextLabel : public Element {
public:
    explicit TextLabel(std::u16string text = {}, int32_t align = TextPainter::kLeft) : text_(std::move(text)), align_(align) { }

    void setText(std::u16string);
    const std::u16string& text() const { return text_; }
    void setFont(const QFont& font) { font_ = font; }
    void setColor(QColor color) { color_ = color; }

    int paint(DeviceContext*, uint32_t mode) override;

private:
    std::u16string text_;
    int32_t align_;
    QFont font_ { QStringLiteral("Liberation Sans") };
    QColor color_ { Qt::white };
};

} // namespace pulsara
