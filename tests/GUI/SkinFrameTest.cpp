#include "GUI/SkinFrame.h"
#include "GUI/BmpWriter.h"
#include "TestImages.h"

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
                frame.image().setPixel(x, y, source(x, y));
        frame.setCorner(corner);
        canvas.fill(Qt::white);
    }
    static QRgb source(int x, int y) { return qRgb(x * 20, y * 20, 7); }
    int draw(int x, int y, int w, int h)
    {
        QPainter dc(&canvas);
        frame.setDestination(&dc);
        return frame.drawRect(x, y, w, h);
    }
};

TEST(SkinFrame, TilesCornersEdgesAndCentreWithoutScaling)
{
    // The source column of every destination column, and the source row of every row.
    const struct {
        int bitmapWidth, bitmapHeight, corner;
        std::string columns, rows;
    } cases[] = {
        { 4, 5, 1, "012121213", "012314" }, // last pieces narrower than a tile
        { 4, 5, 1, "0121212123", "01231234" }, // last pieces exactly a tile
        { 8, 6, 2, "0167", "0145" }, // exactly 2c: the corners meet, no edges, no centre
        { 8, 6, 2, "01234523452345234523467", "01232323232323245" },
        { 4, 4, 1, "013", "013" }, // a centre of one pixel
    };
    for (const auto& c : cases) {
        int w = static_cast<int>(c.columns.size()), h = static_cast<int>(c.rows.size());
        FrameOnCanvas test(c.bitmapWidth, c.bitmapHeight, c.corner);
        EXPECT_EQ(test.draw(3, 2, w, h), 1);
        for (int dy = 0; dy < h; ++dy)
            for (int dx = 0; dx < w; ++dx)
                ASSERT_EQ(test.canvas.pixel(3 + dx, 2 + dy), FrameOnCanvas::source(c.columns[dx] - '0', c.rows[dy] - '0'))
                    << w << "x" << h << " at " << dx << "," << dy;
        EXPECT_EQ(test.canvas.pixel(3 + w, 2), kWhite);
        EXPECT_EQ(test.canvas.pixel(3, 2 + h), kWhite);
    }
}

TEST(SkinFrame, RefusesOnlyWhenBothTileSidesAreEmptyAndDrawAtCopiesTheWholeBitmap)
{
    FrameOnCanvas noTile(2, 2, 1);
    EXPECT_EQ(noTile.draw(0, 0, 10, 10), 0);
    EXPECT_EQ(noTile.canvas.pixel(0, 0), kWhite);

    // Inner tile 2 x 0: corners and top and bottom edges are drawn, no sides and no centre.
    FrameOnCanvas flat(4, 2, 1);
    EXPECT_EQ(flat.draw(0, 0, 8, 6), 1);
    EXPECT_EQ(flat.canvas.pixel(4, 0), FrameOnCanvas::source(2, 0));
    EXPECT_EQ(flat.canvas.pixel(4, 5), FrameOnCanvas::source(2, 1));
    EXPECT_EQ(flat.canvas.pixel(0, 3), kWhite);
    EXPECT_EQ(flat.canvas.pixel(4, 3), kWhite);

    FrameOnCanvas whole(8, 4, 1);
    QPainter dc(&whole.canvas);
    whole.frame.setDestination(&dc);
    whole.frame.drawAt(10, 10);
    dc.end();
    EXPECT_EQ(whole.canvas.pixel(17, 13), FrameOnCanvas::source(7, 3));
    EXPECT_EQ(whole.canvas.pixel(18, 13), kWhite);
}

TEST(SkinFrame, CornerIsClampedToHalfTheSmallerSideAlsoWhenLoading)
{
    const int cases[][4] = { { 2, 2, 1, 1 }, { 1, 5, 1, 0 }, { 10, 6, 4, 3 }, { 10, 6, 3, 3 } };
    for (const auto& [width, height, corner, expected] : cases)
        EXPECT_EQ(FrameOnCanvas(width, height, corner).frame.corner(), expected) << width << "x" << height;

    QTemporaryDir folder;
    test::writeFile(folder.filePath("thin.bmp"), encodeBmp24(QImage(4, 3, QImage::Format_RGB32)));
    SkinFrame frame;
    frame.load(folder.filePath("thin.bmp").toStdU16String());
    EXPECT_EQ(frame.corner(), 1);
}

} // namespace
} // namespace pulsara
