#include "App/TopBar.h"

#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"

#include <algorithm>

namespace pulsara {

namespace {

constexpr int32_t kMeterSegments = 20;
constexpr int32_t kGap = 6;
constexpr int32_t kTitleWidth = 78;
constexpr int32_t kModeWidth = 120;

} // namespace

TopBar::TopBar(Skin& skin)
    : FramePanel(&skin.back)
    , skin_(skin)
    , cpuMeter_(kMeterSegments)
    , leftMeter_(kMeterSegments)
    , rightMeter_(kMeterSegments)
{
    drawButton_.setBitmap(&skin.draw);
    moveButton_.setBitmap(&skin.hand);
    drawButton_.setPressed(true);
    drawButton_.onChange = [this](bool) {
        setMoveMode(false);
        if (onMoveMode)
            onMoveMode(false);
    };
    moveButton_.onChange = [this](bool) {
        setMoveMode(true);
        if (onMoveMode)
            onMoveMode(true);
    };
    title_.setFont(uiFont(17, QFont::Bold));
    title_.setColor(QColor(0xdc, 0xe1, 0xea));
    songName_.setFont(uiFont(12));
    songName_.setColor(QColor(0x8a, 0x93, 0xa3));
    modeText_.setFont(uiFont(12, QFont::Bold));
    modeText_.setColor(QColor(0x2e, 0xc4, 0xb6));
    cpuMeter_.setBitmap(&skin.cpu);
    clipLamp_.setBitmap(&skin.peak);
    leftMeter_.setBitmap(&skin.level);
    rightMeter_.setBitmap(&skin.level);
    for (Element* child : std::initializer_list<Element*> { &drawButton_, &moveButton_, &title_, &songName_, &modeText_,
             &cpuMeter_, &clipLamp_, &leftMeter_, &rightMeter_ })
        addChild(child);
}

int32_t TopBar::unitHeight() const
{
    return skin_.play.height();
}

void TopBar::setSongName(std::u16string name)
{
    if (name != songName_.text())
        songName_.setText(std::move(name));
}

void TopBar::setModeText(std::u16string text)
{
    if (text != modeText_.text())
        modeText_.setText(std::move(text));
}

void TopBar::setMoveMode(bool on)
{
    drawButton_.setPressed(!on);
    moveButton_.setPressed(on);
}

void TopBar::setClipped(bool clipped)
{
    clipLamp_.setPressed(clipped);
}

void TopBar::layout(const ElemRect& rect)
{
    FramePanel::layout(rect);
    const int32_t unit = rect.height;
    drawButton_.place(rect.x, rect.y + (unit - drawButton_.stateHeight()) / 2);
    moveButton_.place(drawButton_.rect()->right(), drawButton_.rect()->y);
    title_.layout({ moveButton_.rect()->right() + 2 * kGap, rect.y, kTitleWidth, unit });

    const int32_t meterX = rect.right() - leftMeter_.rect()->width - kGap;
    const int32_t meterTop = rect.y + (unit - 2 * leftMeter_.rect()->height - 2) / 2;
    leftMeter_.place(meterX, meterTop);
    rightMeter_.place(meterX, meterTop + leftMeter_.rect()->height + 2);
    clipLamp_.place(meterX - clipLamp_.stateWidth() - 2, meterTop + 1);
    cpuMeter_.place(clipLamp_.rect()->x - cpuMeter_.rect()->width - kGap, meterTop + leftMeter_.rect()->height / 2 + 1);
    modeText_.layout({ cpuMeter_.rect()->x - kGap - kModeWidth, rect.y, kModeWidth, unit });
    const int32_t nameX = title_.rect()->right();
    songName_.layout({ nameX, rect.y, std::max(0, modeText_.rect()->x - kGap - nameX), unit });
    // Narrow windows keep the controls and drop the texts that no longer fit.
    modeText_.setVisible(modeText_.rect()->x > nameX);
    cpuMeter_.setVisible(cpuMeter_.rect()->x > title_.rect()->right());
}

} // namespace pulsara
