#pragma once

#include "GUI/EditBox.h"
#include "GUI/ElementContainer.h"
#include "GUI/FramePanel.h"
#include "GUI/ScrollBar.h"
#include "GUI/TextLabel.h"
#include "GUI/Timer.h"

#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class Skin;
class SkinSteps;
class SongEdits;

// The step grid both editors are made of: a ruler row on top, one row per track (or pattern)
// with its label on the left, one column per step (or song position), and a horizontal scroll
// bar at the bottom. It owns the geometry, the scrolling, the cursor and the gestures; the
// derived grids say what a cell is.
//
// Gestures: a touch on a cell paints or erases (decided by the first cell, for the whole drag)
// or, in move mode, carries a note along; a touch on the ruler moves the play position; a tap
// on a row label selects the row; a hold (or the right button's release) on a label opens the
// rename box. Every drag is one undo step.
//
// GUI thread only. The children are members, linked into the tree by raw pointers.
class StepGridView : public ElementContainer {
public:
    enum DragState : int32_t {
        kIdle = 0,
        kPainting = 1,
        kErasing = 2,
        kRulerDrag = 3,
        kMovingCell = 4,
        kMoveOnEmpty = 5,
    };

    static constexpr int32_t kMinLabelWidth = 48;
    static constexpr int32_t kMaxLabelWidth = 120;
    static constexpr uint32_t kHoldMs = 300;
    static constexpr int32_t kScrollRows = 4;
    static constexpr int32_t kWheelColumns = 4;
    // The ruler's pop-up menu.
    static constexpr uint32_t kLoopCommand = 40300;
    static constexpr uint32_t kBeginLoopCommand = 40301;
    static constexpr uint32_t kEndLoopCommand = 40302;
    static constexpr uint32_t kDefaultLoopCommand = 40303;

    StepGridView(Skin&, SkinSteps& strip, SongEdits&);
    ~StepGridView() override;

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int stylusUp(int button, int32_t x, int32_t y) override;
    int stylusMove(int32_t x, int32_t y) override;
    int stylusDoubleClick(int32_t x, int32_t y) override;
    int mouseWheel(int32_t x, int32_t y, int32_t delta, uint32_t keys) override;

    // Paint mode (false) or move mode (true); the cursor's colour shows which.
    virtual void setMoveMode(bool);
    bool moveMode() const { return moveMode_; }

    // Scrolls by whole columns and rows, clamped to the grid: the pixels already drawn move and
    // only what comes into view is drawn. A jump of a screen or more redraws everything.
    void scroll(int32_t dx, int32_t dy);
    // Shows (column, row) at the top left; false (and nothing moves) outside the scroll range.
    bool jumpTo(int32_t column, int32_t row);
    // Moves the cursor by whole cells, scrolling it into view.
    void moveCursor(int32_t dx, int32_t dy);
    // The keyboard's edits at the cursor: Enter toggles the cell, Delete empties it.
    void toggleCursorCell();
    void clearCursorCell();
    // Draws the cell again now (absolute column and row), as after a change of the model.
    void redrawCell(int32_t column, int32_t row);
    void redrawRuler();
    // The column the play marker stands on in the ruler; -1 hides it.
    void setPlayColumn(int32_t);
    int32_t playColumn() const { return playColumn_; }
    // The model changed in ways the grid cannot tell (an undo, a new song): lay out and draw
    // everything again.
    void refresh();
    // A rename box still open takes its text now.
    void closeRenameBox();

    // Called at every stylus-down, so that the owner knows which grid has the keyboard.
    std::function<void()> onActivated;

    int32_t cellWidth() const { return cellWidth_; }
    int32_t cellHeight() const { return cellHeight_; }
    int32_t labelWidth() const { return labelWidth_; }
    int32_t visibleColumns() const { return visibleColumns_; }
    int32_t visibleRows() const { return visibleRows_; }
    int32_t firstColumn() const { return firstColumn_; }
    int32_t firstRow() const { return firstRow_; }
    int32_t cursorColumn() const { return cursorColumn_; }
    int32_t cursorRow() const { return cursorRow_; }
    int32_t dragState() const { return dragState_; }
    const ScrollBar& scrollBar() const { return scrollBar_; }
    bool isRenaming() const { return renameBox_.isOpen(); }
    // The screen rectangle of an absolute cell; row -1 is the ruler.
    ElemRect cellRect(int32_t column, int32_t row) const;
    // The row whose label lies under the point, or -1 outside the label column's rows.
    int32_t labelRowAt(int32_t x, int32_t y) const;

    virtual int32_t columns() const = 0;
    virtual int32_t rows() const = 0;
    virtual std::u16string rowLabel(int32_t row) const = 0;

protected:
    virtual void onRowLabelTap(int32_t row) = 0;
    virtual void setCell(int32_t row, int32_t column, bool on) = 0;
    virtual bool isCellSet(int32_t row, int32_t column) const = 0;
    // Whether the cell is drawn in its row's colour (a note or a placed pattern).
    virtual bool isCellLit(int32_t row, int32_t column) const = 0;
    virtual void pickUpCell() { }
    virtual void moveCell(int32_t fromRow, int32_t fromColumn, int32_t toRow, int32_t toColumn) { }
    virtual uint32_t cellColumnsPerBeat(int32_t row, int32_t column) const { return 4; }
    // Moves the cursor to the absolute cell; the pattern editor also shows its note.
    virtual void selectCell(int32_t column, int32_t row);
    virtual void onCellTouch(int32_t column, int32_t screenRow);
    virtual void onHold(int32_t x, int32_t y);
    // The ruler was touched at the absolute column.
    virtual void setPlayPosition(int32_t column) = 0;
    // The row's name as the rename box starts with it, and what to do with the new name.
    virtual std::u16string rowName(int32_t row) const = 0;
    virtual void renameRow(int32_t row, const std::u16string& name) = 0;
    // The undo step's name for a drag in this state ("Paint notes").
    virtual std::u16string gestureName(int32_t dragState) const = 0;
    // Whether the row's label is drawn as the selected one.
    virtual bool isRowSelected(int32_t row) const { return false; }
    // Extra marks on a ruler cell (the loop markers); drawn after the play marker.
    virtual void drawRulerMarks(DeviceContext*, int32_t column, const ElemRect& cell) { }

    // Opens the rename box over the row's label.
    void openRenameBox(int32_t row);
    // The column of the last cell the gesture touched, counted from the first visible column.
    int32_t lastColumn() const { return lastColumn_; }
    void setDragState(int32_t state) { dragState_ = state; }
    SongEdits& edits() { return edits_; }
    Skin& skin() { return skin_; }

private:
    class HoldTimer : public Timer {
    public:
        explicit HoldTimer(StepGridView& grid) : grid_(grid) { }

    protected:
        int32_t onTimer() override;

    private:
        StepGridView& grid_;
    };

    void cellTouch(int32_t x, int32_t y);
    void endGesture();
    void scrollToFraction(double);
    void updateScrollBar();
    int32_t maxFirstColumn() const;
    int32_t maxFirstRow() const;
    bool isCellVisible(int32_t column, int32_t row) const;

    // Drawing into any context; clipping is the caller's.
    void drawCell(DeviceContext*, int32_t column, int32_t row);
    void drawRulerCell(DeviceContext*, int32_t column);
    void drawLabel(DeviceContext*, int32_t row);
    void drawCursor(DeviceContext*);
    void drawCells(DeviceContext*, int32_t fromScreenColumn, int32_t columnCount, int32_t fromScreenRow, int32_t rowCount);
    void drawColumns(DeviceContext*, int32_t fromScreenColumn, int32_t count);
    void drawRows(DeviceContext*, int32_t fromScreenRow, int32_t count);
    void drawMargins(DeviceContext*);
    // Draws at once into the window's back buffer (with whatever overlays the window shows kept
    // clear) and shows it; before the first paint it only asks for a repaint.
    template<typename Draw>
    void drawNow(const ElemRect& area, Draw draw);

    Skin& skin_;
    SkinSteps& strip_;
    SongEdits& edits_;
    ScrollBar scrollBar_;
    FramePanel topLeftCorner_;
    FramePanel bottomLeftCorner_;
    EditBox renameBox_;
    HoldTimer holdTimer_ { *this };
    QFont font_;

    int32_t cellWidth_ = 1;
    int32_t cellHeight_ = 1;
    int32_t labelWidth_ = kMinLabelWidth;
    int32_t visibleColumns_ = 16;
    int32_t visibleRows_ = 0;
    int32_t firstColumn_ = 0;
    int32_t firstRow_ = 0;
    int32_t cursorColumn_ = 0;
    int32_t cursorRow_ = 0;
    bool moveMode_ = false;
    int32_t dragState_ = kIdle;
    // The last touched cell of the gesture, in screen columns and rows; -1 before the first.
    int32_t lastColumn_ = -1;
    int32_t lastRow_ = -1;
    bool penDown_ = false;
    bool pressedOnLabel_ = false;
    int32_t holdX_ = 0;
    int32_t holdY_ = 0;
    int32_t playColumn_ = -1;
    int32_t renamingRow_ = -1;
};

} // namespace pulsara
