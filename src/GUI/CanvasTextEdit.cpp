#include "GUI/CanvasTextEdit.h"

#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>

namespace pulsara {

class TextBoxWidget final : public QLineEdit {
public:
    TextBoxWidget(QWidget* canvas, CanvasTextEdit& owner) : QLineEdit(canvas), owner_(owner)
    {
        setFrame(false);
        setStyleSheet(QStringLiteral("QLineEdit { background: #e6e9ee; color: #171a20; padding: 0 3px; }"));
        hide();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            owner_.finish(true);
            return;
        case Qt::Key_Escape:
            owner_.finish(false);
            return;
        default:
            QLineEdit::keyPressEvent(event);
        }
    }

    void focusOutEvent(QFocusEvent* event) override
    {
        QLineEdit::focusOutEvent(event);
        // A pop-up (the box's own context menu) takes the focus only for a moment.
        if (event->reason() != Qt::PopupFocusReason)
            owner_.finish(true);
    }

private:
    CanvasTextEdit& owner_;
};

CanvasTextEdit::CanvasTextEdit(QWidget* canvas, std::function<QRect(const ElemRect&)> toWidget)
    : box_(new TextBoxWidget(canvas, *this))
    , toWidget_(std::move(toWidget))
{
}

CanvasTextEdit::~CanvasTextEdit()
{
    delete box_.data();
}

void CanvasTextEdit::setGeometry(const ElemRect& rect)
{
    if (!box_)
        return;
    QRect area = toWidget_(rect);
    box_->setGeometry(area);
    // The text as large as the tree's texts look at its zoom.
    QFont font = box_->font();
    font.setPixelSize(std::max(8, area.height() * 3 / 4));
    box_->setFont(font);
}

void CanvasTextEdit::setText(std::u16string_view text)
{
    if (box_)
        box_->setText(QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())));
}

std::u16string CanvasTextEdit::text() const
{
    return box_ ? box_->text().toStdU16String() : std::u16string();
}

void CanvasTextEdit::setMaxLength(int32_t characters)
{
    if (box_)
        box_->setMaxLength(characters);
}

void CanvasTextEdit::show()
{
    if (!box_)
        return;
    box_->show();
    box_->raise();
    box_->selectAll();
    box_->setFocus(Qt::OtherFocusReason);
}

void CanvasTextEdit::hide()
{
    if (!box_ || !box_->isVisible())
        return;
    // Hiding a focused box would pass the focus on to any widget; it goes back to the canvas.
    box_->hide();
    if (QWidget* canvas = box_->parentWidget())
        canvas->setFocus(Qt::OtherFocusReason);
}

bool CanvasTextEdit::isShown() const
{
    return box_ && box_->isVisible();
}

void CanvasTextEdit::finish(bool accepted)
{
    if (!isShown())
        return;
    hide();
    if (onFinished)
        onFinished(accepted);
}

} // namespace pulsara
