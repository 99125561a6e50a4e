#include "GUI/editors/PlaylistEditor.h"

#include "GUI/NativeWindow.h"
#include "GUI/RootElement.h"
#include "GUI/Skin.h"
#include "GUI/WindowMessage.h"
#include "GUI/editors/EditorHost.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"
#include "base/text.h"

#include <QPainter>

#include <algorithm>

namespace pulsara {

namespace {

const QColor kLoopColour(0xf5, 0xa6, 0x23);

} // namespace

PlaylistEditor::PlaylistEditor(Skin& skin, SongEdits& edits, EditorHost& host)
    : StepGridView(skin, skin.stepsPlst, edits)
    , song_(edits.song())
    , host_(host)
{
}

void PlaylistEditor::setSelectedPattern(uint32_t pattern)
{
    if (pattern == selectedPattern_)
        return;
    selectedPattern_ = pattern;
    redraw();
}

uint32_t PlaylistEditor::patternOfRow(int32_t row) const
{
    return row >= 0 && row < rows() ? song_.patternOrder()[uint32_t(row)] : 0;
}

int32_t PlaylistEditor::columns() const
{
    return int32_t(Song::kPositions);
}

int32_t PlaylistEditor::rows() const
{
    return int32_t(Song::kPatterns);
}

std::u16string PlaylistEditor::rowLabel(int32_t row) const
{
    if (row < 0 || row >= rows())
        return {};
    const std::u16string& name = song_.player().patternName(patternOfRow(row));
    return name.empty() ? u"patt " + fromUtf8(std::to_string(row + 1)) : name;
}

void PlaylistEditor::onRowLabelTap(int32_t row)
{
    host_.setTopBarMode(EditorHost::kPatternMode);
    host_.setPlayedPattern(int32_t(patternOfRow(row)));
    setSelectedPattern(patternOfRow(row));
    if (onPatternSelected)
        onPatternSelected(patternOfRow(row));
}

void PlaylistEditor::setCell(int32_t row, int32_t column, bool on)
{
    edits().setPlaylistCell(patternOfRow(row), uint32_t(column), on);
}

bool PlaylistEditor::isCellSet(int32_t row, int32_t column) const
{
    return song_.player().playlist().isOn(patternOfRow(row), uint32_t(column));
}

void PlaylistEditor::pickUpCell()
{
    carried_ = false;
}

void PlaylistEditor::moveCell(int32_t fromRow, int32_t fromColumn, int32_t toRow, int32_t toColumn)
{
    bool source = isCellSet(fromRow, fromColumn);
    setCell(fromRow, fromColumn, carried_);
    carried_ = isCellSet(toRow, toColumn);
    setCell(toRow, toColumn, source);
}

void PlaylistEditor::onCellTouch(int32_t column, int32_t screenRow)
{
    // Working on the arrangement plays the song, not a single pattern.
    if (dragState() == kIdle) {
        host_.setTopBarMode(EditorHost::kSongMode);
        host_.setPlayedPattern(-1);
    }
    StepGridView::onCellTouch(column, screenRow);
}

void PlaylistEditor::onHold(int32_t x, int32_t y)
{
    if (dragState() != kRulerDrag) {
        StepGridView::onHold(x, y);
        return;
    }
    setDragState(kIdle);
    loopPosition_ = firstColumn() + lastColumn();
    RootElement* root = window();
    NativeWindow* native = root ? root->windowHandle() : nullptr;
    if (!native)
        return;
    const std::vector<PopupMenuItem> items {
        { u"Loop", kLoopCommand }, {}, { u"Begin Loop", kBeginLoopCommand }, { u"End Loop", kEndLoopCommand }, {},
        { u"Default", kDefaultLoopCommand },
    };
    const ElemRect& grid = *rect();
    uint32_t chosen = native->trackPopupMenu(items, grid.x + labelWidth() + (lastColumn() + 1) * cellWidth(), grid.y);
    // The choice arrives as the menu's command, as any other menu command does.
    if (chosen != 0)
        root->handleMessage(kMessageCommand, chosen, 0);
}

bool PlaylistEditor::loopCommand(uint32_t command)
{
    const SongPlayer& player = song_.player();
    switch (command) {
    case kLoopCommand:
        edits().setLoop(loopPosition_, loopPosition_);
        break;
    case kBeginLoopCommand:
        edits().setLoop(loopPosition_, player.loopEnd());
        break;
    case kEndLoopCommand:
        edits().setLoop(player.loopStart(), loopPosition_);
        break;
    case kDefaultLoopCommand:
        edits().setLoop(0, -1);
        break;
    default:
        return false;
    }
    redrawRuler();
    return true;
}

void PlaylistEditor::setPlayPosition(int32_t column)
{
    host_.setTopBarMode(EditorHost::kSongMode);
    host_.setPlayedPattern(-1);
    host_.moveToSongPosition(column);
}

std::u16string PlaylistEditor::rowName(int32_t row) const
{
    return song_.player().patternName(patternOfRow(row));
}

void PlaylistEditor::renameRow(int32_t row, const std::u16string& name)
{
    edits().renamePattern(patternOfRow(row), name);
}

std::u16string PlaylistEditor::gestureName(int32_t dragState) const
{
    switch (dragState) {
    case kErasing:
        return u"Remove patterns";
    case kMovingCell:
        return u"Move pattern";
    default:
        return u"Place patterns";
    }
}

bool PlaylistEditor::isRowSelected(int32_t row) const
{
    return patternOfRow(row) == selectedPattern_;
}

void PlaylistEditor::drawRulerMarks(DeviceContext* dc, int32_t column, const ElemRect& cell)
{
    const SongPlayer& player = song_.player();
    const int32_t start = player.loopStart();
    const int32_t end = player.loopEnd();
    const int32_t lastPlayed = end == -1 ? player.playlist().lastUsedPosition() : end;
    // A line over the positions that play, closed by a bracket at each marker that is set.
    if (column >= start && column <= lastPlayed)
        dc->fillRect(cell.x, cell.y, cell.width, 2, kLoopColour);
    if (column == start)
        dc->fillRect(cell.x, cell.y, 2, cell.height, kLoopColour);
    if (column == end)
        dc->fillRect(cell.right() - 2, cell.y, 2, cell.height, kLoopColour);
}

} // namespace pulsara
