#include "Sound/SongReader.h"

#include "Sound/SongWriter.h"
#include "SongFileTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <string>
#include <tuple>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

int readSong(Song& song, std::span<const uint8_t> bytes, SampleLocator&& locator = RecordingLocator(),
    SongReader::DataEnd end = SongReader::DataEnd::EndOfFile)
{
    return SongReader(song, locator, bytes, end).read();
}

int readSong(Song& song, const SongBytes& file, SampleLocator& locator) { return SongReader(song, locator, file.bytes).read(); }

} // namespace

TEST(SongFileReader, OnlyTheMagicGivesANewSongAndKeepsTempoVolumeAndShownEditor)
{
    Song song;
    arrangeSong(song);
    ReportRecorder reports;
    EXPECT_EQ(readSong(song, SongBytes().magic().bytes), 1);
    EXPECT_TRUE(reports.reports().empty());
    // Tempo and volume belong to the application until a file sets them; the rest is new, as
    // the writer shows.
    Song fresh;
    fresh.player().setTempo(97.5f);
    fresh.player().setVolume(0.45f);
    fresh.setEditorShown(1);
    RecordingLocator locator;
    EXPECT_TRUE(SongWriter(song, locator, u"/a.kqu").write() == SongWriter(fresh, locator, u"/a.kqu").write());
    EXPECT_EQ(song.player().pattern(39).length(), 16u);
}

TEST(SongFileReader, StopsCleanlyWhereverTheDataEnds)
{
    // Cuts inside a top-level value, an instrument's string and a view pair, up to the tempo's
    // last byte: nothing past the cut is read.
    SongBytes whole = SongBytes().magic().doubleItem(8, 0.25).code(10).stringValue(u"abc").end();
    whole.code(18).code(21).longValue(3).longValue(4).end().end().doubleItem(9, 120.0);
    auto readCut = [](const SongBytes& file, std::size_t cut) {
        auto song = std::make_unique<Song>();
        ReportRecorder reports;
        EXPECT_EQ(readSong(*song, std::span(file.bytes).first(cut)), 1) << "cut at " << cut;
        EXPECT_TRUE(reports.reports().empty()) << "cut at " << cut;
        return song;
    };
    for (std::size_t cut = 4; cut < whole.bytes.size() - 1; ++cut)
        EXPECT_NE(readCut(whole, cut)->player().tempo(), 120.0f) << "cut at " << cut;
    // Cuts inside a pattern's second step keep the first step; only the whole step makes a note.
    SongBytes steps = SongBytes().magic().doubleItem(9, 99.0).code(13).code(11).step(1, 1.0f, 0.5f, 7);
    std::size_t secondStart = steps.bytes.size();
    steps.step(5, 1.0f, 0.5f, 7).end().end();
    for (std::size_t cut = secondStart; cut <= steps.bytes.size(); ++cut) {
        std::unique_ptr<Song> song = readCut(steps, cut);
        const StepGrid& pattern = song->player().pattern(0);
        EXPECT_EQ(pattern.cell(0, 1), (Step { 0.5f, 1.0f, 7 })) << "cut at " << cut;
        EXPECT_EQ(pattern.isNote(0, 5), cut >= steps.bytes.size() - 2) << "cut at " << cut;
    }
}

// Unknown items are skipped with their nested items, however deep, and strings of any length; a
// sample path is read up to its capacity.
TEST(SongFileReader, SkipsUnknownItemsWithTheirNestedItemsAndReadsPathsUpToTheirCapacity)
{
    SongBytes file = SongBytes().magic();
    file.code(30).stringValue(u"ignored").code(31).longValue(5).doubleValue(1.5).blobValue({ 9, 9, 9 });
    file.code(32).byteValue(8).wordValue(9).end().end().end();
    // Two-byte codes: 0x80 0x09 is not tag 9, 0x80 0x00 is not the end.
    file.code(0x8009).doubleValue(50.0).end().code(0x8000).doubleValue(60.0).end();
    file.bytes.insert(file.bytes.end(), 1'000'000, 30);
    file.bytes.insert(file.bytes.end(), 1'000'000, 0);
    file.code(30).stringValue(std::u16string(100'000, u'b')).end();
    // A value standing where an item would stand is skipped as a value.
    file.stringValue(u"stray").doubleItem(9, 111.0);
    file.code(10).code(40).stringItem(26, u"not the name").end().stringItem(26, u"lead").end();
    file.code(13).code(11).code(41).step(3, 1.0f, 1.0f, 0).end().step(2, 1.0f, 0.25f, 0).end().end();
    // Items that hold no string where a string belongs: a number then more, nothing, a nested
    // item; and an empty path, which locates nothing.
    file.code(10).code(15).longValue(0x00050005).stringValue(u"x").end().code(26).end();
    file.code(15).code(40).stringValue(u"nested").end().end().stringItem(15, u"").doubleItem(8, 0.125).end();
    std::u16string longest(PathString::kCapacity, u'a');
    file.code(10).stringItem(15, longest).end();

    Song song;
    RecordingLocator locator;
    ReportRecorder reports;
    EXPECT_EQ(readSong(song, file, locator), 1);
    EXPECT_TRUE(reports.reports().empty());
    EXPECT_EQ(locator.located, (std::vector<std::pair<std::u16string, uint32_t>> { { longest, 2 } }));
    EXPECT_EQ(song.player().tempo(), 111.0f);
    EXPECT_EQ(song.instrument(0).name(), u"lead");
    EXPECT_EQ(song.instrument(1).name(), u"");
    EXPECT_EQ(song.instrument(1).volume(), 0.125f);
    EXPECT_FALSE(song.player().pattern(0).isNote(0, 3));
    EXPECT_EQ(song.player().pattern(0).cell(0, 2).volume, 0.25f);
}

TEST(SongFileReader, ReadsEverySettingInAnyWidthAndFillsBlocksByTheirRunningIndex)
{
    SongBytes file = SongBytes().magic();
    // Numbers come as double or float, integers as byte, word or long.
    file.doubleItem(8, 0.5).code(9).floatValue(90.25f).end().code(14).wordValue(32).end();
    file.code(23).byteValue(3).end().longItem(17, 1);
    file.code(24).longValue(2).longValue(0xFFFFFFFF).end();
    file.code(18).longItem(20, 11).code(21).longValue(12).longValue(13).end().end();
    file.code(19).longItem(20, 21).code(21).longValue(22).longValue(0xFFFFFFFE).end().end();
    file.code(10).end();
    file.code(10).stringItem(26, u"snare drum with a name far longer than thirty-one units");
    file.stringItem(15, u"smp\\snare.wav").doubleItem(8, 0.25).end();
    file.code(11).end();
    file.code(11).longItem(16, 3).longItem(8, 200).end();
    // Pattern 0 holds steps with absent values (tag 8 stands for 16), pattern 1 a full one.
    file.code(13).code(11).code(16).longValue(2).end().code(8).longValue(3).doubleItem(8, 0.5).end();
    file.code(16).longValue(4).longItem(25, 9).doubleItem(22, 2.0).end().end().end();
    file.code(13).stringItem(26, u"chorus").code(11).end().code(11).step(4, 1.5f, 0.75f, 256).end().end();

    Song song;
    RecordingLocator locator;
    readSong(song, file, locator);
    const SongPlayer& player = song.player();
    // Volume, tempo, steps (also of the last pattern), beats, editor, loop.
    EXPECT_EQ(std::tuple(player.volume(), player.tempo(), song.stepsPerPattern(), player.pattern(39).length(), song.beatsPerPattern(),
                  song.editorShown(), player.loopStart(), player.loopEnd()),
        std::tuple(0.5f, 90.25f, 32u, 32u, 3u, 1, 2, -1));
    EXPECT_EQ((std::vector { song.view(0), song.view(1) }), (std::vector<EditorViewState> { { 11, { 12, 13 } }, { 21, { 22, -2 } } }));

    EXPECT_EQ(song.instrument(1).name(), u"snare drum with a name far long");
    EXPECT_EQ((std::vector { song.instrument(1).volume(), song.instrument(0).volume() }), (std::vector { 0.25f, 0.7f }));
    EXPECT_EQ(locator.located, (std::vector<std::pair<std::u16string, uint32_t>> { { u"smp/snare.wav", 1 } }));
    const Playlist& playlist = player.playlist();
    EXPECT_EQ((std::vector { playlist.isOn(1, 3), playlist.isOn(1, 200), playlist.isOn(0, 3) }), (std::vector { true, true, false }));
    EXPECT_EQ(playlist.lastUsedPosition(), 200);

    const StepGrid& first = player.pattern(0);
    EXPECT_EQ((std::vector { first.cell(0, 2), first.cell(0, 3), first.cell(0, 4) }),
        (std::vector<Step> { { 1.0f, 1.0f, 0 }, { 0.5f, 1.0f, 0 }, { 1.0f, 2.0f, 9 } }));
    EXPECT_FALSE(first.isNote(1, 4));
    EXPECT_EQ(player.patternName(1), u"chorus");
    EXPECT_EQ(player.pattern(1).cell(1, 4), (Step { 0.75f, 1.5f, 256 }));
}

TEST(SongFileReader, ReadsAndDropsWhatLiesBeyondTheBanks)
{
    SongBytes file = SongBytes().magic();
    // Pattern 0: step 63 and 64 of row 0, and a 41st row.
    file.code(13).code(11).step(63, 1.0f, 1.0f, 0).step(64, 1.0f, 1.0f, 0).end();
    for (int row = 1; row < 40; ++row)
        file.code(11).end();
    file.code(11).step(0, 1.0f, 1.0f, 0).end().end();
    for (int pattern = 1; pattern < 41; ++pattern)
        file.code(13).stringItem(26, u"p" + fromUtf8(std::to_string(pattern))).code(11).step(7, 1.0f, 1.0f, 0).end().end();
    for (int slot = 0; slot < 41; ++slot)
        file.code(10).stringItem(26, u"i" + fromUtf8(std::to_string(slot))).stringItem(15, u"a.wav").end();
    for (int row = 0; row < 41; ++row)
        file.code(11).longItem(16, 255).longItem(16, 256).end();

    Song song;
    RecordingLocator locator;
    ReportRecorder reports;
    EXPECT_EQ(readSong(song, file, locator), 1);
    EXPECT_TRUE(reports.reports().empty());
    const StepGrid& first = song.player().pattern(0);
    EXPECT_TRUE(first.isNote(0, 63));
    EXPECT_FALSE(first.isNote(1, 0)) << "step 64 must not spill into the next row";
    EXPECT_FALSE(first.isNote(0, 7)) << "the 41st pattern block must not fall back to pattern 0";
    EXPECT_EQ(song.player().patternName(0), u"");
    EXPECT_EQ(song.player().patternName(39), u"p39");
    EXPECT_EQ(song.instrument(0).name(), u"i0") << "the 41st instrument block must not fall back to slot 0";
    EXPECT_EQ(song.instrument(39).name(), u"i39");
    ASSERT_EQ(locator.located.size(), 40u);
    EXPECT_EQ(locator.located.back().second, 39u);
    EXPECT_TRUE(song.player().playlist().isOn(39, 255));
    EXPECT_EQ(song.player().playlist().lastUsedPosition(), 255);
}

TEST(SongFileReader, StopsAPlayingSongWhileLoadingAndStartsItAgain)
{
    struct PlayStateLocator : RecordingLocator {
        void locateSample(Song& song, std::u16string_view name, uint32_t slot) override
        {
            playingWhileLocating = song.player().isPlaying();
            RecordingLocator::locateSample(song, name, slot);
        }
        bool playingWhileLocating = true;
    };
    Song song;
    song.player().start();
    PlayStateLocator locator;
    readSong(song, SongBytes().magic().code(10).stringItem(15, u"a.wav").end(), locator);
    ASSERT_EQ(locator.located.size(), 1u);
    EXPECT_FALSE(locator.playingWhileLocating);
    EXPECT_TRUE(song.player().isPlaying());
    Song stopped;
    readSong(stopped, SongBytes().magic().bytes);
    EXPECT_FALSE(stopped.player().isPlaying());
}

TEST(SongFileReaderDeathTest, EveryCorruptValueIsFatalAtItsOwnLine)
{
    using End = SongReader::DataEnd;
    struct Case {
        int line;
        SongBytes file;
        End end = End::EndOfFile;
        const char* place = "Sound/songFile";
        const char* message = "The song file is corrupted";
    };
    auto file = [] { return SongBytes().magic(); };
    auto step = [&] { return file().code(13).code(11).code(16).longValue(1); };
    const Case cases[] = {
        { 114, file().code(10).stringItem(26, std::u16string(PathString::kCapacity + 1, u'a')).end(), End::EndOfFile,
            "text", "Buffer owerflow" },
        // Reads that fail rather than find the end of the file.
        { 10, SongBytes().raw({ 'K', 'V' }), End::ReadError },
        { 10, file().code(14).code(3).raw({ 1, 0 }), End::ReadError },
        { 17, file().code(14).code(2).raw({ 1 }), End::ReadError },
        { 24, file(), End::ReadError },
        { 24, file().code(14).code(1), End::ReadError },
        { 31, file().code(9).code(4).raw({ 0, 0, 0 }), End::ReadError },
        // Known items whose values have the wrong type.
        { 141, file().stringItem(8, u"loud") },
        { 146, file().code(9).byteValue(1).end() },
        { 146, file().code(9).end() },
        { 151, file().doubleItem(14, 16.0) },
        { 174, file().code(10).stringItem(8, u"x").end() },
        { 190, file().doubleItem(17, 1.0) },
        { 200, file().code(23).stringValue(u"4").end() },
        { 205, file().code(24).doubleValue(0.0).longValue(1).end() },
        { 207, file().code(24).longValue(0).doubleValue(1.0).end() },
        { 229, file().code(18).doubleItem(20, 1.0).end() },
        { 234, file().code(19).code(21).doubleValue(1.0).longValue(2).end().end() },
        { 235, file().code(18).code(21).longValue(1).doubleValue(2.0).end().end() },
        { 272, file().code(11).doubleItem(16, 3.0).end() },
        { 272, file().code(11).doubleItem(8, 3.0).end() },
        { 288, file().code(13).code(11).code(16).doubleValue(1.0).end().end().end() },
        { 288, file().code(13).code(11).code(8).code(0x8003).raw({ 1, 0, 0, 0 }).end().end().end() },
        { 293, step().code(22).byteValue(1).end() },
        { 294, step().stringItem(8, u"0.5") },
        { 295, step().doubleItem(25, 0.0) },
    };
    for (const Case& test : cases) {
        EXPECT_EXIT(
            {
                LinePrintingPresenter presenter;
                Song song;
                readSong(song, test.file.bytes, RecordingLocator(), test.end);
            },
            ::testing::ExitedWithCode(255),
            std::string("FATAL ERROR ") + test.place + ":" + std::to_string(test.line) + " " + test.message);
    }
}
