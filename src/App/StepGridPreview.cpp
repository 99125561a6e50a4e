#include "App/StepGridPreview.h"

#include "GUI/RectPainter.h"
#include "GUI/Skin.h"
#include "GUI/TextPainter.h"
#include "Sound/StepGrid.h"
#include "base/text.h"

#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace pulsara {

namespace {

constexpr int32_t kMinLabelWidth = 48;
constexpr int32_t kMaxLabelWidth = 120;
const QColor kCursorColour(0xff, 0xff, 0x88);
const QColor kLabelText(0xdc, 0xe1, 0xea);
const QColor kPlayMarker(0x2e, 0xc4, 0xb6);

} // namespace

StepGridPreview::StepGridPreview(Skin& skin, SkinSteps& strip, StepGrid& grid, std::u16string labelPrefix)
    : skin_(skin)
    , strip_(&strip)
    , grid_(&grid)
    , labelPrefix_(std::move(labelPrefix))
{
    font_.setFamily(QStringLiteral("Liberation Sans"));
    font_.setPixelSize(11);
    font_.setBold(true);
    scrollBar_.setSkin(&skin_.panelD, &skin_.panel);
    scrollBar_.onScroll = [this](double fraction) { scrollTo(fraction); };
    addChild(&scrollBar_);
}

void StepGridPreview::show(SkinSteps& strip, StepGrid& grid, std::u16string labelPrefix)
{
    strip_ = &strip;
    grid_ = &grid;
    labelPrefix_ = std::move(labelPrefix);
    cursorColumn_ = cursorRow_ = 0;
    layout(rect_);
    redraw();
}

int32_t StepGridPreview::columns() const
{
    return int32_t(grid_->length());
}

int32_t StepGridPreview::rows() const
{
    return int32_t(grid_->rows());
}

void StepGridPreview::layout(const ElemRect& rect)
{
    Element::layout(rect);
    cellWidth_ = std::max(1, strip_->cellWidth());
    cellHeight_ = std::max(1, strip_->cellHeight());
    visibleRows_ = std::clamp(rect.height / cellHeight_ - 2, 0, rows());
    labelWidth_ = cellWidth_ * columns() > rect.width - kMinLabelWidth ? kMinLabelWidth : rect.width - cellWidth_ * columns();
    labelWidth_ = std::min(labelWidth_, kMaxLabelWidth);
    visibleColumns_ = std::max(0, (rect.width - labelWidth_) / cellWidth_);
    if (firstColumn_ + visibleColumns_ > columns())
        firstColumn_ = 0;
    scrollBar_.layout({ rect.x + labelWidth_, rect.bottom() - cellHeight_, rect.width - labelWidth_, cellHeight_ });
    if (visibleColumns_ >= columns()) {
        firstColumn_ = 0;
        scrollBar_.setThumb(1.0);
        scrollBar_.setPosition(0.0);
    } else {
        scrollBar_.setThumb(double(visibleColumns_) / columns());
        scrollBar_.setStep(1.0 / (columns() - visibleColumns_));
        scrollBar_.setPosition(double(firstColumn_) / (columns() - visibleColumns_));
    }
}

int32_t StepGridPreview::cellImage(uint32_t row, uint32_t column) const
{
    int32_t parity = int32_t(column / beatLength_ % 2);
    int32_t colour = grid_->isNote(row, column) ? (int32_t(row) % strip_->count() + 1) * 2 : 0;
    return colour + parity + 2;
}

ElemRect StepGridPreview::cellRect(int32_t screenColumn, int32_t screenRow) const
{
    return { rect_.x + labelWidth_ + screenColumn * cellWidth_, rect_.y + screenRow * cellHeight_, cellWidth_, cellHeight_ };
}

void StepGridPreview::paintRuler(DeviceContext* dc)
{
    skin_.panelD.setDestination(dc);
    skin_.panelD.drawRect(rect_.x, rect_.y, labelWidth_, cellHeight_);
    for (int32_t c = 0; c < visibleColumns_ && firstColumn_ + c < columns(); ++c) {
        int32_t column = firstColumn_ + c;
        ElemRect cell = cellRect(c, 0);
        strip_->drawImage(int32_t(uint32_t(column) / beatLength_ % 2), cell.x, cell.y);
        if (column % int32_t(beatLength_) == 0) {
            std::u16string beat = fromUtf8(std::to_string(column / int32_t(beatLength_) + 1));
            dc->setPen(kLabelText);
            TextPainter text(TextPainter::kLeft);
            text.setText(beat.c_str());
            text.setDestination(dc);
            text.drawRect(cell.x + 4, cell.y, cell.width - 4, cell.height - 6);
        }
        if (column == playPosition_)
            dc->fillRect(cell.x, cell.bottom() - 4, cell.width, 3, kPlayMarker);
    }
}

void StepGridPreview::paintRow(DeviceContext* dc, int32_t screenRow)
{
    const uint32_t row = uint32_t(screenRow);
    ElemRect label { rect_.x, rect_.y + (screenRow + 1) * cellHeight_, labelWidth_, cellHeight_ };
    skin_.panelBckD.setDestination(dc);
    skin_.panelBckD.drawInRect(label);
    std::u16string name = labelPrefix_ + fromUtf8(std::to_string(row + 1));
    dc->setPen(kLabelText);
    TextPainter text;
    text.setText(name.c_str());
    text.setDestination(dc);
    text.drawInRect(label);
    for (int32_t c = 0; c < visibleColumns_ && firstColumn_ + c < columns(); ++c) {
        ElemRect cell = cellRect(c, screenRow + 1);
        strip_->drawImage(cellImage(row, uint32_t(firstColumn_ + c)), cell.x, cell.y);
    }
}

void StepGridPreview::paintCursor(DeviceContext* dc)
{
    int32_t screenColumn = cursorColumn_ - firstColumn_;
    if (screenColumn < 0 || screenColumn >= visibleColumns_ || cursorRow_ >= visibleRows_)
        return;
    RectPainter cursor(kCursorColour);
    cursor.setDestination(dc);
    cursor.drawInRect(cellRect(screenColumn, cursorRow_ + 1));
}

int StepGridPreview::paint(DeviceContext* dc, uint32_t mode)
{
    bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll) {
        strip_->setDestination(dc);
        dc->setFont(font_);
        // What the cells do not cover: right of the last whole column and below the last row.
        int32_t cellsRight = rect_.x + labelWidth_ + std::min(visibleColumns_, columns()) * cellWidth_;
        int32_t rowsBottom = rect_.y + (visibleRows_ + 1) * cellHeight_;
        skin_.panelD.setDestination(dc);
        if (cellsRight < rect_.right())
            skin_.panelD.drawRect(cellsRight, rect_.y, rect_.right() - cellsRight, rowsBottom - rect_.y);
        if (rowsBottom < rect_.bottom())
            skin_.panelD.drawRect(rect_.x, rowsBottom, rect_.width, rect_.bottom() - rowsBottom);
        paintRuler(dc);
        for (int32_t r = 0; r < visibleRows_; ++r)
            paintRow(dc, r);
        paintCursor(dc);
    }
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

void StepGridPreview::touch(int32_t x, int32_t y)
{
    int32_t screenColumn = (x - rect_.x - labelWidth_) / cellWidth_;
    int32_t screenRow = (y - rect_.y) / cellHeight_;
    if (x < rect_.x + labelWidth_ || screenColumn >= visibleColumns_ || screenRow > visibleRows_)
        return;
    if (screenColumn == lastColumn_ && screenRow == lastRow_)
        return;
    int32_t previousColumn = lastColumn_;
    lastColumn_ = screenColumn;
    lastRow_ = screenRow;
    int32_t column = firstColumn_ + screenColumn;
    if (column >= columns())
        return;
    if (screenRow == 0 || drag_ == Drag::Ruler) {
        if (drag_ == Drag::None)
            drag_ = Drag::Ruler;
        if (drag_ != Drag::Ruler)
            return;
        playPosition_ = column;
        invalidateRect({ rect_.x + labelWidth_, rect_.y, rect_.width - labelWidth_, cellHeight_ });
        if (onPlayPosition)
            onPlayPosition(column);
        return;
    }
    uint32_t row = uint32_t(screenRow - 1);
    if (drag_ == Drag::None)
        drag_ = grid_->isNote(row, uint32_t(column)) ? Drag::Erasing : Drag::Painting;
    // A fast drag skips cells; every column between the last touch and this one is included.
    int32_t from = previousColumn < 0 ? screenColumn : previousColumn;
    int32_t direction = screenColumn >= from ? 1 : -1;
    if (std::abs(screenColumn - from) <= 1)
        from = screenColumn;
    for (int32_t c = from;; c += direction) {
        grid_->setCell(row, uint32_t(firstColumn_ + c), drag_ == Drag::Painting ? kDefaultNote : kEmptyStep);
        invalidateRect(cellRect(c, screenRow));
        if (c == screenColumn)
            break;
    }
    invalidateRect(cellRect(cursorColumn_ - firstColumn_, cursorRow_ + 1));
    cursorColumn_ = column;
    cursorRow_ = int32_t(row);
}

int StepGridPreview::stylusDown(int button, int32_t x, int32_t y)
{
    if (scrollBar_.rect()->contains(x, y))
        return ElementContainer::stylusDown(button, x, y);
    drag_ = Drag::None;
    lastColumn_ = lastRow_ = -1;
    touch(x, y);
    return 1;
}

int StepGridPreview::stylusMove(int32_t x, int32_t y)
{
    if (capturedChild() == &scrollBar_ && drag_ == Drag::None)
        return ElementContainer::stylusMove(x, y);
    if (drag_ != Drag::None)
        touch(x, y);
    return 1;
}

int StepGridPreview::stylusUp(int button, int32_t x, int32_t y)
{
    if (drag_ == Drag::None)
        return ElementContainer::stylusUp(button, x, y);
    drag_ = Drag::None;
    return 1;
}

void StepGridPreview::scrollTo(double fraction)
{
    int32_t first = int32_t((columns() - visibleColumns_) * fraction + 0.5);
    if (first == firstColumn_)
        return;
    firstColumn_ = first;
    redraw();
}

} // namespace pulsara
