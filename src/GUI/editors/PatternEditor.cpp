#include "GUI/editors/PatternEditor.h"

#include "GUI/Skin.h"
#include "GUI/editors/EditorHost.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"
#include "base/text.h"

#include <algorithm>

namespace pulsara {

PatternEditor::PatternEditor(Skin& skin, SongEdits& edits, EditorHost& host)
    : StepGridView(skin, skin.stepsPat, edits)
    , song_(edits.song())
    , host_(host)
{
}

void PatternEditor::setPattern(uint32_t pattern)
{
    pattern_ = std::min(pattern, Song::kPatterns - 1);
    refresh();
    if (onNoteSelected)
        onNoteSelected(cursorNote());
}

uint32_t PatternEditor::trackOfRow(int32_t row) const
{
    return row >= 0 && row < rows() ? song_.instrumentOrder()[uint32_t(row)] : 0;
}

int32_t PatternEditor::columns() const
{
    return int32_t(std::min(song_.stepsPerPattern(), StepGrid::kCellsPerRow));
}

int32_t PatternEditor::rows() const
{
    return int32_t(Song::kInstruments);
}

std::u16string PatternEditor::rowLabel(int32_t row) const
{
    if (row < 0 || row >= rows())
        return {};
    const Instrument& instrument = song_.instrument(trackOfRow(row));
    if (!instrument.name().empty())
        return instrument.name();
    if (!instrument.sample().displayName().empty())
        return instrument.sample().displayName();
    return u"smp " + fromUtf8(std::to_string(row + 1));
}

Step PatternEditor::note(int32_t row, int32_t column) const
{
    return song_.player().pattern(pattern_).cell(trackOfRow(row), uint32_t(column));
}

void PatternEditor::writeNote(int32_t row, int32_t column, Step value)
{
    edits().setPatternCell(pattern_, trackOfRow(row), uint32_t(column), value);
}

Step PatternEditor::cursorNote() const
{
    return note(cursorRow(), cursorColumn());
}

void PatternEditor::setCursorNote(Step value)
{
    writeNote(cursorRow(), cursorColumn(), value);
    redrawCell(cursorColumn(), cursorRow());
}

void PatternEditor::onRowLabelTap(int32_t row)
{
    int32_t previous = selectedRow_;
    selectedRow_ = row;
    host_.setTopBarMode(EditorHost::kTrackMode);
    if (previous != row)
        redraw();
    if (onInstrumentSelected)
        onInstrumentSelected(trackOfRow(row), rowLabel(row));
}

void PatternEditor::setCell(int32_t row, int32_t column, bool on)
{
    writeNote(row, column, on ? kDefaultNote : kEmptyStep);
}

bool PatternEditor::isCellSet(int32_t row, int32_t column) const
{
    return note(row, column).volume >= 0.0f;
}

bool PatternEditor::isCellLit(int32_t row, int32_t column) const
{
    return note(row, column).volume > 0.0f;
}

void PatternEditor::pickUpCell()
{
    carried_ = kEmptyStep;
}

void PatternEditor::moveCell(int32_t fromRow, int32_t fromColumn, int32_t toRow, int32_t toColumn)
{
    // The note passed over goes back where it was when the carried one moves on.
    Step source = note(fromRow, fromColumn);
    writeNote(fromRow, fromColumn, carried_);
    carried_ = note(toRow, toColumn);
    writeNote(toRow, toColumn, source);
}

uint32_t PatternEditor::cellColumnsPerBeat(int32_t, int32_t) const
{
    uint32_t beats = std::max<uint32_t>(1, song_.beatsPerPattern());
    return std::max<uint32_t>(1, song_.stepsPerPattern() / beats);
}

void PatternEditor::selectCell(int32_t column, int32_t row)
{
    StepGridView::selectCell(column, row);
    if (onNoteSelected)
        onNoteSelected(note(row, column));
}

void PatternEditor::setPlayPosition(int32_t column)
{
    host_.moveToStep(column);
}

std::u16string PatternEditor::rowName(int32_t row) const
{
    return song_.instrument(trackOfRow(row)).name();
}

void PatternEditor::renameRow(int32_t row, const std::u16string& name)
{
    edits().renameInstrument(trackOfRow(row), name);
}

std::u16string PatternEditor::gestureName(int32_t dragState) const
{
    switch (dragState) {
    case kErasing:
        return u"Erase notes";
    case kMovingCell:
        return u"Move note";
    default:
        return u"Paint notes";
    }
}

} // namespace pulsara
