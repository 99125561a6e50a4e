#include "GUI/EditBox.h"

#include "GUI/NativeWindow.h"
#include "GUI/RootElement.h"

namespace pulsara {

EditBox::EditBox()
{
    setVisible(false);
}

PlatformTextEdit* EditBox::edit()
{
    if (edit_)
        return edit_.get();
    RootElement* root = window();
    NativeWindow* native = root ? root->windowHandle() : nullptr;
    if (!native)
        return nullptr;
    edit_ = native->createTextEdit();
    if (edit_) {
        edit_->onFinished = [this](bool accepted) {
            setVisible(false);
            if (onFinished)
                onFinished(accepted, edit_->text());
        };
    }
    return edit_.get();
}

bool EditBox::open(const ElemRect& rect, std::u16string_view text, int32_t maxLength)
{
    PlatformTextEdit* box = edit();
    if (!box)
        return false;
    layout(rect);
    box->setMaxLength(maxLength);
    box->setText(text);
    setVisible(true);
    box->show();
    return true;
}

void EditBox::close()
{
    setVisible(false);
    if (edit_)
        edit_->hide();
}

void EditBox::layout(const ElemRect& rect)
{
    Element::layout(rect);
    if (edit_)
        edit_->setGeometry(rect);
}

int EditBox::paint(DeviceContext* dc, uint32_t mode)
{
    // The platform box draws itself over the canvas.
    return Element::paint(dc, mode);
}

} // namespace pulsara
