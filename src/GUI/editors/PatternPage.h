#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/editors/InstrumentPanel.h"
#include "GUI/editors/NoteInfo.h"
#include "GUI/editors/PatternEditor.h"
#include "GUI/editors/PatternSelector.h"

#include <functional>

namespace pulsara {

// The pattern page: the pattern's grid, and beside it the pattern chooser, the note under the
// cursor and the selected track's instrument.
class PatternPage : public ElementContainer {
public:
    static constexpr int32_t kSideWidth = 220;
    static constexpr int32_t kGap = 6;

    PatternPage(Skin&, SongEdits&, EditorHost&);

    void setPattern(uint32_t);
    uint32_t pattern() const { return editor_.pattern(); }
    // Shows the song again after changes the page did not make itself.
    void refresh(uint32_t scope);

    // The user chose another pattern here.
    std::function<void(uint32_t pattern)> onPatternChosen;

    PatternEditor& editor() { return editor_; }
    PatternSelector& selector() { return selector_; }
    NoteInfo& noteInfo() { return noteInfo_; }
    InstrumentPanel& instrumentPanel() { return instrumentPanel_; }

    void layout(const ElemRect&) override;

private:
    EditorHost& host_;
    PatternEditor editor_;
    PatternSelector selector_;
    NoteInfo noteInfo_;
    InstrumentPanel instrumentPanel_;
};

} // namespace pulsara
