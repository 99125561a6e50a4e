#pragma once

#include "GUI/ElemRect.h"

#include <functional>
#include <string>
#include <string_view>

namespace pulsara {

// A one-line text box of the platform, laid over the window: what the in-place rename box edits
// in. The window creates it (NativeWindow::createTextEdit); it starts hidden.
class PlatformTextEdit {
public:
    virtual ~PlatformTextEdit() = default;

    virtual void setGeometry(const ElemRect&) = 0;
    virtual void setText(std::u16string_view) = 0;
    virtual std::u16string text() const = 0;
    virtual void setMaxLength(int32_t characters) = 0;
    // Shows the box with its whole text selected and gives it the keyboard focus.
    virtual void show() = 0;
    virtual void hide() = 0;
    virtual bool isShown() const = 0;

    // Called once when editing ends: accepted by Return or by the focus moving elsewhere,
    // rejected by Escape. The box has already hidden itself.
    std::function<void(bool accepted)> onFinished;
};

} // namespace pulsara
