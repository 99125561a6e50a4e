#include "GUI/ArrowPainter.h"
#include "GUI/LinePainter.h"
#include "GUI/RectPainter.h"
#include "GUI/SkinBitmap.h"
#include "GUI/TextPainter.h"
#include "QtTestApplication.h"

#include <QFontMetrics>
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
    // The columns that hold a non-white pixel.
    std::pair<int, int> inkColumns()
    {
        dc.end();
        int first = image.width(), last = -1;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixel(x, y) != kWhite) {
                    first = std::min(first, x);
                    last = std::max(last, x);
                }
        return { first, last };
    }
};

TEST(TextPainter, ChoosesItsAlignmentByModeAndOverlongText)
{
    struct Case {
        int32_t mode;
        int textWidth, boxWidth;
        Qt::Alignment expected;
    };
    const Case cases[] = {
        { TextPainter::kAuto, 50, 50, Qt::AlignHCenter },
        { TextPainter::kAuto, 51, 50, Qt::AlignRight },
        { TextPainter::kRight, 10, 50, Qt::AlignRight },
        { TextPainter::kLeft, 60, 50, Qt::AlignLeft },
        { 3, 60, 50, Qt::AlignHCenter },
        { 99, 10, 50, Qt::AlignHCenter },
    };
    for (const Case& c : cases)
        EXPECT_EQ(TextPainter::horizontalAlignment(c.mode, c.textWidth, c.boxWidth), c.expected) << c.mode << " " << c.textWidth;
}

TEST(TextPainter, DrawsInTheBoxAsAligned)
{
    test::testApplication();
    const char16_t* text = u"Kick";
    auto inkFor = [&](int32_t mode, int boxWidth) {
        Canvas canvas;
        canvas.dc.setFont(QFont("Liberation Sans", 12));
        canvas.dc.setPen(Qt::black);
        TextPainter painter(mode);
        painter.setText(text);
        painter.setDestination(&canvas.dc);
        EXPECT_EQ(painter.drawRect(10, 0, boxWidth, 40), 1);
        return canvas.inkColumns();
    };
    auto [leftFirst, leftLast] = inkFor(TextPainter::kLeft, 40);
    auto [rightFirst, rightLast] = inkFor(TextPainter::kRight, 40);
    auto [centreFirst, centreLast] = inkFor(TextPainter::kAuto, 40);
    EXPECT_LE(leftFirst, 12);
    EXPECT_GE(rightLast, 47);
    EXPECT_LE(rightLast, 49);
    EXPECT_NEAR((centreFirst + centreLast) / 2.0, 30, 2);
    // Too long for its box: right-aligned, so its end stays visible at the box's right edge.
    auto [longFirst, longLast] = inkFor(TextPainter::kAuto, 12);
    EXPECT_GE(longLast, 19);
    EXPECT_LE(longLast, 21);
    EXPECT_EQ(longFirst, 10); // its beginning is cut at the box
}

TEST(TextPainter, WithoutTextDrawsNothing)
{
    test::testApplication();
    Canvas canvas;
    TextPainter painter;
    painter.setDestination(&canvas.dc);
    EXPECT_EQ(painter.drawRect(0, 0, 60, 40), 0);
    EXPECT_EQ(canvas.inkColumns().second, -1);
}

TEST(ArrowPainter, FillsTheTriangleOfItsDirection)
{
    struct Case {
        ArrowPainter::Direction direction;
        QPoint inside, outside;
    };
    // Box (10, 10, 20, 20): each arrow covers the middle of its base and leaves the corners at
    // its tip's side empty.
    const Case cases[] = {
        { ArrowPainter::kUp, QPoint(20, 28), QPoint(11, 11) },
        { ArrowPainter::kDown, QPoint(20, 11), QPoint(11, 28) },
        { ArrowPainter::kLeft, QPoint(28, 20), QPoint(11, 11) },
        { ArrowPainter::kRight, QPoint(11, 20), QPoint(28, 11) },
    };
    QPen pen(Qt::red);
    QBrush brush(Qt::red);
    for (const Case& c : cases) {
        Canvas canvas;
        ArrowPainter arrow(c.direction);
        arrow.setPen(&pen);
        arrow.setBrush(&brush);
        arrow.setDestination(&canvas.dc);
        EXPECT_EQ(arrow.drawRect(10, 10, 20, 20), 1);
        canvas.dc.end();
        EXPECT_EQ(canvas.image.pixel(c.inside), qRgb(255, 0, 0)) << c.direction;
        EXPECT_EQ(canvas.image.pixel(c.outside), kWhite) << c.direction;
        EXPECT_EQ(canvas.image.pixel(40, 40 - 1), kWhite);
    }
}

TEST(RectPainter, OutlinesInsideTheHalfOpenRectangle)
{
    Canvas canvas;
    RectPainter painter(Qt::blue);
    painter.setDestination(&canvas.dc);
    painter.drawInRect({ 5, 5, 10, 8 });
    canvas.dc.end();
    EXPECT_EQ(canvas.image.pixel(5, 5), qRgb(0, 0, 255));
    EXPECT_EQ(canvas.image.pixel(14, 12), qRgb(0, 0, 255));
    EXPECT_EQ(canvas.image.pixel(15, 12), kWhite);
    EXPECT_EQ(canvas.image.pixel(14, 13), kWhite);
    EXPECT_EQ(canvas.image.pixel(9, 9), kWhite);
}

TEST(LinePainter, DrawsFromTheCurrentPointUpToButNotIncludingTheEnd)
{
    Canvas canvas;
    LinePainter painter(Qt::black);
    painter.setDestination(&canvas.dc);
    painter.moveTo(5, 10);
    painter.drawAt(15, 10);
    EXPECT_EQ(painter.currentX(), 15);
    // drawRect has nothing to copy and draws nothing.
    EXPECT_EQ(painter.drawRect(0, 0, 60, 40), 0);
    canvas.dc.end();
    EXPECT_EQ(canvas.image.pixel(5, 10), qRgb(0, 0, 0));
    EXPECT_EQ(canvas.image.pixel(14, 10), qRgb(0, 0, 0));
    EXPECT_EQ(canvas.image.pixel(15, 10), kWhite);
    EXPECT_EQ(canvas.image.pixel(4, 10), kWhite);
}

TEST(SkinBitmap, DrawRectCropsAndCopiesOnlyTheBitmapsOwnPixels)
{
    SkinBitmap bitmap;
    ASSERT_EQ(bitmap.createBlank(nullptr, 10, 6), 1);
    bitmap.image().fill(qRgb(0, 128, 0));
    bitmap.image().setPixel(9, 5, qRgb(1, 2, 3));
    Canvas canvas;
    bitmap.setDestination(&canvas.dc);
    // Smaller box: cropped, not scaled.
    bitmap.drawRect(0, 0, 4, 3);
    // Larger box: only the 10 x 6 pixels arrive.
    bitmap.drawRect(20, 20, 30, 15);
    canvas.dc.end();
    EXPECT_EQ(canvas.image.pixel(3, 2), qRgb(0, 128, 0));
    EXPECT_EQ(canvas.image.pixel(4, 2), kWhite);
    EXPECT_EQ(canvas.image.pixel(29, 25), qRgb(1, 2, 3));
    EXPECT_EQ(canvas.image.pixel(30, 25), kWhite);
    EXPECT_EQ(canvas.image.pixel(29, 26), kWhite);
}

TEST(SkinBitmap, DrawPartCopiesAPieceFromItsSourceCorner)
{
    SkinBitmap bitmap;
    bitmap.createBlank(nullptr, 8, 8);
    bitmap.image().fill(Qt::black);
    bitmap.image().setPixel(5, 6, qRgb(200, 0, 0));
    Canvas canvas;
    bitmap.setDestination(&canvas.dc);
    EXPECT_EQ(bitmap.drawPart(4, 4, 3, 3, 30, 30), 1);
    canvas.dc.end();
    EXPECT_EQ(canvas.image.pixel(31, 32), qRgb(200, 0, 0));
    EXPECT_EQ(canvas.image.pixel(33, 32), kWhite);
}

TEST(SkinBitmap, CreateBlankRefusesSizesBelowOnePixel)
{
    SkinBitmap bitmap;
    EXPECT_EQ(bitmap.createBlank(nullptr, 0, 5), 0);
    EXPECT_EQ(bitmap.createBlank(nullptr, 5, -1), 0);
    EXPECT_TRUE(bitmap.isEmpty());
    EXPECT_EQ(bitmap.createBlank(nullptr, 3, 2), 1);
    EXPECT_EQ(bitmap.width(), 3);
    EXPECT_EQ(bitmap.height(), 2);
    bitmap.free();
    EXPECT_TRUE(bitmap.isEmpty());
    EXPECT_EQ(bitmap.width(), 0);
}

} // namespace
} // namespace pulsara
