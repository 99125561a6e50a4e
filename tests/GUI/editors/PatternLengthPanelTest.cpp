// The song properties panel: beats times beat length make the pattern's steps.
#include "EditorHarness.h"
#include "GUI/editors/PatternLengthPanel.h"

#include <QUndoStack>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

TEST(PatternLengthPanel, SetsStepsAsBeatsTimesBeatLength)
{
    Editors editors;
    PatternLengthPanel panel(loadedSkin(), editors.edits);
    editors.tree.addChild(&panel);
    panel.layout({ 10, 100, 400, PatternLengthPanel::kHeight });
    editors.song.setStepsPerPattern(14);
    panel.showSong();
    EXPECT_EQ(panel.beats(), 4u);
    EXPECT_EQ(panel.beatLength(), 3u) << "14 steps over 4 beats";
    EXPECT_NEAR(panel.beatsSlider().value(), 2 * 0.16666667, 1e-7);

    // The beats slider's right end is 8 beats: 8 x 3 = 24 steps, as one step of the history.
    const ElemRect& beats = *panel.beatsSlider().rect();
    panel.stylusDown(0, beats.x + beats.width / 2, beats.y + 8);
    panel.stylusMove(beats.right() - 1, beats.y + 8);
    panel.stylusUp(0, beats.right() - 1, beats.y + 8);
    EXPECT_EQ(editors.song.beatsPerPattern(), 8u);
    EXPECT_EQ(editors.song.stepsPerPattern(), 24u);
    const ElemRect& length = *panel.beatLengthSlider().rect();
    panel.stylusDown(0, length.right() - 1, length.y + 8);
    panel.stylusUp(0, length.right() - 1, length.y + 8);
    EXPECT_EQ(editors.song.stepsPerPattern(), 64u) << "8 x 8, the most a pattern holds";
    EXPECT_EQ(editors.edits.history().count(), 2);
    EXPECT_EQ(editors.edits.history().undoText().toStdString(), "Change pattern length");

    bool closed = false;
    panel.onClose = [&] { closed = true; };
    const ElemRect& button = *panel.closeButton().rect();
    EXPECT_EQ(button.width, 60);
    EXPECT_EQ(button.y, 100 + 82);
    panel.stylusDown(0, button.x + 5, button.y + 5);
    panel.stylusUp(0, button.x + 5, button.y + 5);
    EXPECT_TRUE(closed);
}
