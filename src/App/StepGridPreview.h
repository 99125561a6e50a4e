#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/ScrollBar.h"

#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class Skin;
class SkinSteps;
class StepGrid;

// The step grid of the window's stand-in screen: a ruler, one row per track with its label and
// a cell per step, and a scroll bar, drawn from a skin's step strip with the editors' geometry
// and cell-image rules. Taps and drags paint or erase notes; a tap on the ruler moves the play
// position. The full editors replace it.
class StepGridPreview : public ElementContainer {
public:
    // Shows the grid's rows labelled with the prefix and their number from 1 ("smp 1").
    StepGridPreview(Skin&, SkinSteps& strip, StepGrid&, std::u16string labelPrefix);

    // Switches to another grid and strip, as the editor pages do.
    void show(SkinSteps&, StepGrid&, std::u16string labelPrefix);
    uint32_t beatLength() const { return beatLength_; }
    int32_t playPosition() const { return playPosition_; }
    int32_t firstColumn() const { return firstColumn_; }
    int32_t visibleColumns() const { return visibleColumns_; }
    int32_t labelWidth() const { return labelWidth_; }
    int32_t cellWidth() const { return cellWidth_; }
    int32_t cellHeight() const { return cellHeight_; }

    // Called when a tap on the ruler moved the play position.
    std::function<void(int32_t column)> onPlayPosition;

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int stylusMove(int32_t x, int32_t y) override;
    int stylusUp(int button, int32_t x, int32_t y) override;

private:
    enum class Drag { None, Painting, Erasing, Ruler };

    int32_t columns() const;
    int32_t rows() const;
    // The strip image of the cell at absolute column k of row j.
    int32_t cellImage(uint32_t row, uint32_t column) const;
    ElemRect cellRect(int32_t screenColumn, int32_t screenRow) const;
    void paintRuler(DeviceContext*);
    void paintRow(DeviceContext*, int32_t screenRow);
    void paintCursor(DeviceContext*);
    void touch(int32_t x, int32_t y);
    void scrollTo(double fraction);

    Skin& skin_;
    SkinSteps* strip_;
    StepGrid* grid_;
    std::u16string labelPrefix_;
    ScrollBar scrollBar_;
    QFont font_;
    uint32_t beatLength_ = 4;
    int32_t cellWidth_ = 0;
    int32_t cellHeight_ = 0;
    int32_t labelWidth_ = 48;
    int32_t visibleColumns_ = 16;
    int32_t visibleRows_ = 0;
    int32_t firstColumn_ = 0;
    int32_t cursorColumn_ = 0;
    int32_t cursorRow_ = 0;
    int32_t playPosition_ = 0;
    Drag drag_ = Drag::None;
    int32_t lastColumn_ = -1;
    int32_t lastRow_ = -1;
};

} // namespace pulsara
