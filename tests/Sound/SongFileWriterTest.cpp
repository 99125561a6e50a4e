#include "Sound/SongWriter.h"

#include "SongFileTestSupport.h"

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

    const std::vector<uint8_t> step = {
        0x10, 0x03, 0x05, 0x00, 0x00, 0x00, //
        0x16, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F, 0x00, // rate 1.0
        0x08, 0x04, 0x00, 0x00, 0x00, 0x60, 0x66, 0x66, 0xE6, 0x3F, 0x00, // volume 0.7f widened
        0x19, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0x00,
    };
    // The first pattern block: its first row holds the step, its other 39 rows nothing.
    std::vector<uint8_t> block = { 0x0D, 0x0B };
    block.insert(block.end(), step.begin(), step.end());
    block.push_back(0x00);
    for (int row = 1; row < 40; ++row)
        block.insert(block.end(), { 0x0B, 0x00 });
    block.push_back(0x00);

    auto found = std::search(bytes.begin(), bytes.end(), block.begin(), block.end());
    ASSERT_NE(found, bytes.end());
    // It follows the first (empty) playlist row.
    ASSERT_GE(found - bytes.begin(), 2);
    EXPECT_EQ(*(found - 2), 0x0B);
    EXPECT_EQ(*(found - 1), 0x00);
}

TEST(SongFileWriter, WritesANewSongItemByItem)
{
    Song song;
    EXPECT_EQ(writeSong(song), expectedFile(song).bytes);
    // Spot checks of the independent builder against the format itself.
    std::vector<uint8_t> bytes = writeSong(song);
    const std::vector<uint8_t> head = { 'K', 'V', 'S', '0', 0x08, 0x04 };
    EXPECT_TRUE(std::equal(head.begin(), head.end(), bytes.begin()));
    const std::vector<uint8_t> loop = { 0x18, 0x03, 0, 0, 0, 0, 0x03, 0xFF, 0xFF, 0xFF, 0xFF, 0x00 };
    EXPECT_TRUE(std::equal(loop.rbegin(), loop.rend(), bytes.rbegin())) << "the loop item ends the file";
}

TEST(SongFileWriter, WritesInstrumentsPatternsAndRowsInDisplayOrder)
{
    Song song;
    SongPlayer& player = song.player();
    player.setTempo(98.5f);
    player.setVolume(0.3f);
    song.setStepsPerPattern(24);
    song.setBeatsPerPattern(6);
    std::reverse(song.instrumentOrder().begin(), song.instrumentOrder().end());
    std::rotate(song.patternOrder().begin(), song.patternOrder().begin() + 3, song.patternOrder().end());
    song.instrument(39).setName(u"first shown");
    song.instrument(39).setVolume(0.9f);
    song.instrument(0).setName(u"last shown");
    player.setPatternName(3, u"first pattern");
    player.pattern(3).setCell(39, 0, { 0.5f, 2.0f, 3 });
    player.pattern(3).setCell(0, 63, { 1.0f, 0.5f, -1 });
    player.pattern(7).setCell(12, 20, { 0.0f, 1.0f, 0 });
    player.playlist().set(3, 0, 1.0f);
    player.playlist().set(3, 255, 1.0f);
    player.playlist().set(5, 17, 1.0f);
    player.setLoopStart(4);
    player.setLoopEnd(9);
    song.setEditorShown(2);
    song.view(0) = { 1, { 2, 3 } };
    song.view(1) = { -4, { 5, -6 } };

    std::vector<uint8_t> bytes = writeSong(song);
    EXPECT_EQ(bytes, expectedFile(song).bytes);

    // The first instrument block is slot 39's and the first pattern block pattern 3's, which
    // also begins with slot 39's row.
    SongBytes firstInstrument = SongBytes().code(10).stringItem(26, u"first shown");
    auto instrument = std::search(bytes.begin(), bytes.end(), firstInstrument.bytes.begin(), firstInstrument.bytes.end());
    auto tempoEnd = bytes.begin() + 4 + 11 + 11 + 7;
    EXPECT_EQ(instrument, tempoEnd);
    SongBytes firstPattern = SongBytes().code(11).longItem(16, 0).longItem(16, 255).end().code(13);
    firstPattern.stringItem(26, u"first pattern").code(11).step(0, 2.0f, 0.5f, 3).end();
    EXPECT_NE(std::search(bytes.begin(), bytes.end(), firstPattern.bytes.begin(), firstPattern.bytes.end()), bytes.end());
}

TEST(SongFileWriter, StoresSamplePathsWithBackslashes)
{
    class FixedLocator : public RecordingLocator {
    public:
        PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override
        {
            asked.emplace_back(samplePath, songPath);
            return PathString(u"smp/deep/kick.wav");
        }
        std::vector<std::pair<std::u16string, std::u16string>> asked;
    };
    ScratchFolder folder;
    // A tiny WAV file gives the instrument a sample path.
    SongBytes wav;
    wav.raw({ 'R', 'I', 'F', 'F' }).little(36 + 4, 4).raw({ 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ' });
    wav.little(16, 4).little(1, 2).little(1, 2).little(44100, 4).little(88200, 4).little(2, 2).little(16, 2);
    wav.raw({ 'd', 'a', 't', 'a' }).little(4, 4).little(0x1000, 2).little(0x2000, 2);
    folder.write("kick.wav", wav.bytes);
    Song song;
    song.instrument(2).sample().load(folder.file("kick.wav"));
    ASSERT_TRUE(song.instrument(2).sample().isLoaded());

    FixedLocator locator;
    std::vector<uint8_t> bytes = SongWriter(song, locator, u"/songs/a.kqu").write();

    ASSERT_EQ(locator.asked.size(), 1u) << "only slots with a sample are asked about";
    EXPECT_EQ(locator.asked[0].first, folder.file("kick.wav"));
    EXPECT_EQ(locator.asked[0].second, u"/songs/a.kqu");
    SongBytes stored = SongBytes().stringItem(15, u"smp\\deep\\kick.wav");
    EXPECT_NE(std::search(bytes.begin(), bytes.end(), stored.bytes.begin(), stored.bytes.end()), bytes.end());
}
