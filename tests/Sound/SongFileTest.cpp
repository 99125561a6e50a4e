#include "Sound/SongFile.h"

#include "SongFileTestSupport.h"
#include "base/Path.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

// A 16-bit mono WAV file of a few frames at the song's rate.
std::vector<uint8_t> tinyWav(uint16_t firstFrame)
{
    SongBytes wav;
    wav.raw({ 'R', 'I', 'F', 'F' }).little(36 + 6, 4).raw({ 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ' });
    wav.little(16, 4).little(1, 2).little(1, 2).little(44100, 4).little(88200, 4).little(2, 2).little(16, 2);
    wav.raw({ 'd', 'a', 't', 'a' }).little(6, 4).little(firstFrame, 2).little(0, 2).little(0, 2);
    return wav.bytes;
}

// Finds samples as the window does for a relative name: in the song's folder first, then in
// the samples folder; stores them by the program's rule.
class LoadingLocator : public RecordingLocator {
public:
    LoadingLocator(std::u16string songFolder, std::u16string samples)
        : songFolder_(std::move(songFolder))
    {
        samplesFolder = std::move(samples);
    }
    void locateSample(Song& song, std::u16string_view storedName, uint32_t slot) override
    {
        RecordingLocator::locateSample(song, storedName, slot);
        for (std::u16string_view folder : { std::u16string_view(songFolder_), std::u16string_view(samplesFolder) }) {
            PathString candidate;
            joinPath(candidate, folder, storedName);
            if (fileExists(candidate.view())) {
                song.instrument(slot).sample().load(candidate.view());
                return;
            }
        }
    }

private:
    std::u16string songFolder_;
};

bool hasTemporaryFiles(const ScratchFolder& folder)
{
    return std::any_of(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator(),
        [](const auto& entry) { return entry.path().filename().string().find(".saving") != std::string::npos; });
}

} // namespace

TEST(SongFile, SavesAndLoadsEverythingBackInDisplayOrder)
{
    ScratchFolder folder;
    std::filesystem::create_directories(folder.path() / "songs" / "smp");
    std::filesystem::create_directories(folder.path() / "library");
    folder.write("songs/smp/kick.wav", tinyWav(0x1000));
    folder.write("library/snare.wav", tinyWav(0x2000));
    folder.write("elsewhere.wav", tinyWav(0x3000));
    std::u16string songPath = folder.file("songs/beat.kqu");
    LoadingLocator locator(folder.file("songs"), folder.file("library"));

    Song saved;
    SongPlayer& player = saved.player();
    player.setTempo(97.5f);
    player.setVolume(0.45f);
    saved.setStepsPerPattern(48);
    saved.setBeatsPerPattern(5);
    // Display position p shows slot 39 - p for instruments and (p + 10) % 40 for patterns.
    std::reverse(saved.instrumentOrder().begin(), saved.instrumentOrder().end());
    std::rotate(saved.patternOrder().begin(), saved.patternOrder().begin() + 10, saved.patternOrder().end());
    saved.instrument(39).setName(u"kick");
    saved.instrument(39).setVolume(0.9f);
    saved.instrument(39).sample().load(folder.file("songs/smp/kick.wav"));
    saved.instrument(38).sample().load(folder.file("library/snare.wav"));
    saved.instrument(0).sample().load(folder.file("elsewhere.wav"));
    saved.instrument(0).setName(u"far away");
    player.setPatternName(10, u"intro");
    player.setPatternName(9, u"outro");
    player.pattern(10).setCell(39, 0, { 0.5f, 2.0f, 3 });
    player.pattern(10).setCell(0, 63, { 1.0f, 0.25f, -7 });
    player.pattern(9).setCell(20, 47, { 0.0f, 1.0f, 256 });
    player.playlist().set(10, 0, 1.0f);
    player.playlist().set(10, 200, 1.0f);
    player.playlist().set(9, 255, 1.0f);
    player.setLoopStart(2);
    player.setLoopEnd(200);
    saved.setEditorShown(1);
    saved.view(0) = { 3, { 4, 5 } };
    saved.view(1) = { -1, { 7, -8 } };

    ASSERT_EQ(saveSong(saved, songPath, locator), 1);
    EXPECT_FALSE(hasTemporaryFiles(folder));

    Song loaded;
    RecordingPresenter presenter;
    ASSERT_EQ(loadSong(loaded, songPath, locator), 1);
    EXPECT_TRUE(presenter.reports.empty());

    const SongPlayer& back = loaded.player();
    EXPECT_EQ(back.tempo(), 97.5f);
    EXPECT_EQ(back.volume(), 0.45f);
    EXPECT_EQ(loaded.stepsPerPattern(), 48u);
    EXPECT_EQ(loaded.beatsPerPattern(), 5u);
    EXPECT_EQ(back.loopStart(), 2);
    EXPECT_EQ(back.loopEnd(), 200);
    EXPECT_EQ(loaded.editorShown(), 1);
    EXPECT_EQ(loaded.view(0), saved.view(0));
    EXPECT_EQ(loaded.view(1), saved.view(1));

    // Slot k of the loaded song is what display position k showed.
    for (uint32_t position = 0; position < Song::kInstruments; ++position) {
        const Instrument& was = saved.instrument(saved.instrumentOrder()[position]);
        const Instrument& is = loaded.instrument(position);
        EXPECT_EQ(is.name(), was.name()) << position;
        EXPECT_EQ(is.volume(), was.volume()) << position;
        EXPECT_EQ(is.sample().path(), was.sample().path()) << position;
    }
    // Sample paths were stored relative to the song's folder, to the samples folder, and in full.
    std::vector<std::u16string> stored;
    for (const auto& [name, slot] : locator.located)
        stored.push_back(name);
    EXPECT_EQ(stored, (std::vector<std::u16string> { u"smp/kick.wav", u"snare.wav", folder.file("elsewhere.wav") }));

    for (uint32_t position = 0; position < Song::kPatterns; ++position) {
        uint32_t pattern = saved.patternOrder()[position];
        EXPECT_EQ(back.patternName(position), player.patternName(pattern)) << position;
        for (uint32_t column = 0; column < Song::kPositions; ++column)
            EXPECT_EQ(back.playlist().isOn(position, column), player.playlist().isOn(pattern, column)) << position;
        for (uint32_t row = 0; row < Song::kInstruments; ++row) {
            for (uint32_t step = 0; step < 64; ++step) {
                ASSERT_EQ(back.pattern(position).cell(row, step), player.pattern(pattern).cell(saved.instrumentOrder()[row], step))
                    << "pattern position " << position << " row " << row << " step " << step;
            }
        }
    }
    EXPECT_EQ(back.patternName(0), u"intro");
    EXPECT_EQ(back.pattern(0).cell(0, 0), (Step { 0.5f, 2.0f, 3 }));
}

TEST(SongFile, ReportsAFileItCannotOpenAndLeavesTheSongAlone)
{
    ScratchFolder folder;
    const std::u16string missing = folder.file("missing.kqu");
    const struct {
        std::u16string path;
    } cases[] = { { missing }, { fromUtf8(folder.path().string()) } };
    for (const auto& test : cases) {
        Song song;
        song.player().setPatternName(0, u"kept");
        RecordingLocator locator;
        RecordingPresenter presenter;
        EXPECT_EQ(loadSong(song, test.path, locator), 0);
        ASSERT_EQ(presenter.reports.size(), 1u);
        const RecordedReport& report = presenter.reports[0];
        EXPECT_EQ(report.code, 0);
        EXPECT_EQ(report.source, "Sound/songFile");
        EXPECT_EQ(report.line, 112);
        EXPECT_EQ(report.message, u"Can't open kvSong file \"" + test.path + u"\"");
        EXPECT_EQ(song.player().patternName(0), u"kept");
    }
}

TEST(SongFile, ReportsAFileWithoutTheMagicAndLeavesTheSongAlone)
{
    ScratchFolder folder;
    const std::vector<std::vector<uint8_t>> contents = { {}, { 'K', 'V', 'S' }, { 'K', 'V', 'S', '1', 8 }, { 'R', 'I', 'F', 'F' } };
    for (const auto& bytes : contents) {
        folder.write("wrong.kqu", bytes);
        Song song;
        song.player().setPatternName(0, u"kept");
        RecordingLocator locator;
        RecordingPresenter presenter;
        EXPECT_EQ(loadSong(song, folder.file("wrong.kqu"), locator), 0);
        ASSERT_EQ(presenter.reports.size(), 1u);
        const RecordedReport& report = presenter.reports[0];
        EXPECT_EQ(report.code, 0);
        EXPECT_EQ(report.source, "Sound/songFile");
        EXPECT_EQ(report.line, 116);
        EXPECT_EQ(report.message, u"Not a kvSong file");
        EXPECT_EQ(song.player().patternName(0), u"kept");
    }
}

TEST(SongFile, AFileOfOnlyTheMagicLoadsAsANewSong)
{
    ScratchFolder folder;
    folder.write("empty.kqu", { 'K', 'V', 'S', '0' });
    Song song;
    song.setStepsPerPattern(32);
    song.player().pattern(1).setNote(1, 1, 1.0f);
    RecordingLocator locator;
    RecordingPresenter presenter;
    EXPECT_EQ(loadSong(song, folder.file("empty.kqu"), locator), 1);
    EXPECT_TRUE(presenter.reports.empty());
    EXPECT_EQ(song.stepsPerPattern(), 16u);
    EXPECT_FALSE(song.player().pattern(1).isNote(1, 1));
}

TEST(SongFile, SavingReplacesTheOldFileWhole)
{
    ScratchFolder folder;
    folder.write("song.kqu", std::vector<uint8_t>(100'000, 0xAB));
    Song song;
    song.player().setPatternName(4, u"new");
    RecordingLocator locator;
    EXPECT_EQ(saveSong(song, folder.file("song.kqu"), locator), 1);
    std::vector<uint8_t> bytes = folder.read("song.kqu");
    SongBytes expectedStart = SongBytes().magic();
    ASSERT_GE(bytes.size(), 4u);
    EXPECT_TRUE(std::equal(expectedStart.bytes.begin(), expectedStart.bytes.end(), bytes.begin()));
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0xAB), 0) << "nothing of the old file may remain";
    EXPECT_FALSE(hasTemporaryFiles(folder));
    Song loaded;
    ASSERT_EQ(loadSong(loaded, folder.file("song.kqu"), locator), 1);
    EXPECT_EQ(loaded.player().patternName(4), u"new");
}

TEST(SongFileDeathTest, ASongThatCannotBeSavedIsFatal)
{
    ScratchFolder folder;
    std::u16string path = folder.file("no such folder/song.kqu");
    EXPECT_EXIT(
        {
            LinePrintingPresenter presenter;
            setErrorPresenter(&presenter);
            Song song;
            RecordingLocator locator;
            saveSong(song, path, locator);
        },
        ::testing::ExitedWithCode(255), "FATAL ERROR Sound/songFile:342 cant open kvSong file to save");
}

TEST(SongFileDeathTest, AFileThatFailsToReadIsCorrupt)
{
    // The kernel refuses to read this file at offset 0, a read that fails rather than ends.
    EXPECT_EXIT(
        {
            LinePrintingPresenter presenter;
            setErrorPresenter(&presenter);
            Song song;
            RecordingLocator locator;
            loadSong(song, u"/proc/self/mem", locator);
        },
        ::testing::ExitedWithCode(255), "FATAL ERROR Sound/songFile:10 The song file is corrupted");
}
