#include "GUI/editors/StepGridView.h"

#include "GUI/NativeWindow.h"
#include "GUI/PixelScroll.h"
#include "GUI/RectPainter.h"
#include "GUI/RootElement.h"
#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "GUI/UiFont.h"
#include "GUI/WindowMessage.h"
#include "GUI/editors/SongEdits.h"
#include "base/text.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstdlib>

namespace pulsara {

namespace {

// The cursor's frame: light yellow while painting, red while moving.
const QColor kPaintCursor(0xff, 0xff, 0x88);
const QColor kMoveCursor(0xff, 0x00, 0x00);
const QColor kLabelText(0xdc, 0xe1, 0xea);
const QColor kSelectedLabelText(0x2e, 0xc4, 0xb6);
const QColor kRulerText(0x8a, 0x93, 0xa3);
const QColor kPlayMarker(0x4c, 0xd9, 0x64);
constexpr int32_t kMaxNameLength = 31;

int32_t sign(int32_t value)
{
    return value < 0 ? -1 : 1;
}

} // namespace

StepGridView::StepGridView(Skin& skin, SkinSteps& strip, SongEdits& edits)
    : skin_(skin)
    , strip_(strip)
    , edits_(edits)
    , topLeftCorner_(&skin.panelD)
    , bottomLeftCorner_(&skin.panelD)
{
    font_ = uiFont(11, QFont::Bold);
    scrollBar_.setSkin(&skin.panelD, &skin.panel);
    scrollBar_.onScroll = [this](double fraction) { scrollToFraction(fraction); };
    renameBox_.onFinished = [this](bool accepted, const std::u16string& text) {
        int32_t row = renamingRow_;
        renamingRow_ = -1;
        if (accepted && row >= 0 && row < rows())
            renameRow(row, text);
        redraw();
    };
    addChild(&scrollBar_);
    addChild(&topLeftCorner_);
    addChild(&bottomLeftCorner_);
    addChild(&renameBox_);
}

StepGridView::~StepGridView() = default;

// Geometry.

void StepGridView::layout(const ElemRect& rect)
{
    Element::layout(rect);
    cellWidth_ = std::max(1, strip_.cellWidth());
    cellHeight_ = std::max(1, strip_.cellHeight());
    visibleRows_ = std::clamp(rect.height / cellHeight_ - 2, 0, rows());
    labelWidth_ = cellWidth_ * columns() > rect.width - kMinLabelWidth ? kMinLabelWidth : rect.width - cellWidth_ * columns();
    labelWidth_ = std::min(labelWidth_, kMaxLabelWidth);
    visibleColumns_ = std::max(0, (rect.width - labelWidth_) / cellWidth_);
    if (firstColumn_ + visibleColumns_ > columns())
        firstColumn_ = 0;
    firstRow_ = std::clamp(firstRow_, 0, maxFirstRow());
    scrollBar_.layout({ rect.x + labelWidth_, rect.bottom() - cellHeight_, rect.width - labelWidth_, cellHeight_ });
    updateScrollBar();
    topLeftCorner_.layout({ rect.x, rect.y, labelWidth_, cellHeight_ });
    bottomLeftCorner_.layout({ rect.x, rect.bottom() - cellHeight_, labelWidth_, cellHeight_ });
    if (renamingRow_ >= 0)
        closeRenameBox();
}

int32_t StepGridView::maxFirstColumn() const
{
    return std::max(0, columns() - visibleColumns_);
}

int32_t StepGridView::maxFirstRow() const
{
    return std::max(0, rows() - visibleRows_);
}

void StepGridView::updateScrollBar()
{
    if (visibleColumns_ >= columns()) {
        firstColumn_ = 0;
        scrollBar_.setThumb(1.0);
        scrollBar_.setPosition(0.0);
        return;
    }
    const int32_t hidden = columns() - visibleColumns_;
    scrollBar_.setThumb(double(visibleColumns_) / columns());
    scrollBar_.setStep(1.0 / hidden);
    scrollBar_.setPosition(double(firstColumn_) / hidden);
}

ElemRect StepGridView::cellRect(int32_t column, int32_t row) const
{
    return { rect_.x + labelWidth_ + (column - firstColumn_) * cellWidth_, rect_.y + (row - firstRow_ + 1) * cellHeight_,
        cellWidth_, cellHeight_ };
}

bool StepGridView::isCellVisible(int32_t column, int32_t row) const
{
    return column >= firstColumn_ && column < firstColumn_ + visibleColumns_ && column < columns() && row >= firstRow_
        && row < firstRow_ + visibleRows_ && row < rows();
}

int32_t StepGridView::labelRowAt(int32_t x, int32_t y) const
{
    if (x < rect_.x || x >= rect_.x + labelWidth_ || y < rect_.y + cellHeight_ || y >= rect_.bottom() - cellHeight_)
        return -1;
    int32_t row = firstRow_ + (y - rect_.y) / cellHeight_ - 1;
    return row < rows() && row < firstRow_ + visibleRows_ ? row : -1;
}

// Drawing.

void StepGridView::drawCell(DeviceContext* dc, int32_t column, int32_t row)
{
    const uint32_t beat = std::max<uint32_t>(1, cellColumnsPerBeat(row, column));
    const int32_t parity = int32_t(uint32_t(column) / beat % 2);
    const int32_t colours = std::max(1, strip_.count());
    const int32_t colour = isCellLit(row, column) ? (row % colours + 1) * 2 : 0;
    ElemRect cell = cellRect(column, row);
    strip_.setDestination(dc);
    strip_.drawImage(colour + parity + 2, cell.x, cell.y);
}

void StepGridView::drawRulerCell(DeviceContext* dc, int32_t column)
{
    const uint32_t beat = std::max<uint32_t>(1, cellColumnsPerBeat(0, column));
    ElemRect cell = cellRect(column, -1);
    cell.y = rect_.y;
    strip_.setDestination(dc);
    strip_.drawImage(int32_t(uint32_t(column) / beat % 2), cell.x, cell.y);
    if (uint32_t(column) % beat == 0) {
        std::u16string number = fromUtf8(std::to_string(uint32_t(column) / beat + 1));
        dc->setPen(kRulerText);
        TextPainter text(TextPainter::kLeft);
        text.setText(number.c_str());
        text.setDestination(dc);
        text.drawRect(cell.x + 3, cell.y, cell.width - 3, cell.height - 3);
    }
    if (column == playColumn_)
        dc->fillRect(cell.x + 1, cell.bottom() - 3, cell.width - 1, 3, kPlayMarker);
    drawRulerMarks(dc, column, cell);
}

void StepGridView::drawLabel(DeviceContext* dc, int32_t row)
{
    ElemRect label { rect_.x, rect_.y + (row - firstRow_ + 1) * cellHeight_, labelWidth_, cellHeight_ };
    skin_.panelBckD.setDestination(dc);
    skin_.panelBckD.drawInRect(label);
    std::u16string text = rowLabel(row);
    dc->setPen(isRowSelected(row) ? kSelectedLabelText : kLabelText);
    TextPainter painter;
    painter.setText(text.c_str());
    painter.setDestination(dc);
    painter.drawRect(label.x + 2, label.y, label.width - 4, label.height);
}

void StepGridView::drawCursor(DeviceContext* dc)
{
    if (!isCellVisible(cursorColumn_, cursorRow_))
        return;
    RectPainter frame(moveMode_ ? kMoveCursor : kPaintCursor);
    frame.setDestination(dc);
    frame.drawInRect(cellRect(cursorColumn_, cursorRow_));
}

void StepGridView::drawCells(DeviceContext* dc, int32_t fromScreenColumn, int32_t columnCount, int32_t fromScreenRow, int32_t rowCount)
{
    const int32_t lastColumn = std::min({ fromScreenColumn + columnCount, visibleColumns_, columns() - firstColumn_ });
    const int32_t lastRow = std::min({ fromScreenRow + rowCount, visibleRows_, rows() - firstRow_ });
    for (int32_t r = std::max(0, fromScreenRow); r < lastRow; ++r) {
        for (int32_t c = std::max(0, fromScreenColumn); c < lastColumn; ++c)
            drawCell(dc, firstColumn_ + c, firstRow_ + r);
    }
}

void StepGridView::drawColumns(DeviceContext* dc, int32_t fromScreenColumn, int32_t count)
{
    const int32_t lastColumn = std::min({ fromScreenColumn + count, visibleColumns_, columns() - firstColumn_ });
    for (int32_t c = std::max(0, fromScreenColumn); c < lastColumn; ++c)
        drawRulerCell(dc, firstColumn_ + c);
    drawCells(dc, fromScreenColumn, count, 0, visibleRows_);
}

void StepGridView::drawRows(DeviceContext* dc, int32_t fromScreenRow, int32_t count)
{
    const int32_t lastRow = std::min({ fromScreenRow + count, visibleRows_, rows() - firstRow_ });
    for (int32_t r = std::max(0, fromScreenRow); r < lastRow; ++r)
        drawLabel(dc, firstRow_ + r);
    drawCells(dc, 0, visibleColumns_, fromScreenRow, count);
}

void StepGridView::drawMargins(DeviceContext* dc)
{
    // What the cells do not cover: right of the last column and below the last row.
    const int32_t cellsRight = rect_.x + labelWidth_ + std::min(visibleColumns_, columns() - firstColumn_) * cellWidth_;
    const int32_t rowsBottom = rect_.y + (std::min(visibleRows_, rows() - firstRow_) + 1) * cellHeight_;
    const int32_t barTop = rect_.bottom() - cellHeight_;
    SkinFrame& margin = strip_.panelD() ? *strip_.panelD() : skin_.panelD;
    margin.setDestination(dc);
    if (cellsRight < rect_.right())
        margin.drawRect(cellsRight, rect_.y, rect_.right() - cellsRight, std::min(rowsBottom, barTop) - rect_.y);
    if (rowsBottom < barTop)
        margin.drawRect(rect_.x, rowsBottom, rect_.width, barTop - rowsBottom);
}

int StepGridView::paint(DeviceContext* dc, uint32_t mode)
{
    const bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll && !rect_.isEmpty()) {
        dc->setFont(font_);
        drawMargins(dc);
        // Only the columns and rows the paint reaches: a small update draws a few cells.
        QRect area = rect_.toQRect();
        if (dc->hasClipping())
            area &= dc->clipBoundingRect().toAlignedRect();
        const int32_t cellsLeft = rect_.x + labelWidth_;
        const int32_t fromColumn = std::max(0, (area.left() - cellsLeft) / cellWidth_);
        const int32_t toColumn = (area.right() - cellsLeft) / cellWidth_ + 1;
        const int32_t fromRow = std::max(0, (area.top() - rect_.y) / cellHeight_ - 1);
        const int32_t toRow = (area.bottom() - rect_.y) / cellHeight_;
        if (area.top() < rect_.y + cellHeight_ && area.right() >= cellsLeft) {
            for (int32_t c = fromColumn; c < std::min({ toColumn, visibleColumns_, columns() - firstColumn_ }); ++c)
                drawRulerCell(dc, firstColumn_ + c);
        }
        if (area.left() < cellsLeft) {
            for (int32_t r = fromRow; r < std::min({ toRow, visibleRows_, rows() - firstRow_ }); ++r)
                drawLabel(dc, firstRow_ + r);
        }
        if (area.right() >= cellsLeft)
            drawCells(dc, fromColumn, toColumn - fromColumn, fromRow, toRow - fromRow);
        drawCursor(dc);
    }
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

template<typename Draw>
void StepGridView::drawNow(const ElemRect& area, Draw draw)
{
    // A page that is not shown keeps its state; it is drawn whole when it comes back.
    if (!isShown())
        return;
    RootElement* root = window();
    DeviceContext* dc = root ? root->acquireContext() : nullptr;
    if (!dc) {
        invalidateRect(area);
        return;
    }
    QRegion clip = QRegion(area.toQRect()) & QRegion(rect_.toQRect());
    // A pop-up shown over the grid keeps its pixels.
    if (Element* overlay = root->overlay())
        clip -= QRegion(overlay->rect()->toQRect());
    dc->setClipRegion(clip);
    dc->setFont(font_);
    draw(dc);
    root->releaseContext(dc, clip);
}

void StepGridView::redrawCell(int32_t column, int32_t row)
{
    if (!isCellVisible(column, row))
        return;
    drawNow(cellRect(column, row), [&](DeviceContext* dc) {
        drawCell(dc, column, row);
        if (column == cursorColumn_ && row == cursorRow_)
            drawCursor(dc);
    });
}

void StepGridView::redrawRuler()
{
    drawNow({ rect_.x + labelWidth_, rect_.y, visibleColumns_ * cellWidth_, cellHeight_ },
        [&](DeviceContext* dc) { drawColumns(dc, 0, visibleColumns_); });
}

void StepGridView::setPlayColumn(int32_t column)
{
    if (column == playColumn_)
        return;
    int32_t old = playColumn_;
    playColumn_ = column;
    for (int32_t changed : { old, column }) {
        if (changed < firstColumn_ || changed >= firstColumn_ + visibleColumns_ || changed >= columns())
            continue;
        ElemRect cell = cellRect(changed, -1);
        cell.y = rect_.y;
        drawNow(cell, [&](DeviceContext* dc) { drawRulerCell(dc, changed); });
    }
}

void StepGridView::refresh()
{
    layout(rect_);
    cursorColumn_ = std::clamp(cursorColumn_, 0, std::max(0, columns() - 1));
    cursorRow_ = std::clamp(cursorRow_, 0, std::max(0, rows() - 1));
    redraw();
}

// Scrolling.

void StepGridView::scroll(int32_t dx, int32_t dy)
{
    const int32_t column = std::clamp(firstColumn_ + dx, 0, maxFirstColumn());
    const int32_t row = std::clamp(firstRow_ + dy, 0, maxFirstRow());
    dx = column - firstColumn_;
    dy = row - firstRow_;
    if (dx == 0 && dy == 0)
        return;
    RootElement* root = window();
    const bool overlaid = root && root->overlay() && !(QRect(rect_.toQRect()) & root->overlay()->rect()->toQRect()).isEmpty();
    if (std::abs(dx) >= visibleColumns_ || std::abs(dy) >= visibleRows_ - 1 || overlaid || !root || root->backBuffer().isEmpty()
        || !isShown()) {
        firstColumn_ = column;
        firstRow_ = row;
        updateScrollBar();
        redraw();
        return;
    }
    const int32_t shownColumns = std::min(visibleColumns_, columns() - firstColumn_);
    DeviceContext* dc = root->acquireContext();
    if (!dc)
        return;
    dc->setClipRect(rect_.toQRect());
    dc->setFont(font_);
    // The cursor's frame must not travel with the pixels.
    const bool cursorShown = isCellVisible(cursorColumn_, cursorRow_);
    ElemRect oldCursor = cellRect(cursorColumn_, cursorRow_);
    if (cursorShown)
        drawCell(dc, cursorColumn_, cursorRow_);
    auto* image = static_cast<QImage*>(dc->device());
    NativeWindow* native = root->windowHandle();
    QRegion exposed;
    if (dx != 0) {
        QRect columnsArea(rect_.x + labelWidth_, rect_.y, shownColumns * cellWidth_, (visibleRows_ + 1) * cellHeight_);
        scrollPixels(*image, columnsArea, -dx * cellWidth_, 0);
        firstColumn_ = column;
        const int32_t from = dx > 0 ? shownColumns - dx : 0;
        drawColumns(dc, from, std::abs(dx));
        exposed += QRect(columnsArea.x() + from * cellWidth_, columnsArea.y(), std::abs(dx) * cellWidth_, columnsArea.height());
        if (native)
            native->scrollContent({ columnsArea.x(), columnsArea.y(), columnsArea.width(), columnsArea.height() }, -dx * cellWidth_, 0);
        oldCursor.x -= dx * cellWidth_;
    }
    if (dy != 0) {
        QRect rowsArea(rect_.x, rect_.y + cellHeight_, labelWidth_ + shownColumns * cellWidth_, visibleRows_ * cellHeight_);
        scrollPixels(*image, rowsArea, 0, -dy * cellHeight_);
        firstRow_ = row;
        const int32_t from = dy > 0 ? visibleRows_ - dy : 0;
        drawRows(dc, from, std::abs(dy));
        exposed += QRect(rowsArea.x(), rowsArea.y() + from * cellHeight_, rowsArea.width(), std::abs(dy) * cellHeight_);
        if (native)
            native->scrollContent({ rowsArea.x(), rowsArea.y(), rowsArea.width(), rowsArea.height() }, 0, -dy * cellHeight_);
        oldCursor.y -= dy * cellHeight_;
    }
    drawCursor(dc);
    // The window moved its pixels as the back buffer did; it takes only what changed besides.
    if (cursorShown)
        exposed += oldCursor.toQRect();
    if (isCellVisible(cursorColumn_, cursorRow_))
        exposed += cellRect(cursorColumn_, cursorRow_).toQRect();
    root->releaseContext(dc, exposed & QRegion(rect_.toQRect()));
    updateScrollBar();
}

void StepGridView::scrollToFraction(double fraction)
{
    int32_t column = int32_t((columns() - visibleColumns_) * fraction + 0.5);
    scroll(column - firstColumn_, 0);
}

bool StepGridView::jumpTo(int32_t column, int32_t row)
{
    if (column < 0 || column > columns() - visibleColumns_ || row < 0 || row > rows() - visibleRows_)
        return false;
    firstColumn_ = column;
    firstRow_ = row;
    updateScrollBar();
    redraw();
    return true;
}

// The cursor and the keyboard.

void StepGridView::selectCell(int32_t column, int32_t row)
{
    if (column == cursorColumn_ && row == cursorRow_)
        return;
    int32_t oldColumn = cursorColumn_;
    int32_t oldRow = cursorRow_;
    cursorColumn_ = column;
    cursorRow_ = row;
    redrawCell(oldColumn, oldRow);
    redrawCell(column, row);
}

void StepGridView::moveCursor(int32_t dx, int32_t dy)
{
    if (columns() <= 0 || rows() <= 0)
        return;
    const int32_t column = std::clamp(cursorColumn_ + dx, 0, columns() - 1);
    const int32_t row = std::clamp(cursorRow_ + dy, 0, rows() - 1);
    int32_t scrollX = 0;
    int32_t scrollY = 0;
    if (column < firstColumn_)
        scrollX = column - firstColumn_;
    else if (column >= firstColumn_ + visibleColumns_)
        scrollX = column - (firstColumn_ + visibleColumns_ - 1);
    if (row < firstRow_)
        scrollY = row - firstRow_;
    else if (row >= firstRow_ + visibleRows_)
        scrollY = row - (firstRow_ + visibleRows_ - 1);
    scroll(scrollX, scrollY);
    selectCell(column, row);
}

void StepGridView::toggleCursorCell()
{
    if (cursorColumn_ >= columns() || cursorRow_ >= rows())
        return;
    const bool on = !isCellSet(cursorRow_, cursorColumn_);
    edits_.beginGesture(gestureName(on ? kPainting : kErasing));
    setCell(cursorRow_, cursorColumn_, on);
    edits_.endGesture();
    redrawCell(cursorColumn_, cursorRow_);
    // Selecting again shows what the cell holds now.
    int32_t column = cursorColumn_;
    cursorColumn_ = -1;
    selectCell(column, cursorRow_);
}

void StepGridView::clearCursorCell()
{
    if (isCellSet(cursorRow_, cursorColumn_))
        toggleCursorCell();
}

void StepGridView::setMoveMode(bool on)
{
    moveMode_ = on;
    redrawCell(cursorColumn_, cursorRow_);
}

// Gestures.

int StepGridView::stylusDown(int button, int32_t x, int32_t y)
{
    if (onActivated)
        onActivated();
    closeRenameBox();
    penDown_ = true;
    dragState_ = kIdle;
    lastColumn_ = lastRow_ = -1;
    holdX_ = x;
    holdY_ = y;
    holdTimer_.setTimer(kHoldMs);
    ElementContainer::stylusDown(button, x, y);
    if (capturedChild() != kNoCapture) {
        holdTimer_.setTimer(0);
        return 1;
    }
    pressedOnLabel_ = x < rect_.x + labelWidth_;
    if (y < rect_.bottom() - cellHeight_ && !pressedOnLabel_)
        cellTouch(x - rect_.x - labelWidth_, y - rect_.y);
    return 1;
}

int StepGridView::stylusMove(int32_t x, int32_t y)
{
    if (capturedChild() && capturedChild() != kNoCapture)
        return ElementContainer::stylusMove(x, y);
    if (!penDown_)
        return 0;
    // A hold is a press that stays in its cell.
    if (holdTimer_.isRunning()
        && ((x - rect_.x - labelWidth_) / cellWidth_ != (holdX_ - rect_.x - labelWidth_) / cellWidth_
            || (y - rect_.y) / cellHeight_ != (holdY_ - rect_.y) / cellHeight_))
        holdTimer_.setTimer(0);
    if (!pressedOnLabel_ && x >= rect_.x + labelWidth_)
        cellTouch(x - rect_.x - labelWidth_, y - rect_.y);
    return 1;
}

int StepGridView::stylusUp(int button, int32_t x, int32_t y)
{
    holdTimer_.setTimer(0);
    if (capturedChild() && capturedChild() != kNoCapture) {
        penDown_ = false;
        return ElementContainer::stylusUp(button, x, y);
    }
    if (!penDown_)
        return 0;
    penDown_ = false;
    if (button == 1) {
        onHold(x, y);
        endGesture();
        return 1;
    }
    int32_t row = labelRowAt(x, y);
    if (row >= 0 && pressedOnLabel_ && !renameBox_.isOpen())
        onRowLabelTap(row);
    endGesture();
    return 1;
}

int StepGridView::stylusDoubleClick(int32_t x, int32_t y)
{
    int32_t row = labelRowAt(x, y);
    if (row < 0)
        return stylusDown(0, x, y);
    if (onActivated)
        onActivated();
    openRenameBox(row);
    return 1;
}

int StepGridView::mouseWheel(int32_t x, int32_t y, int32_t delta, uint32_t keys)
{
    // Each notch scrolls a fixed amount; a fine wheel's smaller turns count once they add up.
    const int32_t notches = delta / kWheelNotch != 0 ? delta / kWheelNotch : sign(delta);
    if (keys & kWheelShift)
        scroll(-notches * kWheelColumns, 0);
    else
        scroll(0, -notches * kScrollRows);
    return 1;
}

void StepGridView::cellTouch(int32_t x, int32_t y)
{
    if (x < 0 || y < 0)
        return;
    const int32_t column = x / cellWidth_;
    int32_t screenRow = y / cellHeight_;
    if (column >= visibleColumns_ || firstColumn_ + column >= columns())
        return;
    if (dragState_ == kRulerDrag)
        screenRow = 0;
    if (dragState_ != kIdle && column == lastColumn_ && screenRow == lastRow_)
        return;
    if (screenRow == 0) {
        if (dragState_ == kIdle)
            dragState_ = kRulerDrag;
        if (dragState_ == kRulerDrag) {
            lastColumn_ = column;
            lastRow_ = 0;
            setPlayPosition(firstColumn_ + column);
        }
        return;
    }
    if (screenRow > visibleRows_ || firstRow_ + screenRow - 1 >= rows())
        return;
    onCellTouch(column, screenRow);
    lastColumn_ = column;
    lastRow_ = screenRow;
}

void StepGridView::onCellTouch(int32_t column, int32_t screenRow)
{
    const int32_t row = firstRow_ + screenRow - 1;
    const int32_t absolute = firstColumn_ + column;
    if (moveMode_) {
        if (dragState_ == kIdle) {
            if (isCellSet(row, absolute)) {
                dragState_ = kMovingCell;
                edits_.beginGesture(gestureName(kMovingCell));
                pickUpCell();
            } else {
                dragState_ = kMoveOnEmpty;
            }
        } else if (dragState_ == kMovingCell && lastColumn_ >= 0) {
            const int32_t fromRow = firstRow_ + lastRow_ - 1;
            const int32_t fromColumn = firstColumn_ + lastColumn_;
            moveCell(fromRow, fromColumn, row, absolute);
            redrawCell(fromColumn, fromRow);
            redrawCell(absolute, row);
        }
        if (isCellSet(row, absolute))
            selectCell(absolute, row);
        return;
    }
    if (dragState_ == kIdle) {
        dragState_ = isCellSet(row, absolute) ? kErasing : kPainting;
        edits_.beginGesture(gestureName(dragState_));
    }
    // A fast drag skips cells: every column between the last touch and this one is included.
    int32_t from = column;
    if (lastColumn_ >= 0 && std::abs(column - lastColumn_) > 1)
        from = lastColumn_ + sign(column - lastColumn_);
    const int32_t direction = sign(column - from);
    const int32_t oldCursorColumn = cursorColumn_;
    const int32_t oldCursorRow = cursorRow_;
    cursorColumn_ = cursorRow_ = -1;
    redrawCell(oldCursorColumn, oldCursorRow);
    for (int32_t c = from;; c += direction) {
        setCell(row, firstColumn_ + c, dragState_ == kPainting);
        redrawCell(firstColumn_ + c, row);
        if (c == column)
            break;
    }
    selectCell(absolute, row);
}

void StepGridView::endGesture()
{
    dragState_ = kIdle;
    lastColumn_ = lastRow_ = -1;
    edits_.endGesture();
}

void StepGridView::onHold(int32_t x, int32_t y)
{
    int32_t row = labelRowAt(x, y);
    if (row >= 0)
        openRenameBox(row);
}

int32_t StepGridView::HoldTimer::onTimer()
{
    if (grid_.penDown_)
        grid_.onHold(grid_.holdX_, grid_.holdY_);
    return -1;
}

// Renaming.

void StepGridView::openRenameBox(int32_t row)
{
    if (row < 0 || row >= rows())
        return;
    closeRenameBox();
    ElemRect label { rect_.x, rect_.y + (row - firstRow_ + 1) * cellHeight_, labelWidth_, cellHeight_ };
    if (renameBox_.open(label, rowName(row), kMaxNameLength))
        renamingRow_ = row;
}

void StepGridView::closeRenameBox()
{
    if (!renameBox_.isOpen())
        return;
    int32_t row = renamingRow_;
    std::u16string text = renameBox_.text();
    renamingRow_ = -1;
    renameBox_.close();
    if (row >= 0 && row < rows())
        renameRow(row, text);
    redraw();
}

} // namespace pulsara
