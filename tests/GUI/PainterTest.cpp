#include "GUI/ArrowPainter.h"
#include "GUI/LinePainter.h"
#include "GUI/SkinBitmap.h"
#include "GUI/TextPainter.h"
#include "QtTestApplication.h"
#include "TestImages.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

const QRgb kWhite = qRgb(255, 255, 255);

struct Canvas {
    QImage image { 60, 40, QImage::Format_RGB32 };
    QPainter dc;
    Canvas()
    {
        image.fill(Qt::white);
        dc.begin(&image);
    }
};

// How text is aligned in its box is seen in the screenshots, where every label and display uses
// this painter.
TEST(TextPainter, DrawsNothingWithoutText)
{
    test::testApplication();
    Canvas canvas;
    canvas.dc.setPen(Qt::black);
    TextPainter painter(TextPainter::kAuto);
    painter.setDestination(&canvas.dc);
    EXPECT_EQ(painter.drawRect(10, 0, 40, 40), 0);
    canvas.dc.end();
    EXPECT_EQ(canvas.image, Canvas().image) << "still all white";
}

TEST(ArrowPainter, FillsTheTriangleOfItsDirection)
{
    // Box (10, 10, 20, 20): each arrow covers the middle of its base and leaves the corners at
    // its tip's side empty. Arrows to the left and right are in the screenshots' scroll bars.
    const std::tuple<ArrowPainter::Direction, QPoint, QPoint> cases[] = {
        { ArrowPainter::kUp, QPoint(20, 28), QPoint(11, 11) },
        { ArrowPainter::kDown, QPoint(20, 11), QPoint(11, 28) },
    };
    QPen pen(Qt::red);
    QBrush brush(Qt::red);
    for (const auto& [direction, inside, outside] : cases) {
        Canvas canvas;
        ArrowPainter arrow(direction);
        arrow.setPen(&pen);
        arrow.setBrush(&brush);
        arrow.setDestination(&canvas.dc);
        EXPECT_EQ(arrow.drawRect(10, 10, 20, 20), 1);
        canvas.dc.end();
        test::expectPixels(canvas.image,
            { { inside.x(), inside.y(), qRgb(255, 0, 0) }, { outside.x(), outside.y(), kWhite }, { 40, 39, kWhite } },
            "direction " + std::to_string(direction));
    }
}

// A rectangle's outline stopping short of its right and bottom edge is seen in the screenshots.
TEST(LinePainter, StopsShortOfItsEndPoint)
{
    Canvas canvas;
    LinePainter line(Qt::black);
    line.setDestination(&canvas.dc);
    line.moveTo(5, 30);
    line.drawAt(15, 30);
    EXPECT_EQ(line.currentX(), 15);
    EXPECT_EQ(line.drawRect(0, 0, 60, 40), 0); // nothing to copy
    canvas.dc.end();
    const QRgb black = qRgb(0, 0, 0);
    test::expectPixels(canvas.image, { { 5, 30, black }, { 14, 30, black }, { 15, 30, kWhite }, { 4, 30, kWhite } });
}

TEST(SkinBitmap, DrawRectCropsAndDrawPartCopiesFromItsSourceCorner)
{
    SkinBitmap bitmap;
    EXPECT_EQ(bitmap.createBlank(nullptr, 0, 5), 0);
    EXPECT_EQ(bitmap.createBlank(nullptr, 5, -1), 0);
    EXPECT_TRUE(bitmap.isEmpty());
    ASSERT_EQ(bitmap.createBlank(nullptr, 10, 6), 1);
    bitmap.image().fill(qRgb(0, 128, 0));
    bitmap.image().setPixel(9, 5, qRgb(1, 2, 3));
    Canvas canvas;
    bitmap.setDestination(&canvas.dc);
    bitmap.drawRect(0, 0, 4, 3); // smaller box: cropped, not scaled
    bitmap.drawRect(20, 20, 30, 15); // larger box: only the 10 x 6 pixels arrive
    EXPECT_EQ(bitmap.drawPart(7, 3, 3, 3, 40, 5), 1);
    canvas.dc.end();
    test::expectPixels(canvas.image,
        { { 3, 2, qRgb(0, 128, 0) }, { 4, 2, kWhite }, { 29, 25, qRgb(1, 2, 3) }, { 30, 25, kWhite }, { 29, 26, kWhite },
            { 42, 7, qRgb(1, 2, 3) }, { 41, 7, qRgb(0, 128, 0) }, { 43, 7, kWhite } });
}

} // namespace
} // namespace pulsara
