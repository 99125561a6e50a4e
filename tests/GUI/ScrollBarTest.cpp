#include "GUI/ScrollBar.h"

#include <gtest/gtest.h>

namespace pulsara {
namespace {


TEST(ScrollBar, ThumbIsItsFractionOfTheTrackAtItsPosition)
{
    ScrollBar bar;
    bar.layout({ 0, 0, 240, 20 });
    bar.setThumb(0.25);
    EXPECT_EQ(bar.trackRect(), (ElemRect { 20, 0, 200, 20 }));
    EXPECT_EQ(bar.thumbRect(), (ElemRect { 20, 0, 50, 20 }));
    bar.setPosition(1.0);
    EXPECT_EQ(bar.thumbRect(), (ElemRect { 170, 0, 50, 20 }));
    bar.setThumb(0.01); // never shorter than an arrow
    EXPECT_EQ(bar.thumbRect().width, 20);
    bar.setPosition(7.0);
    EXPECT_DOUBLE_EQ(bar.position(), 1.0);
}

TEST(ScrollBar, ArrowsStepTrackTapsPageAndTheThumbDrags)
{
    ScrollBar bar;
    bar.layout({ 0, 0, 240, 20 });
    bar.setThumb(0.25);
    bar.setStep(0.1);
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
    double thumbAt = bar.position();
    int32_t grip = bar.thumbRect().x + 10;
    bar.stylusDown(0, grip, 10);
    EXPECT_EQ(bar.stylusMove(grip + 75, 10), 1);
    EXPECT_NEAR(bar.position(), thumbAt + 0.5, 1.0 / 150);
    EXPECT_EQ(bar.stylusUp(0, grip + 75, 10), 1);
    EXPECT_EQ(bar.stylusMove(0, 10), 0);
    EXPECT_EQ(reported.size(), 4u);
}

} // namespace
} // namespace pulsara
