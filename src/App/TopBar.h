#pragma once

#include "GUI/BitmapButton.h"
#include "GUI/FramePanel.h"
#include "GUI/LevelMeter.h"
#include "GUI/TextLabel.h"

#include <functional>
#include <string>

namespace pulsara {

class Skin;

// The strip along the top of the window: the edit-mode buttons (draw, move), the program's
// and the song's name, what the editors work on, and the meters (render load, clip lamp, the
// two output levels). The level meters are set from the audio thread and painted by the
// window's repaint timer.
class TopBar : public FramePanel {
public:
    explicit TopBar(Skin&);

    // The height of the strip and of the control row below it: the unit of the window's layout.
    int32_t unitHeight() const;

    void setSongName(std::u16string);
    // What the editors work on: "Song", "Pattern 03", "Track 05".
    void setModeText(std::u16string);
    void setMoveMode(bool);
    bool moveMode() const { return moveButton_.isPressed(); }
    void setClipped(bool);

    // A tap on the draw (false) or move (true) button.
    std::function<void(bool moveMode)> onMoveMode;

    LevelMeter& leftMeter() { return leftMeter_; }
    LevelMeter& rightMeter() { return rightMeter_; }
    LevelMeter& cpuMeter() { return cpuMeter_; }
    BitmapButton& drawButton() { return drawButton_; }
    BitmapButton& moveButton() { return moveButton_; }
    const TextLabel& songName() const { return songName_; }
    const TextLabel& modeText() const { return modeText_; }

    void layout(const ElemRect&) override;

private:
    Skin& skin_;
    BitmapButton drawButton_ { BitmapButton::Kind::Latch };
    BitmapButton moveButton_ { BitmapButton::Kind::Latch };
    TextLabel title_ { u"Pulsara" };
    TextLabel songName_;
    TextLabel modeText_ { {}, 1 };
    LevelMeter cpuMeter_;
    BitmapButton clipLamp_ { BitmapButton::Kind::Indicator };
    LevelMeter leftMeter_;
    LevelMeter rightMeter_;
};

} // namespace pulsara
