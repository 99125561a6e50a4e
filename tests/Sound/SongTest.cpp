#include "Sound/Song.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

using namespace pulsara;

// What reset does to the rest of the song, keeping the tempo and volume among it, shows in the
// bytes of a song read from an empty file (the reader's tests).
TEST(Song, ResetUnloadsTheSamplesAndShowsTheFirstEditor)
{
    test::ScratchFolder folder;
    Song song;
    song.instrument(4).sample().load(folder.write("kick.wav", test::makeWav(1, 44100, 16, test::pcm16({ 1000, 500 }))));
    ASSERT_TRUE(song.instrument(4).sample().isLoaded());
    song.setEditorShown(2);
    song.reset();
    EXPECT_FALSE(song.instrument(4).sample().isLoaded());
    EXPECT_EQ(song.editorShown(), 0);
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
    EXPECT_EQ(std::pair(song.instrument(2).sample().length(), song.instrument(2).sample().channels()), std::pair(8, 2u));
    EXPECT_EQ(song.instrument(2).sample().path().view(), folder.file("hat.wav"));
    EXPECT_EQ(song.player().framesPerStep(), static_cast<double>(4409.9995f));
}
