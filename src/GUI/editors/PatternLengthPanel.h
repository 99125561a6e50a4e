#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/Slider.h"
#include "GUI/TextButton.h"

#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class Skin;
class SongEdits;

// The song's pattern length, set as beats per pattern times the beat length in steps (each 2 to
// 8, so a pattern has at most 64 steps). Shown as a pop-up over the editors; its button closes
// it.
class PatternLengthPanel : public ElementContainer {
public:
    static constexpr int32_t kHeight = 100;
    static constexpr uint32_t kMinValue = 2;
    static constexpr uint32_t kMaxValue = 8;

    PatternLengthPanel(Skin&, SongEdits&);

    // Reads beats and beat length from the song: the beat length is the pattern's steps over
    // its beats.
    void showSong();
    uint32_t beats() const { return beats_; }
    uint32_t beatLength() const { return beatLength_; }
    // The slider position of a value: (value - 2) / 6.
    static double sliderPosition(uint32_t value);

    // The button's tap.
    std::function<void()> onClose;

    Slider& beatsSlider() { return beatsSlider_; }
    Slider& beatLengthSlider() { return beatLengthSlider_; }
    TextButton& closeButton() { return closeButton_; }

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;

private:
    void apply();

    Skin& skin_;
    SongEdits& edits_;
    uint32_t beats_ = 4;
    uint32_t beatLength_ = 4;
    Slider beatsSlider_;
    Slider beatLengthSlider_;
    TextButton closeButton_ { u"OK" };
    QFont font_;
};

} // namespace pulsara
