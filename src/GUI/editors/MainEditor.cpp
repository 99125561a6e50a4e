#include "GUI/editors/MainEditor.h"

#include "GUI/Skin.h"
#include "GUI/editors/SongEdits.h"

namespace pulsara {

MainEditor::MainEditor(Skin& skin, SongEdits& edits, EditorHost& host)
    : skin_(skin)
    , patternPage_(skin, edits, host)
    , playlist_(skin, edits, host)
{
    patternPage_.onPatternChosen = [this](uint32_t pattern) { playlist_.setSelectedPattern(pattern); };
    playlist_.onPatternSelected = [this](uint32_t pattern) { patternPage_.setPattern(pattern); };
    addChild(&patternPage_);
    addChild(&playlist_);
    showPage(0);
}

void MainEditor::showPage(int32_t page)
{
    page_ = page == 1 ? 1 : 0;
    patternPage_.setVisible(page_ == 0);
    playlist_.setVisible(page_ == 1);
    patternPage_.editor().closeRenameBox();
    playlist_.closeRenameBox();
    redraw();
}

StepGridView& MainEditor::grid(int32_t page)
{
    if (page == 1)
        return playlist_;
    return patternPage_.editor();
}

bool MainEditor::command(uint32_t id)
{
    return playlist_.loopCommand(id);
}

void MainEditor::setPattern(uint32_t pattern)
{
    patternPage_.setPattern(pattern);
    playlist_.setSelectedPattern(pattern);
}

void MainEditor::setMoveMode(bool on)
{
    patternPage_.editor().setMoveMode(on);
    playlist_.setMoveMode(on);
}

void MainEditor::refresh(uint32_t scope)
{
    patternPage_.refresh(scope);
    if (scope & (kScopePlaylist | kScopePatternNames | kScopeLoop))
        playlist_.refresh();
}

void MainEditor::scrollHome()
{
    patternPage_.editor().jumpTo(0, 0);
    playlist_.jumpTo(0, 0);
}

void MainEditor::layout(const ElemRect& rect)
{
    ElementContainer::layout(rect);
    patternPage_.layout(rect);
    playlist_.layout(rect);
}

int MainEditor::paint(DeviceContext* dc, uint32_t mode)
{
    const bool drawAll = mustDraw(mode);
    clearDirty();
    if (drawAll) {
        skin_.back.setDestination(dc);
        skin_.back.drawInRect(rect_);
    }
    return paintChildren(dc, drawAll ? kPaintAll : mode);
}

} // namespace pulsara

