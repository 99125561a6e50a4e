#include "GUI/SkinFrame.h"
#include "GUI/Slider.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

struct SliderSkin {
    SkinBitmap knob;
    SkinFrame groove;
    SkinFrame background;
    SliderSkin()
    {
        knob.createBlank(nullptr, 20, 10);
        QPainter painter(&knob.image());
        painter.fillRect(0, 0, 10, 10, Qt::red);
        painter.fillRect(10, 0, 10, 10, Qt::blue);
        groove.createBlank(nullptr, 4, 4);
        groove.image().fill(Qt::darkGray);
        groove.setCorner(1);
        background.createBlank(nullptr, 4, 4);
        background.image().fill(Qt::black);
        background.setCorner(1);
    }
};

TEST(Slider, MapsPositionsToValuesAlongItsTravel)
{
    SliderSkin skin;
    Slider horizontal;
    horizontal.setSkin(&skin.knob, &skin.groove, &skin.background);
    horizontal.layout({ 10, 0, 110, 20 }); // travel 100
    EXPECT_DOUBLE_EQ(horizontal.valueAt(15, 0), 0.0);
    EXPECT_DOUBLE_EQ(horizontal.valueAt(65, 0), 0.5);
    EXPECT_DOUBLE_EQ(horizontal.valueAt(115, 0), 1.0);

    Slider vertical(Slider::Orientation::Vertical);
    vertical.setSkin(&skin.knob, &skin.groove, &skin.background);
    vertical.layout({ 0, 20, 20, 60 }); // travel 50
    EXPECT_DOUBLE_EQ(vertical.valueAt(0, 25), 0.0);
    EXPECT_DOUBLE_EQ(vertical.valueAt(0, 50), 0.5);
}

TEST(Slider, DragSetsClampedSteppedValuesAndReportsThem)
{
    SliderSkin skin;
    Slider slider;
    slider.setSkin(&skin.knob, &skin.groove, &skin.background);
    slider.layout({ 0, 0, 110, 20 });
    slider.setStep(0.25);
    std::vector<double> reported;
    slider.onChange = [&](double value) { reported.push_back(value); };
    slider.stylusDown(0, 5 + 30, 5); // 0.30 -> 0.25
    EXPECT_TRUE(slider.isDragging());
    slider.stylusMove(5 + 34, 5); // 0.34 -> 0.25, unchanged: not reported
    slider.stylusMove(500, 5); // past the end -> 1.0
    slider.stylusUp(0, -50, 5); // before the start -> 0.0
    EXPECT_FALSE(slider.isDragging());
    EXPECT_EQ(reported, (std::vector<double> { 0.25, 1.0, 0.0 }));
    EXPECT_EQ(slider.stylusMove(50, 5), 0);
}

TEST(Slider, DrawsTheKnobAtItsValueAndClearsItsOldPlace)
{
    SliderSkin skin;
    Slider slider;
    slider.setSkin(&skin.knob, &skin.groove, &skin.background);
    slider.layout({ 0, 0, 110, 10 });
    QImage image(110, 10, QImage::Format_RGB32);
    QPainter dc(&image);
    slider.setValue(1.0);
    slider.paint(&dc, 0);
    slider.setValue(0.0);
    slider.paint(&dc, 0);
    dc.end();
    EXPECT_EQ(image.pixel(5, 5), qRgb(255, 0, 0));
    EXPECT_NE(image.pixel(105, 5), qRgb(255, 0, 0));
}

} // namespace
} // namespace pulsara
