// The note panel: what a note reads as, the note its controls make, and that every control
// writes the cursor's note as one undo step.
#include "EditorHarness.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <array>

using namespace pulsara;
using namespace pulsara::test;

TEST(NoteInfo, ReadsNotesAsNameOctaveVolumeAndLength)
{
    struct Case {
        Step note;
        std::array<std::u16string, 4> lines;
    };
    const Case cases[] = {
        { { 1.0f, 1.0f, 0 }, { u"Note: C", u"Octave: 5", u"Volume: 100%", u"Lenght: inf" } },
        { { 0.7f, 2.0f, 256 }, { u"Note: C", u"Octave: 6", u"Volume: 70%", u"Lenght: 1" } },
        { { 1.2f, 1.0594631f, 64 * 256 }, { u"Note: C#", u"Octave: 5", u"Volume: 120%", u"Lenght: 64" } },
        { { 0.0f, 0.5f, 3 * 256 + 128 }, { u"Note: C", u"Octave: 4", u"Volume: 0%", u"Lenght: 3" } }, // fractions drop
        { { 0.5f, 1.4983071f, 0 }, { u"Note: G", u"Octave: 5", u"Volume: 50%", u"Lenght: inf" } },
        // Below the lowest octave the rounding goes toward zero, one semitone up.
        { { 1.0f, 0.03125f, 0 }, { u"Note: C#", u"Octave: 0", u"Volume: 100%", u"Lenght: inf" } },
    };
    for (const Case& c : cases) {
        const NoteInfo::Controls n = NoteInfo::controlsFor(c.note);
        EXPECT_EQ((std::array { NoteInfo::noteLine(n), NoteInfo::octaveLine(n), NoteInfo::volumeLine(n), NoteInfo::lengthLine(n) }), c.lines);
    }
    EXPECT_FALSE(NoteInfo::controlsFor(kEmptyStep).volumeSlider >= 0.0f) << "an empty step shows no note";
    EXPECT_EQ(NoteInfo::controlsFor({ 1.0f, 1.0f, 64 * 256 }).lengthSlider, 1.0f);
}

TEST(NoteInfo, ControlsMakeWholeSemitonesAndWholeSteps)
{
    NoteInfo::Controls controls { .noteIndex = 7, .octave = 4, .volumeSlider = 0.5f, .lengthSlider = 0.25f };
    EXPECT_EQ(NoteInfo::noteFor(controls), (Step { 0.5f * 1.2f, 1.4983071f, 16 * 256 })); // 2^(7/12)
    controls.octave = 5;
    controls.noteIndex = 0;
    EXPECT_EQ(NoteInfo::noteFor(controls).rate, 2.0f);
}

TEST(NoteInfo, EveryControlWritesTheCursorNoteAsOneStep)
{
    Editors editors(800, 700);
    editors.song.player().pattern(0).setCell(2, 3, { 1.0f, 1.0f, 0 });
    StepGridView& grid = editors.grid(0);
    NoteInfo& info = editors.editor.patternPage().noteInfo();
    EXPECT_FALSE(info.hasNote());
    EXPECT_FALSE(info.piano().isVisible()) << "no controls without a note";
    grid.moveCursor(3, 2);
    ASSERT_TRUE(info.hasNote());
    editors.paint();

    auto note = [&] { return editors.song.player().pattern(0).cell(2, 3); };
    QUndoStack& history = editors.edits.history();
    // The piano's G (the fifth white key), then the octave 6 cell.
    const ElemRect& keys = *info.piano().rect();
    editors.click({ keys.x + keys.width * 9 / 14, keys.bottom() - 3 });
    EXPECT_EQ(note().rate, 1.4983071f);
    const ElemRect& octaves = *info.octaveSelector().rect();
    editors.click({ octaves.x + octaves.width * 11 / 16, octaves.y + octaves.height / 2 });
    EXPECT_EQ(note().rate, 2.9966142f);
    // A drag of the volume slider from the top (120%) down is one step.
    const ElemRect& volume = *info.volumeSlider().rect();
    editors.press({ volume.x + volume.width / 2, volume.y });
    editors.move({ volume.x + volume.width / 2, volume.y + volume.height / 2 });
    editors.release({ volume.x + volume.width / 2, volume.bottom() - 1 });
    EXPECT_EQ(note().volume, 0.0f);
    EXPECT_EQ(history.count(), 3);
    EXPECT_EQ(history.undoText().toStdString(), "Edit note");
    history.undo();
    EXPECT_EQ(note().volume, 1.0f);
    EXPECT_EQ(NoteInfo::volumeLine(info.controls()), u"Volume: 100%") << "the panel shows the note undone";
}
