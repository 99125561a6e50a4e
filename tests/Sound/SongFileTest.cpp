#include "Sound/SongFile.h"

#include "Sound/SongWriter.h"
#include "SongFileTestSupport.h"
#include "base/Path.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

using namespace pulsara;
using namespace pulsara::testing;
using test::ScratchFolder;

namespace {

// Finds samples as the window does for a relative name: in the song's folder first, then in
// the samples folder; stores them by the program's rule.
class LoadingLocator : public RecordingLocator {
public:
    LoadingLocator(std::u16string songFolder, std::u16string samples) : songFolder_(std::move(songFolder))
    {
        samplesFolder = std::move(samples);
    }
    void locateSample(Song& song, std::u16string_view storedName, uint32_t slot) override
    {
        RecordingLocator::locateSample(song, storedName, slot);
        for (std::u16string_view folder : { std::u16string_view(songFolder_), std::u16string_view(samplesFolder) }) {
            PathString candidate;
            joinPath(candidate, folder, storedName);
            if (fileExists(candidate.view()))
                return void(song.instrument(slot).sample().load(candidate.view()));
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
    std::vector<uint8_t> wav = test::makeWav(1, 44100, 16, test::pcm16({ 0x1000, 0, 0 }));
    std::u16string songPath = folder.file("songs/beat.kqu");
    LoadingLocator locator(folder.file("songs"), folder.file("library"));
    Song saved;
    arrangeSong(saved);
    saved.instrument(39).sample().load(folder.write("songs/smp/kick.wav", wav));
    saved.instrument(38).sample().load(folder.write("library/snare.wav", wav));
    saved.instrument(0).sample().load(folder.write("elsewhere.wav", wav));
    ASSERT_EQ(saveSong(saved, songPath, locator), 1);
    EXPECT_FALSE(hasTemporaryFiles(folder));
    Song loaded;
    ReportRecorder reports;
    ASSERT_EQ(loadSong(loaded, songPath, locator), 1);
    EXPECT_TRUE(reports.reports().empty());

    // Slot k of the loaded song is what display position k showed, so the loaded song in its
    // own order writes the same bytes as the saved one in display order.
    EXPECT_TRUE(SongWriter(loaded, locator, songPath).write() == SongWriter(saved, locator, songPath).write());
    EXPECT_EQ(loaded.instrument(0).sample().path(), saved.instrument(39).sample().path());
    EXPECT_EQ(loaded.player().pattern(0).cell(0, 0), (Step { 0.5f, 2.0f, 3 }));
    // Sample paths were stored relative to the song's folder, to the samples folder, and in full.
    std::vector<std::pair<std::u16string, uint32_t>> stored { { u"smp/kick.wav", 0 }, { u"snare.wav", 1 },
        { folder.file("elsewhere.wav"), 39 } };
    EXPECT_EQ(locator.located, stored);
}

TEST(SongFile, ReportsAFileItCannotOpenOrWithoutTheMagicAndLeavesTheSongAlone)
{
    ScratchFolder folder;
    const struct {
        std::string name;
        std::optional<std::vector<uint8_t>> bytes; // none: the file is not written
    } cases[] = { { "missing.kqu", std::nullopt }, { "", std::nullopt }, { "wrong.kqu", std::vector<uint8_t> {} },
        { "wrong.kqu", { { 'K', 'V', 'S' } } }, { "wrong.kqu", { { 'K', 'V', 'S', '1', 8 } } },
        { "wrong.kqu", { { 'R', 'I', 'F', 'F' } } } };
    for (const auto& test : cases) {
        std::u16string path = test.bytes ? folder.write(test.name, *test.bytes) : folder.file(test.name);
        Song song;
        song.player().setPatternName(0, u"kept");
        RecordingLocator locator;
        ReportRecorder reports;
        EXPECT_EQ(loadSong(song, path, locator), 0);
        ASSERT_EQ(reports.reports().size(), 1u);
        EXPECT_EQ(reports.last().code, 0);
        EXPECT_EQ(reports.last().source, "Sound/songFile");
        EXPECT_EQ(reports.last().line, test.bytes ? 116 : 112);
        EXPECT_EQ(reports.last().message, test.bytes ? u"Not a kvSong file" : u"Can't open kvSong file \"" + path + u"\"");
        EXPECT_EQ(song.player().patternName(0), u"kept");
    }
}

TEST(SongFile, SavingReplacesTheOldFileWhole)
{
    ScratchFolder folder;
    std::u16string path = folder.write("song.kqu", std::vector<uint8_t>(100'000, 0xAB));
    Song song;
    song.player().setPatternName(4, u"new");
    RecordingLocator locator;
    EXPECT_EQ(saveSong(song, path, locator), 1);
    std::vector<uint8_t> bytes = folder.read("song.kqu");
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0xAB), 0) << "nothing of the old file may remain";
    EXPECT_FALSE(hasTemporaryFiles(folder));
    Song loaded;
    ASSERT_EQ(loadSong(loaded, path, locator), 1);
    EXPECT_EQ(loaded.player().patternName(4), u"new");
}

TEST(SongFileDeathTest, ASongThatCannotBeSavedOrReadIsFatal)
{
    ScratchFolder folder;
    auto expectFatal = [](bool save, std::u16string_view path, const char* output) {
        EXPECT_EXIT(
            {
                LinePrintingPresenter presenter;
                Song song;
                RecordingLocator locator;
                save ? saveSong(song, path, locator) : loadSong(song, path, locator);
            },
            ::testing::ExitedWithCode(255), output);
    };
    expectFatal(true, folder.file("no such folder/song.kqu"), "FATAL ERROR Sound/songFile:342 cant open kvSong file to save");
    // The kernel refuses to read this file at offset 0, a read that fails rather than ends.
    expectFatal(false, u"/proc/self/mem", "FATAL ERROR Sound/songFile:10 The song file is corrupted");
}
