#include "GUI/editors/InstrumentPanel.h"

#include "GUI/FileDialogs.h"
#include "GUI/Prompts.h"
#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"
#include "GUI/editors/EditorHost.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"
#include "base/Path.h"
#include "base/text.h"

#include <QPainter>

namespace pulsara {

namespace {

// On the skin's dark panels the headings take the accent colour and the rules the panel edges.
const QColor kHeadingText(0x2e, 0xc4, 0xb6);
const QColor kText(0xdc, 0xe1, 0xea);
const QColor kRule(0x5a, 0x63, 0x72);
const QColor kStrongRule(0x8a, 0x93, 0xa3);

} // namespace

InstrumentPanel::InstrumentPanel(Skin& skin, SongEdits& edits, EditorHost& host)
    : skin_(skin)
    , edits_(edits)
    , host_(host)
{
    headingFont_ = uiFont(12, QFont::DemiBold);
    textFont_ = uiFont(12);
    dialogPath_.filter = kWaveFilter;
    for (TextButton* button : { &openButton_, &clearButton_ }) {
        button->setSkin(&skin.panelBckD, &skin.panelD);
        button->setFont(textFont_);
    }
    openButton_.onClick = [this] { open(); };
    clearButton_.onClick = [this] { clear(); };
    volume_.setSkin(&skin.vol, &skin.panelD, &skin.panel);
    volume_.setStep(0.01);
    volume_.onPress = [this] { edits_.beginGesture(u"Change instrument volume"); };
    volume_.onRelease = [this] { edits_.endGesture(); };
    volume_.onChange = [this](double value) {
        edits_.setInstrumentVolume(slot_, float(value));
        redraw();
    };
    addChild(&openButton_);
    addChild(&clearButton_);
    addChild(&volume_);
    refresh();
}

void InstrumentPanel::showInstrument(uint32_t slot, std::u16string caption)
{
    slot_ = slot < Song::kInstruments ? slot : 0;
    caption_ = std::move(caption);
    refresh();
}

void InstrumentPanel::refresh()
{
    volume_.setValue(edits_.song().instrument(slot_).volume());
    redraw();
}

void InstrumentPanel::setSamplesFolder(std::u16string_view folder)
{
    samplesFolder_.assign(folder);
}

std::u16string InstrumentPanel::percentText() const
{
    return fromUtf8(std::to_string(int32_t(volume_.value() * 100.0 + 0.5))) + u"%";
}

std::u16string InstrumentPanel::fileText() const
{
    return std::u16string(pathFileName(edits_.song().instrument(slot_).sample().path().view()));
}

void InstrumentPanel::open()
{
    const Sample& sample = edits_.song().instrument(slot_).sample();
    PathString previous = dialogPath_;
    // The dialog starts at the instrument's own file, or in the samples folder.
    if (sample.isLoaded())
        dialogPath_.assign(sample.path().view());
    else if (!samplesFolder_.empty())
        dialogPath_.assign(std::u16string(samplesFolder_.view()) + kPathSeparator);
    if (!chooseSampleFile(dialogPath_, [this](std::u16string_view selected) { host_.audition(selected); })) {
        dialogPath_.assign(previous.view());
        return;
    }
    std::u16string chosen(dialogPath_.view());
    host_.loadSampleSafely([&] { edits_.loadSample(slot_, chosen); });
    refresh();
}

void InstrumentPanel::clear()
{
    if (prompts().ask(u"Are you sure to clear this instrument?", u"Clear", PromptButtons::YesNo) != PromptAnswer::Yes)
        return;
    host_.loadSampleSafely([&] { edits_.clearInstrument(slot_); });
    refresh();
}

void InstrumentPanel::layout(const ElemRect& rect)
{
    ElementContainer::layout(rect);
    openButton_.layout({ rect.x + 64, rect.y + 66, 60, 18 });
    clearButton_.layout({ rect.right() - 68, rect.y + 66, 60, 18 });
    percentLabel_ = { rect.x + 8, rect.y + 110, 48, 18 };
    volume_.layout({ rect.x + 64, rect.y + 110, rect.width - 72, 18 });
}

void InstrumentPanel::drawHeading(DeviceContext* dc, const char16_t* text, int32_t y, QColor textColour, QColor ruleColour)
{
    dc->setFont(headingFont_);
    dc->setPen(textColour);
    TextPainter heading(TextPainter::kLeft);
    heading.setText(text);
    heading.setDestination(dc);
    heading.drawRect(rect_.x + 8, y, rect_.width - 8, 17);
    dc->setPen(ruleColour);
    dc->drawLine(rect_.x, y + 17, rect_.right(), y + 17);
}

int InstrumentPanel::paint(DeviceContext* dc, uint32_t mode)
{
    const bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll) {
        skin_.panel.setDestination(dc);
        skin_.panel.drawInRect(rect_);
        std::u16string title = u"Instrument properties";
        if (!caption_.empty())
            title += u": " + caption_;
        drawHeading(dc, title.c_str(), rect_.y, kHeadingText, kStrongRule);
        drawHeading(dc, u"Wave file", rect_.y + 22, kText, kRule);
        dc->setFont(textFont_);
        dc->setPen(kText);
        TextPainter text(TextPainter::kLeft);
        text.setDestination(dc);
        text.setText(u"File:");
        text.drawRect(rect_.x + 8, rect_.y + 46, 48, 18);
        std::u16string file = fileText();
        text.setText(file.c_str());
        text.setAlign(TextPainter::kAuto);
        text.drawRect(rect_.x + 56, rect_.y + 46, rect_.width - 64, 18);
        drawHeading(dc, u"Volume", rect_.y + 88, kText, kRule);
        dc->setFont(textFont_);
        dc->setPen(kText);
        std::u16string percent = percentText();
        text.setAlign(TextPainter::kLeft);
        text.setText(percent.c_str());
        text.drawInRect(percentLabel_);
    }
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

} // namespace pulsara
