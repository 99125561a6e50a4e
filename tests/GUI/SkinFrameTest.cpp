#include "GUI/SkinFrame.h"
#include "GUI/BmpWriter.h"
#include "QtTestApplication.h"

#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>

namespace pulsara {
namespace {

// A bitmap whose every pixel names its own source position. Widths are multiples of 4 so that
// the BMP rows need no padding, which the loader would not skip.
QImage positionImage(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 20, y * 20, 7));
    return image;
}

std::u16string writeBmp(const QTemporaryDir& folder, const QString& name, const QImage& image)
{
    QString path = folder.filePath(name);
    std::vector<uint8_t> bytes = encodeBmp24(image);
    std::ofstream(path.toStdString(), std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    return path.toStdU16String();
}

// The source coordinate that tiling puts at destination offset d of a span of `size`.
int tiledSource(int d, int size, int corner, int bitmapSize)
{
    int tile = bitmapSize - 2 * corner;
    if (d < corner)
        return d;
    if (d >= size - corner)
        return bitmapSize - (size - d);
    return corner + (d - corner) % tile;
}

struct FrameOnCanvas {
    QTemporaryDir folder;
    SkinFrame frame;
    QImage canvas { 40, 30, QImage::Format_RGB32 };

    FrameOnCanvas(int width, int height, int corner)
    {
        frame.load(writeBmp(folder, "frame.bmp", positionImage(width, height)));
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
        ASSERT_EQ(test.frame.corner(), c.corner);
        EXPECT_EQ(test.draw(3, 2, c.w, c.h), 1);
        for (int dy = 0; dy < c.h; ++dy) {
            for (int dx = 0; dx < c.w; ++dx) {
                int sx = tiledSource(dx, c.w, c.corner, c.bitmapWidth);
                int sy = tiledSource(dy, c.h, c.corner, c.bitmapHeight);
                ASSERT_EQ(test.canvas.pixel(3 + dx, 2 + dy), qRgb(sx * 20, sy * 20, 7))
                    << c.w << "x" << c.h << " at " << dx << "," << dy;
            }
        }
        // Nothing outside the box is touched.
        EXPECT_EQ(test.canvas.pixel(3 + c.w, 2), qRgb(255, 255, 255));
        EXPECT_EQ(test.canvas.pixel(3, 2 + c.h), qRgb(255, 255, 255));
    }
}

TEST(SkinFrame, RefusesOnlyWhenBothTileSidesAreEmpty)
{
    FrameOnCanvas noTile(2, 2, 1);
    EXPECT_EQ(noTile.draw(0, 0, 10, 10), 0);
    EXPECT_EQ(noTile.canvas.pixel(0, 0), qRgb(255, 255, 255));

    // Inner tile 2 x 0: corners and top and bottom edges are drawn, no sides and no centre.
    FrameOnCanvas flat(4, 2, 1);
    EXPECT_EQ(flat.draw(0, 0, 8, 6), 1);
    EXPECT_EQ(flat.canvas.pixel(4, 0), qRgb(tiledSource(4, 8, 1, 4) * 20, 0, 7));
    EXPECT_EQ(flat.canvas.pixel(4, 5), qRgb(tiledSource(4, 8, 1, 4) * 20, 20, 7));
    EXPECT_EQ(flat.canvas.pixel(0, 3), qRgb(255, 255, 255));
    EXPECT_EQ(flat.canvas.pixel(4, 3), qRgb(255, 255, 255));
}

TEST(SkinFrame, CornerIsClampedToHalfTheSmallerSide)
{
    struct Case {
        int width, height, corner, expected;
    };
    const Case cases[] = {
        { 2, 2, 1, 1 },
        { 1, 5, 1, 0 },
        { 10, 6, 4, 3 },
        { 10, 6, 3, 3 },
    };
    for (const Case& c : cases) {
        FrameOnCanvas test(c.width, c.height, c.corner);
        EXPECT_EQ(test.frame.corner(), c.expected) << c.width << "x" << c.height;
    }
    // A new frame has corner 2; loading clamps it to the new size.
    QTemporaryDir folder;
    SkinFrame frame;
    EXPECT_EQ(frame.corner(), 2);
    frame.load(writeBmp(folder, "thin.bmp", positionImage(4, 3)));
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
    EXPECT_EQ(test.canvas.pixel(18, 13), qRgb(255, 255, 255));
}

} // namespace
} // namespace pulsara
