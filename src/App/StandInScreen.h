#pragma once

#include "App/StepGridPreview.h"
#include "GUI/BitmapButton.h"
#include "GUI/BitmapView.h"
#include "GUI/FramePanel.h"
#include "GUI/LevelMeter.h"
#include "GUI/NumericDisplay.h"
#include "GUI/RootElement.h"
#include "GUI/Slider.h"
#include "GUI/TextLabel.h"
#include "Sound/StepGrid.h"

namespace pulsara {

class Skin;

// The window's element tree until the editors arrive: the top bar with the meters and
// displays, the control row with the page buttons, the play button and the two sliders, and a
// panel with a step grid and a note panel, all drawn from the skin by the real framework
// classes. The page buttons switch the grid between the pattern and the playlist strips.
class StandInScreen : public RootElement {
public:
    explicit StandInScreen(Skin&);

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;

    // The unit height of the top rows: the height of the play button's bitmap.
    int32_t unitHeight() const;

    StepGridPreview& grid() { return grid_; }
    BitmapButton& playButton() { return playButton_; }
    LevelMeter& leftMeter() { return leftMeter_; }

private:
    void selectPage(int page);

    Skin& skin_;
    StepGrid pattern_;
    StepGrid playlist_;

    FramePanel topBar_;
    TextLabel title_ { u"Pulsara" };
    TextLabel songName_ { u"untitled" };
    LevelMeter leftMeter_;
    LevelMeter rightMeter_;
    BitmapButton clipLamp_ { BitmapButton::Kind::Indicator };
    LevelMeter cpuMeter_;
    NumericDisplay counterDisplay_ { 3 };
    NumericDisplay beatsDisplay_ { 2 };
    NumericDisplay beatLengthDisplay_ { 2 };

    BitmapButton pageButton0_ { BitmapButton::Kind::Latch };
    BitmapButton pageButton1_ { BitmapButton::Kind::Latch };
    BitmapButton playButton_ { BitmapButton::Kind::Toggle };
    Slider masterVolumeSlider_ { Slider::Orientation::Vertical };
    Slider tempoSlider_ { Slider::Orientation::Vertical };
    NumericDisplay tempoDisplay_ { 3 };

    FramePanel editorPanel_;
    StepGridPreview grid_;
    FramePanel notePanel_;
    TextLabel noteHeading_ { u"Note" };
    TextLabel volumeHeading_ { u"Volume" };
    BitmapView piano_;
    BitmapView octaves_;
    Slider noteVolumeSlider_;
};

} // namespace pulsara
