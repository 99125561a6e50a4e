#include "GUI/editors/NoteInfo.h"

#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"
#include "GUI/editors/SongEdits.h"
#include "base/text.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pulsara {

namespace {

const QColor kText(0xdc, 0xe1, 0xea);
const QColor kDimText(0x8a, 0x93, 0xa3);
constexpr int32_t kGap = 4;
constexpr float kVolumeToSlider = 0.8333333f;
constexpr float kSliderToVolume = 1.2f;
constexpr float kLengthToSlider = 0.015625f;
constexpr float kMaxLengthSteps = 64.0f;
constexpr double kSemitone = 0.08333333333333333;
constexpr int32_t kStepsUnit = 8; // the length's fraction bits

std::u16string number(int32_t value)
{
    return fromUtf8(std::to_string(value));
}

} // namespace

NoteInfo::Controls NoteInfo::controlsFor(Step step)
{
    Controls controls;
    // Semitones above the rate 1/16, rounded; a rate that is no pitch at all reads as 1.0.
    double semitones = step.rate > 0.0f && std::isfinite(step.rate) ? 12.0 * std::log(double(step.rate) * 16.0) / std::log(2.0) + 0.5 : 48.5;
    auto n = static_cast<int32_t>(std::clamp(semitones, -1.0e6, 1.0e6));
    controls.noteIndex = n % 12;
    controls.octave = n / 12;
    // Below the lowest octave the name still has to be one of the twelve.
    if (controls.noteIndex < 0) {
        controls.noteIndex += 12;
        controls.octave -= 1;
    }
    controls.volumeSlider = step.volume * kVolumeToSlider;
    controls.lengthSlider = float(step.parameter >> kStepsUnit) * kLengthToSlider;
    return controls;
}

Step NoteInfo::noteFor(const Controls& controls)
{
    Step step;
    step.rate = float(std::pow(2.0, controls.noteIndex * kSemitone + controls.octave) / 16.0);
    step.volume = controls.volumeSlider * kSliderToVolume;
    step.parameter = int32_t(controls.lengthSlider * kMaxLengthSteps) << kStepsUnit;
    return step;
}

std::u16string NoteInfo::noteLine(const Controls& controls)
{
    return std::u16string(u"Note: ") + kNoteNames[std::clamp(controls.noteIndex, 0, 11)];
}

std::u16string NoteInfo::octaveLine(const Controls& controls)
{
    return u"Octave: " + number(controls.octave + 1);
}

std::u16string NoteInfo::volumeLine(const Controls& controls)
{
    return u"Volume: " + number(int32_t(controls.volumeSlider * 120.0f + 0.5f)) + u"%";
}

std::u16string NoteInfo::lengthLine(const Controls& controls)
{
    if (controls.lengthSlider == 0.0f)
        return u"Lenght: inf";
    return u"Lenght: " + number(int32_t(controls.lengthSlider * kMaxLengthSteps + 0.5f));
}

NoteInfo::NoteInfo(Skin& skin, SongEdits& edits)
    : skin_(skin)
    , edits_(edits)
{
    font_ = uiFont(12);
    piano_.setBitmap(&skin.piano);
    octave_.setBitmap(&skin.octave);
    for (Slider* slider : { &volume_, &length_ }) {
        slider->setSkin(&skin.vol, &skin.panelD, &skin.panel);
        // A drag of either slider is one change of the note.
        slider->onPress = [this] { edits_.beginGesture(u"Edit note"); };
        slider->onRelease = [this] { edits_.endGesture(); };
    }
    volume_.setStep(0.01);
    length_.setStep(1.0 / kMaxLengthSteps);
    piano_.onSelect = [this](int32_t key) {
        controls_.noteIndex = key;
        apply();
    };
    octave_.onSelect = [this](int32_t octave) {
        controls_.octave = octave;
        apply();
    };
    // Both sliders stand upside down: the top is the loudest and the longest.
    volume_.onChange = [this](double knob) {
        controls_.volumeSlider = float(1.0 - knob);
        apply();
    };
    length_.onChange = [this](double knob) {
        controls_.lengthSlider = float(1.0 - knob);
        apply();
    };
    addChild(&piano_);
    addChild(&octave_);
    addChild(&volume_);
    addChild(&length_);
    showNote(kEmptyStep);
}

void NoteInfo::showNote(Step step)
{
    controls_ = controlsFor(step);
    updateControls();
    redraw();
}

void NoteInfo::updateControls()
{
    const bool note = hasNote();
    for (Element* child : std::initializer_list<Element*> { &piano_, &octave_, &volume_, &length_ })
        child->setVisible(note);
    piano_.setSelected(controls_.noteIndex);
    octave_.setOctave(controls_.octave);
    if (!volume_.isDragging())
        volume_.setValue(1.0 - controls_.volumeSlider);
    if (!length_.isDragging())
        length_.setValue(1.0 - controls_.lengthSlider);
}

void NoteInfo::apply()
{
    redraw();
    if (onNoteEdited)
        onNoteEdited(noteFor(controls_));
}

void NoteInfo::layout(const ElemRect& rect)
{
    ElementContainer::layout(rect);
    const int32_t sliders = 2 * kSliderWidth + kGap;
    const int32_t textWidth = rect.width - sliders;
    length_.layout({ rect.right() - kSliderWidth, rect.y + kGap, kSliderWidth, rect.height - 2 * kGap });
    volume_.layout({ length_.rect()->x - kSliderWidth, rect.y + kGap, kSliderWidth, rect.height - 2 * kGap });
    piano_.place(rect.x + (textWidth - piano_.rect()->width) / 2, rect.y + kTextHeight + kGap);
    octave_.place(rect.x + (textWidth - octave_.rect()->width) / 2, piano_.rect()->bottom() + 2 * kGap);
}

int NoteInfo::paint(DeviceContext* dc, uint32_t mode)
{
    const bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll) {
        const int32_t sliders = 2 * kSliderWidth + kGap;
        skin_.panel.setDestination(dc);
        skin_.panel.drawInRect(rect_);
        dc->setFont(font_);
        TextPainter text(TextPainter::kLeft);
        text.setDestination(dc);
        const int32_t x = rect_.x + 4;
        const int32_t width = rect_.width - sliders - 2;
        const int32_t h = kTextHeight;
        if (!hasNote()) {
            dc->setPen(kDimText);
            text.setText(u"No note selected");
            text.drawRect(x, rect_.y, rect_.width - 2, h / 3);
            return 1;
        }
        dc->setPen(kText);
        const std::u16string lines[4] = { noteLine(controls_), octaveLine(controls_), volumeLine(controls_), lengthLine(controls_) };
        const int32_t tops[4] = { 0, h / 4, 2 * h / 4, 3 * h / 4 };
        const int32_t heights[4] = { h / 3, h / 4, h / 4, h / 4 };
        for (int line = 0; line < 4; ++line) {
            text.setText(lines[line].c_str());
            text.drawRect(x, rect_.y + tops[line], width, heights[line]);
        }
    }
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

} // namespace pulsara
