#include "GUI/SkinFrame.h"
#include "GUI/BmpWriter.h"
#include "BmpFileBuilder.h"

#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

const QRgb kWhite = qRgb(255, 255, 255);

// A frame whose every pixel names its own source position, drawn on a white canvas.
struct FrameOnCanvas {
    SkinFrame frame;
    QImage canvas { 40, 30, QImage::Format_RGB32 };

    FrameOnCanvas(int width, int height, int corner)
    {
        frame.createBlank(nullptr, width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                frame.image().setPixel(x, y, qRgb(x * 20, y * 20, 7));
        frame.setCorner(corner);
        canvas.fill(Qt::white);
    }
    int draw(int x, int y, int w, int h)
    {
        QPainter dc(&canvas);
        frame.setDestination(&dc);
        return frame.drawRect(x, y, w, h);
    }
};

// The source coordinate that tiling puts at destination offset d of a span of `size`.
int tiledSource(int d, int size, int corner, int bitmapSize)
{
    if (d < corner)
        return d;
    if (d >= size - corner)
        return bitmapSize - (size - d);
    return corner + (d - corner) % (bitmapSize - 2 * corner);
}

TEST(SkinFrame, TilesCornersEdgesAndCentreWithoutScaling)
{
    struct Case {
        int bitmapWidth, bitmapHeight, corner, w, h;
    };
    const Case cases[] = {
        { 4, 5, 1, 9, 6 }, // last pieces narrower than a tile
        { 4, 5, 1, 10, 8 }, // last pieces exactly a tile
        { 8, 6, 2, 4, 4 }, // exactly 2c: the corners meet, no edges, no centre
        { 8, 6, 2, 23, 17 },
        { 4, 4, 1, 3, 3 }, // a centre of one pixel
    };
    for (const Case& c : cases) {
        FrameOnCanvas test(c.bitmapWidth, c.bitmapHeight, c.corner);
        EXPECT_EQ(test.draw(3, 2, c.w, c.h), 1);
        for (int dy = 0; dy < c.h; ++dy)
            for (int dx = 0; dx < c.w; ++dx)
                ASSERT_EQ(test.canvas.pixel(3 + dx, 2 + dy),
                    qRgb(tiledSource(dx, c.w, c.corner, c.bitmapWidth) * 20, tiledSource(dy, c.h, c.corner, c.bitmapHeight) * 20, 7))
                    << c.w << "x" << c.h << " at " << dx << "," << dy;
        EXPECT_EQ(test.canvas.pixel(3 + c.w, 2), kWhite);
        EXPECT_EQ(test.canvas.pixel(3, 2 + c.h), kWhite);
    }
}

TEST(SkinFrame, RefusesOnlyWhenBothTileSidesAreEmpty)
{
    FrameOnCanvas noTile(2, 2, 1);
    EXPECT_EQ(noTile.draw(0, 0, 10, 10), 0);
    EXPECT_EQ(noTile.canvas.pixel(0, 0), kWhite);

    // Inner tile 2 x 0: corners and top and bottom edges are drawn, no sides and no centre.
    FrameOnCanvas flat(4, 2, 1);
    EXPECT_EQ(flat.draw(0, 0, 8, 6), 1);
    EXPECT_EQ(flat.canvas.pixel(4, 0), qRgb(tiledSource(4, 8, 1, 4) * 20, 0, 7));
    EXPECT_EQ(flat.canvas.pixel(4, 5), qRgb(tiledSource(4, 8, 1, 4) * 20, 20, 7));
    EXPECT_EQ(flat.canvas.pixel(0, 3), kWhite);
    EXPECT_EQ(flat.canvas.pixel(4, 3), kWhite);
}

TEST(SkinFrame, CornerIsClampedToHalfTheSmallerSideAlsoWhenLoading)
{
    const int cases[][4] = { { 2, 2, 1, 1 }, { 1, 5, 1, 0 }, { 10, 6, 4, 3 }, { 10, 6, 3, 3 } };
    for (const auto& [width, height, corner, expected] : cases)
        EXPECT_EQ(FrameOnCanvas(width, height, corner).frame.corner(), expected) << width << "x" << height;

    QTemporaryDir folder;
    test::writeFile(folder.filePath("thin.bmp"), encodeBmp24(QImage(4, 3, QImage::Format_RGB32)));
    SkinFrame frame;
    EXPECT_EQ(frame.corner(), 2);
    frame.load(folder.filePath("thin.bmp").toStdU16String());
    EXPECT_EQ(frame.corner(), 1);
}

TEST(SkinFrame, DrawAtCopiesTheWholeBitmap)
{
    FrameOnCanvas test(8, 4, 1);
    QPainter dc(&test.canvas);
    test.frame.setDestination(&dc);
    test.frame.drawAt(10, 10);
    dc.end();
    EXPECT_EQ(test.canvas.pixel(17, 13), qRgb(140, 60, 7));
    EXPECT_EQ(test.canvas.pixel(18, 13), kWhite);
}

} // namespace
} // namespace pulsara
