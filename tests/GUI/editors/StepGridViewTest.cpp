// The step grid's geometry, gestures, labels, scrolling and the playlist's loop pop-up, driven
// through the window messages on both editor pages.
#include "EditorHarness.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <cmath>

using namespace pulsara;
using namespace pulsara::test;

namespace {

constexpr int kPatternPage = 0;
constexpr int kPlaylistPage = 1;

struct Cell {
    int column, row;
    float volume = 1.0f;
    bool operator==(const Cell&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Cell& cell) { return out << "(" << cell.column << "," << cell.row << " " << cell.volume << ")"; }

// The cells that hold something: notes (with their volumes) or placed patterns.
std::vector<Cell> setCells(Editors& editors, int page)
{
    std::vector<Cell> cells;
    for (uint32_t row = 0; row < 8; ++row)
        for (uint32_t column = 0; column < 16; ++column) {
            Step step = editors.song.player().pattern(0).cell(row, column);
            if (page == kPatternPage ? step.isNote() : editors.song.player().playlist().isOn(row, column))
                cells.push_back({ int(column), int(row), page == kPatternPage ? step.volume : 1.0f });
        }
    return cells;
}

} // namespace

TEST(StepGridView, LaysOutLabelsColumnsRowsAndTheScrollThumbAndLabelsNoRowPastTheBanks)
{
    struct Case {
        int page, width, height, steps;
        int labelWidth, visibleColumns, visibleRows;
        double thumb;
    };
    // Cells are 28 x 16; the pattern page keeps 226 pixels of its width for the side panel. The
    // screenshots pin both pages with the narrowest label column and a partial thumb.
    const Case cases[] = {
        { kPatternPage, 800, 700, 16, 120, 16, 40, 1.0 }, // room to spare: the widest label column
        { kPatternPage, 760, 700, 16, 86, 16, 40, 1.0 }, // the label column takes what the cells leave
        { kPatternPage, 800, 700, 64, 48, 18, 40, 18.0 / 64 },
    };
    for (const Case& c : cases) {
        Editors editors(c.width, c.height);
        editors.edits.setPatternLength(4, uint32_t(c.steps));
        editors.editor.showPage(c.page);
        editors.grid(c.page).refresh();
        const StepGridView& grid = editors.grid(c.page);
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height) + " page " + std::to_string(c.page));
        EXPECT_EQ(grid.labelWidth(), c.labelWidth);
        EXPECT_EQ(grid.visibleColumns(), c.visibleColumns);
        EXPECT_EQ(grid.visibleRows(), c.visibleRows);
        EXPECT_DOUBLE_EQ(grid.scrollBar().thumb(), c.thumb);
    }
    // The labels of the rows shown (a track's or pattern's name, else its number from 1) are
    // pinned by the screenshots; past the last row there is none.
    Editors editors;
    EXPECT_EQ(editors.grid(kPatternPage).rowLabel(40), u"");
    EXPECT_EQ(editors.grid(kPlaylistPage).rowLabel(40), u"");
}

TEST(StepGridView, GesturesEditCellsAsOneUndoStep)
{
    struct Case {
        const char* name;
        int page;
        bool moveMode;
        std::vector<Cell> before;
        std::vector<Cell> path; // pressed on the first cell, moved over the others, released on the last
        std::vector<Cell> after;
        const char* step; // the undo step's name; null when nothing changed
    };
    const Case cases[] = {
        { "a tap paints", kPatternPage, false, {}, { { 2, 1 } }, { { 2, 1 } }, "Paint notes" },
        { "a tap on a note erases it", kPatternPage, false, { { 2, 1 } }, { { 2, 1 } }, {}, "Erase notes" },
        { "a drag fills the cells it skipped", kPatternPage, false, {}, { { 1, 0 }, { 5, 0 } }, { { 1, 0 }, { 2, 0 }, { 3, 0 }, { 4, 0 }, { 5, 0 } },
            "Paint notes" },
        { "a drag backwards fills too", kPatternPage, false, {}, { { 6, 2 }, { 3, 2 } }, { { 3, 2 }, { 4, 2 }, { 5, 2 }, { 6, 2 } }, "Paint notes" },
        { "a drag from a note erases all the way", kPatternPage, false, { { 1, 0 }, { 3, 0 }, { 6, 0 } }, { { 1, 0 }, { 2, 0 }, { 4, 0 } },
            { { 6, 0 } }, "Erase notes" },
        { "a drag from an empty cell paints over notes", kPatternPage, false, { { 3, 0, 0.5f } }, { { 1, 0 }, { 4, 0 } },
            { { 1, 0 }, { 2, 0 }, { 3, 0 }, { 4, 0 } }, "Paint notes" },
        { "moving on the same cell does nothing more", kPatternPage, false, {}, { { 1, 1 }, { 1, 1 }, { 1, 1 } }, { { 1, 1 } }, "Paint notes" },
        { "move mode carries a note over others", kPatternPage, true, { { 1, 0, 0.25f }, { 3, 0, 0.5f } }, { { 1, 0 }, { 2, 0 }, { 3, 0 }, { 4, 0 } },
            { { 3, 0, 0.5f }, { 4, 0, 0.25f } }, "Move note" },
        { "move mode carries a note to another row", kPatternPage, true, { { 1, 0, 0.25f } }, { { 1, 0 }, { 1, 1 }, { 1, 2 } },
            { { 1, 2, 0.25f } }, "Move note" },
        { "move mode from an empty cell changes nothing", kPatternPage, true, { { 3, 0 } }, { { 1, 0 }, { 3, 0 } }, { { 3, 0 } }, nullptr },
        { "a tap places a pattern", kPlaylistPage, false, {}, { { 4, 2 } }, { { 4, 2 } }, "Place patterns" },
        { "a drag removes patterns", kPlaylistPage, false, { { 0, 0 }, { 1, 0 }, { 2, 0 } }, { { 0, 0 }, { 2, 0 } }, {}, "Remove patterns" },
        { "move mode moves a pattern", kPlaylistPage, true, { { 0, 1 } }, { { 0, 1 }, { 1, 1 }, { 2, 1 } }, { { 2, 1 } }, "Move pattern" },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Editors editors;
        editors.editor.showPage(c.page);
        editors.editor.setMoveMode(c.moveMode);
        for (const Cell& cell : c.before) {
            if (c.page == kPatternPage)
                editors.song.player().pattern(0).setCell(uint32_t(cell.row), uint32_t(cell.column), { cell.volume, 1.0f, 0 });
            else
                editors.song.player().playlist().set(uint32_t(cell.row), uint32_t(cell.column), 1.0f);
        }
        editors.press(editors.cell(c.page, c.path.front().column, c.path.front().row));
        for (size_t i = 1; i < c.path.size(); ++i)
            editors.move(editors.cell(c.page, c.path[i].column, c.path[i].row));
        editors.release(editors.cell(c.page, c.path.back().column, c.path.back().row));
        EXPECT_EQ(setCells(editors, c.page), c.after);
        QUndoStack& history = editors.edits.history();
        ASSERT_EQ(history.count(), c.step ? 1 : 0);
        if (!c.step)
            continue;
        EXPECT_EQ(history.undoText().toStdString(), c.step);
        history.undo();
        EXPECT_EQ(setCells(editors, c.page), c.before) << "after undo";
        history.redo();
        EXPECT_EQ(setCells(editors, c.page), c.after) << "after redo";
    }
}

TEST(StepGridView, RulerTouchesMoveThePlayPositionAndNoCell)
{
    Editors editors;
    editors.song.player().pattern(0).setCell(0, 5, kDefaultNote);
    editors.press(editors.cell(kPatternPage, 5, -1));
    editors.move(editors.cell(kPatternPage, 7, 0)); // a ruler drag follows the columns on any row
    editors.release(editors.cell(kPatternPage, 7, 0));
    EXPECT_EQ(editors.host.steps, (std::vector<int32_t> { 5, 7 }));
    EXPECT_EQ(setCells(editors, kPatternPage), (std::vector<Cell> { { 5, 0 } }));
    EXPECT_EQ(editors.edits.history().count(), 0);

    editors.editor.showPage(kPlaylistPage);
    editors.grid(kPlaylistPage).jumpTo(10, 0);
    editors.click(editors.cell(kPlaylistPage, 12, -1));
    EXPECT_EQ(editors.host.songPositions, (std::vector<int32_t> { 12 }));
    EXPECT_EQ(editors.host.playedPattern, -1) << "the ruler plays the song";
}

TEST(StepGridView, LabelTapSelectsAndHoldOrDoubleClickRenames)
{
    Editors editors;
    uint32_t shownSlot = 99;
    editors.editor.patternPage().editor().onInstrumentSelected = [&](uint32_t slot, const std::u16string&) { shownSlot = slot; };
    editors.click(editors.label(kPatternPage, 3));
    EXPECT_EQ(shownSlot, 3u);
    EXPECT_EQ(editors.host.topBarMode, EditorHost::kTrackMode);
    EXPECT_EQ(editors.window.textEdit, nullptr) << "a tap opens no rename box";

    // The right button's release is a hold: the box opens over the label with the name.
    editors.song.instrument(5).setName(u"Bass");
    editors.click(editors.label(kPatternPage, 5), 1);
    ASSERT_NE(editors.window.textEdit, nullptr);
    EXPECT_TRUE(editors.window.textEdit->shown);
    EXPECT_EQ(editors.window.textEdit->content, u"Bass");
    EXPECT_EQ(editors.window.textEdit->geometry.y, editors.grid(kPatternPage).cellRect(0, 5).y);
    editors.window.textEdit->enter(u"Sub bass", true);
    EXPECT_EQ(editors.song.instrument(5).name(), u"Sub bass");
    EXPECT_EQ(editors.edits.history().undoText().toStdString(), "Rename instrument");

    // Escape keeps the name; a double click opens the box too, on the playlist a pattern's.
    editors.editor.showPage(kPlaylistPage);
    editors.doubleClick(editors.label(kPlaylistPage, 2));
    EXPECT_TRUE(editors.window.textEdit->shown);
    editors.window.textEdit->enter(u"Verse", false);
    EXPECT_EQ(editors.song.player().patternName(2), u"");
    editors.doubleClick(editors.label(kPlaylistPage, 2));
    editors.window.textEdit->enter(u"Verse", true);
    EXPECT_EQ(editors.song.player().patternName(2), u"Verse");

    // A pattern's label on the playlist chooses it for the pattern page and plays it.
    editors.click(editors.label(kPlaylistPage, 2));
    EXPECT_EQ(editors.editor.pattern(), 2u);
    EXPECT_EQ(editors.host.playedPattern, 2);
    EXPECT_EQ(editors.host.topBarMode, EditorHost::kPatternMode);
}

TEST(StepGridView, LoopPopupSetsTheLoop)
{
    struct Case {
        uint32_t command;
        int column;
        int32_t startBefore, endBefore, startAfter, endAfter;
    };
    const Case cases[] = {
        { StepGridView::kLoopCommand, 4, 0, -1, 4, 4 },
        { StepGridView::kDefaultLoopCommand, 4, 4, 4, 0, -1 }, // "Default" after "Loop" plays the whole song
        { StepGridView::kEndLoopCommand, 9, 2, -1, 2, 9 }, // the end alone; the begin stays
        { StepGridView::kBeginLoopCommand, 3, 2, 9, 3, 9 },
        { 0, 3, 2, 9, 2, 9 }, // the menu dismissed
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        Editors editors;
        editors.editor.showPage(kPlaylistPage);
        editors.song.player().setLoopStart(c.startBefore);
        editors.song.player().setLoopEnd(c.endBefore);
        editors.window.popupChoice = c.command;
        // The right button on the ruler: a ruler touch, then the hold.
        editors.click(editors.cell(kPlaylistPage, c.column, -1), 1);
        ASSERT_EQ(editors.window.popupItems.size(), 6u);
        EXPECT_EQ(editors.window.popupItems[0].text, u"Loop");
        EXPECT_EQ(editors.window.popupAt.x, editors.grid(kPlaylistPage).cellRect(c.column + 1, 0).x);
        EXPECT_EQ(std::pair(editors.song.player().loopStart(), editors.song.player().loopEnd()), std::pair(c.startAfter, c.endAfter));
        EXPECT_EQ(editors.grid(kPlaylistPage).dragState(), StepGridView::kIdle);
    }
}

TEST(StepGridView, ScrollingDrawsWhatAFullRepaintDraws)
{
    Editors editors(800, 400);
    editors.edits.setPatternLength(8, 64);
    for (uint32_t step = 0; step < 64; step += 3)
        editors.song.player().pattern(0).setCell(step % 40, step, kDefaultNote);
    editors.grid(kPatternPage).refresh();
    editors.paint();
    StepGridView& grid = editors.grid(kPatternPage);
    const QPoint inside = editors.cell(kPatternPage, 2, 2);
    struct Step {
        const char* what;
        std::function<void()> act;
        int firstColumn, firstRow;
    };
    const Step steps[] = {
        { "a notch down scrolls 4 rows", [&] { editors.wheel(inside, -1); }, 0, 4 },
        { "Shift and the wheel scroll columns", [&] { editors.wheel(inside, -1, kWheelShift); }, 4, 4 },
        { "the scroll bar's right arrow", [&] { editors.click({ grid.scrollBar().rect()->right() - 2, editors.centre(grid.scrollBar()).y() }); }, 5, 4 },
        // The cursor stands in column 0: bringing row 30 into view scrolls both ways at once.
        { "a cursor move past the edge", [&] { grid.moveCursor(0, 30); }, 0, 30 - 23 + 1 },
        { "a jump of more than a screen", [&] { editors.wheel(inside, -5, kWheelShift); }, 20, 8 },
        { "no further than the last row", [&] { editors.wheel(inside, -9); }, 20, 40 - 23 },
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.act();
        // What changed besides the cells (the scroll bar) is drawn by the repaint timer.
        editors.root.repaintChanged();
        EXPECT_EQ(grid.firstColumn(), step.firstColumn);
        EXPECT_EQ(grid.firstRow(), step.firstRow);
        QImage scrolled = editors.image().copy(grid.rect()->toQRect());
        editors.paint();
        EXPECT_TRUE(scrolled == editors.image().copy(grid.rect()->toQRect()));
    }
}

TEST(StepGridView, KeysMoveTheCursorAndEditAtIt)
{
    Editors editors;
    StepGridView& grid = editors.grid(kPatternPage);
    grid.moveCursor(3, 2);
    grid.toggleCursorCell();
    EXPECT_EQ(setCells(editors, kPatternPage), (std::vector<Cell> { { 3, 2 } }));
    grid.moveCursor(-10, 0); // stops at the first column
    EXPECT_EQ(grid.cursorColumn(), 0);
    grid.moveCursor(3, 0);
    grid.clearCursorCell();
    EXPECT_TRUE(setCells(editors, kPatternPage).empty());
    grid.clearCursorCell(); // an empty cell stays empty, and no step is recorded for it
    EXPECT_EQ(editors.edits.history().count(), 2);
    EXPECT_EQ(editors.edits.history().undoText().toStdString(), "Erase notes");
}
