#include "GUI/Prompts.h"

#include <QApplication>
#include <QMessageBox>

namespace pulsara {

namespace {

QString toQString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

class MessageBoxPrompts final : public Prompts {
public:
    PromptAnswer ask(std::u16string_view text, std::u16string_view caption, PromptButtons buttons) override
    {
        QMessageBox::StandardButtons shown = QMessageBox::Ok;
        if (buttons == PromptButtons::YesNo)
            shown = QMessageBox::Yes | QMessageBox::No;
        else if (buttons == PromptButtons::YesNoCancel)
            shown = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        QMessageBox box(buttons == PromptButtons::Ok ? QMessageBox::Information : QMessageBox::Question,
            toQString(caption), toQString(text), shown, QApplication::activeWindow());
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
        switch (box.exec()) {
        case QMessageBox::Yes:
            return PromptAnswer::Yes;
        case QMessageBox::No:
            return PromptAnswer::No;
        case QMessageBox::Ok:
            return PromptAnswer::Ok;
        default:
            return buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
        }
    }
};

MessageBoxPrompts messageBoxes;
Prompts* installed = &messageBoxes;

} // namespace

Prompts& prompts()
{
    return *installed;
}

Prompts* setPrompts(Prompts* answerer)
{
    Prompts* previous = installed;
    installed = answerer ? answerer : &messageBoxes;
    return previous;
}

} // namespace pulsara
