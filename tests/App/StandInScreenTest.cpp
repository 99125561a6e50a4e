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
        window.client = { 0, 0, 800, 626 };
        screen.handleMessage(kMessageCreate, 0, reinterpret_cast<intptr_t>(static_cast<NativeWindow*>(&window)));
        screen.handleMessage(kMessageSize, 0, 0);
    }
    static void loadSkin()
    {
        test::testApplication();
        theSkin().setInstallDir(u"" PULSARA_SHARE_DIR "/");
        theSkin().load();
    }
    void tap(int32_t x, int32_t y)
    {
        screen.handleMessage(kMessageLeftButtonDown, 0, packPosition(x, y));
        screen.handleMessage(kMessageLeftButtonUp, 0, packPosition(x, y));
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
    OpenScreen::loadSkin();
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
    OpenScreen::loadSkin();
    OpenScreen open;
    // Row 5 starts empty: a drag from column 0 to column 3 paints all four cells.
    QPoint from = open.cell(0, 5), to = open.cell(3, 5);
    open.screen.handleMessage(kMessageLeftButtonDown, 0, packPosition(from.x(), from.y()));
    open.screen.handleMessage(kMessageMouseMove, 0, packPosition(to.x(), to.y()));
    open.screen.handleMessage(kMessageLeftButtonUp, 0, packPosition(to.x(), to.y()));
    ASSERT_FALSE(open.window.invalidated.empty());
    // Each painted cell was handed to the window for repainting.
    QPoint painted = open.cell(3, 5);
    bool cellInvalidated = false;
    for (const ElemRect& rect : open.window.invalidated)
        cellInvalidated |= rect.contains(painted.x(), painted.y());
    EXPECT_TRUE(cellInvalidated);

    // Painting the window now shows the row's colour in the cells.
    open.window.paintRegion = QRegion(open.screen.rect()->toQRect());
    open.screen.handleMessage(kMessagePaint, 0, 0);
    const QImage& buffer = open.screen.backBuffer().image();
    QRgb emptyCell = buffer.pixel(open.cell(9, 5)); // an empty cell of the same beat shading
    for (int column = 0; column < 4; ++column)
        EXPECT_NE(buffer.pixel(open.cell(column, 5)), emptyCell) << column;

    // Starting on a painted cell erases.
    open.tap(open.cell(1, 5).x(), open.cell(1, 5).y());
    open.screen.handleMessage(kMessagePaint, 0, 0);
    EXPECT_EQ(open.screen.backBuffer().image().pixel(open.cell(1, 5)), emptyCell);
}

TEST(StandInScreen, PageButtonsSwitchTheGridBetweenThePatternAndPlaylistStrips)
{
    OpenScreen::loadSkin();
    OpenScreen open;
    open.window.paintRegion = QRegion(open.screen.rect()->toQRect());
    open.screen.handleMessage(kMessagePaint, 0, 0);
    // Row 0 holds a note at column 0 on both pages (a pattern's first step, the first pattern at
    // the song's start), each in its strip's first row colour.
    QRgb patternNote = open.screen.backBuffer().image().pixel(open.cell(0, 0));

    // The second page button, right of the first.
    open.tap(theSkin().draw.width() / 2 + theSkin().hand.width() / 4, open.screen.unitHeight() * 3 / 2);
    open.screen.handleMessage(kMessagePaint, 0, 0);
    QRgb playlistNote = open.screen.backBuffer().image().pixel(open.cell(0, 0));
    EXPECT_NE(playlistNote, patternNote);
    EXPECT_EQ(QColor(playlistNote).rgb(), theSkin().stepsPlst.image().pixel(4 * 28 + 14, 12));
    EXPECT_EQ(QColor(patternNote).rgb(), theSkin().stepsPat.image().pixel(4 * 28 + 14, 12));
}

TEST(StandInScreen, EscapeEndsTheProgram)
{
    OpenScreen::loadSkin();
    OpenScreen open;
    open.window.calls.clear();
    open.screen.handleMessage(kMessageKeyDown, kKeyEscape, 0);
    EXPECT_EQ(open.window.calls, (std::vector<std::string> { "quit" }));
}

} // namespace
} // namespace pulsara
