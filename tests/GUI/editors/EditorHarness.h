#pragma once

// The two editor pages in a window of their own, with a host that records what the editors ask
// of the application.
#include "GUI/WindowDriver.h"
#include "GUI/editors/EditorHost.h"
#include "GUI/editors/MainEditor.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"

#include <vector>

namespace pulsara::test {

struct RecordingHost final : EditorHost {
    int32_t topBarMode = -1, playedPattern = -2;
    std::vector<int32_t> songPositions, steps;
    int sampleLoads = 0;
    std::vector<std::u16string> auditions;

    void setTopBarMode(int32_t mode) override { topBarMode = mode; }
    void moveToSongPosition(int32_t position) override { songPositions.push_back(position); }
    void moveToStep(int32_t step) override { steps.push_back(step); }
    void setPlayedPattern(int32_t pattern) override { playedPattern = pattern; }
    void setFocusedEditor(uint16_t) override { }
    bool isLiveMode() const override { return false; }
    void loadSampleSafely(const std::function<void()>& load) override { ++sampleLoads; load(); }
    void audition(std::u16string_view path) override { auditions.emplace_back(path); }
};

// A root that hands the menu commands to the editors, as the application does.
class EditorRoot final : public RootElement {
public:
    explicit EditorRoot(MainEditor& editor) : editor_(editor) { addChild(&editor); }
    void layout(const ElemRect& rect) override { RootElement::layout(rect); editor_.layout(rect); }
    intptr_t handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override
    {
        if (message == kMessageCommand)
            return editor_.command(uint32_t(wParam)) ? 0 : 1;
        return RootElement::handleMessage(message, wParam, lParam);
    }

private:
    MainEditor& editor_;
};

// The centre of a cell (row -1: the ruler) and of a row's label.
inline QPoint cellCentre(const StepGridView& grid, int column, int row)
{
    ElemRect at = grid.cellRect(column, row);
    if (row < 0)
        at.y = grid.rect()->y;
    return at.toQRect().center();
}
inline QPoint labelCentre(const StepGridView& grid, int row)
{
    ElemRect at = grid.cellRect(0, row);
    return { grid.rect()->x + grid.labelWidth() / 2, at.y + at.height / 2 };
}

struct Editors : WindowDriver {
    Song song { AudioFormat { 44100, 32, 1 } };
    SongEdits edits { song };
    RecordingHost host;
    MainEditor editor { loadedSkin(), edits, host };
    EditorRoot tree { editor };

    explicit Editors(int width = 800, int height = 700) : WindowDriver(tree)
    {
        // Undo and redo show the song again, as the application has it.
        edits.onApplied = [this](EditScope scope, bool fromHistory) { if (fromHistory) editor.refresh(scope); };
        open(width, height);
    }

    StepGridView& grid(int page) { return editor.grid(page); }
    QPoint cell(int page, int column, int row) { return cellCentre(grid(page), column, row); }
    QPoint label(int page, int row) { return labelCentre(grid(page), row); }
};

} // namespace pulsara::test
