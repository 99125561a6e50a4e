#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/editors/PatternPage.h"
#include "GUI/editors/PlaylistEditor.h"

namespace pulsara {

class Skin;

// The editors below the application's top rows, as two pages: the pattern page (0) and the
// playlist (1). It takes the menu commands the application does not handle itself.
class MainEditor : public ElementContainer {
public:
    MainEditor(Skin&, SongEdits&, EditorHost&);

    void showPage(int32_t page);
    int32_t page() const { return page_; }
    // The grid of a page, for the keyboard.
    StepGridView& grid(int32_t page);
    // A menu or pop-up command; false when it is none of the editors'.
    bool command(uint32_t id);
    // The pattern both pages work on.
    void setPattern(uint32_t);
    uint32_t pattern() const { return patternPage_.pattern(); }
    void setMoveMode(bool);
    // Shows the song again: `scope` names what changed (every part after a new song).
    void refresh(uint32_t scope);
    // Back to the first column and row on both pages.
    void scrollHome();

    PatternPage& patternPage() { return patternPage_; }
    PlaylistEditor& playlist() { return playlist_; }

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;

private:
    Skin& skin_;
    PatternPage patternPage_;
    PlaylistEditor playlist_;
    int32_t page_ = 0;
};

} // namespace pulsara
