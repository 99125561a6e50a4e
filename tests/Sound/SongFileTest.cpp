#include "Sound/SongFile.h"

#include "Sound/SongWriter.h"
#include "SongFileTestSupport.h"
#include "support/FullSong.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace pulsara;
using namespace pulsara::testing;
using test::ScratchFolder;

namespace {

std::vector<std::string> temporaryFiles(const ScratchFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        if (entry.path().filename().string().find(".saving") != std::string::npos)
            names.push_back(entry.path().filename().string());
    }
    return names;
}

constexpr int kNoFile = -1;
constexpr int kNeither = -2;

// Which of the versions the file holds, byte for byte.
int versionIn(const std::filesystem::path& file, const std::array<std::vector<uint8_t>, 2>& versions)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return kNoFile;
    // One buffer for every call: a fresh one each time costs more than the reading.
    static std::vector<char> bytes;
    bytes.resize(std::max(versions[0].size(), versions[1].size()) + 1);
    in.read(bytes.data(), std::streamsize(bytes.size()));
    for (int i = 0; i < 2; ++i) {
        if (size_t(in.gcount()) == versions[i].size() && std::memcmp(bytes.data(), versions[i].data(), versions[i].size()) == 0)
            return i;
    }
    return kNeither;
}

struct SongFile : ::testing::Test {
    ScratchFolder folder;
    RecordingLocator locator;
};

} // namespace

TEST_F(SongFile, SavesAndLoadsEverythingBackInDisplayOrder)
{
    std::u16string path = folder.file("beat.kqu");
    Song saved;
    arrangeSong(saved);
    ASSERT_EQ(saveSong(saved, path, locator), 1);
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

TEST_F(SongFile, ReportsAFileItCannotOpenOrWithoutTheMagicAndLeavesTheSongAlone)
{
    // The file's name and bytes (none: the file is not written).
    const std::pair<std::string, std::optional<std::vector<uint8_t>>> cases[] = { { "missing.kqu", std::nullopt }, { "", std::nullopt },
        { "wrong.kqu", std::vector<uint8_t> {} }, { "wrong.kqu", { { 'K', 'V', 'S' } } }, { "wrong.kqu", { { 'K', 'V', 'S', '1', 8 } } },
        { "wrong.kqu", { { 'R', 'I', 'F', 'F' } } } };
    for (const auto& [name, bytes] : cases) {
        std::u16string path = bytes ? folder.write(name, *bytes) : folder.file(name);
        Song song;
        song.player().setPatternName(0, u"kept");
        ReportRecorder reports;
        EXPECT_EQ(loadSong(song, path, locator), 0);
        EXPECT_EQ(reports.summaries(), (std::vector<test::ReportSummary> { { 0, "Sound/songFile", bytes ? 116 : 112,
                                           bytes ? u"Not a kvSong file" : u"Can't open kvSong file \"" + path + u"\"" } }));
        EXPECT_EQ(song.player().patternName(0), u"kept");
    }
}

TEST_F(SongFile, SavingReplacesTheOldFileWhole)
{
    std::u16string path = folder.write("song.kqu", std::vector<uint8_t>(100'000, 0xAB));
    Song song;
    song.player().setPatternName(4, u"new");
    EXPECT_EQ(saveSong(song, path, locator), 1);
    std::vector<uint8_t> bytes = folder.read("song.kqu");
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0xAB), 0) << "nothing of the old file may remain";
    EXPECT_EQ(folder.read("song.kqu.bak"), std::vector<uint8_t>(100'000, 0xAB)) << "the old song is kept beside";
    EXPECT_TRUE(temporaryFiles(folder).empty());
    Song loaded;
    ASSERT_EQ(loadSong(loaded, path, locator), 1);
    EXPECT_EQ(loaded.player().patternName(4), u"new");

    // A save that cannot be put in place says why and leaves every file as it was.
    ReportRecorder reports;
    std::u16string unsaveable = folder.file("no such folder/song.kqu");
    EXPECT_EQ(saveSong(song, unsaveable, locator), 0);
    EXPECT_EQ(reports.summaries(), (std::vector<test::ReportSummary> { { 0, "Sound/songFile", 342,
                                       u"cant open kvSong file to save \"" + unsaveable + u"\": No such file or directory" } }));
    EXPECT_EQ(folder.read("song.kqu"), bytes);
}

TEST_F(SongFile, AKillDuringASaveLeavesTheOldOrTheNewSongWhole)
{
    const std::u16string path = folder.file("full.kqu");
    std::array<std::unique_ptr<Song>, 2> songs { std::make_unique<Song>(), std::make_unique<Song>() };
    std::array<std::vector<uint8_t>, 2> versions;
    for (size_t i = 0; i < songs.size(); ++i) {
        test::fillSong(*songs[i], 1.0f + float(i));
        versions[i] = SongWriter(*songs[i], locator, path).write();
    }
    ASSERT_EQ(saveSong(*songs[1], path, locator), 1);
    size_t current = 1;
    // How long a save takes in a child just forked, as the rounds below make them.
    int done[2];
    ASSERT_EQ(::pipe(done), 0);
    const auto forked = std::chrono::steady_clock::now();
    if (::fork() == 0)
        _exit(saveSong(*songs[1], path, locator) == 1 && ::write(done[1], "s", 1) == 1 ? 0 : 1);
    char byte = 0;
    ASSERT_EQ(::read(done[0], &byte, 1), 1);
    const auto oneSave = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - forked);
    ::wait(nullptr);
    ::close(done[0]);
    ::close(done[1]);

    // The child saves the other song, then both by turns, until it is killed at a moment within
    // about one save: while the song is encoded, written, synced, backed up or renamed.
    std::mt19937 random(20261123);
    std::uniform_int_distribution<int64_t> moment(0, oneSave.count() * 5 / 4);
    for (int round = 0; round < 200; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (size_t i = current + 1;; ++i)
                saveSong(*songs[i % 2], path, locator);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        SCOPED_TRACE(round);
        const int target = versionIn(folder.path() / "full.kqu", versions);
        ASSERT_GE(target, 0) << "neither song";
        current = size_t(target);
        ASSERT_NE(versionIn(folder.path() / "full.kqu.bak", versions), kNeither) << "the backup is neither song";
        // Only the save that was cut short leaves its temporary file: the ones before it in the
        // same process renamed theirs.
        const std::vector<std::string> left = temporaryFiles(folder);
        ASSERT_LE(left.size(), 1u);
        for (const std::string& name : left) {
            EXPECT_NE(name.find("-" + std::to_string(child) + "-"), std::string::npos) << name;
            std::filesystem::remove(folder.path() / name);
        }
    }
}

TEST_F(SongFile, TheNextSaveRemovesWhatAKilledSaveLeft)
{
    const std::u16string path = folder.file("beat.kqu");
    const pid_t gone = ::fork();
    if (gone == 0)
        _exit(0);
    ::waitpid(gone, nullptr, 0);
    const std::string abandoned = "beat.kqu.saving-" + std::to_string(gone) + "-0";
    // A save still running in another program, and another song's leftover, are not this one's.
    const std::string running = "beat.kqu.saving-" + std::to_string(::getppid()) + "-0";
    const std::string other = "drums.kqu.saving-" + std::to_string(gone) + "-0";
    for (const std::string& name : { abandoned, running, other })
        std::ofstream(folder.path() / name) << "half a song";
    Song song;
    ASSERT_EQ(saveSong(song, path, locator), 1);
    std::vector<std::string> left = temporaryFiles(folder);
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::string> { running, other }));
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
