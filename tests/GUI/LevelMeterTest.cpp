#include "GUI/LevelMeter.h"
#include "GUI/SkinBitmap.h"

#include <QPainter>
#include <QRegion>
#include <gtest/gtest.h>

#include <thread>

namespace pulsara {
namespace {

TEST(LevelMeter, KeepsWholeSegmentsFallingToTheOneBelow)
{
    struct Case {
        float value, stored;
    };
    const Case cases[] = { { 0.0f, 0.0f }, { 0.24f, 0.2f }, { 0.25f, 0.2f }, { 0.99f, 0.8f }, { 1.0f, 1.0f } };
    LevelMeter meter(5);
    for (const Case& c : cases) {
        meter.setValue(c.value);
        EXPECT_FLOAT_EQ(meter.value(), c.stored) << c.value;
    }
}

TEST(LevelMeter, LightsItsSegmentsFromTheLitHalfOfTheBitmap)
{
    SkinBitmap bitmap;
    bitmap.createBlank(nullptr, 40, 8);
    QPainter painter(&bitmap.image());
    painter.fillRect(0, 0, 40, 4, Qt::darkGray);
    painter.fillRect(0, 4, 40, 4, Qt::green);
    painter.end();

    LevelMeter meter(4);
    meter.setBitmap(&bitmap);
    meter.place(0, 0);
    EXPECT_EQ(*meter.rect(), (ElemRect { 0, 0, 40, 4 }));
    meter.setValue(0.6f); // two segments of four
    QImage image(40, 4, QImage::Format_RGB32);
    QPainter dc(&image);
    meter.paint(&dc, 0);
    dc.end();
    EXPECT_EQ(image.pixel(19, 2), QColor(Qt::green).rgb());
    EXPECT_EQ(image.pixel(20, 2), QColor(Qt::darkGray).rgb());
}

TEST(LevelMeter, AValueSetOnAnotherThreadMarksItChangedForTheRepaintTimer)
{
    LevelMeter meter(10);
    meter.layout({ 1, 2, 30, 4 });
    meter.paint(nullptr, 0); // clears the dirty bit; no bitmap, nothing drawn
    QRegion region;
    meter.collectChanged(region);
    EXPECT_TRUE(region.isEmpty());

    std::thread audio([&] { meter.setValue(0.5f); });
    audio.join();
    meter.collectChanged(region);
    EXPECT_EQ(region, QRegion(1, 2, 30, 4));
    meter.paint(nullptr, 2);
    region = QRegion();
    meter.collectChanged(region);
    EXPECT_TRUE(region.isEmpty());
}

} // namespace
} // namespace pulsara
