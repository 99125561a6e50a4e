#include "GUI/Skin.h"

#include "base/Path.h"

namespace pulsara {

Skin& theSkin()
{
    static Skin skin;
    return skin;
}

const char16_t* Skin::filePath(std::u16string_view file)
{
    pathBuilder_.assign(installDir_.view());
    pathBuilder_.append(u"Skins");
    pathBuilder_.append(kPathSeparator);
    pathBuilder_.append(name_.view());
    pathBuilder_.append(kPathSeparator);
    pathBuilder_.append(file);
    return pathBuilder_.c_str();
}

int Skin::loadFrame(SkinFrame& frame, std::u16string_view file, int32_t corner)
{
    frame.load(filePath(file));
    frame.setCorner(corner);
    return 1;
}

int Skin::loadSteps(SkinSteps& steps, std::u16string_view file)
{
    steps.load(filePath(file));
    steps.attach(this, &panelD, kStepColours);
    return 1;
}

int Skin::load()
{
    loadFrame(panel, u"panel.bmp", 1);
    loadFrame(panelD, u"panelD.bmp", 1);
    loadFrame(panel2, u"panel.bmp", 1);
    loadFrame(panelBckD, u"panelBckD.bmp", 1);
    loadFrame(back, u"back.bmp", 0);
    level.load(filePath(u"level.bmp"));
    draw.load(filePath(u"draw.bmp"));
    hand.load(filePath(u"hand.bmp"));
    play.load(filePath(u"play.bmp"));
    vol.load(filePath(u"vol.bmp"));
    cpu.load(filePath(u"cpu.bmp"));
    peak.load(filePath(u"peak.bmp"));
    meterBitmapsLoaded = 3;
    piano.load(filePath(u"piano.bmp"));
    octave.load(filePath(u"octave.bmp"));
    loadSteps(stepsPlst, u"stepsPlst.bmp");
    loadSteps(stepsPat, u"stepsPat.bmp");
    return 1;
}

} // namespace pulsara
