#pragma once

#include "GUI/PlatformTextEdit.h"

#include <QPointer>
#include <QRect>

#include <functional>

class QWidget;

namespace pulsara {

class TextBoxWidget;

// The canvas's text box: a QLineEdit child of the canvas. Return and a click elsewhere accept
// the text, Escape rejects it; either way the box hides itself and hands the keyboard back to
// the canvas. The widget belongs to the canvas (Qt deletes it with its parent); this handle
// deletes it too when it goes first.
class CanvasTextEdit final : public PlatformTextEdit {
public:
    // `toWidget` turns a rectangle of the element tree into the canvas's own coordinates.
    CanvasTextEdit(QWidget* canvas, std::function<QRect(const ElemRect&)> toWidget);
    ~CanvasTextEdit() override;

    void setGeometry(const ElemRect&) override;
    void setText(std::u16string_view) override;
    std::u16string text() const override;
    void setMaxLength(int32_t characters) override;
    void show() override;
    void hide() override;
    bool isShown() const override;

    // Called by the widget when editing ends.
    void finish(bool accepted);

private:
    QPointer<TextBoxWidget> box_;
    std::function<QRect(const ElemRect&)> toWidget_;
};

} // namespace pulsara
