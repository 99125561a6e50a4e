#include "Sound/SongWriter.h"

#include "SongFileTestSupport.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

std::vector<uint8_t> writeSong(const Song& song)
{
    RecordingLocator locator;
    return SongWriter(song, locator, u"/songs/a.kqu").write();
}

bool contains(const std::vector<uint8_t>& bytes, const std::vector<uint8_t>& part)
{
    return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}

// The file the writer must produce for `song`, item by item, built independently of the writer
// from the song's own accessors. Instruments have no samples here.
SongBytes expectedFile(const Song& song)
{
    const SongPlayer& player = song.player();
    SongBytes file = SongBytes().magic();
    file.doubleItem(8, player.volume()).doubleItem(9, player.tempo()).longItem(14, song.stepsPerPattern());
    for (uint8_t slot : song.instrumentOrder()) {
        const Instrument& instrument = song.instrument(slot);
        file.code(10);
        if (!instrument.name().empty())
            file.stringItem(26, instrument.name());
        file.stringItem(15, u"").doubleItem(8, instrument.volume()).end();
    }
    for (uint8_t pattern : song.patternOrder()) {
        file.code(11);
        for (uint32_t column = 0; column < Song::kPositions; ++column) {
            if (player.playlist().isOn(pattern, column))
                file.longItem(16, column);
        }
        file.end().code(13);
        if (!player.patternName(pattern).empty())
            file.stringItem(26, player.patternName(pattern));
        for (uint8_t row : song.instrumentOrder()) {
            file.code(11);
            for (uint32_t index = 0; index < 64; ++index) {
                Step step = player.pattern(pattern).cell(row, index);
                if (step.isNote())
                    file.step(index, step.rate, step.volume, step.parameter);
            }
            file.end();
        }
        file.end();
    }
    file.longItem(23, song.beatsPerPattern()).longItem(17, static_cast<uint32_t>(song.editorShown()));
    for (uint32_t view = 0; view < 2; ++view) {
        const EditorViewState& state = song.view(view);
        file.code(18 + view).longItem(20, static_cast<uint32_t>(state.value));
        file.code(21).longValue(static_cast<uint32_t>(state.pair[0])).longValue(static_cast<uint32_t>(state.pair[1])).end();
        file.end();
    }
    file.code(24).longValue(static_cast<uint32_t>(player.loopStart())).longValue(static_cast<uint32_t>(player.loopEnd())).end();
    return file;
}

} // namespace

TEST(SongFileWriter, WritesAStepAsTheFormatSpellsIt)
{
    Song song;
    song.player().pattern(0).setCell(0, 5, { 0.7f, 1.0f, 0 });
    std::vector<uint8_t> bytes = writeSong(song);

    // It follows the first (empty) playlist row; its row holds the step, the other 39 nothing.
    std::vector<uint8_t> block = {
        0x0B, 0x00, 0x0D, 0x0B, //
        0x10, 0x03, 0x05, 0x00, 0x00, 0x00, //
        0x16, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F, 0x00, // rate 1.0
        0x08, 0x04, 0x00, 0x00, 0x00, 0x60, 0x66, 0x66, 0xE6, 0x3F, 0x00, // volume 0.7f widened
        0x19, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0x00, 0x00, //
    };
    for (int row = 1; row < 40; ++row)
        block.insert(block.end(), { 0x0B, 0x00 });
    block.push_back(0x00);
    EXPECT_TRUE(contains(bytes, block));
}

TEST(SongFileWriter, WritesInstrumentsPatternsAndRowsItemByItemInDisplayOrder)
{
    Song fresh;
    std::vector<uint8_t> bytes = writeSong(fresh);
    EXPECT_EQ(bytes, expectedFile(fresh).bytes);
    // Spot checks of the independent builder against the format itself.
    const std::vector<uint8_t> head = { 'K', 'V', 'S', '0', 0x08, 0x04 };
    EXPECT_TRUE(std::equal(head.begin(), head.end(), bytes.begin()));
    const std::vector<uint8_t> loop = { 0x18, 0x03, 0, 0, 0, 0, 0x03, 0xFF, 0xFF, 0xFF, 0xFF, 0x00 };
    EXPECT_TRUE(std::equal(loop.rbegin(), loop.rend(), bytes.rbegin())) << "the loop item ends the file";

    Song song;
    arrangeSong(song);
    bytes = writeSong(song);
    EXPECT_EQ(bytes, expectedFile(song).bytes);
    // The first instrument block, right after the settings, is slot 39's; the first pattern
    // block is pattern 10's, which begins with slot 39's row.
    std::vector<uint8_t> firstInstrument = SongBytes().code(10).stringItem(26, u"kick").bytes;
    EXPECT_TRUE(std::equal(firstInstrument.begin(), firstInstrument.end(), bytes.begin() + 4 + 11 + 11 + 7));
    SongBytes firstPattern = SongBytes().code(11).longItem(16, 0).longItem(16, 200).end().code(13);
    EXPECT_TRUE(contains(bytes, firstPattern.stringItem(26, u"intro").code(11).step(0, 2.0f, 0.5f, 3).end().bytes));
}

TEST(SongFileWriter, StoresSamplePathsWithBackslashes)
{
    struct FixedLocator : RecordingLocator {
        PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override
        {
            asked.emplace_back(samplePath, songPath);
            return PathString(u"smp/deep/kick.wav");
        }
        std::vector<std::pair<std::u16string, std::u16string>> asked;
    };
    ScratchFolder folder;
    folder.write("kick.wav", test::makeWav(1, 44100, 16, test::pcm16({ 0x1000, 0x2000 })));
    Song song;
    song.instrument(2).sample().load(folder.file("kick.wav"));
    ASSERT_TRUE(song.instrument(2).sample().isLoaded());

    FixedLocator locator;
    std::vector<uint8_t> bytes = SongWriter(song, locator, u"/songs/a.kqu").write();
    ASSERT_EQ(locator.asked.size(), 1u) << "only slots with a sample are asked about";
    EXPECT_EQ(locator.asked[0], std::make_pair(folder.file("kick.wav"), std::u16string(u"/songs/a.kqu")));
    EXPECT_TRUE(contains(bytes, SongBytes().stringItem(15, u"smp\\deep\\kick.wav").bytes));
}
