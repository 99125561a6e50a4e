#pragma once

#include "GUI/editors/StepGridView.h"
#include "Sound/Step.h"

#include <functional>

namespace pulsara {

class EditorHost;
class Song;

// The step grid of one pattern: a row per track, a column per step. Rows follow the song's
// instrument order. Selecting a cell shows its note in the note panel; tapping a row's label
// shows its instrument in the instrument panel.
class PatternEditor : public StepGridView {
public:
    PatternEditor(Skin&, SongEdits&, EditorHost&);

    // The pattern edited, 0 to 39.
    void setPattern(uint32_t);
    uint32_t pattern() const { return pattern_; }
    // The instrument slot a row shows.
    uint32_t trackOfRow(int32_t row) const;
    int32_t selectedRow() const { return selectedRow_; }
    // The note under the cursor, and writing one there (the note panel's edits).
    Step cursorNote() const;
    void setCursorNote(Step);

    // The cursor moved to a cell: its note (the empty step for none).
    std::function<void(Step)> onNoteSelected;
    // A row's label was tapped: its instrument slot and the label.
    std::function<void(uint32_t slot, const std::u16string& label)> onInstrumentSelected;

    int32_t columns() const override;
    int32_t rows() const override;
    std::u16string rowLabel(int32_t row) const override;

protected:
    void onRowLabelTap(int32_t row) override;
    void setCell(int32_t row, int32_t column, bool on) override;
    bool isCellSet(int32_t row, int32_t column) const override;
    bool isCellLit(int32_t row, int32_t column) const override;
    void pickUpCell() override;
    void moveCell(int32_t fromRow, int32_t fromColumn, int32_t toRow, int32_t toColumn) override;
    uint32_t cellColumnsPerBeat(int32_t row, int32_t column) const override;
    void selectCell(int32_t column, int32_t row) override;
    void setPlayPosition(int32_t column) override;
    std::u16string rowName(int32_t row) const override;
    void renameRow(int32_t row, const std::u16string& name) override;
    std::u16string gestureName(int32_t dragState) const override;
    bool isRowSelected(int32_t row) const override { return row == selectedRow_; }

private:
    Step note(int32_t row, int32_t column) const;
    void writeNote(int32_t row, int32_t column, Step);

    Song& song_;
    EditorHost& host_;
    uint32_t pattern_ = 0;
    int32_t selectedRow_ = -1;
    // The note a move gesture carries along.
    Step carried_ = kEmptyStep;
};

} // namespace pulsara
