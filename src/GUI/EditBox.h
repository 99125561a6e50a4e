#pragma once

#include "GUI/Element.h"
#include "GUI/PlatformTextEdit.h"

#include <functional>
#include <memory>
#include <string>

namespace pulsara {

// The element that owns a platform text box: the box follows the element's layout, and the
// element is shown while the box is. The box is made on first use, once the window exists.
class EditBox : public Element {
public:
    EditBox();

    // Lays the box over the rectangle, fills it and hands it the keyboard. False when there is
    // no window to show it in.
    bool open(const ElemRect&, std::u16string_view text, int32_t maxLength);
    // Hides the box without a result.
    void close();
    bool isOpen() const { return edit_ && edit_->isShown(); }
    std::u16string text() const { return edit_ ? edit_->text() : std::u16string(); }

    // Called when editing ends: the text when accepted, nothing (rejected) otherwise.
    std::function<void(bool accepted, const std::u16string& text)> onFinished;

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;

private:
    PlatformTextEdit* edit();

    std::unique_ptr<PlatformTextEdit> edit_;
};

} // namespace pulsara
