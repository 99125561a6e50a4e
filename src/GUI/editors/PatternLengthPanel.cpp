#include "GUI/editors/PatternLengthPanel.h"

#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"
#include "base/text.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pulsara {

namespace {

const QColor kText(0xdc, 0xe1, 0xea);
constexpr double kSliderStep = 1.0 / 6.0;
constexpr float kValueStep = 0.16666667f;

uint32_t valueAt(double position)
{
    return PatternLengthPanel::kMinValue + uint32_t(std::lround(position * 6.0));
}

} // namespace

PatternLengthPanel::PatternLengthPanel(Skin& skin, SongEdits& edits)
    : skin_(skin)
    , edits_(edits)
{
    font_ = uiFont(12);
    for (Slider* slider : { &beatsSlider_, &beatLengthSlider_ }) {
        slider->setSkin(&skin.vol, &skin.panelD, &skin.panel);
        slider->setStep(kSliderStep);
        slider->onPress = [this] { edits_.beginGesture(u"Change pattern length"); };
        slider->onRelease = [this] { edits_.endGesture(); };
    }
    beatsSlider_.onChange = [this](double position) {
        beats_ = valueAt(position);
        apply();
    };
    beatLengthSlider_.onChange = [this](double position) {
        beatLength_ = valueAt(position);
        apply();
    };
    closeButton_.setSkin(&skin.panelBckD, &skin.panelD);
    closeButton_.setFont(font_);
    closeButton_.onClick = [this] {
        if (onClose)
            onClose();
    };
    addChild(&beatsSlider_);
    addChild(&beatLengthSlider_);
    addChild(&closeButton_);
}

double PatternLengthPanel::sliderPosition(uint32_t value)
{
    return double((float(value) - float(kMinValue)) * kValueStep);
}

void PatternLengthPanel::showSong()
{
    const Song& song = edits_.song();
    beats_ = song.beatsPerPattern();
    beatLength_ = beats_ ? song.stepsPerPattern() / beats_ : 0;
    beatsSlider_.setValue(sliderPosition(beats_));
    beatLengthSlider_.setValue(sliderPosition(beatLength_));
    redraw();
}

void PatternLengthPanel::apply()
{
    edits_.setPatternLength(beats_, beats_ * beatLength_);
    redraw();
}

void PatternLengthPanel::layout(const ElemRect& rect)
{
    ElementContainer::layout({ rect.x, rect.y, rect.width, kHeight });
    beatsSlider_.layout({ rect.x + 4, rect.y + 20, rect.width - 8, 16 });
    beatLengthSlider_.layout({ rect.x + 4, rect.y + 60, rect.width - 8, 16 });
    closeButton_.layout({ rect.x + (rect.width - 60) / 2, rect.y + 82, 60, 16 });
}

int PatternLengthPanel::paint(DeviceContext* dc, uint32_t mode)
{
    const bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll) {
        skin_.panel.setDestination(dc);
        skin_.panel.drawInRect(rect_);
        dc->setFont(font_);
        dc->setPen(kText);
        const std::u16string lines[2] = {
            u"Beats per pattern: " + fromUtf8(std::to_string(beats_)),
            u"Beat Lenght: " + fromUtf8(std::to_string(beatLength_)) + u" steps",
        };
        TextPainter text(TextPainter::kLeft);
        text.setDestination(dc);
        for (int line = 0; line < 2; ++line) {
            text.setText(lines[line].c_str());
            text.drawRect(rect_.x + 4, rect_.y + 4 + 40 * line, rect_.width - 8, 16);
        }
    }
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

} // namespace pulsara
