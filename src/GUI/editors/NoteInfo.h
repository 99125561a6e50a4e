#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/Slider.h"
#include "GUI/editors/OctaveSelector.h"
#include "GUI/editors/PianoKeys.h"
#include "Sound/Step.h"

#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class Skin;
class SongEdits;

// The note under the pattern editor's cursor, as a musician reads it: note name, octave,
// volume in percent and length in steps, each with a control that writes the note back at once.
//
// A note's pitch is a playback-rate ratio; the panel shows it as whole semitones above the rate
// 1/16, so the sample's own pitch (1.0) is C of octave 5. Lengths are shown in whole steps.
// Editing a note here therefore rounds its pitch to a semitone and drops the length's fraction.
class NoteInfo : public ElementContainer {
public:
    static constexpr const char16_t* kNoteNames[12] = { u"C", u"C#", u"D", u"D#", u"E", u"F", u"F#", u"G", u"G#", u"A", u"A#", u"B" };
    // The width of the two sliders' column at the panel's right.
    static constexpr int32_t kSliderWidth = 22;
    // The height of the four lines of text.
    static constexpr int32_t kTextHeight = 76;

    // What the controls show for a note.
    struct Controls {
        int32_t noteIndex = 0;
        int32_t octave = 4;
        float volumeSlider = -1.0f; // volume / 1.2; below 0: no note
        float lengthSlider = 0.0f; // whole steps / 64; 0: until the sample ends
    };
    static Controls controlsFor(Step);
    static Step noteFor(const Controls&);
    // The four lines ("Note: C", "Octave: 5", "Volume: 100%", "Lenght: inf").
    static std::u16string noteLine(const Controls&);
    static std::u16string octaveLine(const Controls&);
    static std::u16string volumeLine(const Controls&);
    static std::u16string lengthLine(const Controls&);

    NoteInfo(Skin&, SongEdits&);

    // Shows a note (the empty step shows "No note selected").
    void showNote(Step);
    const Controls& controls() const { return controls_; }
    bool hasNote() const { return controls_.volumeSlider >= 0.0f; }

    // Called with the note the controls now make, to be written into the cursor cell.
    std::function<void(Step)> onNoteEdited;

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;

    PianoKeys& piano() { return piano_; }
    OctaveSelector& octaveSelector() { return octave_; }
    Slider& volumeSlider() { return volume_; }
    Slider& lengthSlider() { return length_; }

private:
    void apply();
    void updateControls();

    Skin& skin_;
    SongEdits& edits_;
    Controls controls_;
    PianoKeys piano_;
    OctaveSelector octave_;
    Slider volume_ { Slider::Orientation::Vertical };
    Slider length_ { Slider::Orientation::Vertical };
    QFont font_;
};

} // namespace pulsara
