#include "Sound/SongFile.h"

#include "Sound/SongWriter.h"
#include "SongFileTestSupport.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

using namespace pulsara;
using namespace pulsara::testing;
using test::ScratchFolder;

namespace {

bool hasTemporaryFiles(const ScratchFolder& folder)
{
    return std::any_of(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator(),
        [](const auto& entry) { return entry.path().filename().string().find(".saving") != std::string::npos; });
}

} // namespace

TEST(SongFile, SavesAndLoadsEverythingBackInDisplayOrder)
{
    ScratchFolder folder;
    std::u16string path = folder.file("beat.kqu");
    RecordingLocator locator;
    Song saved;
    arrangeSong(saved);
    ASSERT_EQ(saveSong(saved, path, locator), 1);
    EXPECT_FALSE(hasTemporaryFiles(folder));
    Song loaded;
    ReportRecorder reports;
    ASSERT_EQ(loadSong(loaded, path, locator), 1);
    EXPECT_TRUE(reports.reports().empty());
    // Slot k of the loaded song is what display position k showed, so the loaded song in its
    // own order writes the same bytes as the saved one in display order.
    EXPECT_TRUE(SongWriter(loaded, locator, path).write() == SongWriter(saved, locator, path).write());
    EXPECT_EQ(loaded.instrument(0).name(), u"kick");
    EXPECT_EQ(loaded.player().pattern(0).cell(0, 0), (Step { 0.5f, 2.0f, 3 }));
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
    EXPECT_EQ(folder.read("song.kqu.bak"), std::vector<uint8_t>(100'000, 0xAB)) << "the old song is kept beside";
    EXPECT_FALSE(hasTemporaryFiles(folder));
    Song loaded;
    ASSERT_EQ(loadSong(loaded, path, locator), 1);
    EXPECT_EQ(loaded.player().patternName(4), u"new");

    // A save that cannot be put in place says why and leaves every file as it was.
    ReportRecorder reports;
    std::u16string unsaveable = folder.file("no such folder/song.kqu");
    EXPECT_EQ(saveSong(song, unsaveable, locator), 0);
    ASSERT_EQ(reports.reports().size(), 1u);
    EXPECT_EQ(reports.last().code, 0);
    EXPECT_EQ(reports.last().message, u"cant open kvSong file to save \"" + unsaveable + u"\": No such file or directory");
    EXPECT_EQ(folder.read("song.kqu"), bytes);
}

TEST(SongFileDeathTest, ASongThatCannotBeReadIsFatal)
{
    // The kernel refuses to read this file at offset 0, a read that fails rather than ends.
    EXPECT_EXIT(
        {
            LinePrintingPresenter presenter;
            Song song;
            RecordingLocator locator;
            loadSong(song, u"/proc/self/mem", locator);
        },
        ::testing::ExitedWithCode(255), "FATAL ERROR Sound/songFile:10 The song file is corrupted");
}
