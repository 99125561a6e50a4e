#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/FilePath.h"
#include "GUI/Slider.h"
#include "GUI/TextButton.h"

#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class EditorHost;
class Skin;
class SongEdits;

// The selected track's instrument: the WAV file it plays and its volume. "Open" loads another
// file into it, "Clear" empties it (after asking), the slider sets its volume.
class InstrumentPanel : public ElementContainer {
public:
    static constexpr int32_t kHeight = 132;
    static constexpr const char16_t* kWaveFilter = u"PCM WaveFiles\0*.wav\0";

    InstrumentPanel(Skin&, SongEdits&, EditorHost&);

    // Shows the instrument in the slot; the caption names it in the heading.
    void showInstrument(uint32_t slot, std::u16string caption);
    uint32_t slot() const { return slot_; }
    // The panel shows the instrument again as it now stands (after an undo, a load).
    void refresh();
    // Where the open dialog starts when the instrument has no file yet.
    void setSamplesFolder(std::u16string_view folder);

    // The text of the percent label: "70%".
    std::u16string percentText() const;
    // The file name line: the instrument's file, without its folder.
    std::u16string fileText() const;

    // The buttons' actions, as a tap runs them.
    void open();
    void clear();

    TextButton& openButton() { return openButton_; }
    TextButton& clearButton() { return clearButton_; }
    Slider& volumeSlider() { return volume_; }

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;

private:
    void drawHeading(DeviceContext*, const char16_t* text, int32_t y, QColor textColour, QColor ruleColour);

    Skin& skin_;
    SongEdits& edits_;
    EditorHost& host_;
    uint32_t slot_ = 0;
    std::u16string caption_;
    FilePath dialogPath_;
    PathString samplesFolder_;
    TextButton openButton_ { u"Open" };
    TextButton clearButton_ { u"Clear" };
    Slider volume_;
    ElemRect percentLabel_;
    QFont headingFont_;
    QFont textFont_;
};

} // namespace pulsara
