#include "GUI/BitmapButton.h"
#include "GUI/LevelMeter.h"
#include "GUI/NumericDisplay.h"
#include "GUI/ScrollBar.h"
#include "GUI/SkinFrame.h"
#include "GUI/Slider.h"
#include "GUI/TextLabel.h"
#include "QtTestApplication.h"

#include <QPainter>
#include <QRegion>
#include <gtest/gtest.h>

#include <thread>

namespace pulsara {
namespace {

// A bitmap whose left part (released, unlit, knob) is red and the rest blue.
void makeTwoColourBitmap(SkinBitmap& bitmap, int width, int height, int redWidth, int redHeight)
{
    bitmap.createBlank(nullptr, width, height);
    bitmap.image().fill(Qt::blue);
    QPainter(&bitmap.image()).fillRect(0, 0, redWidth, redHeight, Qt::red);
}

QImage painted(Element& element, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter dc(&image);
    element.paint(&dc, 0);
    return image;
}

// A slider on a knob whose first half is red, laid out at `rect`.
struct SkinnedSlider {
    SkinBitmap knob;
    SkinFrame frame; // the groove and the background
    Slider slider;
    SkinnedSlider(ElemRect rect, Slider::Orientation orientation = Slider::Orientation::Horizontal) : slider(orientation)
    {
        makeTwoColourBitmap(knob, 20, 10, 10, 10);
        frame.createBlank(nullptr, 4, 4);
        frame.image().fill(Qt::black);
        frame.setCorner(1);
        slider.setSkin(&knob, &frame, &frame);
        slider.layout(rect);
    }
};

TEST(BitmapButton, IsOneStateLargeDrawsTheHalfOfItsStateAndKindsAnswerTapsDifferently)
{
    SkinBitmap bitmap;
    makeTwoColourBitmap(bitmap, 20, 6, 10, 6);
    const std::tuple<BitmapButton::Kind, bool, bool, int> cases[] = {
        { BitmapButton::Kind::Toggle, true, false, 2 },
        { BitmapButton::Kind::Latch, true, true, 1 },
        { BitmapButton::Kind::Indicator, false, false, 0 },
    };
    for (const auto& [kind, afterOneTap, afterTwoTaps, expectedChanges] : cases) {
        BitmapButton button(kind);
        button.setBitmap(&bitmap);
        button.place(4, 7);
        EXPECT_EQ(*button.rect(), (ElemRect { 4, 7, 10, 6 }));
        int changes = 0;
        button.onChange = [&](bool) { ++changes; };
        for (bool pressed : { afterOneTap, afterTwoTaps }) {
            button.stylusDown(0, 5, 8);
            EXPECT_EQ(button.isPressed(), pressed);
            EXPECT_EQ(painted(button, { 40, 40 }).pixel(9, 10), pressed ? qRgb(0, 0, 255) : qRgb(255, 0, 0));
        }
        EXPECT_EQ(changes, expectedChanges);
    }
}

// A meter stores whole segments, lights them from the lit half of its bitmap, and a value set
// on another thread marks it changed for the repaint timer.
TEST(LevelMeter, KeepsWholeSegmentsAndLightsThemFromTheLitHalfOfTheBitmap)
{
    LevelMeter five(5);
    for (auto [value, stored] : { std::pair { 0.0f, 0.0f }, { 0.24f, 0.2f }, { 0.25f, 0.2f }, { 0.99f, 0.8f }, { 1.0f, 1.0f } }) {
        five.setValue(value);
        EXPECT_FLOAT_EQ(five.value(), stored) << value;
    }
    SkinBitmap bitmap; // unlit top half red, lit bottom half blue
    makeTwoColourBitmap(bitmap, 40, 8, 40, 4);
    LevelMeter meter(4);
    meter.setBitmap(&bitmap);
    meter.place(0, 0);
    auto changed = [&] {
        QRegion region;
        meter.collectChanged(region);
        return region;
    };
    std::thread([&] { meter.setValue(0.6f); }).join(); // two segments of four
    EXPECT_EQ(changed(), QRegion(0, 0, 40, 4));
    QImage image = painted(meter, { 40, 4 });
    EXPECT_EQ(image.pixel(19, 2), qRgb(0, 0, 255));
    EXPECT_EQ(image.pixel(20, 2), qRgb(255, 0, 0));
    EXPECT_TRUE(changed().isEmpty()) << "painting clears the mark";
}

TEST(NumericDisplay, ShowsItsDigitsWithLeadingZeros)
{
    const std::tuple<int32_t, int32_t, std::u16string> cases[] = {
        { 3, 0, u"000" }, { 3, 7, u"007" }, { 3, 150, u"150" }, { 3, 1234, u"234" }, { 2, -5, u"-5" } };
    for (const auto& [digits, value, text] : cases) {
        NumericDisplay display(digits);
        display.setValue(value);
        EXPECT_EQ(display.text(), text) << value;
    }
}

TEST(ScrollBar, ThumbIsItsFractionOfTheTrackArrowsStepTrackTapsPageAndTheThumbDrags)
{
    ScrollBar bar;
    bar.layout({ 0, 0, 240, 20 });
    bar.setThumb(0.25);
    bar.setStep(0.1);
    EXPECT_EQ(bar.thumbRect(), (ElemRect { 20, 0, 50, 20 })); // a quarter of the track between the arrows
    std::vector<double> reported;
    bar.onScroll = [&](double position) { reported.push_back(position); };
    bar.stylusDown(0, 230, 10); // right arrow
    bar.stylusUp(0, 230, 10);
    EXPECT_DOUBLE_EQ(bar.position(), 0.1);
    bar.stylusDown(0, 200, 10); // track right of the thumb: a page
    EXPECT_DOUBLE_EQ(bar.position(), 0.35);
    bar.stylusDown(0, 5, 10); // left arrow
    EXPECT_DOUBLE_EQ(bar.position(), 0.25);
    // Drag the thumb by 75 pixels: half of the 150 pixels of room.
    int32_t grip = bar.thumbRect().x + 10;
    bar.stylusDown(0, grip, 10);
    EXPECT_EQ(bar.stylusMove(grip + 75, 10), 1);
    EXPECT_NEAR(bar.position(), 0.75, 1.0 / 150);
    EXPECT_EQ(bar.stylusUp(0, grip + 75, 10), 1);
    EXPECT_EQ(bar.stylusMove(0, 10), 0);
    EXPECT_EQ(reported.size(), 4u);

    bar.setPosition(7.0);
    EXPECT_DOUBLE_EQ(bar.position(), 1.0);
    EXPECT_EQ(bar.thumbRect(), (ElemRect { 170, 0, 50, 20 }));
    bar.setThumb(0.01); // never shorter than an arrow
    EXPECT_EQ(bar.thumbRect().width, 20);
}

TEST(Slider, MapsItsTravelToClampedSteppedValuesAndDrawsTheDraggedKnob)
{
    SkinnedSlider skinned({ 0, 0, 110, 10 });
    Slider& slider = skinned.slider;
    slider.setStep(0.25);
    std::vector<double> reported;
    slider.onChange = [&](double value) { reported.push_back(value); };
    slider.stylusDown(0, 5 + 30, 5); // 0.30 -> 0.25
    EXPECT_TRUE(slider.isDragging());
    slider.stylusMove(5 + 34, 5); // 0.34 -> 0.25, unchanged: not reported
    slider.stylusMove(500, 5); // past the end -> 1.0, drawn with the dragged half of the knob
    EXPECT_EQ(painted(slider, { 110, 10 }).pixel(105, 5), qRgb(0, 0, 255));
    slider.stylusUp(0, -50, 5); // before the start -> 0.0
    EXPECT_FALSE(slider.isDragging());
    EXPECT_EQ(reported, (std::vector<double> { 0.25, 1.0, 0.0 }));
    EXPECT_EQ(slider.stylusMove(50, 5), 0);
    // The knob drawn at its value over the background is in the screenshots.

    SkinnedSlider vertical({ 0, 20, 20, 60 }, Slider::Orientation::Vertical); // travel 50 from y = 25
    EXPECT_DOUBLE_EQ(vertical.slider.valueAt(0, 25), 0.0);
    EXPECT_DOUBLE_EQ(vertical.slider.valueAt(0, 50), 0.5);
}

// A label's text in its colour inside its rectangle is pinned by the screenshots.
TEST(TextLabel, ANewTextMarksItForTheRepaint)
{
    test::testApplication();
    TextLabel label(u"Volume");
    label.layout({ 10, 10, 60, 20 });
    painted(label, { 100, 40 });
    EXPECT_FALSE(label.isDirty());
    label.setText(u"Pan");
    EXPECT_TRUE(label.isDirty());
}

} // namespace
} // namespace pulsara
