// Every kind of edit is recorded as a step that undo and redo take back and forth exactly: the
// song file the writer makes of the song is compared before and after.
#include "GUI/editors/SongEdits.h"

#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongWriter.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <functional>

using namespace pulsara;
using namespace pulsara::test;

namespace {

struct PathsAsTheyAre final : SampleLocator {
    void locateSample(Song&, std::u16string_view, uint32_t) override { }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view) override { return PathString(samplePath); }
};

std::vector<uint8_t> fileOf(const Song& song)
{
    PathsAsTheyAre locator;
    return SongWriter(song, locator, u"/songs/edited.kqu").write();
}

} // namespace

TEST(SongEdits, UndoAndRedoTakeEveryEditBackAndForth)
{
    ScratchFolder folder;
    const std::u16string kick = folder.write("kick.wav", makeWav(1, 44100, 16, pcm16({ 100, 200, 300 })));
    const std::u16string snare = folder.write("snare.wav", makeWav(1, 44100, 16, pcm16({ -100, 50 })));
    struct Case {
        const char* name;
        std::function<void(SongEdits&)> edit;
    };
    const Case cases[] = {
        { "Edit note", [](SongEdits& e) { e.setPatternCell(3, 2, 7, { 0.5f, 1.5f, 512 }); } },
        { "Place pattern", [](SongEdits& e) { e.setPlaylistCell(4, 9, true); } },
        { "Remove pattern", [](SongEdits& e) { e.setPlaylistCell(0, 1, false); } },
        { "Change tempo", [](SongEdits& e) { e.setTempo(96.0f); } },
        { "Change master volume", [](SongEdits& e) { e.setMasterVolume(0.25f); } },
        { "Change instrument volume", [](SongEdits& e) { e.setInstrumentVolume(1, 0.9f); } },
        { "Change pattern length", [](SongEdits& e) { e.setPatternLength(3, 12); } },
        { "Set loop", [](SongEdits& e) { e.setLoop(2, 5); } },
        { "Rename instrument", [](SongEdits& e) { e.renameInstrument(1, u"Snare"); } },
        { "Rename pattern", [](SongEdits& e) { e.renamePattern(4, u"Chorus"); } },
        { "Open sample", [&](SongEdits& e) { e.loadSample(1, snare); } },
        { "Clear instrument", [](SongEdits& e) { e.clearInstrument(0); } },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Song song;
        song.instrument(0).sample().load(kick);
        song.instrument(0).setVolume(0.4f);
        song.player().playlist().set(0, 1, 1.0f);
        SongEdits edits(song);
        const std::vector<uint8_t> before = fileOf(song);
        c.edit(edits);
        const std::vector<uint8_t> after = fileOf(song);
        ASSERT_NE(after, before);
        QUndoStack& history = edits.history();
        ASSERT_EQ(history.count(), 1);
        EXPECT_EQ(history.undoText().toStdString(), c.name);
        history.undo();
        EXPECT_EQ(fileOf(song), before);
        history.redo();
        EXPECT_EQ(fileOf(song), after);
    }
}

TEST(SongEdits, AGestureIsOneStepAndTheSavedStateIsClean)
{
    Song song;
    SongEdits edits(song);
    std::vector<bool> cleanChanges;
    edits.onCleanChanged = [&](bool clean) { cleanChanges.push_back(clean); };

    edits.beginGesture(u"Paint notes");
    for (uint32_t step = 0; step < 4; ++step)
        edits.setPatternCell(0, 0, step, kDefaultNote);
    edits.setPatternCell(0, 0, 2, kEmptyStep); // the same cell again: one change
    edits.endGesture();
    ASSERT_EQ(edits.history().count(), 1);
    EXPECT_EQ(song.player().pattern(0).cell(0, 2), kEmptyStep);
    EXPECT_FALSE(edits.isClean());

    // A drag that ends where it began changes nothing and leaves no step.
    edits.beginGesture(u"Change tempo");
    edits.setTempo(120.0f);
    edits.setTempo(song.player().tempo() == 120.0f ? Song::kStartTempo : 0.0f);
    edits.endGesture();
    EXPECT_EQ(edits.history().count(), 1);

    edits.history().undo();
    for (uint32_t step = 0; step < 4; ++step)
        EXPECT_EQ(song.player().pattern(0).cell(0, step), kEmptyStep);
    EXPECT_TRUE(edits.isClean()) << "undone back to the saved song";
    edits.history().redo();
    edits.markSaved();
    edits.history().undo();
    EXPECT_FALSE(edits.isClean());
    EXPECT_EQ(cleanChanges, (std::vector<bool> { false, true, false, true, false }));

    edits.markUnsaved();
    edits.history().redo();
    EXPECT_FALSE(edits.isClean()) << "a song changed by its load is never the saved one";
    edits.forgetHistory();
    EXPECT_TRUE(edits.isClean());
    EXPECT_EQ(edits.history().count(), 0);
}
