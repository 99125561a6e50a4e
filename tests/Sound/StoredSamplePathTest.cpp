#include "Sound/StoredSamplePath.h"
#include "base/text.h"

#include <gtest/gtest.h>

#include <string>

using namespace pulsara;

TEST(StoredSamplePath, PrefersTheSongFolderThenTheSamplesFolderThenTheFullPath)
{
    // The sample, the song, the samples folder and the stored path.
    const std::u16string_view cases[][4] = {
        { u"/docs/songs/kick.wav", u"/docs/songs/a.kqu", u"/lib", u"kick.wav" },
        { u"/docs/songs/smp/kick.wav", u"/docs/songs/a.kqu", u"/lib", u"smp/kick.wav" },
        { u"/docs/songs/smp/kick.wav", u"/docs/songs/a.kqu", u"/docs", u"smp/kick.wav" },
        { u"/lib/drums/kick.wav", u"/docs/songs/a.kqu", u"/lib", u"drums/kick.wav" },
        { u"/lib/kick.wav", u"/docs/songs/a.kqu", u"/lib/", u"kick.wav" },
        // Needing "../" from either folder means the full path.
        { u"/docs/other/kick.wav", u"/docs/songs/a.kqu", u"/lib", u"/docs/other/kick.wav" },
        { u"/docs/other/kick.wav", u"/docs/songs/a.kqu", u"", u"/docs/other/kick.wav" },
        // The common prefix is taken unit by unit, as relativePath does.
        { u"/docs/songsX/kick.wav", u"/docs/songs/a.kqu", u"/lib", u"X/kick.wav" },
        { u"", u"/docs/songs/a.kqu", u"/lib", u"" },
    };
    for (const auto& [sample, song, samples, stored] : cases)
        EXPECT_EQ(makeStoredSamplePath(sample, song, samples).view(), stored) << toUtf8(sample);
}

TEST(StoredSamplePath, ADeepSongFolderDoesNotOverflowThePathOfAFarSample)
{
    std::u16string deepFolder;
    for (int level = 0; level < 80; ++level)
        deepFolder += u"/d";
    std::u16string sample = u"/" + std::u16string(200, u's') + u".wav";
    EXPECT_EQ(makeStoredSamplePath(sample, deepFolder + u"/song.kqu", u"/lib").view(), sample);
}
