#include "GUI/ArrowPainter.h"
#include "GUI/LinePainter.h"
#include "GUI/RectPainter.h"
#include "GUI/SkinBitmap.h"
#include "GUI/TextPainter.h"
#include "PixelChecks.h"
#include "QtTestApplication.h"

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

// The first and last columns of `image` that hold a non-white pixel.
std::pair<int, int> inkColumns(const QImage& image)
{
    int first = image.width(), last = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != kWhite) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return { first, last };
}

TEST(TextPainter, AlignsByModeRightAlignsOverlongTextAndDrawsNothingWithoutText)
{
    test::testApplication();
    auto inkFor = [&](int32_t mode, int boxWidth, const char16_t* text) {
        Canvas canvas;
        canvas.dc.setFont(QFont("Liberation Sans", 12));
        canvas.dc.setPen(Qt::black);
        TextPainter painter(mode);
        painter.setText(text);
        painter.setDestination(&canvas.dc);
        EXPECT_EQ(painter.drawRect(10, 0, boxWidth, 40), text ? 1 : 0);
        canvas.dc.end();
        return inkColumns(canvas.image);
    };
    // In a box from x = 10 to 49.
    EXPECT_LE(inkFor(TextPainter::kLeft, 40, u"Kick").first, 12);
    auto [rightFirst, rightLast] = inkFor(TextPainter::kRight, 40, u"Kick");
    EXPECT_GE(rightLast, 47);
    EXPECT_LE(rightLast, 49);
    for (int32_t centred : { int32_t(TextPainter::kAuto), int32_t(TextPainter::kCentre), 99 }) {
        auto [first, last] = inkFor(centred, 40, u"Kick");
        EXPECT_NEAR((first + last) / 2.0, 30, 2) << "mode " << centred;
    }
    // Too long for its box: right-aligned, its end visible at the box's edge, its beginning cut.
    // (Leading spaces keep the ink at the end, where a centred text would have none.)
    auto [longFirst, longLast] = inkFor(TextPainter::kAuto, 12, u"Kick");
    EXPECT_EQ(longFirst, 10);
    EXPECT_LE(longLast, 21);
    auto [paddedFirst, paddedLast] = inkFor(TextPainter::kAuto, 12, u"            Kick");
    EXPECT_GE(paddedLast, 19);
    EXPECT_LE(paddedLast, 21);
    EXPECT_EQ(inkFor(TextPainter::kAuto, 40, nullptr).second, -1);
}

TEST(ArrowPainter, FillsTheTriangleOfItsDirection)
{
    // Box (10, 10, 20, 20): each arrow covers the middle of its base and leaves the corners at
    // its tip's side empty.
    const std::tuple<ArrowPainter::Direction, QPoint, QPoint> cases[] = {
        { ArrowPainter::kUp, QPoint(20, 28), QPoint(11, 11) },
        { ArrowPainter::kDown, QPoint(20, 11), QPoint(11, 28) },
        { ArrowPainter::kLeft, QPoint(28, 20), QPoint(11, 11) },
        { ArrowPainter::kRight, QPoint(11, 20), QPoint(28, 11) },
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

TEST(RectAndLinePainter, StopShortOfTheRightAndBottomEdge)
{
    Canvas canvas;
    RectPainter rect(Qt::blue);
    rect.setDestination(&canvas.dc);
    rect.drawInRect({ 5, 5, 10, 8 });
    LinePainter line(Qt::black);
    line.setDestination(&canvas.dc);
    line.moveTo(5, 30);
    line.drawAt(15, 30);
    EXPECT_EQ(line.currentX(), 15);
    EXPECT_EQ(line.drawRect(0, 0, 60, 40), 0); // nothing to copy
    canvas.dc.end();
    const QRgb blue = qRgb(0, 0, 255), black = qRgb(0, 0, 0);
    test::expectPixels(canvas.image,
        { { 5, 5, blue }, { 14, 12, blue }, { 15, 12, kWhite }, { 14, 13, kWhite }, { 9, 9, kWhite }, { 5, 30, black },
            { 14, 30, black }, { 15, 30, kWhite }, { 4, 30, kWhite } });
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
