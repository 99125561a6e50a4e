#include "Sound/Song.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(Song, ResetEmptiesEverythingButTempoAndVolume)
{
    test::ScratchFolder folder;
    Song song;
    song.player().setTempo(99.0f);
    song.player().setVolume(0.3f);
    song.setStepsPerPattern(32);
    song.setBeatsPerPattern(3);
    song.instrument(4).sample().load(folder.write("kick.wav", test::makeWav(1, 44100, 16, test::pcm16({ 1000, 500 }))));
    ASSERT_TRUE(song.instrument(4).sample().isLoaded());
    song.instrument(4).setVolume(0.1f);
    song.instrument(4).setName(u"Kick");
    song.player().pattern(7).setCell(1, 30, kDefaultNote);
    song.player().setPatternName(7, u"Verse");
    song.player().playlist().set(7, 12, 1.0f);
    song.player().setLoopStart(3);
    song.player().setLoopEnd(9);
    song.view(1) = { 5, { 6, 7 } };
    song.setEditorShown(2);
    std::swap(song.instrumentOrder()[0], song.instrumentOrder()[39]);

    song.reset();
    EXPECT_EQ(song.player().tempo(), 99.0f);
    EXPECT_EQ(song.player().volume(), 0.3f);
    EXPECT_EQ(song.stepsPerPattern(), 16u);
    EXPECT_EQ(song.player().pattern(7).length(), 16u);
    EXPECT_EQ(song.beatsPerPattern(), 4u);
    EXPECT_FALSE(song.instrument(4).sample().isLoaded());
    EXPECT_EQ(song.instrument(4).volume(), 0.7f);
    EXPECT_TRUE(song.instrument(4).name().empty());
    EXPECT_EQ(song.player().pattern(7).cell(1, 30), kEmptyStep);
    EXPECT_TRUE(song.player().patternName(7).empty());
    EXPECT_TRUE(song.player().playlist().isEmpty());
    EXPECT_EQ(song.player().loopStart(), 0);
    EXPECT_EQ(song.player().loopEnd(), -1);
    EXPECT_EQ(song.view(1), EditorViewState {});
    EXPECT_EQ(song.editorShown(), 0);
    EXPECT_EQ(song.instrumentOrder()[0], 0);
}

// A new song plays at tempo 150: 10 steps a second, 4410 frames each at 44100 Hz (a little less
// in single precision).
TEST(Song, NewFormatReloadsEverySampleForIt)
{
    test::ScratchFolder folder;
    Song song(AudioFormat { 22050, 32, 1 });
    song.instrument(2).sample().load(folder.write("hat.wav", test::makeWav(1, 22050, 8, test::pcm8({ 128, 200, 60, 128 }))));
    EXPECT_EQ(song.instrument(2).sample().length(), 4);
    song.setFormat({ 44100, 32, 2 });
    EXPECT_EQ(song.instrument(2).sample().length(), 8);
    EXPECT_EQ(song.instrument(2).sample().channels(), 2u);
    EXPECT_EQ(song.player().framesPerStep(), static_cast<double>(4409.9995f));
}
