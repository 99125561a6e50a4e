#pragma once

#include "GUI/editors/StepGridView.h"

#include <functional>

namespace pulsara {

class EditorHost;
class Song;

// The song's arrangement: a row per pattern, a column per song position. Its ruler carries the
// loop markers, set through the ruler's pop-up menu (a hold on the ruler, or the right button).
class PlaylistEditor : public StepGridView {
public:
    PlaylistEditor(Skin&, SongEdits&, EditorHost&);

    // The pattern the pattern page edits; its label is drawn as selected.
    void setSelectedPattern(uint32_t);
    uint32_t patternOfRow(int32_t row) const;
    // The ruler pop-up's choices (kLoopCommand to kDefaultLoopCommand) at the position the
    // pop-up was opened for. Returns false for any other command.
    bool loopCommand(uint32_t command);

    // A pattern's label was tapped.
    std::function<void(uint32_t pattern)> onPatternSelected;

    int32_t columns() const override;
    int32_t rows() const override;
    std::u16string rowLabel(int32_t row) const override;

protected:
    void onRowLabelTap(int32_t row) override;
    void setCell(int32_t row, int32_t column, bool on) override;
    bool isCellSet(int32_t row, int32_t column) const override;
    bool isCellLit(int32_t row, int32_t column) const override { return isCellSet(row, column); }
    void pickUpCell() override;
    void moveCell(int32_t fromRow, int32_t fromColumn, int32_t toRow, int32_t toColumn) override;
    void onCellTouch(int32_t column, int32_t screenRow) override;
    void onHold(int32_t x, int32_t y) override;
    void setPlayPosition(int32_t column) override;
    std::u16string rowName(int32_t row) const override;
    void renameRow(int32_t row, const std::u16string& name) override;
    std::u16string gestureName(int32_t dragState) const override;
    bool isRowSelected(int32_t row) const override;
    void drawRulerMarks(DeviceContext*, int32_t column, const ElemRect& cell) override;

private:
    Song& song_;
    EditorHost& host_;
    uint32_t selectedPattern_ = 0;
    // What a move gesture carries along: whether a pattern is placed.
    bool carried_ = false;
    // The song position the loop pop-up acts on.
    int32_t loopPosition_ = 0;
};

} // namespace pulsara
