#include "GUI/editors/PatternPage.h"

#include "GUI/editors/SongEdits.h"

namespace pulsara {

namespace {

constexpr int32_t kSelectorHeight = 22;
constexpr int32_t kNoteInfoHeight = 160;

} // namespace

PatternPage::PatternPage(Skin& skin, SongEdits& edits, EditorHost& host)
    : host_(host)
    , editor_(skin, edits, host)
    , selector_(skin, edits.song())
    , noteInfo_(skin, edits)
    , instrumentPanel_(skin, edits, host)
{
    editor_.onNoteSelected = [this](Step note) { noteInfo_.showNote(note); };
    noteInfo_.onNoteEdited = [this](Step note) { editor_.setCursorNote(note); };
    editor_.onInstrumentSelected = [this](uint32_t slot, const std::u16string& label) {
        instrumentPanel_.showInstrument(slot, label);
    };
    selector_.onSelect = [this](uint32_t pattern) {
        setPattern(pattern);
        if (onPatternChosen)
            onPatternChosen(pattern);
    };
    addChild(&editor_);
    addChild(&selector_);
    addChild(&noteInfo_);
    addChild(&instrumentPanel_);
}

void PatternPage::setPattern(uint32_t pattern)
{
    selector_.setPattern(pattern);
    editor_.setPattern(pattern);
}

void PatternPage::refresh(uint32_t scope)
{
    if (scope & (kScopeNotes | kScopePatternLength))
        editor_.refresh();
    if (scope & (kScopeNotes | kScopePatternLength))
        noteInfo_.showNote(editor_.cursorNote());
    if (scope & kScopeInstruments) {
        editor_.redraw();
        instrumentPanel_.refresh();
    }
    if (scope & kScopePatternNames)
        selector_.redraw();
}

void PatternPage::layout(const ElemRect& rect)
{
    ElementContainer::layout(rect);
    const int32_t side = std::min(kSideWidth, rect.width / 2);
    const int32_t sideX = rect.right() - side;
    editor_.layout({ rect.x, rect.y, sideX - kGap - rect.x, rect.height });
    selector_.layout({ sideX, rect.y, side, kSelectorHeight });
    noteInfo_.layout({ sideX, selector_.rect()->bottom() + kGap, side, kNoteInfoHeight });
    instrumentPanel_.layout({ sideX, noteInfo_.rect()->bottom() + kGap, side, InstrumentPanel::kHeight });
}

} // namespace pulsara
