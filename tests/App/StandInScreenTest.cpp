#include "App/StandInScreen.h"
#include "GUI/FakeWindow.h"
#include "GUI/QtTestApplication.h"
#include "GUI/Skin.h"
#include "GUI/WindowMessage.h"

#include <gtest/gtest.h>

namespace pulsara {
namespace {

struct OpenScreen {
    test::FakeWindow window;
    StandInScreen screen { theSkin() };

    OpenScreen()
    {
        test::testApplication();
        theSkin().setInstallDir(u"" PULSARA_SHARE_DIR "/");
        theSkin().load();
        window.client = { 0, 0, 800, 626 };
        screen.handleMessage(kMessageCreate, 0, reinterpret_cast<intptr_t>(static_cast<NativeWindow*>(&window)));
        screen.handleMessage(kMessageSize, 0, 0);
        window.paintRegion = QRegion(screen.rect()->toQRect());
    }
    void stylus(uint32_t message, QPoint at) { screen.handleMessage(message, 0, packPosition(at.x(), at.y())); }
    void tap(QPoint at)
    {
        stylus(kMessageLeftButtonDown, at);
        stylus(kMessageLeftButtonUp, at);
    }
    QRgb paintedPixel(QPoint at)
    {
        screen.handleMessage(kMessagePaint, 0, 0);
        return screen.backBuffer().image().pixel(at);
    }
    // The centre of the grid cell at a column and a track row.
    QPoint cell(int32_t column, int32_t row)
    {
        StepGridPreview& grid = screen.grid();
        return { grid.rect()->x + grid.labelWidth() + column * grid.cellWidth() + grid.cellWidth() / 2,
            grid.rect()->y + (row + 1) * grid.cellHeight() + grid.cellHeight() / 2 };
    }
};

TEST(StandInScreen, LaysOutTheGridWithTheEditorsGeometryRules)
{
    OpenScreen open;
    StepGridPreview& grid = open.screen.grid();
    EXPECT_EQ(*open.screen.rect(), (ElemRect { 0, 0, 800, 600 }));
    EXPECT_EQ(grid.cellWidth(), 28);
    EXPECT_EQ(grid.cellHeight(), 24);
    // 32 steps of 28 pixels do not fit: the label column is the narrowest, 48.
    EXPECT_EQ(grid.labelWidth(), 48);
    EXPECT_EQ(grid.visibleColumns(), (grid.rect()->width - 48) / 28);
    EXPECT_EQ(grid.rect()->y, 2 * open.screen.unitHeight() + 6);
}

TEST(StandInScreen, TapsReachTheGridThroughThePanelsAndDragsPaintEveryCell)
{
    OpenScreen open;
    // Row 5 starts empty: a drag from column 0 to column 3 paints all four cells.
    open.stylus(kMessageLeftButtonDown, open.cell(0, 5));
    open.stylus(kMessageMouseMove, open.cell(3, 5));
    open.stylus(kMessageLeftButtonUp, open.cell(3, 5));
    // Each painted cell was handed to the window for repainting.
    bool cellInvalidated = false;
    for (const ElemRect& rect : open.window.invalidated)
        cellInvalidated |= rect.contains(open.cell(3, 5).x(), open.cell(3, 5).y());
    EXPECT_TRUE(cellInvalidated);
    QRgb emptyCell = open.paintedPixel(open.cell(9, 5)); // an empty cell of the same beat shading
    for (int column = 0; column < 4; ++column)
        EXPECT_NE(open.paintedPixel(open.cell(column, 5)), emptyCell) << column;
    // Starting on a painted cell erases.
    open.tap(open.cell(1, 5));
    EXPECT_EQ(open.paintedPixel(open.cell(1, 5)), emptyCell);
}

TEST(StandInScreen, PageButtonsSwitchTheGridBetweenThePatternAndPlaylistStrips)
{
    OpenScreen open;
    // Row 0 holds a note at column 0 on both pages (a pattern's first step, the first pattern at
    // the song's start), each in its strip's first row colour.
    QRgb patternNote = open.paintedPixel(open.cell(0, 0));
    // The second page button, right of the first.
    open.tap({ theSkin().draw.width() / 2 + theSkin().hand.width() / 4, open.screen.unitHeight() * 3 / 2 });
    QRgb playlistNote = open.paintedPixel(open.cell(0, 0));
    EXPECT_NE(playlistNote, patternNote);
    EXPECT_EQ(QColor(playlistNote).rgb(), theSkin().stepsPlst.image().pixel(4 * 28 + 14, 12));
    EXPECT_EQ(QColor(patternNote).rgb(), theSkin().stepsPat.image().pixel(4 * 28 + 14, 12));
}

} // namespace
} // namespace pulsara
