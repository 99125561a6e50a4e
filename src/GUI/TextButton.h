#pragma once

#include "GUI/Element.h"
#include "GUI/UiFont.h"

#include <QColor>
#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class SkinFrame;

// A button with a caption, drawn as one skin frame while released and another while pressed.
class TextButton : public Element {
public:
    enum class Kind {
        Push, // pressed while the stylus holds it; acts when released over it
        Latch, // a tap presses it; only its owner releases it (page selectors)
    };

    explicit TextButton(std::u16string caption = {}, Kind kind = Kind::Push) : caption_(std::move(caption)), kind_(kind) { }

    // Not owned.
    void setSkin(SkinFrame* released, SkinFrame* pressed);
    void setFont(const QFont& font) { font_ = font; }
    void setColors(QColor text, QColor pressedText);
    void setCaption(std::u16string);
    const std::u16string& caption() const { return caption_; }
    void setPressed(bool);
    bool isPressed() const { return pressed_; }

    // A push button's tap, or a latch pressed by a tap.
    std::function<void()> onClick;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int stylusMove(int32_t x, int32_t y) override;
    int stylusUp(int button, int32_t x, int32_t y) override;

private:
    std::u16string caption_;
    Kind kind_;
    SkinFrame* released_ = nullptr;
    SkinFrame* pressedFrame_ = nullptr;
    QFont font_ = uiFont(12);
    QColor text_ { 0xdc, 0xe1, 0xea };
    QColor pressedText_ { 0x2e, 0xc4, 0xb6 };
    bool pressed_ = false;
    bool tracking_ = false;
};

} // namespace pulsara
