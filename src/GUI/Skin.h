#pragma once

#include "GUI/SkinFrame.h"
#include "GUI/SkinSteps.h"
#include "base/text.h"

namespace pulsara {

// All of the program's artwork: a folder of BMP files under <data folder>/Skins/<name>/.
// One Skin exists for the whole run (theSkin()); it is loaded once at start-up and the elements
// draw from it by reference.
class Skin {
public:
    // The number of row colours every step strip carries.
    static constexpr int32_t kStepColours = 4;

    // The data folder, ending in a separator.
    void setInstallDir(std::u16string_view folder) { installDir_.assign(folder); }
    void setName(std::u16string_view name) { name_.assign(name); }
    const PathString& name() const { return name_; }

    // <installDir>Skins/<name>/<file>; the text lives until the next call.
    const char16_t* filePath(std::u16string_view file);
    // Loads every file of the skin. There is no fall-back: a missing or bad file ends the
    // program with its message. Returns 1.
    int load();

    SkinFrame panel;
    SkinFrame panelD;
    SkinFrame panelBckD;
    SkinFrame panel2;
    SkinFrame back;
    SkinBitmap level;
    SkinBitmap play;
    SkinBitmap vol;
    SkinBitmap draw;
    SkinBitmap hand;
    SkinBitmap piano;
    SkinBitmap octave;
    SkinBitmap cpu;
    SkinBitmap peak;
    // Set to 3 once the meters' bitmaps are in.
    int32_t meterBitmapsLoaded = 0;
    SkinSteps stepsPlst;
    SkinSteps stepsPat;

private:
    int loadFrame(SkinFrame&, std::u16string_view file, int32_t corner);
    int loadSteps(SkinSteps&, std::u16string_view file);

    PathString installDir_;
    PathString name_ { u"Default" };
    PathString pathBuilder_;
};

// The program's one skin.
Skin& theSkin();

} // namespace pulsara
